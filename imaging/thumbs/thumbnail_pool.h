#pragma once
#include "imaging/thumbs/thumbnailer.h"
#include <QObject>
#include <functional>
#include <memory>

namespace quillane {

/// Makes thumbnails on one thread a core, newest wishes first, and hands them over on the
/// window thread, some milliseconds at a time. When nothing is wanted it fills the cache with what
/// took more than 10 ms: at most 96 MB in its life, and nothing once the cache holds 512 MB.
class ThumbnailPool : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(const QString& path, const Thumbnail& thumbnail)>;
    explicit ThumbnailPool(QString cacheFolder, QObject* parent = nullptr);
    ~ThumbnailPool() override;

    /// What is wanted from now on, most urgent first; what was asked before and is not in the
    /// list is dropped, also while it is being made (what is ready is still handed over); what was
    /// asked for another box is dropped altogether. The list is shared, not copied. box: largest
    /// width and height in device pixels.
    void Want(const QVector<QString>& paths, QSize box);
    /// Drops everything asked for.
    void Clear();
    /// Called on the window thread for each wanted thumbnail, failed ones too.
    void OnDone(Done done);
    /// Whether nothing is waiting, being made or being written to the cache.
    bool IsIdle() const;

private:
    struct State;
    std::shared_ptr<State> mState;
};

} // namespace quillane
