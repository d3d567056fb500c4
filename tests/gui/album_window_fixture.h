#pragma once
#include "album/album_file.h"
#include "album/ui/frmBrowserImageFileList.h"
#include "core/settings_table.h"
#include "gui/viewer_window_fixture.h"
#include "platform/file_list_mime.h"

#include <QApplication>
#include <QDropEvent>
#include <QHeaderView>
#include <QMenuBar>
#include <algorithm>
#include <sys/stat.h>

namespace quillane {

/// What the album tells the main window.
class AlbumHost : public ToldHost {
public:
    QVector<QString> shown;
    QString panels[5];
    void SetPanel(int panel, const QString& text) override { panels[panel] = text; }
    void ShowFiles(const QVector<QString>& paths) override { shown = paths; }
};

/// The real album window over files of its own, with the outside faked.
class AlbumWindowTest : public ViewerWindowTest {
protected:
    ~AlbumWindowTest() override
    {
        album.reset();
        QApplication::clipboard()->clear();
    }

    void Open()
    {
        album = std::make_unique<frmBrowserImageFileList>(session, store, fakes.Services(loop),
                                                          &albumHost);
        album->setAttribute(Qt::WA_DeleteOnClose, false);
        album->show();
    }
    /// Until every file has been looked at and the preview is there.
    bool Rest()
    {
        return QTest::qWaitFor(
            [this] {
                return !album->IsWorking() && album->Rows().Settled() == album->Rows().Count();
            },
            kWait);
    }
    QString Album(const QByteArray& content)
    {
        const QString path = Path(QStringLiteral("a.ifl"));
        WriteWholeFile(path, content);
        return path;
    }
    QString AlbumOf(const QList<QString>& paths, const QString& comment = {})
    {
        return Album(AlbumBytes(comment, paths));
    }
    /// Three pictures, the second of which is not there.
    QList<QString> OneOfThreeMissing()
    {
        return {Small(QStringLiteral("a.png"), {200, 100}), Path(QStringLiteral("none.png")),
                Small(QStringLiteral("c.bmp"), {30, 60})};
    }
    template <typename Kind> Kind* Part(const char* name) const
    {
        Kind* found = album->findChild<Kind*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QTableView* List() const { return Part<QTableView>("lvImageFileList"); }
    ThumbnailGrid* Grid() const { return Part<ThumbnailGrid>("LEADImgList1"); }
    QString Box(const char* name) const { return Part<QLineEdit>(name)->text(); }
    QString Total() const { return Part<QLabel>("lblTotalFiles")->text(); }
    QAction* Menu(const char* name) const { return Part<QAction>(name); }
    bool LeadShown() const { return Part<EngineView>("LEAD1")->isVisible(); }
    QString Cell(int row, int column) const
    {
        return List()->model()->index(row, column).data().toString();
    }
    void ClickRow(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(List()->viewport(), Qt::LeftButton, modifiers,
                          List()->visualRect(List()->model()->index(row, 0)).center());
    }
    void ClickCell(int cell, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(Grid()->viewport(), Qt::LeftButton, modifiers,
                          Grid()->CellRect(cell).center());
    }
    void Drop(const QStringList& paths) const
    {
        const std::unique_ptr<QMimeData> files(FileListMimeData(paths));
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, files.get(), Qt::LeftButton, {});
        QApplication::sendEvent(album.get(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction, files.get(), Qt::LeftButton, {});
        QApplication::sendEvent(album.get(), &drop);
        EXPECT_TRUE(drop.isAccepted());
    }
    /// The File menu as it opens.
    void OpenFileMenu() const { Q_EMIT Part<QMenu>("mnuFile")->aboutToShow(); }
    void ShowThumbnails()
    {
        Menu("mnuViewThumbnails")->trigger();
        ASSERT_TRUE(Rest());
    }
    QList<int> SelectedRows() const
    {
        QList<int> rows;
        for (const QModelIndex& row : List()->selectionModel()->selectedRows()) {
            rows.append(row.row());
        }
        std::sort(rows.begin(), rows.end());
        return rows;
    }
    QModelIndex Index(int row) const { return List()->model()->index(row, 0); }
    QString Comment() const { return Part<QPlainTextEdit>("rtbComment")->toPlainText(); }
    QString Told() const { return album->statusBar()->currentMessage(); }
    bool Stored(const char* key) const
    {
        return ReadBool(store, SettingRow(QLatin1String("PhotoAlbum"), QLatin1String(key)));
    }

    AlbumHost albumHost;
    std::unique_ptr<frmBrowserImageFileList> album;
};

/// The same with albums of every kind.
class AlbumFilesTest : public AlbumWindowTest {
protected:
    QByteArray PathBytes(const QString& name) const { return BytesFromPath(Path(name)); }
    void MakeFifo(const QString& name) const
    {
        ASSERT_EQ(mkfifo(PathBytes(name).constData(), 0644), 0);
    }
    /// Opens a window on an album and waits.
    void OpenAlbum(const QString& path)
    {
        Open();
        album->OpenImageListFile(path);
        ASSERT_TRUE(Rest());
    }
    /// Saves by the menu and waits.
    void SaveAs(const QString& path)
    {
        fakes.dialogs.AnswerFile(path);
        Menu("mnuSave")->trigger();
        ASSERT_TRUE(Rest());
    }
};

} // namespace quillane
