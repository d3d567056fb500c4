#include "core/failure.h"
#include "imaging/clipboard.h"
#include "imaging/engine.h"
#include "imaging/processing/colour.h"
#include "imaging/processing/cut_out.h"
#include "imaging/processing/text.h"

namespace quillane {

void EngineInstance::SetDrawMode(qint32 mode)
{
    Guarded([&] {
        if (mode != 0) {
            throw Failure(kFailureGeneral,
                          QStringLiteral("There is no way of drawing of number %1.").arg(mode));
        }
        mText.mode = mode;
    });
}

qint32 EngineInstance::MeasureTextWidth(const QString& text) const
{
    return processing::TextSize(text, mText.font).width();
}

qint32 EngineInstance::MeasureTextHeight(const QString& text) const
{
    return processing::TextSize(text, mText.font).height();
}

void EngineInstance::DrawText(const QString& text, qint32 x, qint32 y)
{
    Process([&](const Region* region) {
        return processing::DrawText(
            mBitmap, region, text, QPoint(x, y),
            {mText.font, processing::RgbOfColour(mText.colour), mText.transparent});
    });
}

void EngineInstance::CopyToClipboard(qint32) const
{
    Guarded([&] {
        if (mBitmap.IsNull()) {
            throw Failure(kFailureGeneral, QStringLiteral("There is no picture to copy."));
        }
        PutOnClipboard(HasRegion() ? processing::CutOut(mBitmap, mRegion) : mBitmap);
    });
}

void EngineInstance::PasteFromClipboard(qint32)
{
    Guarded([&] {
        quillane::Bitmap pasted = PictureFromClipboard(TakeClipboard());
        pasted.SetExact(false);
        mBitmap = std::move(pasted);
        mPending = {};
        mLoaded.reset();
        mRegion = {};
        mFloater = {};
    });
}

} // namespace quillane
