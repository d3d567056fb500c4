// The album window with 20,000 files, the first 60 of which are photographs of 12 megapixels: how
// long the window thread ever makes events wait while the album is opened, shown as thumbnails,
// scrolled, emptied in part, tiled into the browser and cleared, and how much memory it takes.
//
//   bench_album [folder]   keeps its pictures below that folder and uses them again
// Needs an X server (or another real platform); QT_QPA_PLATFORM decides.
#include "album/album_file.h"
#include "album/ui/frmBrowserImageFileList.h"
#include "bench_support.h"
#include "browser/ui/program.h"
#include "core/native_path.h"
#include "platform/ui/application.h"
#include "platform/ui/desktop_platform.h"
#include "window_watch.h"

#include <QScrollBar>
#include <QTemporaryDir>
#include <cstdio>

using namespace quillane;
using bench::MillisecondsSince;
using bench::Wanted;

namespace {

constexpr int kFiles = 20'000;
constexpr int kMostLines = 1'000'000;
constexpr int kPhotographs = 60;
constexpr int kSteps = 60;                                         // of the scroll bar
constexpr double kAnswer = 50, kOpened = 1000, kFirstScreen = 500; // milliseconds
constexpr double kMemory = 160e6;                                  // bytes

/// Waits with events flowing until it holds.
void WaitFor(const std::function<bool()>& holds)
{
    while (!holds()) {
        qApp->processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
    }
}

void LetGo(int milliseconds)
{
    const auto start = bench::Clock::now();
    while (MillisecondsSince(start) < milliseconds) {
        qApp->processEvents(QEventLoop::AllEvents, 5);
    }
}

QList<QString> FilesOfAlbum(const QString& folder)
{
    bench::JpegShape small;
    small.width = 48;
    small.height = 32;
    small.quality = 75;
    small.exif = true;
    std::vector<QString> paths =
        bench::FolderOfJpegs(folder + QStringLiteral("/plain12"), kPhotographs, {});
    const std::vector<QString> more =
        bench::FolderOfJpegs(folder + QStringLiteral("/small20000"), kFiles - kPhotographs, small);
    paths.insert(paths.end(), more.begin(), more.end());
    return {paths.begin(), paths.end()};
}

/// The window and what a person does with it, each with the longest wait of an event meanwhile.
class AlbumBench {
public:
    AlbumBench(Program& program, QString albumFile) : mProgram(program), mFile(std::move(albumFile))
    {
        Show();
    }

    bool Run()
    {
        Step("longest wait, album read", [this] { Read(); });
        mGood &= AtMost("rows there and looked at", mTook, kOpened);
        Step("longest wait, thumbnails", [this] { Thumbnails(); });
        mGood &= AtMost("first screen of thumbnails", mFirstScreen, kFirstScreen);
        Step("longest wait, scrolled thumbnails", [this] { Scroll(Grid().verticalScrollBar()); });
        Step("longest wait, view switched in the middle", [this] { Switch(); });
        Step("longest wait, scrolled rows", [this] { Scroll(Rows().verticalScrollBar()); });
        Step("longest wait, 10,000 rows removed", [this] { RemoveRows(); });
        Step("longest wait, all cells but a few removed", [this] { RemoveCells(); });
        Step("longest wait, read again over the old album", [this] { Read(); });
        Step("longest wait, tiled in the browser as thumbnails", [this] { Tile(true); });
        Show();
        mProgram.Main()
            .Menus()
            .Action(QStringLiteral("mnuMainViewTileBoxTileFilename3"))
            ->trigger();
        WaitFor([this] { return Settled(); });
        Step("longest wait, tiled in the browser as details", [this] { Tile(false); });
        Show();
        WaitFor([this] { return Settled(); });
        Step("longest wait, cleared", [this] { Do("mnuClearALL"); });
        Step("longest wait, closed in the middle of a reading", [this] { Close(); });
        const auto peak = double(bench::PeakResidentBytes());
        Show();
        Step("longest wait, a million lines that lead nowhere", [this] { ReadMillion(); });
        Step("longest wait, these scrolled", [this] { Scroll(Rows().verticalScrollBar()); });
        Step("longest wait, these cleared", [this] { Do("mnuClearALL"); });
        mGood &= bench::PrintFigure("peak resident memory", peak / 1e6, kMemory / 1e6, "MB",
                                    peak / kMemory, Wanted::AtMost, 1);
        return mGood;
    }

private:
    static bool AtMost(const char* name, double value, double limit)
    {
        return bench::PrintFigure(name, value, limit, "ms", value / limit, Wanted::AtMost, 1);
    }

    void Step(const char* name, const std::function<void()>& work)
    {
        LetGo(100);
        mPing.Reset();
        const auto start = bench::Clock::now();
        work();
        mTook = MillisecondsSince(start);
        LetGo(100);
        mGood &= AtMost(name, mPing.Worst(), kAnswer);
    }

