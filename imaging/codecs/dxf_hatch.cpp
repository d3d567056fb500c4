// Hatched and filled areas of a drawing exchange file.
#include "imaging/codecs/dxf_player.h"
#include <algorithm>
#include <cmath>

namespace quillane::codecs {

using drawing::Path;

namespace {

constexpr size_t kDxfMostHatchLines = 4'000;     ///< of one area
constexpr size_t kDxfMostClipPoints = 1'000'000; ///< of all hatched areas together

/// The pairs of a hatch in their order, which alone says what they mean.
class DxfHatchReader {
public:
    explicit DxfHatchReader(const std::vector<DxfGroup>& groups) : mGroups(groups) { }
    /// Goes behind the next pair of that code; its value, or 0 and the end.
    double Find(int code)
    {
        while (mAt < mGroups.size()) {
            if (mGroups[mAt++].code == code) {
                return mGroups[mAt - 1].Number();
            }
        }
        return 0;
    }
    /// The value of the next pair if it has that code.
    double Take(int code, double otherwise = 0)
    {
        if (mAt < mGroups.size() && mGroups[mAt].code == code) {
            return mGroups[mAt++].Number();
        }
        return otherwise;
    }
    bool IsNext(int code) const { return mAt < mGroups.size() && mGroups[mAt].code == code; }
    QPointF TakePoint(int code)
    {
        const double x = Take(code);
        return {x, Take(code + 10)};
    }
    bool HasEnded() const { return mAt >= mGroups.size(); }
    size_t At() const { return mAt; }

private:
    const std::vector<DxfGroup>& mGroups;
    size_t mAt = 0;
};

void DxfHatchPolyline(DxfHatchReader& in, Path& area)
{
    const bool bulged = in.Take(72) != 0;
    in.Take(73);
    const double count = in.Take(93);
    QPointF first, last;
    double bulge = 0;
    for (double i = 0; i < count && in.IsNext(10); ++i) {
        const QPointF at = in.TakePoint(10);
        if (i == 0) {
            first = at;
            area.MoveTo(at);
        } else {
            AddDxfBulge(area, last, at, bulge);
        }
        last = at;
        bulge = bulged ? in.Take(42) : 0;
    }
    AddDxfBulge(area, last, first, bulge);
    area.Close();
}

void DxfHatchSpline(DxfHatchReader& in, Path& area, bool join)
{
    DxfSpline spline;
    spline.degree = int(std::clamp(in.Take(94, 3), 0.0, 100.0));
    in.Take(73);
    in.Take(74);
    const double knots = in.Take(95);
    const double points = in.Take(96);
    for (double i = 0; i < knots && in.IsNext(40); ++i) {
        spline.knots.push_back(in.Take(40));
    }
    for (double i = 0; i < points && in.IsNext(10); ++i) {
        spline.points.push_back(in.TakePoint(10));
        const double weight = in.Take(42, -1);
        if (weight >= 0) {
            spline.weights.push_back(weight);
        }
    }
    for (const QPointF& point : SampleDxfSpline(spline)) {
        join ? area.LineTo(point) : area.MoveTo(point);
        join = true;
    }
}

/// An arc of a circle or an ellipse around `centre`.
void DxfHatchArc(DxfHatchReader& in, Path& area, bool elliptic, bool join)
{
    const QPointF centre = in.TakePoint(10);
    const QPointF major = elliptic ? in.TakePoint(11) : QPointF();
    const double size = in.Take(40);
    double start = in.Take(50) * M_PI / 180;
    double end = in.Take(51) * M_PI / 180;
    const bool against = in.Take(73, 1) != 0;
    if (!against) {
        start = -start;
        end = -end;
    }
    double sweep = std::remainder(end - start, 2 * M_PI);
    if (against ? sweep <= 1e-9 : sweep >= -1e-9) {
        sweep += against ? 2 * M_PI : -2 * M_PI;
    }
    Path arc;
    arc.AddArc(QRectF(-1, -1, 2, 2), start, sweep, false);
    const QTransform place = elliptic ? QTransform(major.x(), major.y(), -major.y() * size,
                                                   major.x() * size, centre.x(), centre.y())
                                      : QTransform(size, 0, 0, size, centre.x(), centre.y());
    arc = arc.Mapped(place);
    if (join) {
        // Joined to what stands before by a line of no length or nearly so.
        area.LineTo(arc.Points().front());
    } else {
        area.MoveTo(arc.Points().front());
    }
    for (size_t i = 1; i + 2 < arc.Points().size(); i += 3) {
        area.CubicTo(arc.Points()[i], arc.Points()[i + 1], arc.Points()[i + 2]);
    }
}

void DxfHatchEdges(DxfHatchReader& in, Path& area)
{
    const double count = in.Take(93);
    for (double i = 0; i < count && !in.HasEnded(); ++i) {
        const bool join = i > 0;
        const int kind = int(in.Find(72));
        if (kind == 1) {
            const QPointF from = in.TakePoint(10);
            join ? area.LineTo(from) : area.MoveTo(from);
            area.LineTo(in.TakePoint(11));
        } else if (kind == 2 || kind == 3) {
            DxfHatchArc(in, area, kind == 3, join);
        } else if (kind == 4) {
            DxfHatchSpline(in, area, join);
        }
    }
    area.Close();
}

} // namespace

void DxfPlayer::PlayHatch(const DxfEntity& entity, const DxfScope& scope)
{
    DxfHatchReader in(entity.groups);
    const bool solid = entity.Whole(70) == 1;
    const double loops = in.Find(91);
    constexpr int kPolyline = 2;
    Path area;
    for (double i = 0; i < loops && !in.HasEnded(); ++i) {
        const int kind = int(in.Find(92));
        if (in.HasEnded()) {
            break;
        }
        if (kind & kPolyline) {
            DxfHatchPolyline(in, area);
        } else {
            DxfHatchEdges(in, area);
        }
    }
    if (solid) {
        Area(area, entity, DxfPlane(entity, entity.Number(30)), scope);
    } else {
        PlayPattern(entity.groups, in.At(), std::move(area), entity, scope);
    }
}

/// Families of parallel lines, each with an angle, a point and the way from one to the next.
void DxfPlayer::PlayPattern(const std::vector<DxfGroup>& groups, size_t at, Path area,
                            const DxfEntity& entity, const DxfScope& scope)
{
    const QTransform place = DxfPlane(entity, entity.Number(30));
    const QRectF bounds = area.Bounds();
    mClipPoints += area.Points().size();
    if (area.IsEmpty() || !area.IsSane() || mClipPoints > kDxfMostClipPoints) {
        return;
    }
    const std::vector<DxfGroup> rest(groups.begin() + std::ptrdiff_t(at), groups.end());
    DxfHatchReader in(rest);
    const double families = in.Find(78);
    const double reach = std::hypot(bounds.width(), bounds.height()) / 2;
    Path lines;
    for (double i = 0; i < families && !in.HasEnded(); ++i) {
        const double angle = in.Find(53) * M_PI / 180;
        const double x = in.Take(43);
        const QPointF base(x, in.Take(44));
        const double dx = in.Take(45);
        const QPointF way(std::cos(angle), std::sin(angle));
        const QPointF across(-way.y(), way.x());
        const double step = std::abs(QPointF::dotProduct(QPointF(dx, in.Take(46)), across));
        const double middle = QPointF::dotProduct(bounds.center() - base, across);
        if (!(step > 0) || 2 * reach / step > double(kDxfMostHatchLines)) {
            continue;
        }
        const double along = QPointF::dotProduct(bounds.center() - base, way);
        for (double k = std::ceil((middle - reach) / step); k <= (middle + reach) / step; ++k) {
            const QPointF through = base + across * (k * step) + way * along;
            lines.MoveTo(through - way * reach);
            lines.LineTo(through + way * reach);
            if (lines.Points().size() > 2 * kDxfMostHatchLines) {
                break;
            }
        }
    }
    const QTransform whole = place * scope.toDrawing;
    const auto clip = drawing::AddClip({}, drawing::ClipMode::Intersect, area.Mapped(whole), false);
    drawing::Stroke stroke = LookOf(entity, scope).stroke;
    stroke.style = Qt::SolidLine;
    mDrawing.AddPath(lines.Mapped(whole), stroke, {}, clip);
}

} // namespace quillane::codecs
