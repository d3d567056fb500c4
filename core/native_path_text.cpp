#include "core/native_path.h"

namespace quillane {

namespace {

constexpr char16_t kInvalidByteBase = 0xDC00; // an invalid byte b reads as U+DC00 + b

bool IsContinuation(uchar byte)
{
    return (byte & 0xC0) == 0x80;
}

// Length of the valid UTF-8 sequence at the start of `bytes`, its character in `unicode`;
// 0 when none begins there (overlong forms, surrogates and values above U+10FFFF included).
qsizetype SequenceAt(const uchar* bytes, qsizetype left, char32_t& unicode)
{
    const uchar lead = bytes[0];
    if (lead < 0x80) {
        unicode = lead;
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF && left >= 2 && IsContinuation(bytes[1])) {
        unicode = char32_t((lead & 0x1F) << 6 | (bytes[1] & 0x3F));
        return 2;
    }
    if ((lead & 0xF0) == 0xE0 && left >= 3 && IsContinuation(bytes[1])
        && IsContinuation(bytes[2])) {
        unicode = char32_t((lead & 0x0F) << 12 | (bytes[1] & 0x3F) << 6 | (bytes[2] & 0x3F));
        return unicode >= 0x800 && !(unicode >= 0xD800 && unicode <= 0xDFFF) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4 && left >= 4 && IsContinuation(bytes[1])
        && IsContinuation(bytes[2]) && IsContinuation(bytes[3])) {
        unicode = char32_t((lead & 0x07) << 18 | (bytes[1] & 0x3F) << 12 | (bytes[2] & 0x3F) << 6
                           | (bytes[3] & 0x3F));
        return unicode >= 0x10000 && unicode <= 0x10FFFF ? 4 : 0;
    }
    return 0;
}

void AppendUtf8(QByteArray& bytes, char32_t unicode)
{
    if (unicode < 0x80) {
        bytes += char(unicode);
    } else if (unicode < 0x800) {
        bytes += char(0xC0 | unicode >> 6);
        bytes += char(0x80 | (unicode & 0x3F));
    } else if (unicode < 0x10000) {
        bytes += char(0xE0 | unicode >> 12);
        bytes += char(0x80 | (unicode >> 6 & 0x3F));
        bytes += char(0x80 | (unicode & 0x3F));
    } else {
        bytes += char(0xF0 | unicode >> 18);
        bytes += char(0x80 | (unicode >> 12 & 0x3F));
        bytes += char(0x80 | (unicode >> 6 & 0x3F));
        bytes += char(0x80 | (unicode & 0x3F));
    }
}

} // namespace

QString PathFromBytes(QByteArrayView bytes)
{
    // No character takes more units than bytes.
    QString text(bytes.size(), Qt::Uninitialized);
    auto* out = reinterpret_cast<char16_t*>(text.data());
    const auto* in = reinterpret_cast<const uchar*>(bytes.data());
    const auto* const end = in + bytes.size();
    const auto* const begin = out;
    while (in < end) {
        if (*in < 0x80) {
            *out++ = *in++;
            continue;
        }
        char32_t unicode = 0;
        const qsizetype length = SequenceAt(in, end - in, unicode);
        if (length == 0) {
            *out++ = char16_t(kInvalidByteBase + *in++);
            continue;
        }
        in += length;
        if (unicode < 0x10000) {
            *out++ = char16_t(unicode);
        } else {
            *out++ = QChar::highSurrogate(unicode);
            *out++ = QChar::lowSurrogate(unicode);
        }
    }
    text.truncate(out - begin);
    return text;
}

QByteArray BytesFromPath(QStringView path)
{
    QByteArray bytes;
    bytes.reserve(path.size() + path.size() / 8);
    for (qsizetype at = 0; at < path.size(); ++at) {
        const char16_t unit = path[at].unicode();
        if (QChar::isHighSurrogate(unit) && at + 1 < path.size() && path[at + 1].isLowSurrogate()) {
            AppendUtf8(bytes, QChar::surrogateToUcs4(path[at], path[at + 1]));
            ++at;
        } else if (unit >= kInvalidByteBase + 0x80 && unit <= kInvalidByteBase + 0xFF) {
            bytes += char(unit - kInvalidByteBase);
        } else {
            AppendUtf8(bytes, unit);
        }
    }
    return bytes;
}

} // namespace quillane
