// Letters of a drawing exchange file.
#include "imaging/codecs/dxf_tables.h"
#include "imaging/comments/text_bytes.h"
#include <QStringConverter>
#include <QStringList>

namespace quillane::codecs {

namespace {

constexpr qsizetype kDxfMostText = 50'000; ///< letters of one value
constexpr qsizetype kDxfMostLines = 2'000;

QString DxfDecoded(QByteArrayView bytes, const QByteArray& codePage)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(bytes);
    if (!utf8.hasError()) {
        return text;
    }
    if (codePage.startsWith("ANSI_")) {
        QByteArray name = codePage.mid(5);
        name = name == "932" ? "Shift_JIS"
            : name == "936"  ? "GBK"
            : name == "949"  ? "EUC-KR"
            : name == "950"  ? "Big5"
                             : "windows-" + name;
        QStringDecoder decoder(name.constData());
        if (decoder.isValid()) {
            return decoder.decode(bytes);
        }
    }
    return TextFromFieldBytes(bytes);
}

/// "\U+2205" and the like at `at`; false when there is none.
bool DxfUnicode(const QString& text, qsizetype at, char16_t& letter)
{
    if (!QStringView(text).sliced(at).startsWith(u"\\U+") || at + 7 > text.size()) {
        return false;
    }
    bool sound = false;
    letter = char16_t(QStringView(text).sliced(at + 3, 4).toUInt(&sound, 16));
    return sound;
}

/// Sign of "%%x" at `at`, and how many letters that is; 0 when it is none.
qsizetype DxfSign(const QString& text, qsizetype at, QString& out)
{
    if (at + 2 >= text.size() || text[at] != u'%' || text[at + 1] != u'%') {
        return 0;
    }
    switch (text[at + 2].toLower().unicode()) {
    case u'd':
        out += QChar(0xb0);
        return 3;
    case u'c':
        out += QChar(0x2300);
        return 3;
    case u'p':
        out += QChar(0xb1);
        return 3;
    case u'%':
        out += u'%';
        return 3;
    case u'u':
    case u'o':
    case u'k':
        return 3; // a line that begins or ends
    default:
        break;
    }
    bool sound = false;
    const uint code = QStringView(text).mid(at + 2, 3).toUInt(&sound);
    if (!sound || at + 5 > text.size() || code > 255) {
        return 0;
    }
    out += CharacterFromByte(uchar(code));
    return 5;
}

} // namespace

QString DxfText(QByteArrayView bytes, const QByteArray& codePage)
{
    const QString text = DxfDecoded(bytes, codePage).left(kDxfMostText);
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size();) {
        char16_t letter = 0;
        if (DxfUnicode(text, i, letter)) {
            out += QChar(letter);
            i += 7;
        } else if (const qsizetype taken = DxfSign(text, i, out)) {
            i += taken;
        } else {
            out += text[i++];
        }
    }
    return out;
}

QStringList DxfLines(const QString& formatted)
{
    QStringList lines;
    QString line;
    for (qsizetype i = 0; i < formatted.size(); ++i) {
        const QChar c = formatted[i];
        if (c == u'{' || c == u'}') {
            continue;
        }
        if (c != u'\\' || i + 1 >= formatted.size()) {
            line += c;
            continue;
        }
        const QChar kind = formatted[++i];
        switch (kind.unicode()) {
        case u'P':
        case u'X':
            lines += line;
            line.clear();
            break;
        case u'~':
            line += QChar(0xa0);
            break;
        case u'\\':
        case u'{':
        case u'}':
            line += kind;
            break;
        case u'S': { // one above the other
            const qsizetype end = formatted.indexOf(u';', i);
            QString stack = formatted.mid(i + 1, (end < 0 ? formatted.size() : end) - i - 1);
            line += stack.replace(u'^', u'/').replace(u'#', u'/');
            i = end < 0 ? formatted.size() : end;
            break;
        }
        case u'A':
        case u'C':
        case u'c':
        case u'F':
        case u'f':
        case u'H':
        case u'p':
        case u'Q':
        case u'T':
        case u'W': {
            const qsizetype end = formatted.indexOf(u';', i);
            i = end < 0 ? i : end;
            break;
        }
        default: // a line under, over or through begins or ends
            break;
        }
        if (lines.size() >= kDxfMostLines) {
            break;
        }
    }
    lines += line;
    return lines;
}

} // namespace quillane::codecs
