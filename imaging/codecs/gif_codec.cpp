#include "imaging/codecs/byte_stream.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include "imaging/limits.h"
#include <algorithm>
#include <cstring>
#include <gif_lib.h>
#include <memory>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kGifName[] = "GIF";
constexpr int kGifHeadBytes = 13;  ///< mark and screen descriptor
constexpr int kGifFrameBytes = 10; ///< frame descriptor with its introducer
constexpr int kGifColours = 256;
/// Blocks of 255 bytes before the first frame.
constexpr int kGifMaxBlocks = int(limits::kMaxHeaderBytes / 255);

/// Bytes of the colour map that a descriptor's flags announce.
int GifMapBytes(uchar flags)
{
    return flags & 0x80 ? 3 << ((flags & 7) + 1) : 0;
}

/// Passes over sub-blocks up to their end.
bool GifSkipBlocks(ByteWindow& window, qint64& position)
{
    while (window.Fetched() < limits::kMaxHeaderBytes) {
        const uchar* length = window.At(position, 1);
        if (!length) {
            return false;
        }
        position += 1 + *length;
        if (*length == 0) {
            return true;
        }
    }
    return false;
}

/// Frames of the file, counted without decoding them; those within the first few megabytes.
int GifCountFrames(ByteWindow& window, qint64 position)
{
    int frames = 0;
    while (frames < limits::kMaxPages) {
        const uchar* p = window.At(position, 1);
        if (!p || (*p != ',' && *p != '!')) {
            break;
        }
        if (*p == '!') {
            position += 2;
        } else {
            const uchar* frame = window.At(position, kGifFrameBytes);
            if (!frame) {
                break;
            }
            ++frames;
            position += kGifFrameBytes + GifMapBytes(frame[9]) + 1; // and the code size
        }
        if (!GifSkipBlocks(window, position)) {
            break;
        }
    }
    return frames;
}

int GifRead(GifFileType* file, GifByteType* to, int count)
{
    return int(static_cast<ByteStream*>(file->UserData)->Read(to, count));
}

struct GifCloser {
    void operator()(GifFileType* file) const
    {
        int error;
        DGifCloseFile(file, &error);
    }
};

/// Goes to the first frame. The answer is its transparent index, -1 for none.
int GifFindFrame(GifFileType* file)
{
    int transparent = NO_TRANSPARENT_COLOR;
    for (int blocks = 0; blocks < kGifMaxBlocks;) {
        GifRecordType type;
        if (DGifGetRecordType(file, &type) == GIF_ERROR || type == TERMINATE_RECORD_TYPE) {
            Damaged(kGifName, QStringLiteral("it holds no picture"));
        }
        if (type == IMAGE_DESC_RECORD_TYPE) {
            if (DGifGetImageDesc(file) == GIF_ERROR) {
                Damaged(kGifName, QStringLiteral("its first frame cannot be read"));
            }
            return transparent;
        }
        ++blocks;
        if (type != EXTENSION_RECORD_TYPE) {
            continue;
        }
        int code;
        GifByteType* block = nullptr;
        int got = DGifGetExtension(file, &code, &block);
        while (got != GIF_ERROR && block && ++blocks < kGifMaxBlocks) {
            GraphicsControlBlock control;
            if (code == GRAPHICS_EXT_FUNC_CODE
                && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
                transparent = control.TransparentColor;
            }
            got = DGifGetExtensionNext(file, &block);
        }
        if (got == GIF_ERROR) {
            Damaged(kGifName, QStringLiteral("it ends before its first frame"));
        }
    }
    TooMuch(kGifName, QStringLiteral("has megabytes of extensions before its first frame"));
}

/// 256 colours, so that no index can lie outside; transparent ones have no alpha.
QList<QRgb> GifColours(const ColorMapObject* map, int transparent, int blank)
{
    QList<QRgb> colours(kGifColours, qRgb(0, 0, 0));
    for (int i = 0; i < kGifColours; ++i) {
        if (map && i < map->ColorCount) {
            const GifColorType& colour = map->Colors[i];
            colours[i] = qRgb(colour.Red, colour.Green, colour.Blue);
        } else if (!map) {
            colours[i] = qRgb(i, i, i);
        }
        if (i == transparent || i == blank) {
            colours[i] &= 0xffffffu;
        }
    }
    return colours;
}

