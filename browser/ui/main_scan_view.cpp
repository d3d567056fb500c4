// What a scan fills, and the preview of the current file.
#include "browser/ui/frmBrowserMain.h"

#include "core/file_kinds.h"
#include "core/paths.h"

#include <algorithm>

namespace quillane {

namespace {

// The preview is composed at once when the file is read within this time, which is nearly
// always; else as soon as it is.
constexpr int kPreviewPatience = 30; // milliseconds

} // namespace

void frmBrowserMain::SetPanel(int panel, const QString& text)
{
    mPanels.SetText(panel, text);
}

QString frmBrowserMain::Panel(int panel) const
{
    return mPanels.Text(panel);
}

void frmBrowserMain::ShowProgress(int maximum)
{
    mProgress->setRange(0, maximum);
    mProgress->setValue(0);
    mProgress->show();
}

void frmBrowserMain::SetProgress(int value)
{
    // One step in a hundred is enough to see; each repaint costs.
    const int step = std::max(1, mProgress->maximum() / 200);
    if (value <= mProgress->maximum() && (value % step == 0 || value == mProgress->maximum())) {
        mProgress->setValue(value);
    }
}

void frmBrowserMain::HideProgress()
{
    mProgress->hide();
}

void frmBrowserMain::ClearGrid(qint16 cellWidth, qint16 cellHeight)
{
    mViews->ClearGrid(cellWidth, cellHeight);
}

void frmBrowserMain::AddCell(const QString& path, const ImageFacts& facts)
{
    mViews->AddCell(path, facts);
}

void frmBrowserMain::AddStockCell(const QString& path, StockPicture picture)
{
    mViews->AddStockCell(path, picture);
}

void frmBrowserMain::FinishGrid()
{
    mViews->FinishGrid();
    UpdateFileMenu(); // its keys work without the menu being opened
}

int frmBrowserMain::CellCount() const
{
    return mViews->Grid()->Count();
}

QString frmBrowserMain::CellPath(int cell) const
{
    return mViews->Grid()->PathAt(cell);
}

void frmBrowserMain::MakeCellCurrent(int cell)
{
    const QSignalBlocker quiet(mViews);
    mViews->Grid()->MakeCurrent(cell);
}

void frmBrowserMain::MarkCellSelected(int cell)
{
    const QSignalBlocker quiet(mViews);
    mViews->Grid()->SetSelected(cell, true);
}

void frmBrowserMain::ClearRows(const std::array<QString, 4>& captions)
{
    mViews->ClearRows(captions);
}

void frmBrowserMain::AddRow(const ScanRow& row)
{
    mViews->AddRow(row);
}

void frmBrowserMain::SetRowTags(int row, const std::array<QString, 4>& tags)
{
    mViews->List()->SetTags(row, tags);
}

void frmBrowserMain::FinishRows()
{
    mViews->FinishRows();
    mViews->List()->SortRest();
    UpdateFileMenu();
}

int frmBrowserMain::RowCount() const
{
    return mViews->List()->Count();
}

void frmBrowserMain::SelectRow(int row)
{
    const QSignalBlocker quiet(mViews);
    mViews->List()->MakeCurrent(row);
}

void frmBrowserMain::ShowFile(const QString& path)
{
    ShowFileBanner(path);
    ShowImageDescription(path);
}

void frmBrowserMain::ShowFileBanner(const QString& fileName)
{
    mLoader.Cancel();
    mPreview->ShowBanner(LeafName(fileName), 0);
}

void frmBrowserMain::ShowImageDescription(const QString& fileName)
{
    const Hourglass busy(mPlatform.loop);
    mLead2.SetBitmap({});
    if (IsAlbumFile(fileName) == kTrue || IsPrintSetFile(fileName) == kTrue) {
        PreviewFacts facts;
        facts.path = fileName;
        facts.stat = StatPath(fileName);
        ShowFactsOf(facts);
        return;
    }
    mLoader.Load(fileName, mPreview->PictureBox());
    if (const std::optional<PreviewFacts> facts = mLoader.TakeFacts(kPreviewPatience)) {
        ShowFactsOf(*facts);
    }
}

void frmBrowserMain::ShowFactsOf(const PreviewFacts& facts)
{
    DescriptionInput input;
    input.lastFormat = mLead2.InfoFormat();
    if (facts.facts) {
        mLead2.SetInfo(*facts.facts);
    }
    input.fileName = facts.path;
    input.surfaceWidth = mPreview->width();
    input.stat = facts.stat;
    input.facts = facts.facts;
    input.comments = facts.comments;
    mPreview->ShowContent(ComposeDescription(input, mSession, mPlatform.loop));
}

void frmBrowserMain::ShowPictureOf(const PreviewPicture& picture)
{
    if (!picture.shown.isNull()) {
        mLead2.Adopt(picture.loaded);
    }
    mPreview->ShowPicture(picture.shown, picture.failure);
}

} // namespace quillane
