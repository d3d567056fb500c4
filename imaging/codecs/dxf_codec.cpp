#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include "imaging/codecs/dxf_player.h"

namespace quillane::codecs {

namespace {

constexpr char kDxfName[] = "DXF";
constexpr qint16 kDxfFormat = 58;
constexpr double kDxfMargin = 0.02; ///< of the sides, around the figures

/// The box that the header claims, where the figures fill a fair part of it, else theirs.
QRectF DxfView(const QRectF& claimed, const QRectF& figures)
{
    const QRectF turned(claimed.x(), -claimed.bottom(), claimed.width(), claimed.height());
    if (claimed.isEmpty()) {
        return figures;
    }
    if (figures.isNull()) {
        return turned;
    }
    const double slackX = turned.width() / 20;
    const double slackY = turned.height() / 20;
    const bool holds = turned.adjusted(-slackX, -slackY, slackX, slackY).contains(figures);
    const bool filled =
        figures.width() > 0.6 * turned.width() || figures.height() > 0.6 * turned.height();
    return holds && filled ? turned : figures;
}

drawing::DrawnPage DxfPlay(const QByteArray& bytes, const std::atomic<bool>* cancelled)
{
    drawing::DrawnPage page;
    bool ended = false;
    const DxfTables tables = ReadDxfTables(bytes, ended);
    if (tables.entitiesAt < 0) {
        Damaged(kDxfName, QStringLiteral("it has no entities"));
    }
    DxfPlayer player(bytes, tables, page.drawing, cancelled);
    player.Play();
    page.partial = !ended || player.IsCutShort();
    if (page.drawing.IsEmpty() && page.partial) {
        Damaged(kDxfName, QStringLiteral("it ends before it draws anything"));
    }
    QRectF view = DxfView(tables.extents, page.drawing.Extents());
    const double margin = kDxfMargin * std::max(view.width(), view.height());
    view.adjust(-margin, -margin, margin, margin);
    drawing::SettleView(page, view);
    return page;
}

} // namespace

bool DxfMatches(QByteArrayView head, QStringView extension)
{
    return DxfIsStart(head, extension.compare(u"DXF", Qt::CaseInsensitive) == 0);
}

ImageFacts DxfProbe(ByteSource& source)
{
    return drawing::DrawnFacts(DxfPlay(drawing::DrawnBytes(source, kDxfName), nullptr), kDxfFormat);
}

Bitmap DxfDecode(ByteSource& source, const DecodeRequest& request)
{
    const QByteArray bytes = drawing::DrawnBytes(source, kDxfName);
    return drawing::PaintPage(DxfPlay(bytes, request.cancelled), request, kDxfName);
}

} // namespace quillane::codecs
