#include "platform/desktop/desktop_wallpaper.h"

#include "core/native_path.h"
#include "platform/desktop/find_program.h"
#include "platform/desktop/portal_request.h"
#include "platform/desktop/watched_program.h"

#include <QDBusUnixFileDescriptor>
#include <utility>

namespace quillane {

namespace {

constexpr int kCommandPatience = 10'000; // milliseconds; all of them end at once when they work

/// One wallpaper on its way: portal first, then command after command until one has done it.
class WallpaperAttempt : public QObject {
public:
    WallpaperAttempt(const QString& path, ServiceEnded ended, QObject* parent)
        : QObject(parent),
          mPath(path),
          mEnded(std::move(ended))
    { }

    void Begin(const FileHandle& file)
    {
        mCommands = WallpaperCommands(qEnvironmentVariable("XDG_CURRENT_DESKTOP"), mPath);
        if (!SessionBusTakesFiles()) {
            NextCommand();
            return;
        }
        PortalRequest::Send(
            {QStringLiteral("Wallpaper"),
             QStringLiteral("SetWallpaperFile"),
             {QString(), QVariant::fromValue(QDBusUnixFileDescriptor(file.Fd()))},
             {{QStringLiteral("show-preview"), false},
              {QStringLiteral("set-on"), QStringLiteral("background")}}},
            [this](PortalEnd end) { PortalEnded(end); }, this);
    }

private:
    void PortalEnded(PortalEnd end)
    {
        switch (end) {
        case PortalEnd::Done:
            End({});
            break;
        case PortalEnd::Cancelled:
            End(Failure(kFailureCancelled, QStringLiteral("The new wallpaper was refused.")));
            break;
        case PortalEnd::Silent:
            End(Failure(kFailureGeneral, QStringLiteral("The desktop gave no answer.")));
            break;
        case PortalEnd::Failed:
            NextCommand();
            break;
        }
    }

    void NextCommand()
    {
        while (!mCommands.isEmpty()) {
            const WallpaperCommand command = mCommands.takeFirst();
            mProgram = FindProgram(command.program);
            if (mProgram.isEmpty()) {
                continue;
            }
            mCalls = command.calls;
            if (command.query.isEmpty()) {
                NextCall();
            } else {
                Start(command.query, [this](const ProgramEnd& end) {
                    // A channel that is not there lists nothing.
                    mCalls = XfceWallpaperCalls(end.output, mPath);
                    NextCall();
                });
            }
            return;
        }
        End(Failure(kFailureGeneral,
                    mWhyNot.isEmpty()
                        ? QStringLiteral("No program that sets the wallpaper was found.")
                        : mWhyNot));
    }

    void NextCall()
    {
        if (mCalls.isEmpty()) {
            End({});
            return;
        }
        const WallpaperCommand::Call call = mCalls.takeFirst();
        Start(call.arguments, [this, call](const ProgramEnd& end) {
            if (end.Good() || call.mayFail) {
                NextCall();
            } else {
                NextAfter(end.Words());
            }
        });
    }

    void NextAfter(const QString& words)
    {
        if (mWhyNot.isEmpty()) {
            mWhyNot = words;
        }
        NextCommand();
    }

    void Start(const QList<QByteArray>& arguments, WatchedProgram::Ended ended)
    {
        try {
            WatchedProgram::Run({mProgram, arguments, {}, kCommandPatience}, std::move(ended),
                                this);
        } catch (const Failure& failure) {
            NextAfter(failure.Description());
        }
    }

    void End(const std::optional<Failure>& failure)
    {
        deleteLater();
        if (const auto ended = std::exchange(mEnded, nullptr)) {
            ended(failure);
        }
    }

    QString mPath;
    ServiceEnded mEnded;
    QList<WallpaperCommand> mCommands; ///< still to be tried
    QString mProgram;                  ///< the one that is being tried
    QList<WallpaperCommand::Call> mCalls;
    QString mWhyNot; ///< words of the first command that failed
};

} // namespace

void DesktopWallpaper::Set(const QString& path, ServiceEnded ended)
{
    const FileHandle file = OpenForReading(path);
    auto* const attempt = new WallpaperAttempt(path, std::move(ended), this);
    attempt->Begin(file);
}

} // namespace quillane
