#pragma once
#include "core/native_path.h"
#include "imaging/comments/comment_set.h"
#include "imaging/reader.h"
#include <QObject>
#include <QSize>
#include <QThreadPool>
#include <atomic>
#include <memory>
#include <optional>

namespace quillane {

/// What is known of the current file before its pixels are.
struct PreviewFacts {
    QString path;
    FileStat stat;
    std::optional<ImageFacts> facts; ///< nothing when the file cannot be read as a picture
    std::shared_ptr<const CommentSet> comments; ///< null when the file cannot be opened
};

struct PreviewPicture {
    QString path;
    LoadedImage loaded; ///< at reduced scale
    QImage shown;       ///< ready to paint, fits the box; null when the file cannot be read
    QString failure;
};

/// Reads the current file off the window thread: facts and comments first, then a picture at
/// reduced scale. Only the newest request is ever answered; an older decode is dropped.
class PreviewLoader : public QObject {
    Q_OBJECT
public:
    explicit PreviewLoader(QObject* parent = nullptr);
    ~PreviewLoader() override;

    /// Begins with a file; `box` is the largest picture wanted, in device pixels.
    void Load(const QString& path, QSize box);
    /// Waits up to `ms` for the newest request's facts, and takes them; nothing when they are
    /// not there yet: FactsReady then tells.
    std::optional<PreviewFacts> TakeFacts(int ms);
    /// Drops the newest request.
    void Cancel();

Q_SIGNALS:
    /// Facts that TakeFacts did not get in time.
    void FactsReady(const quillane::PreviewFacts& facts);
    /// The newest request's picture, or why there is none.
    void PictureReady(const quillane::PreviewPicture& picture);

private:
    struct Request;
    void AnswerFacts(const std::shared_ptr<Request>& request);
    void AnswerPicture(const std::shared_ptr<Request>& request,
                       const std::shared_ptr<PreviewPicture>& picture);
    static void Run(PreviewLoader* loader, const std::shared_ptr<Request>& request, QSize box);

    QThreadPool mPool;
    std::shared_ptr<Request> mNewest;
};

} // namespace quillane
