#include "widgets/rubber_band.h"
#include <algorithm>

namespace quillane {

double RoundedCorner(double width, double height)
{
    return std::min(width, height) / 4;
}

void RubberBand::SetMode(qint32 mode)
{
    mMode = mode >= kBandRectangle && mode <= kBandRoundRectangle ? mode : qint32(kBandOff);
    mActive = false;
}

void RubberBand::Start(const QPointF& place)
{
    if (mMode == kBandOff) {
        return;
    }
    mActive = true;
    mFrom = mTo = place;
    mLine = {};
    if (mMode == kBandFreeHand) {
        mLine.append(place);
    }
}

void RubberBand::MoveTo(const QPointF& place)
{
    if (!mActive) {
        return;
    }
    mTo = place;
    if (mMode != kBandFreeHand || mLine.last() == place) {
        return;
    }
    if (mLine.size() >= kMostPoints) {
        qsizetype kept = 0;
        for (qsizetype i = 0; i < mLine.size(); i += 2) {
            mLine[kept++] = mLine[i];
        }
        mLine.resize(kept);
    }
    mLine.append(place);
}

void RubberBand::Clear()
{
    mActive = false;
    mFrom = mTo = {};
    mLine = {};
}

QRectF RubberBand::Places() const
{
    if (mLine.isEmpty()) {
        return QRectF(mFrom, mTo).normalized();
    }
    const auto across =
        std::minmax_element(mLine.begin(), mLine.end(),
                            [](const QPointF& a, const QPointF& b) { return a.x() < b.x(); });
    const auto down =
        std::minmax_element(mLine.begin(), mLine.end(),
                            [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); });
    return QRectF(QPointF(across.first->x(), down.first->y()),
                  QPointF(across.second->x(), down.second->y()));
}

} // namespace quillane
