#include "imaging/codecs/byte_stream.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include <algorithm>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kPnmName[] = "PNM";
constexpr qint64 kPnmMaxHeader = 64 * 1024; ///< comments in
constexpr int kPnmMaxNumber = 99'999'999;
/// Characters that a written sample may take, blanks and comments in.
constexpr qint64 kPnmCharactersPerSample = 64;

bool PnmIsBlank(int c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The next character that is no comment; a comment counts as its line's end.
int PnmNext(ByteStream& stream)
{
    int c = stream.Next();
    if (c == '#') {
        while (c >= 0 && c != '\n' && c != '\r') {
            c = stream.Next();
        }
    }
    return c;
}

/// The next number and the one character behind it; -1 where there is none.
int PnmNumber(ByteStream& stream)
{
    int c = PnmNext(stream);
    while (PnmIsBlank(c)) {
        c = PnmNext(stream);
    }
    if (c < '0' || c > '9') {
        return -1;
    }
    int number = 0;
    for (; c >= '0' && c <= '9'; c = PnmNext(stream)) {
        number = std::min(number * 10 + (c - '0'), kPnmMaxNumber);
    }
    return c < 0 || PnmIsBlank(c) ? number : -1;
}

/// The next digit 0 or 1 of a bit map, which needs no blanks between; -1 where there is none.
int PnmBit(ByteStream& stream)
{
    int c = PnmNext(stream);
    while (PnmIsBlank(c)) {
        c = PnmNext(stream);
    }
    return c == '0' ? 0 : c == '1' ? 1 : -1;
}

struct PnmHeader {
    int kind = 0; ///< 1..6
    int width = 0;
    int height = 0;
    int most = 1; ///< value of white

    bool IsText() const { return kind <= 3; }
    bool IsBits() const { return kind == 1 || kind == 4; }
    int Channels() const { return kind == 3 || kind == 6 ? 3 : 1; }
    bool IsWide() const { return most > 255; }
    int Bits() const { return IsBits() ? 1 : Channels() * (IsWide() ? 16 : 8); }
};

/// Reads the header and leaves the stream at the first sample.
PnmHeader PnmReadHeader(ByteStream& stream)
{
    PnmHeader header;
    const bool marked = stream.Next() == 'P';
    header.kind = stream.Next() - '0';
    if (!marked || header.kind < 1 || header.kind > 6) {
        Damaged(kPnmName, QStringLiteral("it does not begin as one"));
    }
    header.width = PnmNumber(stream);
    header.height = PnmNumber(stream);
    if (!header.IsBits()) {
        header.most = PnmNumber(stream);
    }
    if (header.width < 0 || header.height < 0 || header.most < 0 || stream.HasEnded()) {
        Damaged(kPnmName,
                QStringLiteral("its header is cut short or holds something else than "
                               "numbers"));
    }
    if (header.most < 1 || header.most > 65535) {
        Damaged(kPnmName, QStringLiteral("it claims %1 as its largest value").arg(header.most));
    }
    CheckSides(kPnmName, header.width, header.height);
    return header;
}

/// One row of samples, as numbers; false when they end early.
bool PnmReadRow(ByteStream& stream, const PnmHeader& header, std::vector<uchar>& stored,
                std::vector<quint16>& samples)
{
    if (header.IsText()) {
        for (quint16& sample : samples) {
            const int value = header.IsBits() ? PnmBit(stream) : PnmNumber(stream);
            if (value < 0) {
                return false;
            }
            sample = quint16(std::min(value, header.most));
        }
        return true;
    }
    if (stream.Read(stored.data(), qint64(stored.size())) != qint64(stored.size())) {
        return false;
    }
    if (header.IsBits()) {
        return true; // the row is taken as it is
    }
    for (size_t i = 0; i < samples.size(); ++i) {
        const int value = header.IsWide() ? Big16(&stored[2 * i]) : stored[i];
        samples[i] = quint16(std::min(value, header.most));
    }
    return true;
}

/// Puts a row into the image, its values stretched to the full range.
void PnmPutRow(const PnmHeader& header, const std::vector<uchar>& stored,
               const std::vector<quint16>& samples, uchar* to)
{
    const int width = header.width;
    if (header.kind == 4) {
        std::transform(stored.begin(), stored.end(), to, [](uchar bits) { return uchar(~bits); });
    } else if (header.kind == 1) {
        std::fill_n(to, (width + 7) / 8, uchar(0));
        for (int x = 0; x < width; ++x) {
            if (samples[size_t(x)] == 0) {
                to[x >> 3] = uchar(to[x >> 3] | (0x80 >> (x & 7)));
            }
        }
    } else if (header.IsWide()) {
        quint16* wide = reinterpret_cast<quint16*>(to);
        const auto full = [&](size_t i) {
            return quint16((quint32(samples[i]) * 65535u + quint32(header.most) / 2)
                           / quint32(header.most));
        };
        for (size_t x = 0; x < size_t(width); ++x) {
            if (header.Channels() == 1) {
                wide[x] = full(x);
                continue;
            }
            for (size_t channel = 0; channel < 3; ++channel) {
                wide[4 * x + channel] = full(3 * x + channel);
            }
            wide[4 * x + 3] = 0xffff;
        }
    } else {
        const auto full = [&](size_t i) {
            return (samples[i] * 255 + header.most / 2) / header.most;
        };
        for (size_t x = 0; x < size_t(width); ++x) {
            if (header.Channels() == 1) {
                to[x] = uchar(full(x));
            } else {
                reinterpret_cast<QRgb*>(to)[x] =
                    qRgb(full(3 * x), full(3 * x + 1), full(3 * x + 2));
            }
        }
    }
}

} // namespace

