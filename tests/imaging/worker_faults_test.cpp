// Processes that are killed, stopped and starved, whatever they do; and garbage as the answer to
// every request.
#include "core/save_support.h"
#include "encode_pictures.h"
#include "imaging/engine.h"
#include "imaging/reader.h"
#include "worker_support.h"
#include <atomic>
#include <csignal>
#include <functional>
#include <iostream>
#include <string_view>
#include <sys/resource.h>
#include <thread>

namespace quillane::test {

namespace {

class WorkerFaults : public WorkerTest {
protected:
    explicit WorkerFaults(const QString& program = kShippedWorker) : WorkerTest(program, 1) { }
    static EncodeRequest Wish(qint16 format, qint32 bits)
    {
        EncodeRequest request;
        request.format = format;
        request.bits = bits;
        return request;
    }
    static void SignalAll(int number)
    {
        for (const int pid : ChildProcesses()) {
            ::kill(pid, number);
        }
    }
    /// Kills the processes and returns when they are dead: one that still dies could be asked.
    static void KillAll()
    {
        for (const int pid : ChildProcesses()) {
            ::kill(pid, SIGKILL);
            const QString state = QStringLiteral("/proc/%1/stat").arg(pid);
            QByteArray told(1, ' ');
            while (!told.isEmpty() && !told.contains(") Z")) {
                std::this_thread::yield();
                told.clear();
                ResumeNext([&] { told = ReadWholeFile(state, 4096); }); // gone: nothing
            }
        }
    }
};

class BadWorkerFaults : public WorkerFaults {
protected:
    BadWorkerFaults() : WorkerFaults(kBadWorker) { }
    static Bitmap Picture() { return WavePicture(24, 20, 20); }
    /// A file written anew, with new pixels or those it has.
    QByteArray Rewritten(const char* codec, bool pixels)
    {
        const QString path = Write(QStringLiteral("original"), "20 20");
        FileSource original(path);
        const CommentChange change{3, QStringLiteral("text")};
        return worker::Rewrite(original, pixels ? Picture() : Bitmap(), {}, {&change, 1}, codec);
    }
    void ExpectGoesOn()
    {
        EXPECT_TRUE(Rewritten("ECHO", true).contains("3=text"));
        EXPECT_TRUE(Rewritten("ECHO", false).contains("3=text"));
        EXPECT_EQ(Decode(Write(QStringLiteral("picture"), "30 20"), "ECHO").Width(), 30);
    }
};

/// What a process is asked for.
struct Use {
    const char* name;
    std::function<void()> call;
};

class EveryUse : public WorkerFaults {
protected:
    EveryUse()
    {
        mPicture = WavePicture(24, 900, 700);
        mTiff = Write(QStringLiteral("a.tif"), worker::Encode(mPicture, Wish(17, 24), "TIFF"));
        mStream =
            Write(QStringLiteral("a.j2k"), worker::Encode(mPicture, Wish(164, 24), "JPEG 2000"));
        mDicom = Write(QStringLiteral("a.dic"), worker::Encode(mPicture, Wish(90, 24), "DICOM"));
    }
    std::vector<Use> Uses()
    {
        const auto rewrite = [this](const Bitmap& picture) {
            FileSource original(mDicom);
            const CommentChange change{3, QStringLiteral("text")};
            worker::Rewrite(original, picture, Wish(90, 24), {&change, 1}, "DICOM");
        };
        return {
            {"facts", [this] { Probe(mTiff, "TIFF"); }},
            {"TIFF pixels", [this] { Decode(mTiff, "TIFF"); }},
            {"JPEG 2000 pixels", [this] { Decode(mStream, "JPEG 2000"); }},
            {"DICOM pixels", [this] { Decode(mDicom, "DICOM"); }},
            {"comments", [this] { Comments(mDicom, "DICOM"); }},
            {"TIFF", [this] { worker::Encode(mPicture, Wish(17, 24), "TIFF"); }},
            {"TIFF with JPEG 2000", [this] { worker::Encode(mPicture, Wish(166, 24), "TIFF"); }},
            {"JPEG 2000", [this] { worker::Encode(mPicture, Wish(163, 24), "JPEG 2000"); }},
            {"DICOM", [this] { worker::Encode(mPicture, Wish(128, 24), "DICOM"); }},
            {"new pixels", [this, rewrite] { rewrite(mPicture); }},
            {"new comments", [rewrite] { rewrite({}); }}};
    }
    Bitmap mPicture;
    QString mTiff, mStream, mDicom;
};

} // namespace

TEST_F(EveryUse, AKillAtAnyMomentCostsOneRequestAtMost)
{
    int killed = 0;
    for (const Use& use : Uses()) {
        SCOPED_TRACE(use.name);
        for (int moment = 0; moment < 12; ++moment) {
            Probe(mTiff, "TIFF"); // so that there is a process
            std::atomic<bool> begun = false, done = false;
            Failure failure(0, QString());
            std::thread asking([&] {
                begun = true;
                failure = FailureOf(use.call);
                done = true;
            });
            while (!begun) {
                std::this_thread::yield();
            }
            // Another moment each time, and none that is waited for.
            for (int i = 0; i < (1 << moment) && !done; ++i) {
                std::this_thread::yield();
            }
            KillAll();
            asking.join();
            killed += failure.Number() != 0 ? 1 : 0;
            EXPECT_TRUE(failure.Number() == 0 || failure.Number() == kFailureWorker)
                << failure.Description().toStdString();
            EXPECT_NO_THROW(use.call());
        }
    }
    EXPECT_GT(killed, 0);
}

TEST_F(EveryUse, AProcessThatIsStarvedOfMemoryCostsAMessage)
{
    for (const Use& use : Uses()) {
        SCOPED_TRACE(use.name);
        Probe(mTiff, "TIFF");
        const std::vector<int> children = ChildProcesses();
        ASSERT_EQ(children.size(), 1u);
        // Addresses beyond those in use are given no more.
        rlimit before{};
        ASSERT_EQ(::prlimit(children[0], RLIMIT_AS, nullptr, &before), 0);
        const rlimit nothing{1 << 20, before.rlim_max};
        ASSERT_EQ(::prlimit(children[0], RLIMIT_AS, &nothing, nullptr), 0);
        const Failure failure = FailureOf(use.call);
        if (failure.Number() != 0) {
            EXPECT_TRUE(failure.Number() == kFailureWorker || failure.Number() == kFailureLimit
                        || failure.Number() == kFailureUnreadable)
                << failure.Number();
            EXPECT_FALSE(failure.Description().isEmpty());
        }
        const std::vector<int> after = ChildProcesses();
        if (after == children) {
            ::prlimit(children[0], RLIMIT_AS, &before, nullptr);
        }
        EXPECT_NO_THROW(use.call());
    }
    // The largest of them cannot have been served from what the process had.
    Probe(mTiff, "TIFF");
    const std::vector<int> children = ChildProcesses();
    ASSERT_EQ(children.size(), 1u);
    const rlimit nothing{1 << 20, RLIM_INFINITY};
    rlimit before{};
    ASSERT_EQ(::prlimit(children[0], RLIMIT_AS, nullptr, &before), 0);
    const rlimit starved{nothing.rlim_cur, before.rlim_max};
    ASSERT_EQ(::prlimit(children[0], RLIMIT_AS, &starved, nullptr), 0);
    const Bitmap large = WavePicture(48, 3000, 2000);
    const Failure failure = FailureOf([&] { worker::Encode(large, Wish(163, 48), "JPEG 2000"); });
    EXPECT_NE(failure.Number(), 0);
    EXPECT_FALSE(failure.Description().isEmpty());
}

TEST_F(EveryUse, AProcessThatStandsStillIsEndedAtTheDeadline)
{
    Probe(mTiff, "TIFF");
    SignalAll(SIGSTOP);
    const Failure failure = FailureOf([&] { Probe(mTiff, "TIFF"); });
    EXPECT_EQ(failure.Number(), kFailureWorker);
    EXPECT_TRUE(failure.Description().contains(QStringLiteral("took too long")))
        << failure.Description().toStdString();
    for (const Use& use : Uses()) {
        EXPECT_NO_THROW(use.call()) << use.name;
    }
}

TEST_F(EveryUse, ASaveWhoseProcessIsKilledLeavesTheFileWhole)
{
    EngineInstance lead;
    lead.Load(mTiff, 0, 0);
    quillane::Bitmap changed = lead.Bitmap();
    changed.Pixels().invertPixels();
    lead.SetBitmap(changed);
    int failed = 0;
    for (const qint32 mode : {qint32(kSaveReplace), qint32(kSaveAppend)}) {
        for (int moment = 0; moment < 12; ++moment) {
            const QString file = mFolder.filePath(QStringLiteral("target.tif"));
            const QByteArray before = ReadWholeFile(mTiff, 1 << 26);
            WriteWholeFile(file, before);
            std::atomic<bool> done = false;
            Failure failure(0, QString());
            std::thread saving([&] {
                failure = FailureOf([&] { lead.Save(file, 17, 24, 2, mode); });
                done = true;
            });
            for (int i = 0; i < (1 << moment) && !done; ++i) {
                std::this_thread::yield();
            }
            KillAll();
            saving.join();
            const QByteArray after = ReadWholeFile(file, 1 << 26);
            if (failure.Number() != 0) {
                ++failed;
                EXPECT_EQ(failure.Number(), kFailureWorker) << failure.Description().toStdString();
                EXPECT_EQ(after, before);
            } else {
                EXPECT_EQ(ProbeFile(file).pages, mode == kSaveAppend ? 2 : 1);
            }
        }
    }
    std::cout << failed << " saves lost their process\n";
}

TEST_F(BadWorkerFaults, AProcessThatEndsOrHangsWhileItWritesAFileAnewCostsAMessage)
{
    for (const bool pixels : {true, false}) {
        // Without a picture both read behind its end, which is refused.
        const Failure crash = FailureOf([&] { Rewritten("CRASH", pixels); });
        EXPECT_EQ(crash.Number(), pixels ? kFailureWorker : kFailureGeneral);
        const Failure exit = FailureOf([&] { Rewritten("EXIT", pixels); });
        EXPECT_EQ(exit.Number(), kFailureWorker);
        EXPECT_EQ(exit.Description(),
                  QStringLiteral("The EXIT encoder stopped working on this picture."));
        EXPECT_EQ(FailureOf([&] { Rewritten("THROW", pixels); }).Number(), kFailureLimit);
        EXPECT_EQ(FailureOf([&] { Rewritten("LARGE", pixels); }).Number(), kFailureLimit);
        EXPECT_EQ(FailureOf([&] { Rewritten("SHORT", pixels); }).Number(), kFailureWorker);
        ExpectGoesOn();
    }
    const Failure hang = FailureOf([&] { Rewritten("HANG", true); });
    EXPECT_EQ(hang.Number(), kFailureWorker);
    EXPECT_TRUE(hang.Description().contains(QStringLiteral("took too long")));
    ExpectGoesOn();
}

TEST_F(BadWorkerFaults, NoLieAboutAFileThatIsWrittenAnewIsBelieved)
{
    for (const bool pixels : {true, false}) {
        for (const char* lie :
             {"GARBAGE", "MUCH", "LITTLE", "TICKET", "DESCRIPTOR", "NUMBER", "WORDS", "SLOTSIZE",
              "MINUS", "BEFORE", "HOLE", "BEHIND", "TOOK", "TOOKLESS", "DONE"}) {
            SCOPED_TRACE(testing::Message() << lie << (pixels ? " and pixels" : ""));
            const Failure failure = FailureOf([&] { Rewritten(lie, pixels); });
            EXPECT_EQ(failure.Number(), kFailureWorker);
            EXPECT_TRUE(failure.Description().contains(QStringLiteral("makes no sense"))
                        || (!pixels && std::string_view(lie) == "DONE"))
                << failure.Description().toStdString();
        }
        ExpectGoesOn();
    }
}

TEST_F(BadWorkerFaults, AKillWhileAFileIsWrittenAnewCostsOneFile)
{
    std::atomic<bool> done = false;
    Failure failure(0, QString());
    std::thread writing([&] {
        failure = FailureOf([&] { Rewritten("HANG", true); });
        done = true;
    });
    while (!done) {
        SignalAll(SIGKILL);
        std::this_thread::yield();
    }
    writing.join();
    EXPECT_EQ(failure.Number(), kFailureWorker);
    ExpectGoesOn();
}

} // namespace quillane::test
