// UpdateImageInImageList: one cell renewed after its file has changed on the disk.
#include "browser/thumbnail_size.h"
#include "browser/ui/frmBrowserMain.h"
#include "imaging/thumbs/shown_small.h"

#include <QThreadPool>
#include <atomic>
#include <memory>

namespace quillane {

namespace {

constexpr int kLoadPatience = 20; // milliseconds between two looks whether the file is loaded

/// A picture being loaded on another thread while window events flow.
struct PendingLoad {
    std::atomic<bool> done = false;
    std::optional<LoadedImage> loaded;
    QImage small; ///< for the cell, of a picture that is larger than it
    QString failure;
};

QSize CellPicture(const Bitmap& bitmap, QSize box)
{
    const QSizeF size =
        ThumbnailSize(bitmap.Width(), bitmap.Height(), qint16(box.width()), qint16(box.height()));
    return size.toSize().expandedTo({1, 1});
}

std::shared_ptr<PendingLoad> StartLoad(const QString& path, QSize box)
{
    auto pending = std::make_shared<PendingLoad>();
    QThreadPool::globalInstance()->start([pending, path, box] {
        try {
            DecodeRequest request;
            request.atLeast = box;
            LoadedImage loaded = LoadFile(path, request);
            const QSize size = CellPicture(loaded.bitmap, box);
            if (size.width() < loaded.bitmap.Width() && size.height() < loaded.bitmap.Height()) {
                pending->small = ShrunkForDisplay(loaded.bitmap, size);
            }
            pending->loaded = std::move(loaded);
        } catch (const Failure& failure) {
            pending->failure = failure.Description();
        }
        pending->done = true;
    });
    return pending;
}

} // namespace

void frmBrowserMain::UpdateImageInImageList()
{
    ThumbnailGrid* grid = mViews->Grid();
    const QString file = mSession.gsFileName;
    const qint32 index = mSession.gImageListIndex;
    if (index < 0 || index >= grid->Count() || grid->PathAt(index) != file) {
        return;
    }
    const QSize box = grid->ThumbnailBox();
    const Generation generation = mPlatform.loop.Newest();
    const std::shared_ptr<PendingLoad> pending = StartLoad(file, box);
    while (!pending->done) {
        mPlatform.loop.WaitForEvents(kLoadPatience);
        if (mPlatform.loop.Newest() != generation) {
            return; // another scan fills the grid now
        }
    }
    if (index >= grid->Count() || grid->PathAt(index) != file) {
        return;
    }
    // The cell keeps its place: the last one is appended again, any other goes before the next.
    QImage picture;
    QSize pixels;
    ResumeNext([&] {
        if (!pending->loaded) {
            throw Failure(kFailureUnreadable, pending->failure);
        }
        mLead2.Adopt(*pending->loaded);
        pixels = {mLead2.InfoWidth(), mLead2.InfoHeight()};
        picture = pending->small;
        if (picture.isNull()) {
            const QSize size = CellPicture(mLead2.Bitmap(), box);
            mLead2.Resize(float(size.width()), float(size.height()), kResizeResample);
            picture = mLead2.Bitmap().ToDisplay();
        }
    });
    const QSignalBlocker quiet(mViews);
    grid->RemoveAt(index);
    grid->InsertBefore(index, file, picture, pixels);
    if (picture.isNull()) {
        grid->SetFailure(index, pending->failure);
    }
    mLead2.SetBitmap({});
    grid->SetSelected(index, true);
    grid->MakeCurrent(index);
    ShowFile(file);
}

} // namespace quillane
