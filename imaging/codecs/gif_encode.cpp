#include "imaging/codecs/codecs.h"
#include "imaging/codecs/encode_support.h"
#include <algorithm>
#include <gif_lib.h>
#include <memory>
#include <new>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kGifOut[] = "GIF";
constexpr int kGifMostSide = 65535; ///< two bytes of the screen descriptor

struct GifOutCloser {
    void operator()(GifFileType* file) const
    {
        int error;
        EGifCloseFile(file, &error); // frees it in either case
    }
};
using GifOutFile = std::unique_ptr<GifFileType, GifOutCloser>;

struct GifMapFreer {
    void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};

/// Receives what the library writes; never throws into it.
struct GifOutTarget {
    QByteArray bytes;
    bool memory = false; ///< there was not enough
    static int Write(GifFileType* file, const GifByteType* from, int count)
    {
        GifOutTarget& target = *static_cast<GifOutTarget*>(file->UserData);
        try {
            target.bytes.append(reinterpret_cast<const char*>(from), count);
        } catch (const std::bad_alloc&) {
            target.memory = true;
            return 0;
        }
        return count;
    }
};

void GifCheck(int answer, const GifOutTarget& target)
{
    if (answer == GIF_OK) {
        return;
    }
    if (target.memory) {
        throw std::bad_alloc();
    }
    throw Failure(kFailureGeneral, QStringLiteral("The GIF cannot be written."),
                  QString::fromLatin1(kGifOut));
}

/// The first colour that is more clear than not; -1 for none.
int GifClearIndex(const QList<QRgb>& colours)
{
    const auto found = std::find_if(colours.begin(), colours.end(),
                                    [](QRgb colour) { return qAlpha(colour) < 128; });
    return found == colours.end() ? NO_TRANSPARENT_COLOR : int(found - colours.begin());
}

/// Every clear colour as the one index that the format knows for it.
std::vector<GifPixelType> GifIndexes(const QList<QRgb>& colours, int clear)
{
    std::vector<GifPixelType> indexes(256, 0);
    for (int i = 0; i < int(colours.size()); ++i) {
        const bool isClear = qAlpha(colours[i]) < 128;
        indexes[size_t(i)] = GifPixelType(isClear ? clear : i);
    }
    return indexes;
}

void GifPutRows(GifFileType* file, const QImage& pixels, const QList<QRgb>& colours, int clear,
                const GifOutTarget& target)
{
    const std::vector<GifPixelType> indexes = GifIndexes(colours, clear);
    std::vector<GifPixelType> row(size_t(pixels.width()), 0);
    for (int y = 0; y < pixels.height(); ++y) {
        PackIndexes(pixels, y, 8, row.data());
        std::transform(row.begin(), row.end(), row.begin(),
                       [&](GifPixelType index) { return indexes[index]; });
        GifCheck(EGifPutLine(file, row.data(), pixels.width()), target);
    }
}

} // namespace

QByteArray GifEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kGifOut, picture, kGifMostSide, kGifMostSide);
    const QImage& pixels = picture.Pixels();
    const QList<QRgb> colours = EncodedColours(pixels, request.bits);
    const std::unique_ptr<ColorMapObject, GifMapFreer> map(
        GifMakeMapObject(1 << request.bits, nullptr));
    if (!map) {
        throw std::bad_alloc();
    }
    for (int i = 0; i < map->ColorCount; ++i) {
        map->Colors[i] = {GifByteType(qRed(colours[i])), GifByteType(qGreen(colours[i])),
                          GifByteType(qBlue(colours[i]))};
    }
    GifOutTarget target;
    int error = 0;
    GifOutFile file(EGifOpen(&target, GifOutTarget::Write, &error));
    if (!file) {
        throw std::bad_alloc();
    }
    const int clear = GifClearIndex(colours);
    EGifSetGifVersion(file.get(), clear >= 0);
    GifCheck(
        EGifPutScreenDesc(file.get(), pixels.width(), pixels.height(), request.bits, 0, map.get()),
        target);
    if (clear >= 0) {
        GifByteType block[4];
        const GraphicsControlBlock control = {DISPOSAL_UNSPECIFIED, false, 0, clear};
        EGifGCBToExtension(&control, block);
        GifCheck(EGifPutExtension(file.get(), GRAPHICS_EXT_FUNC_CODE, sizeof(block), block),
                 target);
    }
    GifCheck(EGifPutImageDesc(file.get(), 0, 0, pixels.width(), pixels.height(), false, nullptr),
             target);
    GifPutRows(file.get(), pixels, colours, clear, target);
    // The end is written when it is closed.
    GifCheck(EGifCloseFile(file.release(), &error), target);
    return std::move(target.bytes);
}

} // namespace quillane::codecs
