#include "worker_support.h"

namespace quillane::test {

namespace {

class WorkerSandbox : public WorkerTest {
protected:
    WorkerSandbox() : WorkerTest(kBadWorker, 1) { }
    /// What came of an attempt: "refused", "allowed", or "killed". The same while a file is read
    /// and while one is written, or "one way only".
    QString Attempt(const char* what)
    {
        const QString path = Write(QStringLiteral("file"), "1 1");
        QString reading, writing;
        const Failure failure = FailureOf([&] { reading = Comments(path, what).At(0).Text(); });
        if (failure.Number() == kFailureWorker) {
            reading = QStringLiteral("killed");
        }
        const Bitmap picture(QImage(3, 3, QImage::Format_RGB32), ColourModel::Rgb, 24);
        const Failure written =
            FailureOf([&] { writing = QString::fromLatin1(worker::Encode(picture, {}, what)); });
        if (written.Number() == kFailureWorker) {
            writing = QStringLiteral("killed");
        }
        return reading == writing ? reading : QStringLiteral("one way only");
    }
};

#ifdef QUILLANE_SANITIZED
const QString kForDeadly = QStringLiteral("refused");
#else
const QString kForDeadly = QStringLiteral("killed");
#endif

} // namespace

TEST_F(WorkerSandbox, FilesCannotBeOpenedMadeOrLookedAt)
{
    EXPECT_EQ(Attempt("OPEN"), QStringLiteral("refused"));
    EXPECT_EQ(Attempt("CREATE"), QStringLiteral("refused"));
    EXPECT_EQ(Attempt("STAT"), QStringLiteral("refused"));
}

TEST_F(WorkerSandbox, ThereIsNoNetwork)
{
    EXPECT_EQ(Attempt("SOCKET"), kForDeadly);
    EXPECT_EQ(Attempt("CONNECT"), kForDeadly);
}

#ifndef QUILLANE_SANITIZED
TEST_F(WorkerSandbox, NothingIsWrittenButMessages)
{
    EXPECT_EQ(Attempt("WRITE"), QStringLiteral("refused"));
}
#endif

TEST_F(WorkerSandbox, TheFileThatWasHandedOverCannotBeWrittenTo)
{
    EXPECT_EQ(Attempt("PWRITE"), QStringLiteral("refused"));
}

TEST_F(WorkerSandbox, ThereAreNoOtherProcesses)
{
    EXPECT_EQ(Attempt("EXECVE"), kForDeadly);
    EXPECT_EQ(Attempt("FORK"), kForDeadly);
    EXPECT_EQ(Attempt("TRACE"), kForDeadly);
    EXPECT_EQ(Attempt("KILL"), QStringLiteral("refused"));
}

TEST_F(WorkerSandbox, MemoryIsNotExecutable)
{
    EXPECT_EQ(Attempt("EXECMEMORY"), QStringLiteral("refused"));
}

#ifndef QUILLANE_SANITIZED
TEST_F(WorkerSandbox, MemoryEndsAtTheLimit)
{
    EXPECT_EQ(Attempt("MEMORY"), QStringLiteral("refused"));
}
#endif

TEST_F(WorkerSandbox, TheSharedMemoryCannotBeCutShort)
{
    const QString path = Write(QStringLiteral("picture"), "50 50");
    Decode(path, "ECHO");
    EXPECT_EQ(Attempt("TRUNCATE"), QStringLiteral("refused"));
    EXPECT_NO_THROW(Decode(path, "ECHO"));
}

} // namespace quillane::test
