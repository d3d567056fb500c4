#include "imaging/eps/ghostscript.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/eps/child_process.h"
#include "platform/desktop/find_program.h"
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace quillane::eps {

namespace {

constexpr char kGhostscriptFormat[] = "EPS";
constexpr qint64 kGhostscriptMostScript = qint64(256) << 20;
constexpr double kGhostscriptPatience = 1.5; ///< seconds of waiting for one of processing
constexpr int kGhostscriptPollMs = 50;       ///< between two looks whether it was called off
constexpr qsizetype kGhostscriptMostHeader = 400;
/// Told before the page is shown when the script has failed.
constexpr char kGhostscriptStopped[] = "quillane: the script has stopped";

[[noreturn]] void GhostscriptNoMemory()
{
    throw Failure(kFailureLimit,
                  QStringLiteral("This EPS cannot be drawn: the system has no memory left."),
                  QString::fromLatin1(kGhostscriptFormat));
}

/// The script in memory, as a file from its beginning.
FileHandle GhostscriptInput(ByteSource& script)
{
    if (script.Size() > kGhostscriptMostScript) {
        codecs::TooMuch(kGhostscriptFormat, QStringLiteral("has %1 MB").arg(script.Size() >> 20));
    }
    FileHandle memory(::memfd_create("script", MFD_CLOEXEC));
    if (!memory.IsOpen()) {
        GhostscriptNoMemory();
    }
    const auto write = [&](const char* bytes, qint64 count) {
        while (count > 0) {
            const ssize_t done = ::write(memory.Fd(), bytes, size_t(count));
            if (done < 0 && errno == EINTR) {
                continue;
            }
            if (done <= 0) {
                GhostscriptNoMemory();
            }
            bytes += done;
            count -= done;
        }
    };
    std::vector<char> buffer(size_t(1) << 20);
    for (qint64 at = 0; at < script.Size();) {
        const qint64 got = script.ReadAt(at, buffer.data(), qint64(buffer.size()));
        if (got <= 0) {
            break;
        }
        write(buffer.data(), got);
        at += got;
    }
    ::lseek(memory.Fd(), 0, SEEK_SET);
    return memory;
}

QList<QByteArray> GhostscriptArguments(const RenderJob& job)
{
    const auto number = [](double value) { return QByteArray::number(value, 'f', 6); };
    const double across = job.size.width() * 72.0 / job.box.width();
    const double down = job.size.height() * 72.0 / job.box.height();
    return {"-dSAFER", "-dBATCH", "-dNOPAUSE", "-dNOPROMPT", "-dQUIET", "-dFIXEDMEDIA", "-P-",
            "-sDEVICE=ppmraw", "-sstdout=%stderr", "-dMaxBitmap=200000000", "-dTextAlphaBits=4",
            "-dGraphicsAlphaBits=4", "-r" + number(across) + "x" + number(down),
            "-g" + QByteArray::number(job.size.width()) + "x"
                + QByteArray::number(job.size.height()),
            "-sOutputFile=-", "-c",
            // A page that is left unshown at the end, or at a failure, is shown then; one behind
            // the first is not looked at.
            "<</Install {" + number(-job.box.left()) + " " + number(-job.box.top())
                + " translate}>> setpagedevice "
                  "/quillaneend {systemdict /showpage get exec systemdict /quit get exec} bind def "
                  "userdict /quit /quillaneend load put "
                  "(%stdin) (r) file cvx stopped {(%stderr) (w) file dup ("
                + kGhostscriptStopped
                + ") writestring flushfile} if "
                  "userdict /quillaneend get exec"};
}

/// The first picture of a run of plain pixel maps, as far as it has come.
class GhostscriptPage {
public:
    explicit GhostscriptPage(QSize size) : mSize(size) { }
    /// Reads what has come; false when nothing more will, or it is no such picture.
    bool ReadFrom(int fd)
    {
        char buffer[64 * 1024];
        const ssize_t got = ::read(fd, buffer, sizeof(buffer));
        if (got < 0 && (errno == EAGAIN || errno == EINTR)) {
            return true;
        }
        return got > 0 && Take(buffer, got);
    }
    bool IsWhole() const { return mBegun && mLeft == 0; }
    int Rows() const { return mY; }
    QImage image;

private:
    /// Takes what has come; false when it is no picture of the expected size.
    bool Take(const char* bytes, qint64 count)
    {
        while (count > 0 && !mBegun) {
            mHeader += *bytes++;
            --count;
            if (!ReadHeader()) {
                return false;
            }
        }
        const qint64 wanted = std::min(count, mLeft);
        for (qint64 i = 0; i < wanted; ++i) {
            mPixel[mChannel++] = uchar(bytes[i]);
            if (mChannel == 3) {
                mChannel = 0;
                mRow[mX] = qRgb(mPixel[0], mPixel[1], mPixel[2]);
                if (++mX == mSize.width()) {
                    mX = 0;
                    if (++mY < mSize.height()) {
                        mRow = reinterpret_cast<QRgb*>(image.scanLine(mY));
                    }
                }
            }
        }
        mLeft -= wanted;
        return true;
    }
    /// Looks whether the header is complete: mark, sizes and depth, with remarks between them.
    bool ReadHeader()
    {
        if (!mHeader.endsWith('\n')) {
            return mHeader.size() < kGhostscriptMostHeader;
        }
        QByteArray words;
        for (const QByteArray& line : mHeader.split('\n')) {
            words += line.startsWith('#') ? QByteArray() : line + ' ';
        }
        const QList<QByteArray> parts = words.simplified().split(' ');
        if (parts.size() < 4) {
            return mHeader.size() < kGhostscriptMostHeader;
        }
        if (parts[0] != "P6" || parts[1].toInt() != mSize.width()
            || parts[2].toInt() != mSize.height() || parts[3] != "255") {
            return false;
        }
        image = codecs::NewImage(kGhostscriptFormat, mSize.width(), mSize.height(),
                                 QImage::Format_RGB32);
        image.fill(0xffffffff);
        mRow = reinterpret_cast<QRgb*>(image.scanLine(0));
        mLeft = qint64(mSize.width()) * mSize.height() * 3;
        mBegun = true;
        return true;
    }
    QSize mSize;
    QByteArray mHeader;
    QRgb* mRow = nullptr;
    uchar mPixel[3] = {};
    qint64 mLeft = 0;
    int mChannel = 0, mX = 0, mY = 0;
    bool mBegun = false;
};

/// What the script and Ghostscript say, of which only one thing counts.
class GhostscriptMessages {
public:
    /// The pipe to wait for; none once it has ended.
    int Fd(const ChildProcess& child) const { return mEnded ? -1 : child.Messages(); }
    void Read(const ChildProcess& child)
    {
        char buffer[4096];
        ssize_t got = 0;
        // No more at once than a pipe holds: the script may talk without end.
        for (int i = 0; i < 16 && !mEnded; ++i) {
            got = ::read(child.Messages(), buffer, sizeof(buffer));
            if (got <= 0) {
                mEnded = got == 0 || (errno != EAGAIN && errno != EINTR);
                return;
            }
            mTail += QByteArrayView(buffer, got);
            mStopped = mStopped || mTail.contains(kGhostscriptStopped);
            mTail = mTail.right(qsizetype(sizeof(kGhostscriptStopped)));
        }
    }
    bool HasStopped() const { return mStopped; }

private:
    QByteArray mTail;
    bool mStopped = false;
    bool mEnded = false;
};

} // namespace

bool HasGhostscript()
{
    return !FindProgram(QStringLiteral("gs")).isEmpty();
}

Rendered RenderPostScript(const RenderJob& job)
{
    const QString program = FindProgram(QStringLiteral("gs"));
    if (program.isEmpty()) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This EPS can be shown only with Ghostscript, which is not "
                                     "installed."),
                      QString::fromLatin1(kGhostscriptFormat));
    }
    codecs::CheckSides(kGhostscriptFormat, job.size.width(), job.size.height());
    const FileHandle input = GhostscriptInput(*job.script);
    ChildLimits limits;
    limits.cpuSeconds = job.seconds;
    const ChildProcess child(BytesFromPath(program), GhostscriptArguments(job), input, limits);
    GhostscriptPage page(job.size);
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    const auto isLate = [&](double share) {
        return Clock::now() - begin > std::chrono::duration<double>(share * job.seconds);
    };
    GhostscriptMessages messages;
    bool ended = false;
    while (!page.IsWhole() && !ended) {
        if (job.cancelled && job.cancelled->load(std::memory_order_relaxed)) {
            codecs::Cancelled();
        }
        if (isLate(kGhostscriptPatience)) {
            codecs::TooMuch(kGhostscriptFormat, QStringLiteral("takes too long to draw"));
        }
        pollfd both[] = {{child.Output(), POLLIN, 0}, {messages.Fd(child), POLLIN, 0}};
        if (::poll(both, 2, kGhostscriptPollMs) <= 0) {
            continue;
        }
        messages.Read(child);
        ended = both[0].revents != 0 && !page.ReadFrom(child.Output());
    }
    if (!page.IsWhole() && page.Rows() == 0) {
        if (isLate(1)) { // it was ended for the time it took
            codecs::TooMuch(kGhostscriptFormat, QStringLiteral("takes too long to draw"));
        }
        codecs::Damaged(kGhostscriptFormat, QStringLiteral("Ghostscript draws no page from it"));
    }
    messages.Read(child);
    return {page.image, !page.IsWhole() || messages.HasStopped()};
}

} // namespace quillane::eps