bool PnmMatches(QByteArrayView head, QStringView)
{
    return head.size() >= 3 && head[0] == 'P' && head[1] >= '1' && head[1] <= '6'
        && (PnmIsBlank(head[2]) || head[2] == '#');
}

ImageFacts PnmProbe(ByteSource& source)
{
    ByteStream stream(source, 0, kPnmMaxHeader);
    const PnmHeader header = PnmReadHeader(stream);
    ImageFacts facts;
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = qint16(header.Bits());
    constexpr qint16 kCodes[] = {102, 104, 106, 103, 105, 107}; // P1 to P6
    facts.format = kCodes[header.kind - 1];
    facts.compression = QStringLiteral("Uncompressed");
    return facts;
}

Bitmap PnmDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    ByteStream head(source, 0, kPnmMaxHeader);
    const PnmHeader header = PnmReadHeader(head);
    const bool grey = header.Channels() == 1;
    QImage image = NewImage(
        kPnmName, header.width, header.height,
        header.IsBits() ? QImage::Format_Mono
            : grey      ? (header.IsWide() ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8)
            : header.IsWide() ? QImage::Format_RGBX64
                              : QImage::Format_RGB32);
    const size_t perRow = size_t(header.width) * size_t(header.Channels());
    const qint64 limit = header.IsText()
        ? kPnmMaxHeader + qint64(perRow) * header.height * kPnmCharactersPerSample
        : source.Size();
    ByteStream stream(source, 0, limit);
    PnmReadHeader(stream);
    std::vector<quint16> samples(header.kind == 4 ? 0 : perRow);
    std::vector<uchar> stored;
    if (!header.IsText()) {
        stored.resize(header.IsBits() ? (perRow + 7) / 8 : perRow * (header.IsWide() ? 2 : 1));
    }
    int rows = 0;
    for (; rows < header.height; ++rows) {
        CheckCancelled(request);
        if (!PnmReadRow(stream, header, stored, samples)) {
            break;
        }
        PnmPutRow(header, stored, samples, image.scanLine(rows));
    }
    if (rows == 0) {
        Damaged(kPnmName, QStringLiteral("it ends before its first row"));
    }
    for (int y = rows; y < header.height; ++y) {
        std::fill_n(image.scanLine(y), image.bytesPerLine(), uchar(0xff));
    }
    Bitmap bitmap(std::move(image),
                  header.IsBits() ? ColourModel::BlackWhite
                      : grey      ? ColourModel::Grey
                                  : ColourModel::Rgb,
                  header.Bits());
    bitmap.SetExact(header.most == 1 || header.most == 255 || header.most == 65535);
    bitmap.SetPartial(rows < bitmap.Height());
    return bitmap;
}

} // namespace quillane::codecs
