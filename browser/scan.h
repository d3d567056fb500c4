#pragma once
#include "browser/folder_reading.h"
#include "browser/scan_view.h"
#include "core/session.h"
#include "imaging/thumbs/thumbnail_scanner.h"
#include "platform/platform.h"
#include "search/evaluation.h"
#include <QVector>
#include <functional>
#include <memory>
#include <optional>

namespace quillane {

/// Turns gsPath into the contents of the browser: lbFilTiffs, the visible view, the status
/// panels and a first selected file. Runs on the window thread and keeps its loop alive.
class FolderScan {
public:
    /// What a search asks; called once for each scan that begins with search on.
    using SearchSource = std::function<SearchQuestion()>;

    FolderScan(Session& session, Platform platform, ScanView& view);

    /// The scanner's switch, from the store.
    void SetIncludeSubDirectories(bool on) { mScanner.IncludeSubDirectories = on; }
    bool IncludeSubDirectories() const { return mScanner.IncludeSubDirectories; }
    void SetSearchOn(bool on) { mSearchOn = on; }
    bool SearchOn() const { return mSearchOn; }
    void SetSearchSource(SearchSource source) { mSearchSource = std::move(source); }

    /// Scans gsPath: mode 1 fills the grid, mode 0 the list, any other only the panels. Asked
    /// for while a scan runs, it notes the request and returns: the running scan ends at once,
    /// without its last steps, and the newest request is scanned in its place.
    void BrowseImages(int mode);
    bool IsScanning() const { return mScanning; }
    /// The first rows have another order, in lbFilTiffs too: row i is what row order[i] was. What a
    /// running scan still finds out goes to the rows it belongs to.
    void RowsReordered(const QVector<int>& order);
    /// Ends a running scan; nothing is scanned in its place.
    void Abandon();

private:
    void ScanOnce(int mode);
    bool ScanList(const QStringList& names);
    bool CollectFiles(const QStringList& names);
    bool AddRows();
    bool FillTags();
    bool ScanThumbnails(const FolderFiles& files);
    bool ThumbnailEvent(const ScannedFile& file);
    void CountFile();
    void AddCellOf(const ScannedFile& file);
    bool EscPressed(const QString& message);

    Session& mSession;
    Platform mPlatform;
    ScanView& mView;
    ThumbnailScanner mScanner;
    SearchSource mSearchSource;
    bool mSearchOn = false;
    std::shared_ptr<const SearchQuestion> mSearch; ///< of the running scan; none: search is off
    bool mScanning = false;
    QVector<int> mRowOf; ///< rows of the files whose tags are read, after a sort; else empty
    std::optional<int> mRequested;
    Generation mGeneration = 0;
};

} // namespace quillane
