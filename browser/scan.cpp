#include "browser/scan.h"

#include "browser/filter.h"
#include "browser/tag_columns.h"
#include "core/failure.h"
#include "core/file_kinds.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "core/strings.h"
#include "search/search_ahead.h"

#include <algorithm>
#include <numeric>

namespace quillane {

namespace {

const QString kScanCanceled = QStringLiteral("Browsing Directory Canceled.");
const QString kCollectCanceled = QStringLiteral("Browsing Directory Cancaled.");

constexpr int kPatientWaits = 100; // for one file's answer, some milliseconds each

int ProgressMaximum(qsizetype count)
{
    return count < 2 ? 1 : int(count) - 1;
}

QStringList JoinedNames(const QString& folder, const QStringList& names)
{
    QStringList paths;
    paths.reserve(names.size());
    for (const QString& name : names) {
        paths.append(JoinAsIs(folder, name));
    }
    return paths;
}

/// Which files the grid wants. One whose description cannot be read counts as one without; the
/// scanner's own look says what became of it.
ThumbnailScanner::Wanted WantedBy(const std::shared_ptr<const SearchQuestion>& search)
{
    if (!search) {
        return {};
    }
    return [search](const QString& path) {
        if (IsImageFile(path) != kTrue) {
            return false;
        }
        try {
            return FileMatchesSearch(path, *search) == kTrue;
        } catch (const Failure&) {
            return TextMatchesSearch({}, *search) == kTrue
                || StatPath(path).type != FileType::Regular;
        }
    };
}

} // namespace

FolderScan::FolderScan(Session& session, Platform platform, ScanView& view)
    : mSession(session),
      mPlatform(platform),
      mView(view),
      mScanner(platform.loop),
      mSearchSource([] { return SearchQuestion(); })
{ }

void FolderScan::BrowseImages(int mode)
{
    mRequested = mode;
    mPlatform.loop.NewGeneration();
    if (mScanning) {
        return;
    }
    mScanning = true;
    while (mRequested) {
        const int next = *mRequested;
        mRequested.reset();
        mGeneration = mPlatform.loop.NewGeneration();
        try {
            ScanOnce(next);
        } catch (...) {
            // Without rows there are no entries either.
            mSession.lbFilTiffs.resize(
                std::min<qsizetype>(mSession.lbFilTiffs.size(),
                                    next == kListMode ? mView.RowCount() : mView.CellCount()));
            mScanner.Stop();
            mScanning = false;
            throw;
        }
        mScanner.Stop();
    }
    mScanning = false;
}

void FolderScan::Abandon()
{
    mRequested.reset();
    mPlatform.loop.NewGeneration();
}

void FolderScan::ScanOnce(int mode)
{
    mSession.lbFilTiffs.clear();
    mSession.gBrowseCanceled = false;
    // The folder is looked into by its own name; lbFilTiffs joins names to gsPath as it stands.
    FolderQuestion question{WithSeparator(mSession.gsPath), mSession.gsFilter, {}, false};
    if (mode == kThumbnailMode) {
        question.deep = mScanner.IncludeSubDirectories;
        for (qint32 p = 0; p <= LastPatternIndex(mSession.gsFilter); ++p) {
            question.masks.append(GetField(mSession.gsFilter, qint16(p), QStringLiteral(";")));
        }
    }
    const std::optional<FolderFiles> read = ReadFolderFiles(question, mPlatform.loop, mGeneration);
    if (!read) {
        return;
    }
    const QStringList& names = read->names;

    // A dialog that is left in the middle of the scan changes nothing for the files to come.
    mSearch = mSearchOn ? std::make_shared<const SearchQuestion>(mSearchSource()) : nullptr;
    if (mSearch) {
        mView.SetPanel(1, QStringLiteral("Search = ON"));
        mView.SetPanel(3, QStringLiteral("Searching..."));
    } else {
        mView.SetPanel(1, {});
        mView.SetPanel(2, {}); // a search that the dialog has ended leaves its words there
        mView.SetPanel(3, QStringLiteral("Total Images = %1").arg(names.size()));
    }
    mView.SetPanel(4, mSession.gsPath);

    bool finished = true;
    if (mode == kListMode) {
        finished = ScanList(names);
    } else if (mode == kThumbnailMode) {
        finished = ScanThumbnails(*read);
    }
    if (!finished) {
        mView.HideProgress();
        return;
    }

    const qsizetype found = mSession.lbFilTiffs.size();
    mView.SetPanel(3,
                   mSearch ? QStringLiteral("%1 of %2 Files").arg(found).arg(names.size())
                           : QStringLiteral("Total Images = %1").arg(found));
    if (found == 0) {
        return;
    }
    mSession.gImageListIndex = 0;
    if (mode == kThumbnailMode) {
        mView.MarkCellSelected(0);
    } else if (mode == kListMode) {
        mView.SelectRow(0);
    }
    const QString first = mSession.lbFilTiffs.first();
    mView.ShowFile(first);
    mSession.gsFileName = first;
}

bool FolderScan::EscPressed(const QString& message)
{
    if (!mPlatform.loop.PollEsc()) {
        return false;
    }
    mPlatform.dialogs.Box(message, mSession.gsAppTitle);
    // The press that closes the box is used up by it.
    mPlatform.loop.ForgetEsc();
    return true;
}

bool FolderScan::ScanList(const QStringList& names)
{
    mView.ClearRows(mSession.gsFileKeyword);
    if (!CollectFiles(names)) {
        return false;
    }
    if (mSession.lbFilTiffs.isEmpty()) {
        return true;
    }
    mView.ShowProgress(ProgressMaximum(mSession.lbFilTiffs.size()));
    // Esc ends the loop and keeps the rows so far.
    if (AddRows()) {
        FillTags();
    }
    mView.FinishRows();
    mView.HideProgress();
    return mPlatform.loop.Newest() == mGeneration;
}

bool FolderScan::CollectFiles(const QStringList& names)
{
    const QStringList candidates = JoinedNames(mSession.gsPath, names);
    std::optional<SearchAhead> search;
    if (mSearch) {
        search.emplace(candidates, [question = mSearch](const QString& path) {
            return FileMatchesSearch(path, *question) == kTrue;
        });
    }
    mSession.lbFilTiffs.reserve(names.size());
    for (const QString& candidate : candidates) {
        if (EscPressed(kCollectCanceled)) {
            mView.HideProgress();
            return mPlatform.loop.Newest() == mGeneration;
        }
        std::optional<bool> kept = !search;
        if (search) {
            // Esc is looked at in the middle of a wait too: a disk may not answer at all.
            for (int waits = 1; !(kept = search->Next()); ++waits) {
                if (!mPlatform.loop.Yield(mGeneration)) {
                    return false;
                }
                if (waits > kPatientWaits && EscPressed(kCollectCanceled)) {
                    mView.HideProgress();
                    return mPlatform.loop.Newest() == mGeneration;
                }
            }
        }
        if (*kept) {
            mSession.lbFilTiffs.append(candidate);
        }
        if (!mPlatform.loop.Yield(mGeneration)) {
            return false;
        }
    }
    return true;
}

bool FolderScan::AddRows()
{
    for (int i = 0; i < mSession.lbFilTiffs.size(); ++i) {
        mView.SetProgress(i);
        if (EscPressed(kScanCanceled)) {
            return false;
        }
        const QString path = mSession.lbFilTiffs.at(i);
        const FileStat stat = StatPath(path);
        mSession.gCurrentItem = i;
        mView.AddRow({path, stat.size, stat.type == FileType::Missing ? -1 : stat.modifiedSeconds});
        if (!mPlatform.loop.Yield(mGeneration)) {
            return false;
        }
    }
    mView.FinishRows();
    return true;
}

void FolderScan::RowsReordered(const QVector<int>& order)
{
    if (!mScanning) {
        return;
    }
    if (mRowOf.isEmpty()) {
        mRowOf.resize(mSession.lbFilTiffs.size());
        std::iota(mRowOf.begin(), mRowOf.end(), 0);
    }
    QVector<int> fresh(order.size());
    for (int row = 0; row < order.size(); ++row) {
        fresh[order.at(row)] = row;
    }
    for (int& row : mRowOf) {
        row = row < fresh.size() ? fresh.at(row) : row;
    }
}

bool FolderScan::FillTags()
{
    mRowOf.clear();
    TagColumns columns(mSession.lbFilTiffs, mSession.gsFileKeyword);
    while (!columns.AtEnd()) {
        if (EscPressed(kScanCanceled)) {
            return false;
        }
        if (const std::optional<TagColumns::Row> row = columns.Next()) {
            mView.SetProgress(row->index);
            mSession.gCurrentItem = mRowOf.value(row->index, row->index);
            mView.SetRowTags(mSession.gCurrentItem, row->tags);
        }
        if (!mPlatform.loop.Yield(mGeneration)) {
            return false;
        }
    }
    return true;
}

bool FolderScan::ScanThumbnails(const FolderFiles& files)
{
    mView.ShowProgress(ProgressMaximum(files.names.size()));
    mSession.gImagesAdded = 0;
    mSession.gFilesSeen = 0;
    mView.ClearGrid(mSession.gThumbnailWidth, mSession.gThumbnailHeight);
    mScanner.ThumbHeight = mSession.gThumbnailHeight;
    mScanner.ThumbWidth = mSession.gThumbnailWidth;

    mScanner.Prepare(files.filesOfMasks, WantedBy(mSearch));
    for (int p = 0; p < int(files.filesOfMasks.size()); ++p) {
        // Esc ends the walk of one pattern; the patterns behind it are still begun.
        if (!mScanner.Browse(p, mGeneration,
                             [this](const ScannedFile& file) { return ThumbnailEvent(file); })) {
            return false;
        }
    }
    mView.FinishGrid();

    // Entry i and cell i are the same file; where gsPath lacks its separator, a name directly in
    // the folder is joined to it as it stands.
    if (files.folder != mSession.gsPath) {
        for (int cell = 0; cell < mView.CellCount(); ++cell) {
            const QString path = mView.CellPath(cell);
            if (FolderOf(path) == files.folder) {
                mSession.lbFilTiffs[cell] = JoinAsIs(mSession.gsPath, LeafName(path));
            }
        }
    }
    mView.HideProgress();
    if (mView.CellCount() > 0) {
        mView.MakeCellCurrent(0);
    }
    return true;
}

void FolderScan::CountFile()
{
    ++mSession.gFilesSeen;
    ++mSession.gImagesAdded;
}

bool FolderScan::ThumbnailEvent(const ScannedFile& file)
{
    if (EscPressed(kScanCanceled)) {
        mSession.gBrowseCanceled = true;
    }
    if (file.status != kScanIgnored) {
        AddCellOf(file);
    }
    return !mSession.gBrowseCanceled;
}

void FolderScan::AddCellOf(const ScannedFile& file)
{
    if (mSearch) {
        if (IsImageFile(file.path) != kTrue) {
            return;
        }
        if (file.status == kScanUnwanted) {
            ++mSession.gFilesSeen;
            mView.SetProgress(mSession.gFilesSeen);
            return;
        }
    }
    const bool album = IsAlbumFile(file.path) == kTrue;
    if ((album || IsPrintSetFile(file.path) == kTrue) && file.status >= kScanKnownOther) {
        mView.AddStockCell(file.path, album ? StockPicture::Album : StockPicture::PrintSetting);
        mSession.lbFilTiffs.append(file.path);
        CountFile();
        return;
    }
    if (file.status != kScanGood) {
        return;
    }
    mView.AddCell(file.path, file.facts);
    mSession.lbFilTiffs.append(file.path);
    mView.SetProgress(mSession.gFilesSeen);
    CountFile();
}

} // namespace quillane
