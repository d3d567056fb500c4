#include "imaging/codecs/codecs.h"
#include "imaging/codecs/wmf_player.h"

namespace quillane::codecs {

namespace {

constexpr char kWmfCodecName[] = "WMF";
constexpr qint16 kWmfFormat = 15;

} // namespace

bool WmfMatches(QByteArrayView head, QStringView)
{
    return WmfIsHeader(head);
}

ImageFacts WmfProbe(ByteSource& source)
{
    return drawing::DrawnFacts(PlayWmf(drawing::DrawnBytes(source, kWmfCodecName), nullptr),
                               kWmfFormat);
}

Bitmap WmfDecode(ByteSource& source, const DecodeRequest& request)
{
    const QByteArray bytes = drawing::DrawnBytes(source, kWmfCodecName);
    return drawing::PaintPage(PlayWmf(bytes, request.cancelled), request, kWmfCodecName);
}

} // namespace quillane::codecs
