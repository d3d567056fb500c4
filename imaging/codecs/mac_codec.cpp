// MacPaint: always 576 x 720 pixels of one bit, perhaps behind the 128 bytes that carry a Macintosh
// file's name and type over to other systems.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

namespace {

constexpr char kMacName[] = "MacPaint";
constexpr int kMacWidth = 576;
constexpr int kMacHeight = 720;
constexpr int kMacWrapperBytes = 128;
constexpr int kMacTypeAt = 65;       ///< in the wrapper
constexpr int kMacHeaderBytes = 512; ///< version and patterns
constexpr quint32 kMacMaxVersion = 3;
constexpr int kMacDotsPerInch = 72; ///< of the screen it was painted on

bool MacIsWrapped(QByteArrayView head)
{
    return head.size() >= kMacWrapperBytes && head[0] == 0
        && std::memcmp(head.data() + kMacTypeAt, "PNTG", 4) == 0;
}

} // namespace

bool MacMatches(QByteArrayView head, QStringView extension)
{
    if (MacIsWrapped(head)) {
        return true;
    }
    const bool named = extension.compare(u"MAC", Qt::CaseInsensitive) == 0
        || extension.compare(u"PNTG", Qt::CaseInsensitive) == 0;
    return named && head.size() >= kMacHeaderBytes
        && Big32(reinterpret_cast<const uchar*>(head.data())) <= kMacMaxVersion;
}

ImageFacts MacProbe(ByteSource&)
{
    ImageFacts facts;
    facts.width = kMacWidth;
    facts.height = kMacHeight;
    facts.bits = 1;
    facts.format = 51;
    facts.xResolution = kMacDotsPerInch;
    facts.yResolution = kMacDotsPerInch;
    facts.compression = QStringLiteral("PackBits");
    return facts;
}

Bitmap MacDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const int start = MacIsWrapped(source.Head(kMacWrapperBytes)) ? kMacWrapperBytes : 0;
    QImage image = NewImage(kMacName, kMacWidth, kMacHeight, QImage::Format_Mono);
    image.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    ByteStream stream(source, start + kMacHeaderBytes, source.Size());
    int rows = 0;
    for (; rows < kMacHeight; ++rows) {
        uchar* to = image.scanLine(rows);
        if (UnpackPackBits(stream, to, kMacWidth / 8) == UnpackEnd::Short) {
            break;
        }
        std::transform(to, to + kMacWidth / 8, to, [](uchar ink) { return uchar(~ink); });
    }
    return FinishPicture(kMacName, std::move(image), 1, rows);
}

} // namespace quillane::codecs
