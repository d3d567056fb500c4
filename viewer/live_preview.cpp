#include "viewer/live_preview.h"
#include <exception>
#include <new>

namespace quillane {

LivePreview::LivePreview(QObject* parent) : QObject(parent), mJobs(1)
{ }

void LivePreview::SetPicture(const Bitmap& picture, const Region& region)
{
    mSource = picture.IsNull() ? nullptr : std::make_shared<PreviewSource>(picture, region);
    mLook = {};
    Want();
}

void LivePreview::SetView(const PreviewView& view)
{
    mView = view;
    Want();
}

void LivePreview::SetWish(EffectWish wish)
{
    mWish = std::move(wish);
    Want();
}

void LivePreview::Want()
{
    mWanted = true;
    if (!mRunning) {
        Begin(true);
    }
}

void LivePreview::Begin(bool draft)
{
    mWanted = false;
    if (!mSource || mView.room.isEmpty()) {
        return;
    }
    mRunning = true;
    draft = draft && mSource->HasDraft(mView, mWish);
    const auto look = std::make_shared<PreviewLook>();
    mJobs.Run(
        [look, source = mSource, view = mView, wish = mWish, draft] {
            try {
                *look = source->Look(view, wish, draft);
            } catch (const std::bad_alloc&) {
                look->failure = QStringLiteral("There is not enough memory for a preview.");
            }
        },
        [this, look, source = mSource, draft] {
            mRunning = false;
            ++mComputed;
            if (mWanted || draft) {
                Begin(mWanted);
            }
            if (source == mSource) {
                mLook = std::move(*look);
                Q_EMIT Changed();
            }
        });
}

} // namespace quillane
