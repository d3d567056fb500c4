// Lines, curves and areas of a drawing exchange file.
#include "imaging/codecs/dxf_player.h"
#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillane::codecs {

using drawing::Path;

namespace {

constexpr int kDxfPolyClosed = 1, kDxfPolyMesh = 16, kDxfPolyFaces = 64;
constexpr int kDxfVertexFrame = 16, kDxfVertexPlace = 64, kDxfVertexFace = 128;
constexpr size_t kDxfMostSamples = 4'000; ///< of one spline
constexpr int kDxfMostDegree = 15;
constexpr size_t kDxfMostVertices = 1'000'000;

double DxfRadians(double degrees)
{
    return degrees * std::numbers::pi / 180;
}

QPointF DxfPoint(const DxfEntity& entity, int code)
{
    return {entity.Number(code), entity.Number(code + 10)};
}

/// The sweep from one angle to another, against the clock, above 0 and at most a whole turn.
double DxfSweep(double from, double to)
{
    using std::numbers::pi;
    const double sweep = std::fmod(to - from, 2 * pi);
    return sweep <= 1e-12 ? sweep + 2 * pi : sweep;
}

} // namespace

void AddDxfBulge(Path& path, QPointF from, QPointF to, double bulge)
{
    const QPointF chord = to - from;
    const double length = std::hypot(chord.x(), chord.y());
    if (std::abs(bulge) < 1e-9 || length <= 0 || std::abs(bulge) > 1e6) {
        path.LineTo(to);
        return;
    }
    // From the middle of the chord to the centre: (1 - b^2) / (4 b) of the chord, to its left.
    const double way = (1 - bulge * bulge) / (4 * bulge);
    const QPointF centre = (from + to) / 2 + QPointF(-chord.y(), chord.x()) * way;
    const double radius = std::hypot(from.x() - centre.x(), from.y() - centre.y());
    const double start = std::atan2(from.y() - centre.y(), from.x() - centre.x());
    path.AddArc(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius), start,
                4 * std::atan(bulge), true);
}

