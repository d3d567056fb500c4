#pragma once
#include "imaging/image_facts.h"
#include <QString>
#include <array>

namespace quillane {

enum ScanMode : int { kListMode = 0, kThumbnailMode = 1 };

/// What a list row shows before its tags are known.
struct ScanRow {
    QString path;
    qint64 size = 0;            ///< bytes
    qint64 modifiedSeconds = 0; ///< since 1970, UTC; negative when unknown
};

enum class StockPicture : int { Album = 13, PrintSetting = 20 }; ///< positions in imlBrowser

/// What a folder scan fills; the main window implements it, a recorder serves the tests.
class ScanView {
public:
    virtual ~ScanView() = default;

    /// Text of status panel 1 to 4.
    virtual void SetPanel(int panel, const QString& text) = 0;
    virtual void ShowProgress(int maximum) = 0; ///< from 0, value 0
    /// A value beyond the maximum is passed over.
    virtual void SetProgress(int value) = 0;
    virtual void HideProgress() = 0;

    /// Removes all cells; the new ones hold pictures of this many pixels.
    virtual void ClearGrid(qint16 cellWidth, qint16 cellHeight) = 0;
    /// Appends a cell; its pixels come later.
    virtual void AddCell(const QString& path, const ImageFacts& facts) = 0;
    virtual void AddStockCell(const QString& path, StockPicture picture) = 0;
    /// The grid's final refresh.
    virtual void FinishGrid() = 0;
    virtual int CellCount() const = 0;
    /// The path cell i carries.
    virtual QString CellPath(int cell) const = 0;
    virtual void MakeCellCurrent(int cell) = 0;
    virtual void MarkCellSelected(int cell) = 0;

    /// Clears the rows and sets the captions of columns 4 to 7.
    virtual void ClearRows(const std::array<QString, 4>& captions) = 0;
    virtual void AddRow(const ScanRow& row) = 0;
    virtual void SetRowTags(int row, const std::array<QString, 4>& tags) = 0;
    /// Rows gathered so far appear.
    virtual void FinishRows() = 0;
    virtual int RowCount() const = 0;
    virtual void SelectRow(int row) = 0;

    /// ShowFileBanner and ShowImageDescription for a file.
    virtual void ShowFile(const QString& path) = 0;
};

} // namespace quillane
