#pragma once
#include "core/folder_listing.h"
#include "imaging/image_facts.h"
#include "platform/ui_loop.h"
#include <functional>
#include <memory>
#include <vector>

namespace quillane {

/// What the scanner says of a file.
enum ScanStatus : qint16 {
    kScanGood = 0,
    kScanUnreadable = 1, ///< no picture, or damaged
    kScanIgnored = 2,    ///< not a regular file any more
    kScanUnwanted = 3,   ///< the caller does not want it; its header was not read
    kScanKnownOther = 5, ///< unreadable but known: an album or a print-setting file
};

struct ScannedFile {
    QString path;
    qint16 status = kScanUnreadable;
    ImageFacts facts; ///< when the status is good
};

/// The thumbnail scanner LEADThumb1. It reads the headers of a folder's files ahead on a
/// bounded pool of readers and delivers one event per file, in order, on the calling thread.
class ThumbnailScanner {
public:
    explicit ThumbnailScanner(UiLoop& loop);
    ~ThumbnailScanner();

    bool IncludeSubDirectories = false;
    qint16 ThumbWidth = 100, ThumbHeight = 100; ///< cell size in pixels

    /// Event of one file; its result is the continue flag.
    using Event = std::function<bool(const ScannedFile& file)>;

    /// Tells which masks will be browsed, in their order, so that their files are read ahead
    /// across masks. `listing` is the folder read with IncludeSubDirectories.
    void Prepare(const FolderListing& listing, const QStringList& masks);
    /// Whether a file is wanted at all; called on several threads at once.
    using Wanted = std::function<bool(const QString& path)>;
    /// The same with the full paths of each mask's files. Of a file that is not `wanted` nothing
    /// is read; without the function all are.
    void Prepare(const std::vector<QStringList>& filesOfMasks, Wanted wanted = {});
    /// Delivers the files of mask number `index` of Prepare; ends early when an event answers
    /// false. While the next header is not there yet, window events flow; when `generation` is
    /// no longer the newest, it ends and returns false.
    bool Browse(int index, Generation generation, const Event& event);
    /// Drops what was prepared.
    void Stop();

private:
    struct State;
    UiLoop& mLoop;
    std::shared_ptr<State> mState;
    std::vector<std::shared_ptr<State>> mEnding; ///< stopped, their readers not all through
};

} // namespace quillane
