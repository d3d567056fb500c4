#pragma once
#include "browser/ui/frmBrowserMain.h"
#include "imaging/worker/worker_host.h"
#include "platform/desktop/desktop_loop.h"
#include "platform/fake/fake_platform.h"

#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace quillane {

/// The real main window over a folder of small pictures, with the outside faked.
class MainWindowTest : public testing::Test {
protected:
    static constexpr int kWait = 10'000; ///< milliseconds; a condition that fails, not a delay

    MainWindowTest()
        : fakes(root.path() + QStringLiteral("/home")),
          folder(root.path() + QStringLiteral("/pictures/")),
          store(root.path() + QStringLiteral("/s.ini"))
    {
        MakeFolder(root.path() + QStringLiteral("/home/Pictures"));
        MakeFolder(folder);
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 2);
    }
    ~MainWindowTest() override
    {
        windows.DestroyAll();
        main.reset();
    }

    void Picture(const QString& name, QSize size = {8, 6}, const char* format = "BMP")
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        ASSERT_TRUE(image.save(folder + name, format));
    }
    void Pictures(int count)
    {
        for (int i = 0; i < count; ++i) {
            Picture(QStringLiteral("p%1.bmp").arg(i));
        }
    }
    /// Starts the program on the folder and waits until it is listed.
    void Start()
    {
        store.SaveSetting(QStringLiteral("Globals"), QStringLiteral("gsPath"), folder);
        StartBare();
        ASSERT_TRUE(
            QTest::qWaitFor([this] { return session.gsPath == folder && Rested(); }, kWait));
    }
    void StartBare()
    {
        main = std::make_unique<frmBrowserMain>(session, store, Services(), windows);
        main->Load();
    }
    virtual Platform Services() { return fakes.Services(loop); }
    /// No scan is running: its panel tells the count.
    bool Rested() const
    {
        return main->Panel(3).startsWith(QStringLiteral("Total Images = "))
            && main->Panel(3) == QStringLiteral("Total Images = %1").arg(session.lbFilTiffs.size());
    }
    template <typename Kind> Kind* Find(const char* name) const
    {
        Kind* found = main->findChild<Kind*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    ThumbnailGrid* Grid() const { return Find<ThumbnailGrid>("LEADImgList1"); }
    FileListView* List() const { return Find<FileListView>("lvSelected"); }
    QAction* Entry(const char* name) const { return main->Menus().Action(QLatin1String(name)); }
    void Click(const char* name) const { Entry(name)->trigger(); }
    void ClickCell(int cell, Qt::MouseButton button = Qt::LeftButton,
                   Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(Grid()->viewport(), button, modifiers, Grid()->CellRect(cell).center());
    }
    void ClickRow(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        QWidget* at = List()->childAt(List()->RowRect(row).center());
        QTest::mouseClick(at, Qt::LeftButton, modifiers,
                          at->mapFrom(List(), List()->RowRect(row).center()));
    }

    QTemporaryDir root;
    FakePlatform fakes;
    DesktopLoop loop;
    QString folder;
    SettingsStore store;
    Session session;
    WindowRegistry windows;
    std::unique_ptr<frmBrowserMain> main;
};

} // namespace quillane
