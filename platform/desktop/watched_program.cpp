#include "platform/desktop/watched_program.h"

#include "platform/desktop/spawn.h"

#include <QSocketNotifier>
#include <QTimer>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr off_t kMostSaid = 1 << 20;
constexpr qsizetype kMostTold = 200; // characters of a complaint that a line has room for

/// Memory that a program writes into as into a file. It outlives this program, so that nobody
/// gets a broken pipe, and it cannot grow: what comes after a megabyte is refused to the writer.
FileHandle MakeSlate()
{
    FileHandle slate(::memfd_create("quillane-said", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (slate.IsOpen()
        && (::ftruncate(slate.Fd(), kMostSaid) != 0
            || ::fcntl(slate.Fd(), F_ADD_SEALS, F_SEAL_GROW | F_SEAL_SHRINK) != 0)) {
        return {};
    }
    return slate;
}

/// What was written so far; the place for the next byte is shared with the writers.
QByteArray ReadSlate(const FileHandle& slate)
{
    const off_t written = slate.IsOpen() ? ::lseek(slate.Fd(), 0, SEEK_CUR) : 0;
    if (written <= 0) {
        return {};
    }
    QByteArray said(qsizetype(std::min(written, kMostSaid)), Qt::Uninitialized);
    const ssize_t got = ::pread(slate.Fd(), said.data(), size_t(said.size()), 0);
    said.truncate(std::max<ssize_t>(got, 0));
    return said;
}

QString LastLine(const QByteArray& said)
{
    const QByteArray end = said.trimmed();
    QString line = PathFromBytes(end.mid(end.lastIndexOf('\n') + 1)).simplified();
    if (line.size() > kMostTold) {
        line = line.left(kMostTold) + QChar(0x2026);
    }
    return line;
}

} // namespace

QString ProgramEnd::Words() const
{
    QString words;
    if (late) {
        return QStringLiteral("%1 took too long and was ended.").arg(program);
    }
    if (signal != 0) {
        return QStringLiteral("%1 was ended by the system: %2.")
            .arg(program, QString::fromLocal8Bit(::strsignal(signal)));
    }
    const QString why = LastLine(errors);
    return why.isEmpty()
        ? QStringLiteral("%1 ended with error %2.").arg(program).arg(code)
        : QStringLiteral("%1 ended with error %2: %3").arg(program).arg(code).arg(why);
}

void WatchedProgram::Run(const Start& start, Ended ended, QObject* parent)
{
    // Starting is what fails; the parent takes the object when that has gone well.
    std::unique_ptr<WatchedProgram> program(new WatchedProgram(start, std::move(ended), nullptr));
    program->setParent(parent);
    [[maybe_unused]] auto* const kept = program.release();
}

WatchedProgram::WatchedProgram(const Start& start, Ended ended, QObject* parent)
    : QObject(parent),
      mOutput(start.keepOutput ? MakeSlate() : FileHandle()),
      mErrors(MakeSlate()),
      mEnded(std::move(ended))
{
    mEnd.program = start.program;
    mChild = Spawn(start.program, start.arguments, start.folder, {mOutput.Fd(), mErrors.Fd()});
    mProcess = FileHandle(int(::syscall(SYS_pidfd_open, mChild, 0)));
    if (!mProcess.IsOpen()) {
        // Without a way to hear of its end it counts as having done its work.
        QTimer::singleShot(0, this, [this] { HasEnded(); });
        return;
    }
    auto* const notifier = new QSocketNotifier(mProcess.Fd(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        HasEnded();
    });
    if (start.patience > 0) {
        QTimer::singleShot(start.patience, this, [this] {
            if (mChild > 0) {
                mEnd.late = true;
                ::kill(-mChild, SIGKILL); // with all it has started
            }
        });
    }
}

WatchedProgram::~WatchedProgram()
{
    if (mChild > 0) {
        ReapWhenEnded(mChild);
    }
}

void WatchedProgram::HasEnded()
{
    int status = 0;
    if (::waitpid(mChild, &status, WNOHANG) == mChild) {
        mEnd.code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
        mEnd.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    mChild = 0;
    mEnd.output = ReadSlate(mOutput);
    mEnd.errors = ReadSlate(mErrors);
    deleteLater();
    if (const auto ended = std::exchange(mEnded, nullptr)) {
        ended(mEnd);
    }
}

} // namespace quillane
