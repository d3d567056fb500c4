#include "browser/preview_loader.h"

#include "imaging/thumbs/shown_small.h"
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quillane {

struct PreviewLoader::Request {
    QString path;
    std::atomic<bool> cancelled = false;
    std::mutex mutex;
    std::condition_variable read;
    std::optional<PreviewFacts> facts; ///< set once, taken once
    bool taken = false;
};

namespace {

PreviewFacts ReadPreviewFacts(const QString& path)
{
    PreviewFacts facts;
    facts.path = path;
    facts.stat = StatPath(path);
    ResumeNext([&] { facts.facts = ProbeFile(path); });
    ResumeNext([&] { facts.comments = std::make_shared<const CommentSet>(ReadComments(path)); });
    return facts;
}

PreviewPicture ReadPreviewPicture(const QString& path, QSize box,
                                  const std::atomic<bool>& cancelled)
{
    PreviewPicture picture;
    picture.path = path;
    try {
        DecodeRequest request;
        request.atLeast = box;
        request.cancelled = &cancelled;
        picture.loaded = LoadFile(path, request);
        const Bitmap& bitmap = picture.loaded.bitmap;
        const QSize size = bitmap.Pixels().size();
        picture.shown = size.width() > box.width() || size.height() > box.height()
            ? ShrunkForDisplay(bitmap, size.scaled(box, Qt::KeepAspectRatio).expandedTo({1, 1}))
            : bitmap.ToDisplay();
    } catch (const Failure& failure) {
        picture.failure = failure.Description();
    }
    return picture;
}

} // namespace

PreviewLoader::PreviewLoader(QObject* parent) : QObject(parent)
{
    constexpr int kPreviewThreads = 3; // one that hangs on a slow disk does not stop the next
    mPool.setMaxThreadCount(kPreviewThreads);
}

PreviewLoader::~PreviewLoader()
{
    Cancel();
    mPool.clear();
    mPool.waitForDone();
}

void PreviewLoader::Load(const QString& path, QSize box)
{
    Cancel();
    mNewest = std::make_shared<Request>();
    mNewest->path = path;
    mPool.clear();
    mPool.start([this, request = mNewest, box] { Run(this, request, box); });
}

void PreviewLoader::Cancel()
{
    if (mNewest) {
        mNewest->cancelled = true;
        mNewest.reset();
    }
}

void PreviewLoader::Run(PreviewLoader* loader, const std::shared_ptr<Request>& request, QSize box)
{
    if (request->cancelled) {
        return;
    }
    PreviewFacts facts = ReadPreviewFacts(request->path);
    const bool readable = facts.facts.has_value();
    {
        const std::lock_guard lock(request->mutex);
        request->facts = std::move(facts);
    }
    request->read.notify_all();
    QMetaObject::invokeMethod(loader, [loader, request] { loader->AnswerFacts(request); });
    if (!readable || request->cancelled) {
        return;
    }
    auto picture = std::make_shared<PreviewPicture>(
        ReadPreviewPicture(request->path, box, request->cancelled));
    QMetaObject::invokeMethod(
        loader, [loader, request, picture] { loader->AnswerPicture(request, picture); });
}

std::optional<PreviewFacts> PreviewLoader::TakeFacts(int ms)
{
    const std::shared_ptr<Request> request = mNewest;
    if (!request) {
        return {};
    }
    std::unique_lock lock(request->mutex);
    request->read.wait_for(lock, std::chrono::milliseconds(ms),
                           [&] { return request->facts.has_value(); });
    if (!request->facts || request->taken) {
        return {};
    }
    request->taken = true;
    return std::move(request->facts);
}

void PreviewLoader::AnswerFacts(const std::shared_ptr<Request>& request)
{
    if (request != mNewest) {
        return;
    }
    if (const std::optional<PreviewFacts> facts = TakeFacts(0)) {
        Q_EMIT FactsReady(*facts);
    }
}

void PreviewLoader::AnswerPicture(const std::shared_ptr<Request>& request,
                                  const std::shared_ptr<PreviewPicture>& picture)
{
    if (request == mNewest) {
        Q_EMIT PictureReady(*picture);
    }
}

} // namespace quillane
