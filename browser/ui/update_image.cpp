// UpdateImageInImageList: one cell renewed after its file has changed on the disk.
#include "browser/thumbnail_size.h"
#include "browser/ui/frmBrowserMain.h"

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
    QString failure;
};

std::shared_ptr<PendingLoad> StartLoad(const QString& path, QSize atLeast)
{
    auto pending = std::make_shared<PendingLoad>();
    QThreadPool::globalInstance()->start([pending, path, atLeast] {
        try {
            DecodeRequest request;
            request.atLeast = atLeast;
            pending->loaded = LoadFile(path, request);
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
        const QSizeF size = ThumbnailSize(mLead2.BitmapWidth(), mLead2.BitmapHeight(),
                                          qint16(box.width()), qint16(box.height()));
        mLead2.Resize(float(size.width()), float(size.height()), kResizeResample);
        picture = mLead2.Bitmap().ToDisplay();
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
