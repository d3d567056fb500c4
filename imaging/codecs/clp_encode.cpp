#include "imaging/codecs/dib_encode.h"
#include "imaging/codecs/encoders.h"

namespace quillane::codecs {

namespace {

constexpr char kClpOut[] = "Windows clipboard file";
constexpr quint32 kClpMark = 0xc350; ///< of Windows 3
constexpr quint32 kClpPutDib = 8;    ///< CF_DIB
constexpr int kClpNameBytes = 79;
constexpr int kClpDataAt = 4 + 10 + kClpNameBytes;

} // namespace

QByteArray ClpEncode(const Bitmap& picture, const EncodeRequest& request)
{
    DibOut out = DibLayout(picture, request, DibKind::Windows, DibPacking::None);
    out.masks = {};
    const qint64 pixelBytes = DibRowBytes(picture, out.bits) * picture.Height();
    CheckFileBytes(kClpOut, pixelBytes);
    constexpr char kName[] = "DIB Bitmap";
    ByteWriter file;
    file.Reserve(kClpDataAt + out.HeadBytes() + pixelBytes);
    file.Little16(kClpMark);
    file.Little16(1); // format
    file.Little16(kClpPutDib);
    file.Little32(quint32(out.HeadBytes() + pixelBytes));
    file.Little32(kClpDataAt);
    file.Text(kName);
    file.Fill(kClpNameBytes - qint64(sizeof(kName) - 1));
    WriteDibHead(file, picture, out, pixelBytes);
    WriteDibRows(file, picture, out);
    return file.Take();
}

} // namespace quillane::codecs
