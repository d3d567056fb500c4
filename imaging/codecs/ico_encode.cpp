#include "imaging/codecs/dib_encode.h"
#include "imaging/codecs/encoders.h"
#include <vector>

namespace quillane::codecs {

namespace {

constexpr int kIcoMostSide = 256; ///< which is written as 0
constexpr int kIcoOutDirectory = 6 + 16;

/// The bits of one row whose pixels are not shown.
void IcoMaskRow(const QImage& pixels, int y, uchar* to)
{
    if (!pixels.hasAlphaChannel()) {
        return;
    }
    for (int x = 0; x < pixels.width(); ++x) {
        if (qAlpha(pixels.pixel(x, y)) < 128) {
            to[x >> 3] = uchar(to[x >> 3] | 0x80 >> (x & 7));
        }
    }
}

} // namespace

QByteArray IcoEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const bool cursor = request.format == 92;
    CheckFits(cursor ? "Windows cursor" : "Windows icon", picture, kIcoMostSide, kIcoMostSide);
    DibOut out = DibLayout(picture, request, DibKind::Windows, DibPacking::None);
    out.masks = {}; // the fourth byte needs none in an icon
    out.opacity = out.bits == 32;
    out.twiceAsHigh = true;
    out.xResolution = out.yResolution = 0;
    const qint64 maskRow = DibRowBytes(picture, 1);
    const qint64 bytes = (DibRowBytes(picture, out.bits) + maskRow) * picture.Height();

    ByteWriter file;
    file.Little16(0);
    file.Little16(cursor ? 2 : 1);
    file.Little16(1); // picture
    file.Byte(picture.Width() & 0xff);
    file.Byte(picture.Height() & 0xff);
    file.Byte(out.bits < 8 ? 1 << out.bits : 0);
    file.Byte(0);
    file.Little16(cursor ? 0 : 1); // planes, or where the cursor points across
    file.Little16(cursor ? 0 : quint32(out.bits));
    file.Little32(quint32(out.HeadBytes() + bytes));
    file.Little32(kIcoOutDirectory);
    WriteDibHead(file, picture, out, bytes);
    WriteDibRows(file, picture, out);
    for (int y = picture.Height() - 1; y >= 0; --y) {
        std::vector<uchar> mask(size_t(maskRow), 0);
        IcoMaskRow(picture.Pixels(), y, mask.data());
        file.Bytes(mask.data(), maskRow);
    }
    return file.Take();
}

} // namespace quillane::codecs
