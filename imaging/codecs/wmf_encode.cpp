#include "imaging/codecs/dib_encode.h"
#include "imaging/codecs/encoders.h"

namespace quillane::codecs {

namespace {

constexpr char kWmfOut[] = "Windows metafile";
constexpr int kWmfMostSide = 32767; ///< coordinates have 16 bits and a sign
constexpr int kWmfPerInch = 96;     ///< units; a pixel of the picture is one of the screen
constexpr quint32 kWmfCopy = 0x00cc0020;
constexpr quint32 kWmfHeaderWords = 9;
constexpr quint32 kWmfOrigin = 0x020b, kWmfExtent = 0x020c, kWmfStretchMode = 0x0107,
                  kWmfStretch = 0x0f43;

void WmfPutPlace(ByteWriter& file, const Bitmap& picture)
{
    const quint32 words[] = {
        0xcdd7,      0x9ac6, 0, 0, 0, quint32(picture.Width()), quint32(picture.Height()),
        kWmfPerInch, 0,      0};
    quint32 sum = 0;
    for (const quint32 word : words) {
        file.Little16(word);
        sum ^= word;
    }
    file.Little16(sum);
}

/// A record of words.
void WmfPutRecord(ByteWriter& file, quint32 function, std::initializer_list<quint32> words)
{
    file.Little32(quint32(3 + words.size()));
    file.Little16(function);
    for (const quint32 word : words) {
        file.Little16(word);
    }
}

} // namespace

QByteArray WmfEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kWmfOut, picture, kWmfMostSide, kWmfMostSide);
    DibOut out = DibLayout(picture, request, DibKind::Windows, DibPacking::None);
    out.masks = {};
    out.opacity = false;
    const qint64 pixelBytes = DibRowBytes(picture, out.bits) * picture.Height();
    CheckFileBytes(kWmfOut, pixelBytes);
    const quint32 width = quint32(picture.Width());
    const quint32 height = quint32(picture.Height());
    const quint32 stretchWords = quint32(3 + 11 + (out.HeadBytes() + pixelBytes) / 2);

    ByteWriter file;
    file.Reserve(pixelBytes + out.HeadBytes() + 256);
    WmfPutPlace(file, picture);
    file.Little16(1); // in memory or on disk alike
    file.Little16(kWmfHeaderWords);
    file.Little16(0x0300);
    // Header, the window's origin and extent, how to stretch, the picture, the end.
    file.Little32(kWmfHeaderWords + 5 + 5 + 4 + stretchWords + 3);
    file.Little16(0); // objects
    file.Little32(stretchWords);
    file.Little16(0);
    WmfPutRecord(file, kWmfOrigin, {0, 0});
    WmfPutRecord(file, kWmfExtent, {height, width});
    WmfPutRecord(file, kWmfStretchMode, {3}); // pixels that fall together are dropped
    file.Little32(stretchWords);
    file.Little16(kWmfStretch);
    file.Little32(kWmfCopy);
    file.Little16(0); // colours as they stand
    for (const quint32 word : {height, width, 0u, 0u, height, width, 0u, 0u}) {
        file.Little16(word);
    }
    WriteDibHead(file, picture, out, pixelBytes);
    WriteDibRows(file, picture, out);
    WmfPutRecord(file, 0, {});
    return file.Take();
}

} // namespace quillane::codecs
