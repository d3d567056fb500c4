// Samples as they are: a file of nothing else, and the page of a PDF.
#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/encoders.h"
#include <QtEndian>
#include <algorithm>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kRawOut[] = "raw file";
constexpr char kPdfOut[] = "PDF";
constexpr double kPdfPointsPerInch = 72;
constexpr double kPdfMostPoints = 14400; ///< side of a page (ISO 32000-1, Annex C)

qint64 RawRowBytes(const Bitmap& picture, int bits)
{
    return (qint64(picture.Width()) * bits + 7) / 8;
}

/// One row: bits with 1 for white, indexes or grey, or channels side by side.
void RawTakeRow(const QImage& pixels, int y, int bits, std::vector<uchar>& to)
{
    const uchar* row = pixels.constScanLine(y);
    const QRgb* colours = reinterpret_cast<const QRgb*>(row);
    const quint16* wide = reinterpret_cast<const quint16*>(row);
    const int width = pixels.width();
    if (pixels.depth() == 1) {
        PackBilevel(pixels, y, false, to.data());
    } else if (bits <= 8) {
        PackIndexes(pixels, y, bits, to.data());
    } else if (bits == 16) {
        qToLittleEndian<quint16>(wide, width, to.data());
    } else if (bits >= 48) {
        const int channels = bits / 16;
        for (int x = 0; x < width; ++x) {
            qToLittleEndian<quint16>(wide + 4 * x, channels, to.data() + 2 * channels * x);
        }
    } else if (pixels.format() == QImage::Format_RGBA8888) {
        std::copy_n(row, qint64(width) * 4, to.data());
    } else {
        const int channels = bits / 8;
        for (int x = 0; x < width; ++x) {
            uchar* p = to.data() + qint64(channels) * x;
            p[0] = uchar(qRed(colours[x]));
            p[1] = uchar(qGreen(colours[x]));
            p[2] = uchar(qBlue(colours[x]));
            if (channels == 4) {
                p[3] = uchar(qAlpha(colours[x]));
            }
        }
    }
}

void RawPutRows(ByteWriter& file, const Bitmap& picture, int bits)
{
    std::vector<uchar> row(size_t(RawRowBytes(picture, bits)));
    for (int y = 0; y < picture.Height(); ++y) {
        RawTakeRow(picture.Pixels(), y, bits, row);
        file.Bytes(row.data(), qint64(row.size()));
    }
}

QByteArray PdfColours(const QImage& pixels, int bits)
{
    if (bits == 24) {
        return "/DeviceRGB";
    }
    if (bits == 32) {
        return "/DeviceCMYK";
    }
    if (pixels.depth() == 1 || pixels.format() == QImage::Format_Grayscale8) {
        return "/DeviceGray";
    }
    QByteArray table;
    for (const QRgb colour : EncodedColours(pixels, bits)) {
        const char bytes[] = {char(qRed(colour)), char(qGreen(colour)), char(qBlue(colour))};
        table += QByteArray(bytes, 3).toHex();
    }
    return "[/Indexed /DeviceRGB " + QByteArray::number((1 << bits) - 1) + " <" + table + ">]";
}

/// Points of a side: at the picture's resolution, or a point for a pixel.
double PdfPoints(qint32 pixels, qint32 dotsPerInch)
{
    const double points = dotsPerInch > 0 ? pixels * kPdfPointsPerInch / dotsPerInch : pixels;
    return std::max(points, 3.0); // the least that a page may have
}

/// Objects one after the other, and the table of where they begin.
class PdfFile {
public:
    void Begin(const QByteArray& content)
    {
        mPlaces.push_back(file.Size());
        file.Text(QByteArray::number(qint64(mPlaces.size())) + " 0 obj\n" + content);
    }
    void End() { file.Text("\nendobj\n"); }
    void Whole(const QByteArray& content)
    {
        Begin(content);
        End();
    }
    QByteArray Finish()
    {
        const qint64 tableAt = file.Size();
        const QByteArray count = QByteArray::number(qint64(mPlaces.size()) + 1);
        file.Text("xref\n0 " + count + "\n0000000000 65535 f \n");
        for (const qint64 place : mPlaces) {
            file.Text(QByteArray::number(place).rightJustified(10, '0') + " 00000 n \n");
        }
        file.Text("trailer\n<< /Size " + count + " /Root 1 0 R >>\nstartxref\n"
                  + QByteArray::number(tableAt) + "\n%%EOF\n");
        return file.Take();
    }
    ByteWriter file;

private:
    std::vector<qint64> mPlaces;
};

} // namespace

QByteArray RawEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const qint64 bytes = RawRowBytes(picture, request.bits) * picture.Height();
    CheckFileBytes(kRawOut, bytes);
    ByteWriter file;
    file.Reserve(bytes);
    RawPutRows(file, picture, request.bits);
    return file.Take();
}

QByteArray PdfEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const qint64 bytes = RawRowBytes(picture, request.bits) * picture.Height();
    CheckFileBytes(kPdfOut, bytes);
    double across = PdfPoints(picture.Width(), request.xResolution);
    double down = PdfPoints(picture.Height(), request.yResolution);
    const double shrink = std::min(1.0, kPdfMostPoints / std::max(across, down));
    across *= shrink;
    down *= shrink;
    const QByteArray sides =
        QByteArray::number(across, 'f', 3) + ' ' + QByteArray::number(down, 'f', 3);
    const QByteArray paint = "q " + QByteArray::number(across, 'f', 3) + " 0 0 "
        + QByteArray::number(down, 'f', 3) + " 0 0 cm /Picture Do Q";
    const int perSample = request.bits <= 8 ? request.bits : 8;

    PdfFile pdf;
    pdf.file.Reserve(bytes + 4096);
    pdf.file.Text("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n");
    pdf.Whole("<< /Type /Catalog /Pages 2 0 R >>");
    pdf.Whole("<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    pdf.Whole("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + sides
              + "] /Contents 4 0 R /Resources << /XObject << /Picture 5 0 R >> >> >>");
    pdf.Whole("<< /Length " + QByteArray::number(paint.size()) + " >>\nstream\n" + paint
              + "\nendstream");
    pdf.Begin("<< /Type /XObject /Subtype /Image /Width " + QByteArray::number(picture.Width())
              + " /Height " + QByteArray::number(picture.Height()) + " /BitsPerComponent "
              + QByteArray::number(perSample) + " /ColorSpace "
              + PdfColours(picture.Pixels(), request.bits) + " /Length " + QByteArray::number(bytes)
              + " >>\nstream\n");
    RawPutRows(pdf.file, picture, request.bits);
    pdf.file.Text("\nendstream");
    pdf.End();
    return pdf.Finish();
}

} // namespace quillane::codecs
