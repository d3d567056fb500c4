#include "imaging/limits.h"
#include "imaging/worker/protocol.h"
#include "worker_support.h"
#include <algorithm>
#include <atomic>
#include <csignal>
#include <thread>

namespace quillane::test {

namespace {

class WorkerHost : public WorkerTest {
protected:
    WorkerHost() : WorkerTest(kBadWorker, 2) { }
    QString Picture(int width, int height)
    {
        return Write(QStringLiteral("%1x%2").arg(width).arg(height),
                     QByteArray::number(width) + ' ' + QByteArray::number(height));
    }
    static void ExpectEcho(const Bitmap& bitmap, int width, int height)
    {
        ASSERT_EQ(bitmap.Width(), width);
        ASSERT_EQ(bitmap.Height(), height);
        for (int y = 0; y < height; ++y) {
            const auto* row = reinterpret_cast<const quint32*>(bitmap.Pixels().constScanLine(y));
            for (int x = 0; x < width; ++x) {
                if (row[x] != (0xff000000u | quint32(x * 31 + y * 7 + width))) {
                    FAIL() << "pixel " << x << ", " << y;
                }
            }
        }
    }
    /// Waits until a decoding process has received a file, so that it holds a descriptor more
    /// than its three standard streams and its socket; or until the decoding is over.
    static void AwaitBusyProcess(const std::atomic<bool>& over)
    {
        while (!over) {
            for (const int pid : ChildProcesses()) {
                if (OpenDescriptors(QString::number(pid)) > 4) {
                    return;
                }
            }
            std::this_thread::yield();
        }
    }
    void ExpectGoesOn()
    {
        const QString path = Picture(40, 30);
        ExpectEcho(Decode(path, "ECHO"), 40, 30);
    }
};

} // namespace

TEST_F(WorkerHost, FactsComeBackWithTheFileSizes)
{
    const ImageFacts facts = Probe(Picture(31, 17), "ECHO");
    EXPECT_EQ(facts.width, 31);
    EXPECT_EQ(facts.height, 17);
    EXPECT_EQ(facts.sizeDisk, 5);
    EXPECT_EQ(facts.sizeMemory, (31 * 24 + 31) / 32 * 4 * 17);
    EXPECT_EQ(facts.compression, QStringLiteral("None"));
}

TEST_F(WorkerHost, PicturesLargerThanTheWindowComeWhole)
{
    for (const QSize size : {QSize(1, 1), QSize(3000, 2000), QSize(65'500, 3), QSize(1, 65'500),
                             QSize(1024, 2048), QSize(1024, 2049), QSize(65'500, 131)}) {
        ExpectEcho(Decode(Picture(size.width(), size.height()), "ECHO"), size.width(),
                   size.height());
    }
}

TEST_F(WorkerHost, APictureKeepsItsPixelsWhileTheProcessDecodesTheNext)
{
    const Bitmap first = Decode(Picture(300, 200), "ECHO");
    const Bitmap second = Decode(Picture(301, 200), "ECHO");
    ExpectEcho(first, 300, 200);
    ExpectEcho(second, 301, 200);
}

TEST_F(WorkerHost, OneProcessServesFileAfterFile)
{
    Probe(Picture(10, 10), "ECHO");
    const std::vector<int> children = ChildProcesses();
    ASSERT_EQ(children.size(), 1u);
    for (int i = 0; i < 20; ++i) {
        Decode(Picture(10 + i, 10), "ECHO");
    }
    EXPECT_EQ(ChildProcesses(), children);
}

TEST_F(WorkerHost, TextsComeAsUnicodeAndLongOnesEndBetweenCharacters)
{
    const CommentSet set = Comments(Picture(1, 1), "ECHO");
    EXPECT_EQ(set.At(3).Text(), QStringLiteral("Ein Bild über 日本"));
    EXPECT_EQ(set.At(10).Text(), QString(worker::kMaxTextBytes, u'a'));
    EXPECT_TRUE(set.At(11).IsEmpty());
}

TEST_F(WorkerHost, ACrashNamesTheFormatAndTheNextFileIsServed)
{
    const QString path = Picture(20, 20);
    for (int i = 0; i < 3; ++i) {
        const Failure probe = FailureOf([&] { Probe(path, "CRASH"); });
        EXPECT_EQ(probe.Number(), kFailureWorker);
        EXPECT_EQ(probe.Description(),
                  QStringLiteral("The CRASH decoder stopped working on this file."));
        EXPECT_EQ(FailureOf([&] { Decode(path, "CRASH"); }).Number(), kFailureWorker);
        EXPECT_EQ(FailureOf([&] { Probe(path, "EXIT"); }).Number(), kFailureWorker);
        ExpectGoesOn();
    }
}

TEST_F(WorkerHost, AHangEndsAtTheDeadline)
{
    const Failure failure = FailureOf([&] { Probe(Picture(20, 20), "HANG"); });
    EXPECT_EQ(failure.Number(), kFailureWorker);
    EXPECT_EQ(failure.Description(),
              QStringLiteral("The HANG decoder took too long over this file."));
    ExpectGoesOn();
}

TEST_F(WorkerHost, AKilledProcessCostsOneFile)
{
    const QString path = Picture(20, 20);
    std::atomic<bool> done = false;
    qint32 number = 0;
    std::thread decoding([&] {
        number = FailureOf([&] { Decode(path, "HANG"); }).Number();
        done = true;
    });
    while (!done) {
        for (const int pid : ChildProcesses()) {
            ::kill(pid, SIGKILL);
        }
        std::this_thread::yield();
    }
    decoding.join();
    EXPECT_EQ(number, kFailureWorker);
    ExpectGoesOn();
}

TEST_F(WorkerHost, AProcessThatDiedBetweenFilesCostsNothing)
{
    const QString path = Picture(20, 20);
    Probe(path, "ECHO");
    for (const int pid : ChildProcesses()) {
        ::kill(pid, SIGKILL);
        // Its socket closes before it becomes a zombie.
        const QString state = QStringLiteral("/proc/%1/stat").arg(pid);
        while (!ReadWholeFile(state, 4096).contains(") Z")) {
            std::this_thread::yield();
        }
    }
    EXPECT_NO_THROW(Probe(path, "ECHO"));
}

TEST_F(WorkerHost, NoLieIsBelieved)
{
    const QString path = Picture(20, 20);
    for (const char* lie : {"GARBAGE", "MUCH", "LITTLE", "TICKET", "KIND", "DESCRIPTOR", "NEGATIVE",
                            "ENDLESS", "NUMBER", "WORDS"}) {
        SCOPED_TRACE(lie);
        const Failure probe = FailureOf([&] { Probe(path, lie); });
        EXPECT_EQ(probe.Number(), kFailureWorker);
        EXPECT_EQ(probe.Description(),
                  QStringLiteral("The %1 decoder gave an answer that makes "
                                 "no sense for this file.")
                      .arg(QLatin1String(lie)));
        EXPECT_EQ(FailureOf([&] { Decode(path, lie); }).Number(), kFailureWorker);
    }
    for (const char* lie : {"LAYOUT", "COLOURS", "MOREROWS", "FEWERROWS", "WINDOW"}) {
        SCOPED_TRACE(lie);
        EXPECT_EQ(FailureOf([&] { Decode(path, lie); }).Number(), kFailureWorker);
    }
    EXPECT_EQ(FailureOf([&] { Comments(path, "OFTEN"); }).Number(), kFailureWorker);
    EXPECT_EQ(FailureOf([&] { Comments(path, "SLOT"); }).Number(), kFailureWorker);
    ExpectGoesOn();
}

TEST_F(WorkerHost, AnAnnouncementBeyondTheLimitsIsRefusedInWords)
{
    const Failure failure = FailureOf([&] { Decode(Picture(20, 20), "HUGE"); });
    EXPECT_EQ(failure.Number(), kFailureLimit);
    EXPECT_TRUE(failure.Description().contains(QStringLiteral("too large")));
    EXPECT_EQ(FailureOf([&] { Decode(Picture(65'501, 1), "ECHO"); }).Number(), kFailureLimit);
    ExpectGoesOn();
}

TEST_F(WorkerHost, ADecoderThatGivesTooFewRowsOrNoMemoryIsRefused)
{
    const QString path = Picture(20, 20);
    EXPECT_EQ(FailureOf([&] { Decode(path, "SHORT"); }).Number(), kFailureUnreadable);
    EXPECT_EQ(FailureOf([&] { Decode(path, "THROW"); }).Number(), kFailureLimit);
    EXPECT_EQ(FailureOf([&] { Decode(path, "UNKNOWN"); }).Number(), kFailureUnreadable);
}

TEST_F(WorkerHost, CancellingStopsAPoliteProcessAndKeepsIt)
{
    const QString path = Picture(20, 20);
    Probe(path, "ECHO");
    const std::vector<int> children = ChildProcesses();
    std::atomic<bool> cancelled = false, over = false;
    qint32 number = 0;
    std::thread decoding([&] {
        DecodeRequest request;
        request.cancelled = &cancelled;
        number = FailureOf([&] { Decode(path, "EXIT", request); }).Number();
        over = true;
    });
    AwaitBusyProcess(over);
    cancelled = true;
    decoding.join();
    EXPECT_EQ(number, kFailureCancelled);
    EXPECT_EQ(ChildProcesses(), children);
    ExpectGoesOn();
}

TEST_F(WorkerHost, CancellingEndsAProcessThatDoesNotListen)
{
    const QString path = Picture(20, 20);
    std::atomic<bool> cancelled = false, over = false;
    qint32 number = 0;
    std::thread decoding([&] {
        DecodeRequest request;
        request.cancelled = &cancelled;
        number = FailureOf([&] { Decode(path, "HANG", request); }).Number();
        over = true;
    });
    AwaitBusyProcess(over);
    cancelled = true;
    decoding.join();
    EXPECT_EQ(number, kFailureCancelled);
    ExpectGoesOn();
}

TEST_F(WorkerHost, ManyThreadsShareAFewProcesses)
{
    constexpr int kThreads = 8, kRounds = 12;
    std::atomic<int> right = 0, running = kThreads;
    std::vector<std::thread> threads;
    QStringList paths;
    for (int i = 0; i < kThreads; ++i) {
        paths.append(Picture(400 + i, 300));
    }
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < kRounds; ++round) {
                if (round % 4 == 3) {
                    right +=
                        FailureOf([&] { Decode(paths[i], "CRASH"); }).Number() == kFailureWorker;
                    continue;
                }
                const Bitmap bitmap = Decode(paths[i], "ECHO");
                ExpectEcho(bitmap, 400 + i, 300);
                ++right;
            }
            --running;
        });
    }
    size_t most = 0;
    while (running > 0) {
        most = std::max(most, ChildProcesses().size());
        std::this_thread::yield();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, kThreads * kRounds);
    EXPECT_LE(most, 2u);
}

TEST_F(WorkerHost, NoDescriptorAndNoProcessIsLeftBehind)
{
    const QString path = Picture(200, 200);
    const auto round = [&] {
        Decode(path, "ECHO");
        Probe(path, "ECHO");
        for (const char* bad : {"CRASH", "GARBAGE", "DESCRIPTOR", "MOREROWS", "SHORT"}) {
            FailureOf([&] { Decode(path, bad); });
        }
    };
    worker::Shutdown();
    round();
    worker::Shutdown();
    const int before = OpenDescriptors();
    for (int i = 0; i < 10; ++i) {
        round();
    }
    worker::Shutdown();
    EXPECT_LE(OpenDescriptors(), before); // what tests before this one left may close meanwhile
    EXPECT_TRUE(ChildProcesses().empty());
}

TEST_F(WorkerHost, WorksAgainAfterShutdown)
{
    ExpectGoesOn();
    worker::Shutdown();
    EXPECT_TRUE(ChildProcesses().empty());
    ExpectGoesOn();
}

TEST_F(WorkerHost, WarmingUpStartsOneProcessThatTheFirstFileUses)
{
    worker::Shutdown();
    worker::WarmUp();
    while (ChildProcesses().empty()) {
        std::this_thread::yield();
    }
    const std::vector<int> children = ChildProcesses();
    ExpectGoesOn();
    EXPECT_EQ(ChildProcesses(), children);
}

TEST_F(WorkerHost, AProgramThatIsMissingOrEndsAtOnceIsAFailureWithWords)
{
    const QString path = Picture(20, 20);
    worker::Configure(QStringLiteral("/nowhere/quillane-codec"), 2);
    const Failure missing = FailureOf([&] { Probe(path, "ECHO"); });
    EXPECT_EQ(missing.Number(), kFailureWorker);
    EXPECT_TRUE(missing.Description().contains(QStringLiteral("could not be started")));
    worker::Configure(QStringLiteral("/bin/false"), 2);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(FailureOf([&] { Probe(path, "ECHO"); }).Number(), kFailureWorker);
    }
    worker::Configure(kBadWorker, 2);
    ExpectGoesOn();
}

} // namespace quillane::test
