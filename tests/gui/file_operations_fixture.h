#pragma once
#include "core/paths.h"
#include "gui/main_window_fixture.h"
#include "gui/modal_dialog.h"
#include "platform/desktop/file_service.h"
#include "platform/ui/desktop_dialogs.h"

#include <QPushButton>
#include <QStatusBar>
#include <functional>

namespace quillane {

/// The real files, with a look at every call on the thread that makes it.
class WatchedFiles : public DesktopFileService {
public:
    using DesktopFileService::DesktopFileService;
    std::function<void(const QString& path)> before;

    FileId Copy(const QString& from, const QString& to, const FileIds& keep) override
    {
        Look(from);
        return DesktopFileService::Copy(from, to, keep);
    }
    MoveResult Move(const QString& from, const QString& to, const FileIds& keep) override
    {
        Look(from);
        return DesktopFileService::Move(from, to, keep);
    }
    void Delete(const QString& path) override
    {
        Look(path);
        DesktopFileService::Delete(path);
    }
    TrashedFile Trash(const QString& path) override
    {
        Look(path);
        return DesktopFileService::Trash(path);
    }

private:
    void Look(const QString& path) const
    {
        if (before) {
            before(path);
        }
    }
};

/// The main window over real files, with real boxes; another folder to copy to; and the trash.
class FileOperationsTest : public MainWindowTest {
protected:
    FileOperationsTest()
        : target(root.path() + QStringLiteral("/target/")),
          files(root.path() + QStringLiteral("/home/Trash"))
    {
        MakeFolder(target);
    }
    Platform Services() override
    {
        return {boxes,           loop,        fakes.launcher,
                fakes.places,    fakes.watch, fakes.scanner,
                fakes.wallpaper, fakes.mail,  files};
    }
    /// Starts over that many pictures, with the keyboard in the view.
    void StartActive(int count)
    {
        Pictures(count);
        Start();
        main->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(main.get()));
        Grid()->setFocus();
    }
    QString Name(int number) const { return QStringLiteral("p%1.bmp").arg(number); }
    QString File(int number) const { return folder + Name(number); }
    static bool Exists(const QString& path) { return StatPath(path).type != FileType::Missing; }
    QString Line() const { return main->statusBar()->currentMessage(); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const
    {
        // A box that has gone does not hand the keyboard back at once.
        main->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(main.get()));
        QTest::keyClick(main->focusWidget(), key, modifiers);
    }
    void SelectCells(const QVector<int>& cells) const
    {
        Grid()->SelectAll(false);
        for (const int cell : cells) {
            ClickCell(cell, Qt::LeftButton, Qt::ControlModifier);
        }
    }
    /// Answers the box that a command shows with one of its buttons.
    void Answer(const std::function<void()>& ask, const char* button) const
    {
        InDialog("messageBox", ask, [&](QDialog& box) {
            QTest::mouseClick(In<QPushButton>(box, button), Qt::LeftButton);
        });
    }
    int InTrash() const
    {
        int count = 0;
        ResumeNext([&] {
            ListFolder(root.path() + QStringLiteral("/home/Trash/files"), [&](DirEntry&&) {
                ++count;
                return true;
            });
        });
        return count;
    }

    QString target;
    DesktopDialogs boxes;
    WatchedFiles files;
};

} // namespace quillane
