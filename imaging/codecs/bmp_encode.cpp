#include "imaging/codecs/codecs.h"
#include "imaging/codecs/dib_encode.h"

namespace quillane::codecs {

namespace {

constexpr char kBmpOut[] = "BMP";
constexpr int kBmpOutFileHeader = 14;
constexpr int kBmpMostCoreSide = 65535; ///< two bytes of the header of OS/2 1.x

} // namespace

QByteArray BmpEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const DibKind kind = request.format == 14 ? DibKind::Os21
        : request.format == 74                ? DibKind::Os22
                                              : DibKind::Windows;
    const DibPacking packing = request.format != 84 ? DibPacking::None
        : request.bits == 4                         ? DibPacking::Rle4
                                                    : DibPacking::Rle8;
    if (kind == DibKind::Os21) {
        CheckFits(kBmpOut, picture, kBmpMostCoreSide, kBmpMostCoreSide);
    }
    const DibOut out = DibLayout(picture, request, kind, packing);
    const qint64 pixelsAt = kBmpOutFileHeader + out.HeadBytes();
    const qint64 plainBytes = DibRowBytes(picture, out.bits) * picture.Height();
    CheckFileBytes(kBmpOut, pixelsAt + plainBytes);

    ByteWriter data;
    if (packing != DibPacking::None) {
        WriteDibRuns(data, picture, packing);
    }
    const qint64 bytes = packing == DibPacking::None ? plainBytes : data.Size();
    ByteWriter file;
    file.Reserve(pixelsAt + bytes);
    file.Text("BM");
    file.Little32(quint32(pixelsAt + bytes));
    file.Little32(0);
    file.Little32(quint32(pixelsAt));
    WriteDibHead(file, picture, out, bytes);
    if (packing == DibPacking::None) {
        WriteDibRows(file, picture, out);
    } else {
        file.Text(data.Take());
    }
    return file.Take();
}

} // namespace quillane::codecs
