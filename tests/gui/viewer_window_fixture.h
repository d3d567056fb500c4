#pragma once
#include "core/atomic_save.h"
#include "gui/modal_dialog.h"
#include "imaging/comments/slots.h"
#include "imaging/worker/worker_host.h"
#include "platform/desktop/desktop_loop.h"
#include "platform/fake/fake_platform.h"
#include "viewer/ui/frmToolImageDisplay.h"

#include <QClipboard>
#include <QImage>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

namespace quillane {

/// A main window of which only what other windows ask is there.
class ToldHost : public BrowserHost {
public:
    int renewed = 0;
    QVector<bool> SelectedFlags() const override { return {}; }
    void RefreshFiles() override { }
    void UpdateImageInImageList() override { ++renewed; }
    void SetPanel(int, const QString&) override { }
    QString Panel(int) const override { return {}; }
    bool SearchOn() const override { return false; }
    void SetSearchOn(bool) override { }
    void ShowFiles(const QVector<QString>&) override { }
};

/// The real viewer over files of its own, with the outside faked.
class ViewerWindowTest : public testing::Test {
protected:
    static constexpr int kWait = 10'000; ///< milliseconds; a condition that fails, not a delay

    ViewerWindowTest()
        : fakes(root.path() + QStringLiteral("/home")),
          store(root.path() + QStringLiteral("/s.ini"))
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 2);
        MakeFolder(root.path() + QStringLiteral("/home"));
        session.gsAppTitle = QStringLiteral("Quillane");
        session.gsPath = root.path() + u'/';
        fakes.dialogs.OnUnexpected(
            [](const QString& text) { ADD_FAILURE() << "unexpected: " << text.toStdString(); });
    }
    ~ViewerWindowTest() override { window.reset(); }

    QString Path(const QString& name) const { return root.filePath(name); }
    static QString Sample(const QString& name)
    {
        return QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/") + name;
    }
    /// A copy of a sample picture.
    QString Copy(const QString& sample, const QString& name = {})
    {
        const QString path = Path(name.isEmpty() ? sample : name);
        WriteWholeFile(path, ReadWholeFile(Sample(sample), 1 << 26));
        return path;
    }
    /// A small picture in which no two rows or columns are alike.
    QString Small(const QString& name = QStringLiteral("small.bmp"), QSize size = {40, 30})
    {
        QImage image(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                image.setPixel(x, y,
                               qRgb(20 + (x * 6) % 200, 20 + (y * 7) % 200, 20 + (x * y) % 200));
            }
        }
        const QString path = Path(name);
        EXPECT_TRUE(image.save(path));
        return path;
    }
    void Make(const QString& file)
    {
        session.gsFileName = file;
        window = std::make_unique<frmToolImageDisplay>(session, store, fakes.Services(loop), &host);
        window->setAttribute(Qt::WA_DeleteOnClose, false);
    }
    /// Drags over the picture, from one place in it to another.
    void DragInPicture(QPoint from, QPoint to)
    {
        const auto at = [this](QPoint place) {
            return View()->BitmapToClient(QPointF(place)).toPoint();
        };
        QWidget* where = View()->viewport();
        QTest::mousePress(where, Qt::LeftButton, {}, at(from));
        QTest::mouseMove(where, at((from + to) / 2));
        QTest::mouseMove(where, at(to));
        QTest::mouseRelease(where, Qt::LeftButton, {}, at(to));
    }
    /// As a person marks it: the button, then a drag over the picture at 100 %.
    void Region(int x, int y, int width, int height)
    {
        Click("mnuZoom100");
        Press(16);
        DragInPicture({x, y}, {x + width, y + height});
        ASSERT_TRUE(window->Picture().HasRegion());
    }
    void Open(const QString& file)
    {
        Make(file);
        window->show();
        window->activateWindow();
    }
    template <typename Kind> Kind* Find(const char* name) const
    {
        Kind* found = window->findChild<Kind*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QAction* Entry(const char* name) const { return Find<QAction>(name); }
    void Click(const char* name) const { Entry(name)->trigger(); }
    QToolButton* Button(int position) const
    {
        return Find<QToolButton>(
            QStringLiteral("Toolbar1_%1Button").arg(position).toLatin1().constData());
    }
    void Press(int position) const { QTest::mouseClick(Button(position), Qt::LeftButton); }
    EngineView* View() const { return Find<EngineView>("LEAD1"); }
    QTabWidget* Tabs() const { return Find<QTabWidget>("SSTab2"); }
    QString Line() const { return window->statusBar()->currentMessage(); }
    QImage Pixels() const { return window->Picture().Bitmap().Pixels(); }
    QImage UndoPixels() const { return window->UndoCopy().Bitmap().Pixels(); }
    static QByteArray Bytes(const QString& file) { return ReadWholeFile(file, 1 << 26); }

    /// Triggers an action and acts in the dialog that comes.
    static void InDialog(const std::function<void()>& trigger,
                         const std::function<void(QDialog&)>& act)
    {
        quillane::InDialog("", trigger, act);
    }

    QTemporaryDir root;
    FakePlatform fakes;
    DesktopLoop loop;
    SettingsStore store;
    Session session;
    ToldHost host;
    std::unique_ptr<frmToolImageDisplay> window;
};

} // namespace quillane
