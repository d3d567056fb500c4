#include "imaging/comments/text_bytes.h"

namespace quillane {

namespace {

/// Bytes 0x80 to 0x9f of Windows-1252, as its registration at IANA lists them.
constexpr char16_t kTextUpperControls[32] = {
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178,
};

} // namespace

QChar CharacterFromByte(uchar byte)
{
    return byte >= 0x80 && byte <= 0x9f ? QChar(kTextUpperControls[byte - 0x80]) : QChar(byte);
}

QString TextFromFieldBytes(QByteArrayView bytes)
{
    while (!bytes.isEmpty() && bytes.back() == '\0') {
        bytes.chop(1);
    }
    if (bytes.isValidUtf8()) {
        return QString::fromUtf8(bytes);
    }
    QString text(bytes.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        text[i] = CharacterFromByte(uchar(bytes[i]));
    }
    return text;
}

} // namespace quillane
