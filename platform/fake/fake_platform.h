#pragma once
// All services of the outside as a test holds them.
#include "core/failure.h"
#include "platform/fake/fake_dialogs.h"
#include "platform/fake/fake_files.h"
#include "platform/fake/fake_loop.h"
#include "platform/fake/fake_scanner.h"
#include "platform/platform.h"
#include <QStringList>
#include <QVector>

namespace quillane {

/// Notes what would have been opened.
class FakeLauncher : public Launcher {
public:
    struct Started {
        QString program;
        QStringList arguments;
        QString folder;
        RunFailed failed; ///< to be called as if the program had ended badly
    };
    QStringList opened, addresses, searched;
    QVector<Started> started;
    bool fails = false; ///< every call ends with a Failure

    void OpenPath(const QString& path) override { Note(opened, path); }
    void OpenAddress(const QString& address) override { Note(addresses, address); }
    void FindIn(const QString& folder) override { Note(searched, folder); }
    void Run(const QString& program, const QStringList& arguments, const QString& workingFolder,
             RunFailed failed) override;

private:
    void Note(QStringList& list, const QString& text);
};

/// Notes what became the wallpaper; the test says how it ended.
class FakeWallpaper : public WallpaperService {
public:
    QStringList set;
    QVector<ServiceEnded> ended; ///< one for each of `set`
    bool refuses = false;        ///< Set ends with a Failure

    void Set(const QString& path, ServiceEnded whenEnded) override;
};

/// Notes what would have been sent; the test says how it ended.
class FakeMail : public MailService {
public:
    QVector<QStringList> composed;
    QVector<ServiceEnded> ended; ///< one for each of `composed`

    void Compose(const QStringList& attachments, ServiceEnded whenEnded) override;
};

/// Every fixed place below one folder.
class FakePlaces : public FixedPlaces {
public:
    explicit FakePlaces(QString root) : mRoot(std::move(root)) { }
    QString codecWorker; ///< the decoding program, when a test needs it

    QString Home() const override { return mRoot + u'/'; }
    QString Pictures() const override { return mRoot + QStringLiteral("/Pictures/"); }
    QString SettingsFile() const override { return mRoot + QStringLiteral("/quillane.ini"); }
    QString Wallpaper() const override { return mRoot + QStringLiteral("/Wallpaper.bmp"); }
    QString PrintCopy() const override { return mRoot + QStringLiteral("/TPrinter2Image.jpg"); }
    QString Capture() const override { return mRoot + QStringLiteral("/Capture.avi"); }
    QString CaptureLower() const override { return mRoot + QStringLiteral("/capture.avi"); }
    QString Programs() const override { return QStringLiteral("/usr/bin"); }
    QString ApplicationFolder() const override { return mRoot + QStringLiteral("/bin/"); }
    QString HelpFile() const override { return mRoot + QStringLiteral("/help/index.html"); }
    QString ThumbnailCache() const override { return mRoot + QStringLiteral("/thumbnails"); }
    QString CodecWorker() const override { return codecWorker; }
    QString ScanHelper() const override { return mRoot + QStringLiteral("/bin/quillane-scan"); }

private:
    QString mRoot;
};

/// A folder watch that a test fires.
class FakeWatch : public FolderWatch {
public:
    QString folder;    ///< being watched
    int watchings = 0; ///< how often it was told a folder
    void Watch(const QString& path) override;
    void OnChange(std::function<void()> changed) override { mChanged = std::move(changed); }
    /// Tells as the real watch does when the folder has changed.
    void Fire() const;

private:
    std::function<void()> mChanged;
};

/// The fakes in one bundle.
struct FakePlatform {
    explicit FakePlatform(const QString& root) : places(root) { }
    /// All of them, as the windows are handed them.
    Platform Services() { return Services(loop); }
    /// The same with a loop of the test's own.
    Platform Services(UiLoop& ownLoop)
    {
        return {dialogs, ownLoop, launcher, places, watch, scanner, wallpaper, mail, files};
    }

    FakeDialogs dialogs;
    FakeLoop loop;
    FakeLauncher launcher;
    FakePlaces places;
    FakeWatch watch;
    FakeScanner scanner;
    FakeWallpaper wallpaper;
    FakeMail mail;
    FakeFiles files;
};

} // namespace quillane
