#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/legacy_encoders.h"
#include "imaging/codecs/packbits.h"
#include <algorithm>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kPictOut[] = "QuickDraw picture";
constexpr int kPictOutMostSide = 4095; ///< four bytes a pixel in the 14 bits for a row's length
constexpr int kPictOutUsualDots = 72;
constexpr int kPictOutLongCount = 250; ///< longer rows have two bytes for their packed length
constexpr int kPictOutLeastPacked = 8;

void PictPutRectangle(ByteWriter& file, const QImage& pixels)
{
    file.Big32(0);
    file.Big16(quint32(pixels.height()));
    file.Big16(quint32(pixels.width()));
}

/// The rows of a map behind its head, each with its packed length.
void PictPutRow(ByteWriter& file, const std::vector<uchar>& row, int rowBytes)
{
    if (rowBytes < kPictOutLeastPacked) {
        file.Bytes(row.data(), rowBytes);
        return;
    }
    ByteWriter codes;
    PutPackBits(codes, row.data(), qint64(row.size()));
    if (rowBytes > kPictOutLongCount) {
        file.Big16(quint32(codes.Size()));
    } else {
        file.Byte(int(codes.Size()));
    }
    file.Text(codes.Take());
}

/// Head of a map of pixels behind its place in memory, which is told only for full colours.
void PictPutMap(ByteWriter& file, const QImage& pixels, const EncodeRequest& request, int rowBytes,
                bool full)
{
    const auto dots = [](qint32 told) {
        return quint32(std::clamp(told > 0 ? told : kPictOutUsualDots, 1, 32767)) << 16;
    };
    file.Big16(quint32(rowBytes) | 0x8000u);
    PictPutRectangle(file, pixels);
    file.Big16(0);            // version
    file.Big16(full ? 4 : 0); // packed channel by channel
    file.Big32(0);
    file.Big32(dots(request.xResolution));
    file.Big32(dots(request.yResolution));
    file.Big16(full ? 16 : 0); // colours themselves, or indexes
    file.Big16(full ? 32 : quint32(request.bits));
    file.Big16(full ? 3 : 1);
    file.Big16(full ? 8 : quint32(request.bits));
    file.Fill(12);
    if (full) {
        return;
    }
    const QList<QRgb> colours = EncodedColours(pixels, request.bits);
    file.Big32(0); // seed
    file.Big16(0);
    file.Big16(quint32(colours.size() - 1));
    for (qsizetype i = 0; i < colours.size(); ++i) {
        file.Big16(quint32(i));
        for (const int level : {qRed(colours[i]), qGreen(colours[i]), qBlue(colours[i])}) {
            file.Big16(quint32(level * 257));
        }
    }
}

} // namespace

QByteArray PictEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kPictOut, picture, kPictOutMostSide, 32767);
    const QImage& pixels = picture.Pixels();
    const int bits = request.bits;
    const int width = pixels.width();
    const bool full = bits == 24;
    const int rowBytes = full ? 4 * width : (width * bits + 15) / 16 * 2;
    ByteWriter file;
    file.Fill(512); // what programs keep to themselves
    const qint64 start = file.Size();
    file.Big16(0); // its size, put in at the end
    PictPutRectangle(file, pixels);
    file.Big32(0x001102ff); // version 2
    file.Big16(0x0c00);     // its header
    file.Big32(0xffffffff);
    for (const int edge : {0, 0, width, pixels.height()}) {
        file.Big32(quint32(edge) << 16);
    }
    file.Big32(0);
    file.Big16(0x0001); // everything is inside
    file.Big16(10);
    PictPutRectangle(file, pixels);
    file.Big16(full ? 0x009a : 0x0098);
    if (full) {
        file.Big32(0xff);
    }
    PictPutMap(file, pixels, request, rowBytes, full);
    PictPutRectangle(file, pixels); // from
    PictPutRectangle(file, pixels); // to
    file.Big16(0);                  // a plain copy
    std::vector<uchar> row(size_t(full ? 3 * width : rowBytes));
    for (int y = 0; y < pixels.height(); ++y) {
        if (full) {
            const QRgb* from = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
            uchar* to = row.data();
            for (const int shift : {16, 8, 0}) {
                to = std::transform(from, from + width, to,
                                    [shift](QRgb p) { return uchar(p >> shift); });
            }
        } else {
            PackIndexes(pixels, y, bits, row.data());
        }
        // Rows too narrow to be packed, of one pixel, have a byte before the colours.
        if (full && rowBytes < kPictOutLeastPacked) {
            const uchar plain[4] = {0, row[0], row[1], row[2]};
            file.Bytes(plain, 4);
            continue;
        }
        PictPutRow(file, row, rowBytes);
        CheckFileBytes(kPictOut, file.Size());
    }
    if (file.Size() % 2 != 0) {
        file.Byte(0);
    }
    file.Big16(0x00ff);
    QByteArray bytes = file.Take();
    const qint64 size = bytes.size() - start;
    bytes[start] = char(size >> 8 & 0xff);
    bytes[start + 1] = char(size & 0xff);
    return bytes;
}

} // namespace quillane::codecs