/// The rows of a frame in the order in which they are stored.
std::vector<int> GifRowOrder(int height, bool interlaced)
{
    std::vector<int> order;
    order.reserve(size_t(height));
    if (!interlaced) {
        for (int y = 0; y < height; ++y) {
            order.push_back(y);
        }
        return order;
    }
    constexpr int kFirst[] = {0, 4, 2, 1};
    constexpr int kStep[] = {8, 8, 4, 2};
    for (int pass = 0; pass < 4; ++pass) {
        for (int y = kFirst[pass]; y < height; y += kStep[pass]) {
            order.push_back(y);
        }
    }
    return order;
}

/// Decodes the frame into its place on the screen; false when it ends early.
bool GifDecodeFrame(GifFileType* file, QImage& screen, const DecodeRequest& request)
{
    const GifImageDesc& frame = file->Image;
    std::vector<GifPixelType> line(size_t(frame.Width), 0);
    const int shown = std::clamp(screen.width() - frame.Left, 0, frame.Width);
    int row = 0;
    for (const int y : GifRowOrder(frame.Height, frame.Interlace)) {
        CheckCancelled(request);
        if (!frame.Interlace && frame.Top + y >= screen.height()) {
            break; // what follows lies outside
        }
        if (DGifGetLine(file, line.data(), frame.Width) == GIF_ERROR) {
            if (row == 0) {
                Damaged(kGifName, QStringLiteral("its first frame cannot be read"));
            }
            return false;
        }
        ++row;
        if (shown > 0 && frame.Top + y < screen.height()) {
            std::memcpy(screen.scanLine(frame.Top + y) + frame.Left, line.data(), size_t(shown));
        }
    }
    return true;
}

} // namespace

bool GifMatches(QByteArrayView head, QStringView)
{
    return head.startsWith("GIF87a") || head.startsWith("GIF89a");
}

ImageFacts GifProbe(ByteSource& source)
{
    ByteWindow window(source);
    const uchar* head = window.At(0, kGifHeadBytes);
    if (!head) {
        Damaged(kGifName, QStringLiteral("it has no header"));
    }
    ImageFacts facts;
    facts.width = Little16(head + 6);
    facts.height = Little16(head + 8);
    CheckSides(kGifName, facts.width, facts.height);
    const uchar flags = head[10];
    facts.bits = qint16(GifMapBytes(flags) > 0 ? (flags & 7) + 1 : 8);
    facts.format = 2;
    facts.compression = QStringLiteral("LZW");
    facts.pages = std::max(1, GifCountFrames(window, kGifHeadBytes + GifMapBytes(flags)));
    return facts;
}

Bitmap GifDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    ByteStream stream(source, 0, source.Size());
    int error = 0;
    const std::unique_ptr<GifFileType, GifCloser> file(DGifOpen(&stream, GifRead, &error));
    if (!file) {
        Damaged(kGifName, QStringLiteral("it has no header"));
    }
    CheckSides(kGifName, file->SWidth, file->SHeight);
    const int transparent = GifFindFrame(file.get());
    const GifImageDesc& frame = file->Image;
    if (frame.Width < 1 || frame.Height < 1
        || qint64(frame.Width) * frame.Height > limits::kMaxPixels) {
        Damaged(kGifName,
                QStringLiteral("its first frame claims %1 x %2 pixels")
                    .arg(frame.Width)
                    .arg(frame.Height));
    }

    const ColorMapObject* map = frame.ColorMap ? frame.ColorMap : file->SColorMap;
    // What the frame leaves open shows nothing, where an index is left to say so.
    const bool covers = frame.Left == 0 && frame.Top == 0 && frame.Width >= file->SWidth
        && frame.Height >= file->SHeight;
    const int count = map ? map->ColorCount : kGifColours;
    int blank = transparent;
    if (blank < 0 && !covers && count < kGifColours) {
        blank = count;
    }
    QImage screen = NewImage(kGifName, file->SWidth, file->SHeight, QImage::Format_Indexed8);
    screen.setColorTable(GifColours(map, transparent, blank));
    screen.fill(uint(blank >= 0 ? blank : file->SBackGroundColor));
    const bool whole = GifDecodeFrame(file.get(), screen, request);

    const int bits = file->SColorMap ? file->SColorMap->BitsPerPixel : map ? map->BitsPerPixel : 8;
    Bitmap bitmap(std::move(screen), ColourModel::Palette, bits);
    bitmap.SetPartial(!whole);
    return bitmap;
}

} // namespace quillane::codecs