bool DxfPlayer::PlayCurve(const DxfEntity& entity, const DxfScope& scope)
{
    const QByteArrayView kind = entity.kind;
    Path path;
    if (kind == "LINE") {
        path.MoveTo(DxfPoint(entity, 10));
        path.LineTo(DxfPoint(entity, 11));
        Line(path, entity, {}, scope);
    } else if (kind == "POINT") {
        path.MoveTo(DxfPoint(entity, 10));
        path.LineTo(DxfPoint(entity, 10));
        Line(path, entity, {}, scope);
    } else if (kind == "CIRCLE" || kind == "ARC") {
        const QPointF centre = DxfPoint(entity, 10);
        const double radius = std::abs(entity.Number(40));
        const QRectF box(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
        if (kind == "CIRCLE") {
            path.AddEllipse(box);
        } else {
            const double start = DxfRadians(entity.Number(50));
            path.AddArc(box, start, DxfSweep(start, DxfRadians(entity.Number(51))), false);
        }
        Line(path, entity, DxfPlane(entity, entity.Number(30)), scope);
    } else if (kind == "ELLIPSE") {
        const QPointF centre = DxfPoint(entity, 10);
        const QPointF major = DxfPoint(entity, 11);
        const double ratio = entity.Number(40, 1) * (entity.Number(230, 1) < 0 ? -1 : 1);
        const double start = entity.Number(41);
        path.AddArc(QRectF(-1, -1, 2, 2), start,
                    DxfSweep(start, entity.Number(42, 2 * std::numbers::pi)), false);
        Line(path, entity,
             QTransform(major.x(), major.y(), -major.y() * ratio, major.x() * ratio, centre.x(),
                        centre.y()),
             scope);
    } else if (kind == "LWPOLYLINE") {
        PlayLightPolyline(entity, scope);
    } else if (kind == "SPLINE") {
        PlaySpline(entity, scope);
    } else if (kind == "LEADER") {
        std::vector<QPointF> points;
        for (const DxfGroup& group : entity.groups) {
            if (group.code == 10) {
                points.emplace_back(group.Number(), 0);
            } else if (group.code == 20 && !points.empty()) {
                points.back().setY(group.Number());
            }
        }
        path.AddPolygon(points, false);
        Line(path, entity, {}, scope);
    } else {
        return false;
    }
    return true;
}

bool DxfPlayer::PlayArea(const DxfEntity& entity, const DxfScope& scope)
{
    const QByteArrayView kind = entity.kind;
    if (kind == "SOLID" || kind == "TRACE") {
        // The third and the fourth corner stand across.
        const QPointF third = DxfPoint(entity, 12);
        const QPointF fourth = entity.Has(13) ? DxfPoint(entity, 13) : third;
        Path path;
        path.AddPolygon({DxfPoint(entity, 10), DxfPoint(entity, 11), fourth, third}, true);
        Area(path, entity, DxfPlane(entity, entity.Number(30)), scope);
    } else if (kind == "3DFACE") {
        const int hidden = entity.Whole(70);
        const QPointF corners[] = {DxfPoint(entity, 10), DxfPoint(entity, 11), DxfPoint(entity, 12),
                                   DxfPoint(entity, 13)};
        Path path;
        for (int i = 0; i < 4; ++i) {
            if ((hidden >> i & 1) == 0) {
                path.MoveTo(corners[i]);
                path.LineTo(corners[(i + 1) % 4]);
            }
        }
        Line(path, entity, {}, scope);
    } else if (kind == "HATCH") {
        PlayHatch(entity, scope);
    } else {
        return false;
    }
    return true;
}

void DxfPlayer::PlayLightPolyline(const DxfEntity& entity, const DxfScope& scope)
{
    std::vector<QPointF> points;
    std::vector<double> bulges;
    double width = entity.Number(43);
    bool even = true; // one width all along
    for (const DxfGroup& group : entity.groups) {
        if (group.code == 10) {
            points.emplace_back(group.Number(), 0);
            bulges.push_back(0);
        } else if (points.empty()) {
            continue;
        } else if (group.code == 20) {
            points.back().setY(group.Number());
        } else if (group.code == 42) {
            bulges.back() = group.Number();
        } else if (group.code == 40 || group.code == 41) {
            const double own = group.Number();
            even = even && (width == own || (points.size() == 1 && group.code == 40));
            width = own;
        }
    }
    Path path;
    for (size_t i = 0; i < points.size(); ++i) {
        if (i == 0) {
            path.MoveTo(points[0]);
        } else {
            AddDxfBulge(path, points[i - 1], points[i], bulges[i - 1]);
        }
    }
    if ((entity.Whole(70) & kDxfPolyClosed) && points.size() > 1) {
        AddDxfBulge(path, points.back(), points.front(), bulges.back());
        path.Close();
    }
    Line(path, entity, DxfPlane(entity, entity.Number(38)), scope, even ? width : 0);
}

void DxfPlayer::PlayPolyline(DxfGroups& groups, const DxfEntity& entity, const DxfScope& scope)
{
    std::vector<DxfEntity> vertices;
    DxfEntity vertex;
    qsizetype before = groups.At();
    while (ReadEntity(groups, vertex)) {
        if (vertex.kind == "SEQEND") {
            before = groups.At();
            break;
        }
        if (vertex.kind != "VERTEX" || vertices.size() >= kDxfMostVertices / 10) {
            break;
        }
        // Only what the figure needs of it is kept.
        std::erase_if(vertex.groups, [](const DxfGroup& group) {
            constexpr int kUsed[] = {10, 20, 40, 41, 42, 70, 71, 72, 73, 74};
            return std::find(std::begin(kUsed), std::end(kUsed), group.code) == std::end(kUsed);
        });
        vertex.groups.shrink_to_fit();
        vertices.push_back(std::move(vertex));
        before = groups.At();
    }
    groups.Seek(before); // what was not of this figure is an entity of its own
    if (!IsSeen(entity, scope)) {
        return;
    }
    const int flags = entity.Whole(70);
    if (flags & kDxfPolyMesh) {
        PlayMesh(entity, vertices, scope);
        return;
    }
    if (flags & kDxfPolyFaces) {
        PlayFaces(entity, vertices, scope);
        return;
    }
    Path path;
    QPointF first, last;
    double bulge = 0;
    const double width = entity.Number(40) == entity.Number(41) ? entity.Number(40) : 0;
    for (const DxfEntity& one : vertices) {
        if (one.Whole(70) & kDxfVertexFrame) {
            continue; // a handle of a curve whose points follow
        }
        const QPointF at = DxfPoint(one, 10);
        if (path.IsEmpty()) {
            first = at;
            path.MoveTo(at);
        } else {
            AddDxfBulge(path, last, at, bulge);
        }
        last = at;
        bulge = one.Number(42);
    }
    if ((flags & kDxfPolyClosed) && !path.IsEmpty()) {
        AddDxfBulge(path, last, first, bulge);
        path.Close();
    }
    constexpr int kSpace = 8; // in space: not in a plane of its own
    Line(path, entity, flags & kSpace ? QTransform() : DxfPlane(entity, entity.Number(30)), scope,
         width);
}

void DxfPlayer::PlayMesh(const DxfEntity& entity, const std::vector<DxfEntity>& vertices,
                         const DxfScope& scope)
{
    const size_t rows = size_t(std::max(0, entity.Whole(71)));
    const size_t columns = size_t(std::max(0, entity.Whole(72)));
    if (rows == 0 || columns == 0 || rows > vertices.size() || columns > vertices.size()
        || rows * columns > vertices.size()) {
        return;
    }
    const auto at = [&](size_t row, size_t column) {
        return DxfPoint(vertices[row * columns + column], 10);
    };
    const int flags = entity.Whole(70);
    Path path;
    for (size_t row = 0; row < rows; ++row) {
        for (size_t column = 0; column < columns; ++column) {
            column == 0 ? path.MoveTo(at(row, 0)) : path.LineTo(at(row, column));
        }
        if (flags & 32) {
            path.Close();
        }
    }
    for (size_t column = 0; column < columns; ++column) {
        for (size_t row = 0; row < rows; ++row) {
            row == 0 ? path.MoveTo(at(0, column)) : path.LineTo(at(row, column));
        }
        if (flags & kDxfPolyClosed) {
            path.Close();
        }
    }
    Line(path, entity, {}, scope);
}

void DxfPlayer::PlayFaces(const DxfEntity& entity, const std::vector<DxfEntity>& vertices,
                          const DxfScope& scope)
{
    std::vector<QPointF> places;
    for (const DxfEntity& vertex : vertices) {
        if (vertex.Whole(70) & kDxfVertexPlace) {
            places.push_back(DxfPoint(vertex, 10));
        }
    }
    Path path;
    for (const DxfEntity& face : vertices) {
        if ((face.Whole(70) & (kDxfVertexFace | kDxfVertexPlace)) != kDxfVertexFace) {
            continue;
        }
        // Numbers of its corners, from 1 on; below 0 where the side behind it is hidden.
        std::vector<int> corners;
        for (const int code : {71, 72, 73, 74}) {
            const int corner = face.Whole(code);
            if (corner != 0 && size_t(std::abs(corner)) <= places.size()) {
                corners.push_back(corner);
            }
        }
        for (size_t i = 0; i < corners.size(); ++i) {
            if (corners[i] > 0) {
                path.MoveTo(places[size_t(corners[i]) - 1]);
                path.LineTo(places[size_t(std::abs(corners[(i + 1) % corners.size()])) - 1]);
            }
        }
    }
    Line(path, entity, {}, scope);
}

void DxfPlayer::PlaySpline(const DxfEntity& entity, const DxfScope& scope)
{
    DxfSpline spline;
    std::vector<QPointF> through;
    spline.degree = entity.Whole(71, 3);
    spline.closed = (entity.Whole(70) & 1) != 0;
    for (const DxfGroup& group : entity.groups) {
        switch (group.code) {
        case 10:
            spline.points.emplace_back(group.Number(), 0);
            break;
        case 20:
            if (!spline.points.empty()) {
                spline.points.back().setY(group.Number());
            }
            break;
        case 11:
            through.emplace_back(group.Number(), 0);
            break;
        case 21:
            if (!through.empty()) {
                through.back().setY(group.Number());
            }
            break;
        case 40:
            spline.knots.push_back(group.Number());
            break;
        case 41:
            spline.weights.push_back(group.Number());
            break;
        default:
            break;
        }
    }
    Path path;
    path.AddPolygon(spline.points.empty() ? through : SampleDxfSpline(spline), false);
    Line(path, entity, {}, scope);
}

std::vector<QPointF> SampleDxfSpline(const DxfSpline& spline)
{
    const size_t count = spline.points.size();
    const size_t degree = size_t(std::clamp(spline.degree, 1, kDxfMostDegree));
    const std::vector<double>& knots = spline.knots;
    const bool sound = count > degree && knots.size() == count + degree + 1
        && std::is_sorted(knots.begin(), knots.end()) && knots[degree] < knots[count];
    if (!sound || spline.degree < 1 || spline.degree > kDxfMostDegree) {
        return spline.points;
    }
    const bool rational = spline.weights.size() == count
        && std::all_of(spline.weights.begin(), spline.weights.end(),
                       [](double weight) { return weight > 0; });
    const size_t samples = std::clamp<size_t>((count - degree) * 12, 24, kDxfMostSamples);
    std::vector<QPointF> line;
    line.reserve(samples + 1);
    size_t span = degree;
    for (size_t i = 0; i <= samples; ++i) {
        const double t =
            knots[degree] + (knots[count] - knots[degree]) * double(i) / double(samples);
        while (span + 1 < count && t >= knots[span + 1]) {
            ++span;
        }
        // The point by repeated mixing of the control points that rule this span.
        QPointF mixed[kDxfMostDegree + 1];
        double weights[kDxfMostDegree + 1];
        for (size_t j = 0; j <= degree; ++j) {
            weights[j] = rational ? spline.weights[span - degree + j] : 1;
            mixed[j] = spline.points[span - degree + j] * weights[j];
        }
        for (size_t round = 1; round <= degree; ++round) {
            for (size_t j = degree; j >= round; --j) {
                const double low = knots[span - degree + j];
                const double wide = knots[span + 1 + j - round] - low;
                const double part = wide > 0 ? (t - low) / wide : 0;
                mixed[j] = mixed[j - 1] * (1 - part) + mixed[j] * part;
                weights[j] = weights[j - 1] * (1 - part) + weights[j] * part;
            }
        }
        line.push_back(weights[degree] != 0 ? mixed[degree] / weights[degree] : mixed[degree]);
    }
    return line;
}

} // namespace quillane::codecs
