#include "imaging/carry/png_parts.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include <QString>
#include <QtEndian>
#include <algorithm>
#include <array>

namespace quillane::carry {

namespace {

constexpr QByteArrayView kPartsMark("\x89PNG\r\n\x1a\n", 8);
constexpr size_t kPartsMost = 200'000; ///< chunks
constexpr qsizetype kPartsFrame = 12;  ///< bytes of length, type and check sum

/// The check sum of PNG 1.2, section 3.4, a byte at a time.
constexpr std::array<quint32, 256> PartsSums()
{
    std::array<quint32, 256> sums{};
    for (quint32 i = 0; i < 256; ++i) {
        quint32 sum = i;
        for (int bit = 0; bit < 8; ++bit) {
            sum = sum & 1 ? 0xedb88320u ^ sum >> 1 : sum >> 1;
        }
        sums[i] = sum;
    }
    return sums;
}

quint32 PartsSum(QByteArrayView bytes)
{
    static constexpr std::array<quint32, 256> kSums = PartsSums();
    quint32 sum = 0xffffffffu;
    for (const char byte : bytes) {
        sum = kSums[(sum ^ quint8(byte)) & 0xff] ^ sum >> 8;
    }
    return ~sum;
}

void PartsPut(QByteArray& out, quint32 number)
{
    char bytes[4];
    qToBigEndian(number, bytes);
    out.append(bytes, 4);
}

} // namespace

QByteArray PngParts::Joined() const
{
    qsizetype size = kPartsMark.size() + behind.size();
    for (const PngPart& part : chunks) {
        size += part.bytes.size();
    }
    QByteArray out = kPartsMark.toByteArray();
    out.reserve(size);
    for (const PngPart& part : chunks) {
        out += part.bytes;
    }
    return out + behind;
}

qsizetype PngParts::Find(const char* type) const
{
    const auto found = std::find_if(chunks.begin(), chunks.end(),
                                    [type](const PngPart& part) { return part.Is(type); });
    return found != chunks.end() ? found - chunks.begin() : -1;
}

PngParts CutPng(const QByteArray& bytes)
{
    if (!bytes.startsWith(kPartsMark)) {
        throw Failure(kFailureUnreadable, QStringLiteral("This file does not begin as a PNG."));
    }
    PngParts parts;
    qsizetype at = kPartsMark.size();
    while (bytes.size() - at >= kPartsFrame) {
        const auto length = qsizetype(qFromBigEndian<quint32>(bytes.constData() + at));
        if (length > bytes.size() - at - kPartsFrame) {
            break;
        }
        if (parts.chunks.size() >= kPartsMost) {
            throw Failure(kFailureLimit,
                          QStringLiteral("This PNG has more chunks than can be carried over."));
        }
        parts.chunks.push_back({bytes.sliced(at, length + kPartsFrame)});
        at += length + kPartsFrame;
        if (parts.chunks.back().Is("IEND")) {
            break;
        }
    }
    parts.behind = bytes.sliced(at);
    return parts;
}

PngPart MakePngPart(const char* type, QByteArrayView content)
{
    QByteArray bytes;
    bytes.reserve(content.size() + kPartsFrame);
    PartsPut(bytes, quint32(content.size()));
    bytes.append(type, 4).append(content);
    PartsPut(bytes, PartsSum(QByteArrayView(bytes).sliced(4)));
    return {bytes};
}

PngPart MakePngText(const char* keyword, const QString& text)
{
    // A zero would end the text; it parts the names of a copyright.
    const QByteArray utf8 = QString(text).replace(QChar(u'\0'), u'\n').toUtf8();
    if (utf8.size() >= limits::kMaxTextBytes - 100) {
        throw Failure(kFailureLimit,
                      QStringLiteral("The text \"%1\" is longer than the 1 MB that a PNG may have.")
                          .arg(QString::fromLatin1(keyword)));
    }
    const bool plain =
        std::all_of(utf8.begin(), utf8.end(), [](char c) { return quint8(c) < 0x80; });
    return plain ? MakePngPart("tEXt", QByteArray(keyword) + '\0' + utf8)
                 : MakePngPart("iTXt", QByteArray(keyword) + QByteArray(5, '\0') + utf8);
}

bool IsPngText(const PngPart& part)
{
    return part.Is("tEXt") || part.Is("zTXt") || part.Is("iTXt");
}

QByteArrayView PngTextKeyword(const PngPart& part)
{
    const QByteArrayView content = part.Content();
    const qsizetype end = content.indexOf('\0');
    return content.first(end < 0 ? content.size() : end);
}

} // namespace quillane::carry
