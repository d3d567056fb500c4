#pragma once
#include "browser/filter.h"
#include "browser/scan.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "platform/fake/fake_platform.h"

#include <QImage>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

namespace quillane {

/// Records what a scan fills.
class RecordingView : public ScanView {
public:
    struct Cell {
        QString path;
        int stock = 0;
    };
    QStringList panels = {QString(), QString(), QString(), QString(), QString()};
    QVector<QStringList> panelHistory = QVector<QStringList>(5);
    int progressMaximum = -1;
    QVector<int> progress;
    bool progressShown = false;
    int hides = 0;
    QVector<Cell> cells;
    qint16 cellWidth = 0, cellHeight = 0;
    int finishes = 0, current = -1, selectedCell = -1, selectedRow = -1;
    QVector<ScanRow> rows;
    QVector<std::array<QString, 4>> tags;
    std::array<QString, 4> captions;
    QStringList shown;
    std::function<void()> onTags; ///< runs when a row has got its tags

    void SetPanel(int panel, const QString& text) override
    {
        panels[panel] = text;
        panelHistory[panel].append(text);
    }
    void ShowProgress(int maximum) override
    {
        progressMaximum = maximum;
        progressShown = true;
    }
    void SetProgress(int value) override { progress.append(value); }
    void HideProgress() override
    {
        progressShown = false;
        ++hides;
    }
    void ClearGrid(qint16 width, qint16 height) override
    {
        cells.clear();
        cellWidth = width;
        cellHeight = height;
    }
    void AddCell(const QString& path, const ImageFacts&) override { cells.append(Cell{path, 0}); }
    void AddStockCell(const QString& path, StockPicture picture) override
    {
        cells.append(Cell{path, int(picture)});
    }
    void FinishGrid() override { ++finishes; }
    int CellCount() const override { return int(cells.size()); }
    QString CellPath(int cell) const override { return cells.at(cell).path; }
    void MakeCellCurrent(int cell) override { current = cell; }
    void MarkCellSelected(int cell) override { selectedCell = cell; }
    void ClearRows(const std::array<QString, 4>& columnCaptions) override
    {
        rows.clear();
        tags.clear();
        captions = columnCaptions;
    }
    void AddRow(const ScanRow& row) override
    {
        rows.append(row);
        tags.append(std::array<QString, 4>{});
    }
    void SetRowTags(int row, const std::array<QString, 4>& values) override
    {
        tags[row] = values;
        if (onTags) {
            onTags();
        }
    }
    void FinishRows() override { }
    int RowCount() const override { return int(rows.size()); }
    void SelectRow(int row) override { selectedRow = row; }
    void ShowFile(const QString& path) override { shown.append(path); }

    QStringList CellNames() const
    {
        QStringList names;
        for (const Cell& cell : cells) {
            names.append(LeafName(cell.path));
        }
        return names;
    }
    QStringList RowNames() const
    {
        QStringList names;
        for (const ScanRow& row : rows) {
            names.append(LeafName(row.path));
        }
        return names;
    }
};

class ScanTest : public testing::Test {
protected:
    ScanTest() : fakes(root.filePath(QStringLiteral("home"))), scan(session, fakes.Services(), view)
    {
        session.gsFilter = QString::fromUtf16(kBrowseMask);
        session.gsPath = root.path() + u'/';
        session.gsAppTitle = QStringLiteral("Quillane");
    }

    /// A small picture under that name, whatever its extension: the content decides.
    void Picture(const QString& name, int width = 8, int height = 6)
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::blue);
        ASSERT_TRUE(image.save(root.filePath(name), "BMP")) << name.toStdString();
    }
    void Text(const QString& name, const QByteArray& content = "text")
    {
        WriteWholeFile(root.filePath(name), content);
    }
    /// Turns on a search for a number in a range.
    void Search(const QString& keyword, qint16 value, qint16 valueHigh)
    {
        scan.SetSearchOn(true);
        scan.SetSearchSource([=] {
            SearchQuestion question;
            question.criteria.searchNumeric[0] = {value, valueHigh, keyword, {}, kTrue};
            return question;
        });
    }
    QString Path(const QString& name) const { return session.gsPath + name; }

    QTemporaryDir root;
    FakePlatform fakes;
    Session session;
    RecordingView view;
    FolderScan scan;
};

} // namespace quillane
