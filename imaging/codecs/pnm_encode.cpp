#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/encoders.h"
#include <algorithm>
#include <charconv>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kPnmOut[] = "PNM";
constexpr qint64 kPnmLine = 70; ///< characters that a line may have

/// How a format code is written.
struct PnmOutKind {
    char digit = '6';
    bool text = false;
    bool wide = false; ///< 16 bits a sample
    int channels = 1;
    bool IsBits() const { return digit == '1' || digit == '4'; }
};

PnmOutKind PnmOutKindOf(const EncodeRequest& request)
{
    PnmOutKind kind;
    const int step = request.format - 102; // in pairs of written and binary
    kind.text = step % 2 == 0;
    kind.digit = char('1' + step / 2 + (kind.text ? 0 : 3));
    kind.channels = step / 2 == 2 ? 3 : 1;
    kind.wide = request.bits == 16 || request.bits == 48;
    return kind;
}

/// The samples of one row.
void PnmTakeRow(const QImage& pixels, int y, const PnmOutKind& kind, std::vector<quint16>& to)
{
    const uchar* row = pixels.constScanLine(y);
    const quint16* wide = reinterpret_cast<const quint16*>(row);
    const QRgb* colours = reinterpret_cast<const QRgb*>(row);
    for (int x = 0; x < pixels.width(); ++x) {
        if (kind.channels == 1) {
            to[size_t(x)] = kind.wide ? wide[x] : row[x];
            continue;
        }
        quint16* out = &to[size_t(x) * 3];
        if (kind.wide) {
            std::copy_n(wide + 4 * x, 3, out);
        } else {
            out[0] = quint16(qRed(colours[x]));
            out[1] = quint16(qGreen(colours[x]));
            out[2] = quint16(qBlue(colours[x]));
        }
    }
}

/// Numbers divided by blanks, in lines of bounded length.
class PnmText {
public:
    explicit PnmText(ByteWriter& to) : mTo(to) { }
    void Put(int value)
    {
        char digits[8];
        const char* end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
        const qint64 count = end - digits;
        if (mColumn + 1 + count > kPnmLine) {
            EndLine();
        } else if (mColumn > 0) {
            mTo.Byte(' ');
            ++mColumn;
        }
        mTo.Bytes(digits, count);
        mColumn += count;
    }
    void EndLine()
    {
        mTo.Byte('\n');
        mColumn = 0;
    }

private:
    ByteWriter& mTo;
    qint64 mColumn = 0;
};

void PnmPutSamples(const std::vector<quint16>& samples, const PnmOutKind& kind, ByteWriter& file)
{
    if (kind.text) {
        PnmText text(file);
        for (const quint16 sample : samples) {
            text.Put(sample);
        }
        text.EndLine();
        return;
    }
    for (const quint16 sample : samples) {
        if (kind.wide) {
            file.Big16(sample);
        } else {
            file.Byte(sample);
        }
    }
}

void PnmPutBits(const QImage& pixels, int y, const PnmOutKind& kind, std::vector<uchar>& bits,
                ByteWriter& file)
{
    PackBilevel(pixels, y, true, bits.data());
    if (!kind.text) {
        file.Bytes(bits.data(), qint64(bits.size()));
        return;
    }
    for (int x = 0; x < pixels.width(); ++x) {
        if (x > 0 && x % kPnmLine == 0) {
            file.Byte('\n');
        }
        file.Byte(bits[size_t(x >> 3)] & 0x80 >> (x & 7) ? '1' : '0');
    }
    file.Byte('\n');
}

} // namespace

QByteArray PnmEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const PnmOutKind kind = PnmOutKindOf(request);
    const QImage& pixels = picture.Pixels();
    const qint64 samples = qint64(pixels.width()) * pixels.height() * kind.channels;
    const qint64 each = kind.text ? (kind.wide ? 6 : kind.IsBits() ? 2 : 4) : kind.wide ? 2 : 1;
    CheckFileBytes(kPnmOut, samples * each);
    ByteWriter file;
    file.Byte('P');
    file.Byte(kind.digit);
    file.Text(QByteArray("\n") + QByteArray::number(pixels.width()) + ' '
              + QByteArray::number(pixels.height()) + '\n');
    if (kind.IsBits()) {
        std::vector<uchar> bits((size_t(pixels.width()) + 7) / 8);
        for (int y = 0; y < pixels.height(); ++y) {
            PnmPutBits(pixels, y, kind, bits, file);
        }
        return file.Take();
    }
    file.Text(kind.wide ? "65535\n" : "255\n");
    std::vector<quint16> row(size_t(pixels.width()) * size_t(kind.channels));
    for (int y = 0; y < pixels.height(); ++y) {
        PnmTakeRow(pixels, y, kind, row);
        PnmPutSamples(row, kind, file);
    }
    return file.Take();
}

} // namespace quillane::codecs
