#include "core/failure.h"
#include "imaging/engine.h"
#include "imaging/processing/colour.h"
#include "imaging/processing/cut_out.h"
#include "imaging/processing/geometry.h"

namespace quillane {

void EngineInstance::KeepToImage(QSize before)
{
    const QSize size = mBitmap.Pixels().size();
    if (size != before) {
        mRegion = mRegion.ClippedTo(size);
        mFloater = {};
    }
}

void EngineInstance::SetRegionRect(qint32 left, qint32 top, qint32 width, qint32 height)
{
    mRegion = Region::Rectangle(mBitmap.Pixels().size(), left, top, width, height);
}

void EngineInstance::SetRegionEllipse(qint32 left, qint32 top, qint32 width, qint32 height)
{
    Guarded([&] { mRegion = Region::Ellipse(mBitmap.Pixels().size(), left, top, width, height); });
}

void EngineInstance::SetRegionRoundRect(qint32 left, qint32 top, qint32 width, qint32 height,
                                        qint32 radius)
{
    Guarded([&] {
        mRegion = Region::RoundRectangle(mBitmap.Pixels().size(), left, top, width, height, radius);
    });
}

void EngineInstance::SetRegionFreeHand(const QList<QPoint>& outline)
{
    Guarded([&] { mRegion = Region::FreeHand(mBitmap.Pixels().size(), outline); });
}

void EngineInstance::SetRegionColor(qint32 lowest, qint32 highest)
{
    Guarded([&] {
        mRegion = Region::ColourMatch(mBitmap, processing::RgbOfColour(lowest),
                                      processing::RgbOfColour(highest));
    });
}

void EngineInstance::MoveRegion(qint32 right, qint32 down)
{
    Guarded([&] { mRegion = mRegion.Moved(mBitmap.Pixels().size(), right, down); });
}

void EngineInstance::MakeFloater()
{
    Guarded([&] {
        if (!HasRegion()) {
            throw Failure(kFailureGeneral, QStringLiteral("Nothing is selected in the picture."));
        }
        Floater floater;
        floater.pixels = processing::Trim(mBitmap, mRegion.Bounds());
        floater.shown = processing::CutOut(mBitmap, mRegion);
        floater.shape = mRegion;
        floater.position = mRegion.Bounds().topLeft();
        floater.visible = true;
        mFloater = std::move(floater);
    });
}

void EngineInstance::SetFloaterVisible(bool visible)
{
    mFloater.visible = visible && !mFloater.pixels.IsNull();
}

void EngineInstance::CombineFloater()
{
    Guarded([&] {
        if (mFloater.pixels.IsNull()) {
            throw Failure(kFailureGeneral,
                          QStringLiteral("There is no part of the picture to lay down."));
        }
        const QPoint moved = mFloater.position - mFloater.shape.Bounds().topLeft();
        const Region where = mFloater.shape.Moved(mBitmap.Pixels().size(), moved.x(), moved.y());
        if (!where.IsEmpty()) {
            mBitmap = processing::PastedInto(mBitmap, where, mFloater.pixels, mFloater.position);
        }
        mRegion = where;
    });
}

} // namespace quillane