    void Show()
    {
        mProgram.Main().Menus().Action(QStringLiteral("mnuPopShow"))->trigger();
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* window = qobject_cast<frmBrowserImageFileList*>(widget);
                window && window->isVisible()) {
                mWindow = window;
            }
        }
        LetGo(200);
    }
    ThumbnailGrid& Grid() const { return *mWindow->findChild<ThumbnailGrid*>(); }
    QTableView& Rows() const { return *mWindow->findChild<QTableView*>(); }
    bool Settled() const
    {
        return mWindow->Rows().Count() == kFiles && mWindow->Rows().Settled() == kFiles;
    }
    void Do(const char* entry) const
    {
        mWindow->findChild<QAction*>(QLatin1String(entry))->trigger();
    }

    void Read()
    {
        mWindow->OpenImageListFile(mFile);
        WaitFor([this] { return Settled(); });
    }
    void Thumbnails()
    {
        const auto start = bench::Clock::now();
        Do("mnuViewThumbnails");
        WaitFor([this] {
            const GridLayout::Range seen = Grid().VisibleRange();
            bool all = Grid().Count() == kFiles && !seen.IsEmpty();
            for (int cell = seen.first; all && cell <= seen.last; ++cell) {
                all = Grid().HasThumbnail(cell);
            }
            return all;
        });
        mFirstScreen = MillisecondsSince(start);
    }
    static void Scroll(QScrollBar* bar)
    {
        for (int step = 0; step <= kSteps; ++step) {
            bar->setValue(int(qint64(bar->maximum()) * step / kSteps));
            LetGo(16);
        }
    }
    void Switch()
    {
        mWindow->OpenImageListFile(mFile);
        for (int i = 0; i < 10; ++i) {
            Do(i % 2 ? "mnuViewThumbnails" : "nmuViewFilename");
            LetGo(5);
        }
        Do("nmuViewFilename");
        WaitFor([this] { return Settled(); });
    }
    void RemoveRows()
    {
        const QAbstractItemModel* model = Rows().model();
        Rows().selectionModel()->select(
            QItemSelection(model->index(5'000, 0), model->index(14'999, 2)),
            QItemSelectionModel::ClearAndSelect);
        Do("mnuRemoveSelected");
        WaitFor([this] { return mWindow->Rows().Count() == kFiles / 2; });
    }
    void RemoveCells()
    {
        Do("mnuViewThumbnails");
        Grid().SelectAll();
        for (int cell = 0; cell < kFiles / 2; cell += 500) {
            Grid().SetSelected(cell, false);
            LetGo(1); // one click after the other
        }
        Do("mnuRemoveSelected");
        WaitFor([this] { return mWindow->Rows().Count() == kFiles / 2 / 500; });
    }
    void Tile(bool thumbnails)
    {
        Do("mnuTileImages");
        const auto* grid = mProgram.Main().findChild<ThumbnailGrid*>();
        const auto* list = mProgram.Main().findChild<FileListView*>();
        WaitFor([&] { return (thumbnails ? grid->Count() : list->Count()) == kFiles; });
    }
    void ReadMillion()
    {
        QByteArray lines = "#\n#\n";
        for (int i = 0; i < kMostLines; ++i) {
            lines += "/nowhere/" + QByteArray::number(i) + ".jpg\n";
        }
        WriteWholeFile(mFile, lines);
        LetGo(100);
        mPing.Reset();
        mWindow->OpenImageListFile(mFile);
        WaitFor([this] { return mWindow->Rows().Settled() == kMostLines; });
    }
    void Close()
    {
        mWindow->OpenImageListFile(mFile);
        mWindow->close();
        WaitFor([this] { return mProgram.Shared().lbExportList.size() == kFiles; });
    }

    Program& mProgram;
    QString mFile;
    bench::Ping mPing;
    frmBrowserImageFileList* mWindow = nullptr;
    double mTook = 0, mFirstScreen = 0;
    bool mGood = true;
};

} // namespace

int main(int argc, char** argv)
{
    Application application(argc, argv);
    DesktopPlatform platform;
    const QTemporaryDir own;
    const QString file = own.filePath(QStringLiteral("a.ifl"));
    WriteWholeFile(
        file,
        AlbumBytes(QStringLiteral("Summer"), FilesOfAlbum(bench::PicturesFolder(argc, argv))));
    Program program(platform.Services());
    const QString empty = own.filePath(QStringLiteral("empty/"));
    MakeFolder(empty);
    program.Store().SaveSetting(QStringLiteral("Globals"), QStringLiteral("gsPath"), empty);
    program.Load();
    LetGo(1000);
    AlbumBench album(program, file);
    const bool good = album.Run();
    std::fflush(stdout);
    return good ? 0 : 1;
}
