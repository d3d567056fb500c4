#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include "imaging/codecs/exif_header.h"
#include "imaging/codecs/png_session.h"
#include "imaging/limits.h"
#include <cstring>

namespace quillane::codecs {

namespace {

constexpr char kPngName[] = "PNG";
constexpr char kPngMark[] = "\x89PNG\r\n\x1a\n";
constexpr int kPngMarkBytes = 8;
constexpr int kPngHeaderBytes = 13;
constexpr int kPngMaxChunks = 5000; ///< before the pixels

/// Channels of a colour type, by the standard's numbers; 0 for a type that does not exist.
int PngChannels(int colourType)
{
    switch (colourType) {
    case 0:
    case 3:
        return 1;
    case 2:
        return 3;
    case 4:
        return 2;
    case 6:
        return 4;
    default:
        return 0;
    }
}

ImageFacts PngReadHeader(const uchar* p)
{
    ImageFacts facts;
    const qint64 width = Big32(p);
    const qint64 height = Big32(p + 4);
    CheckSides(kPngName, width, height);
    const int depth = p[8];
    const int channels = PngChannels(p[9]);
    if (channels == 0 || depth == 0 || depth > 16 || (depth & (depth - 1)) != 0) {
        Damaged(kPngName,
                QStringLiteral("it claims %1 bits in colour type %2").arg(depth).arg(p[9]));
    }
    facts.width = qint32(width);
    facts.height = qint32(height);
    facts.bits = qint16(depth * channels);
    facts.format = 75;
    facts.compression = QStringLiteral("Deflate");
    return facts;
}

} // namespace

bool PngMatches(QByteArrayView head, QStringView)
{
    return head.size() >= kPngMarkBytes && std::memcmp(head.data(), kPngMark, kPngMarkBytes) == 0;
}

ImageFacts PngProbe(ByteSource& source)
{
    ByteWindow window(source);
    const uchar* head = window.At(kPngMarkBytes, 8 + kPngHeaderBytes);
    if (!head || std::memcmp(head + 4, "IHDR", 4) != 0 || Big32(head) != kPngHeaderBytes) {
        Damaged(kPngName, QStringLiteral("it has no header"));
    }
    ImageFacts facts = PngReadHeader(head + 8);
    // Each chunk has its length, its name, its content and a check sum of four bytes.
    qint64 position = kPngMarkBytes + 12 + kPngHeaderBytes;
    for (int i = 0; i < kPngMaxChunks; ++i) {
        const uchar* chunk = window.At(position, 8);
        if (!chunk || std::memcmp(chunk + 4, "IDAT", 4) == 0) {
            break;
        }
        const qint64 size = Big32(chunk);
        const qint64 content = position + 8;
        position = content + size + 4;
        if (std::memcmp(chunk + 4, "pHYs", 4) == 0 && size == 9) {
            const uchar* p = window.At(content, 9);
            if (p && p[8] == 1) {
                facts.xResolution = DotsPerInch(Big32(p));
                facts.yResolution = DotsPerInch(Big32(p + 4));
            }
        } else if (std::memcmp(chunk + 4, "eXIf", 4) == 0) {
            facts.orientation =
                ReadExifHeader(size, [&](qint64 offset, qint64 count) {
                    return offset <= size - count ? window.At(content + offset, count) : nullptr;
                }).orientation;
        }
    }
    return facts;
}

Bitmap PngDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    PngSession session;
    if (!session.Start(source)) {
        Damaged(kPngName, session.Words());
    }
    const PngLayout& layout = session.Layout();
    QImage image = NewImage(kPngName, layout.width, layout.height, layout.format);
    if (!layout.colours.isEmpty()) {
        image.setColorTable(layout.colours);
    }
    const bool whole = session.DecodeRows(image.bits(), image.bytesPerLine(), request.cancelled);
    CheckCancelled(request);
    const int rows = session.Rows();
    if (!whole && rows == 0) {
        Damaged(kPngName, session.Words());
    }
    if (rows < image.height()) {
        // Nothing in transparent pictures, else middle grey.
        const bool clear = layout.format == QImage::Format_ARGB32
            || layout.format == QImage::Format_RGBA64 || layout.format == QImage::Format_Indexed8
            || layout.format == QImage::Format_Mono;
        std::memset(image.scanLine(rows), clear ? 0 : 0x80,
                    size_t(image.bytesPerLine()) * size_t(image.height() - rows));
        if (layout.format == QImage::Format_RGB32) {
            for (int y = rows; y < image.height(); ++y) {
                std::fill_n(reinterpret_cast<QRgb*>(image.scanLine(y)), image.width(), 0xff808080u);
            }
        }
    }
    Bitmap bitmap(std::move(image), layout.model, layout.fileDepth);
    bitmap.SetIcc(session.Icc());
    bitmap.SetPartial(!whole);
    return bitmap;
}

} // namespace quillane::codecs
