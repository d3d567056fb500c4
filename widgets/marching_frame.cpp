#include "widgets/marching_frame.h"
#include <QPainter>
#include <QPen>
#include <algorithm>
#include <array>
#include <cmath>

namespace quillane {

namespace {

constexpr int kMarchInterval = 110; ///< milliseconds
constexpr int kMarchDash = 4;       ///< logical pixels
constexpr int kMarchFar = 1 << 26;  ///< more than any picture takes, so that nothing is negative

} // namespace

void MarchingFrame::SetRegion(const Region& region)
{
    if (region == mRegion) {
        return;
    }
    mRegion = region;
    mOutdated = true;
    StartOrStop();
}

void MarchingFrame::SetShown(bool shown, bool visible)
{
    mShown = shown;
    mVisible = visible;
    StartOrStop();
}

void MarchingFrame::StartOrStop()
{
    const bool marches = IsShown() && mVisible;
    if (marches && !mTimer.isActive()) {
        mTimer.start(kMarchInterval, this);
    } else if (!marches) {
        mTimer.stop();
    }
}

void MarchingFrame::timerEvent(QTimerEvent*)
{
    mStep = (mStep + 1) % (2 * kMarchDash);
    Q_EMIT stepped();
}

void MarchingFrame::Paint(QPainter& painter, const ViewGeometry& geometry, QSize view)
{
    if (!IsShown()) {
        return;
    }
    if (mOutdated || !(geometry == mGeometry) || view != mView) {
        const std::vector<QPoint> outline = OutlineOnScreen(mRegion, geometry, view);
        mDots.clear();
        mDots.reserve(outline.size());
        for (const QPoint& point : outline) {
            // The dashes stick to the picture, not to the view.
            const QPoint at = point - geometry.origin;
            const bool upwards = RunsUpwards(mRegion, geometry, point);
            mDots.push_back({point, upwards ? at.x() - at.y() + kMarchFar : at.x() + at.y()});
        }
        mGeometry = geometry;
        mView = view;
        mOutdated = false;
    }
    const int line = std::max(1, int(std::lround(geometry.ratio)));
    const int dash = kMarchDash * line;
    std::array<std::vector<QPoint>, 2> points;
    for (std::vector<QPoint>& some : points) {
        some.reserve(mDots.size() / 2 + 1);
    }
    for (const Dot& dot : mDots) {
        points[size_t((dot.along + mStep * line) / dash) & 1].push_back(dot.point);
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (size_t i = 0; i < 2; ++i) {
        painter.setPen(QPen(i == 0 ? Qt::black : Qt::white, line, Qt::SolidLine, Qt::SquareCap));
        painter.drawPoints(points[i].data(), int(points[i].size()));
    }
    painter.restore();
}

} // namespace quillane
