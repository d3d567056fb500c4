// A program that saves pictures and tags is killed at any moment: what it leaves is the old file or
// the new one, whole, and after the next start nothing else.
#include "imaging/save_loop/rounds.h"
#include "save_fault_support.h"
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <random>
#include <spawn.h>
#include <sys/wait.h>

namespace quillane {
namespace {

/// The program that saves over and over; killed at the latest with this.
class SaveLoop {
public:
    SaveLoop(const QByteArray& file, const char* what, const char* way)
    {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        mNotes = FileHandle(ends[0]);
        const FileHandle far(ends[1]);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, far.Fd(), STDOUT_FILENO);
        QByteArray program = QUILLANE_BINARY_FOLDER "/bin/quillane-save-loop";
        QByteArray path = file, kind = what, road = way;
        QByteArray codec = QUILLANE_BINARY_FOLDER "/bin/quillane-codec";
        char* arguments[] = {program.data(), path.data(),  kind.data(),
                             road.data(),    codec.data(), nullptr};
        EXPECT_EQ(posix_spawn(&mChild, program.constData(), &actions, nullptr, arguments, environ),
                  0);
        posix_spawn_file_actions_destroy(&actions);
    }
    ~SaveLoop() { Kill(); }
    SaveLoop(const SaveLoop&) = delete;
    SaveLoop& operator=(const SaveLoop&) = delete;

    /// Reads so many notes; false when the program ends before.
    bool Await(unsigned notes) const
    {
        char note = 0;
        for (; notes > 0; --notes) {
            if (read(mNotes.Fd(), &note, 1) != 1) {
                return false;
            }
        }
        return true;
    }
    /// Whatever the program does meanwhile: until there is nothing to be read for so long.
    void LetRun(int milliseconds) const
    {
        pollfd end{mNotes.Fd(), POLLHUP, 0};
        end.events = 0;
        poll(&end, 1, milliseconds);
    }
    /// How it ended, as waitpid tells.
    int Kill()
    {
        int status = 0;
        if (mChild > 0) {
            kill(mChild, SIGKILL);
            EXPECT_EQ(waitpid(mChild, &status, 0), mChild);
            mChild = -1;
        }
        return status;
    }

private:
    FileHandle mNotes;
    pid_t mChild = -1;
};

/// How far apart the greys of two pictures of one size are in the mean.
double LoopDistance(const QImage& one, const QImage& other)
{
    qint64 sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            sum += std::abs(qGray(one.pixel(x, y)) - qGray(other.pixel(x, y)));
        }
    }
    return double(sum) / (double(one.width()) * one.height());
}

/// The round whose picture and text the file holds, 0 for the file as it was; -1 when it is not one
/// of them whole.
int RoundOf(const FaultKind& kind, const QString& file, const LoadedImage& old, bool tags)
{
    const LoadedImage now = LoadFile(file);
    EXPECT_FALSE(now.bitmap.IsPartial());
    EXPECT_EQ(now.bitmap.Pixels().size(), old.bitmap.Pixels().size());
    int round = -1;
    if (kind.comments) {
        const CommentValue found = ReadComments(file).At(kDescriptionSlot);
        const QString text = found.IsEmpty() ? QString() : found.Text();
        const bool first = found == ReadComments(old.file->path).At(kDescriptionSlot);
        round = first ? 0 : LoopRound(text);
        EXPECT_GE(round, 0) << text.left(40).toStdString();
    }
    const QImage shown = now.bitmap.ToDisplay();
    if (tags || round == 0) {
        // A JPEG is encoded anew with each text, at the best quality.
        const double most =
            now.facts.compression.startsWith(QStringLiteral("JPEG")) && round > 0 ? 2 : 0;
        EXPECT_LE(LoopDistance(shown, old.bitmap.ToDisplay()), most);
        return round;
    }
    const int first = qGray(shown.pixel(0, 0));
    if (!kind.comments) {
        if (shown == old.bitmap.ToDisplay()) {
            return 0;
        }
        round = 1;
        while (round < 200 && LoopLevel(round) != first) {
            ++round;
        }
    }
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            if (std::abs(qGray(shown.pixel(x, y)) - LoopLevel(round)) > 3) {
                ADD_FAILURE() << "round " << round << " at " << x << ", " << y;
                return -1;
            }
        }
    }
    return round;
}

TEST(SaveKill, AtRandomMomentsOfWholeSavesAndTagWrites)
{
    const int kills = qEnvironmentVariableIsSet("QUILLANE_LONG") ? 1000 : 50;
    const unsigned seed = qEnvironmentVariableIsSet("QUILLANE_SEED")
        ? qEnvironmentVariable("QUILLANE_SEED").toUInt()
        : 5;
    std::mt19937 random{seed};
    int renewed = 0, removed = 0, restored = 0, finished = 0;
    for (int turn = 0; turn < kills; ++turn) {
        const FaultKind& kind = kFaultKinds[size_t(turn) % std::size(kFaultKinds)];
        const bool tags = kind.comments && random() % 2 == 0;
        const bool linked = random() % 4 == 0;
        const char* way = random() % 2 == 0 ? "plain" : "named";
        SCOPED_TRACE(testing::Message()
                     << "seed " << seed << " turn " << turn << " " << kind.sample
                     << (tags ? " tags " : " picture ") << way << (linked ? " linked" : ""));
        const FaultPlace place(kind);
        const TempFolder apart(QuickFolder());
        apart.Write(place.Name(), place.FileBytes());
        const LoadedImage old = LoadFile(apart.Path(place.Name()));
        QStringList names{QString::fromUtf8(place.Name())};
        if (linked) {
            place.HardLink(place.Name(), "second");
            names.append(QStringLiteral("second"));
        }
        SaveLoop loop(place.Bytes(place.Name()), tags ? "tags" : "picture", way);
        ASSERT_TRUE(loop.Await(1 + random() % 30)) << "it ended by itself";
        if (random() % 2 == 0) {
            loop.LetRun(int(random() % 12));
        }
        ASSERT_TRUE(WIFSIGNALED(loop.Kill()));

        const CrashCleanUp done = CleanUpAfterCrash();
        removed += done.removed;
        restored += done.restored;
        finished += done.finished;
        EXPECT_TRUE(done.kept.isEmpty());
        EXPECT_EQ(done.waiting, 0);
        ExpectAlone(place, names);
        const int round = RoundOf(kind, place.File(), old, tags);
        EXPECT_GE(round, 0);
        renewed += round > 0 ? 1 : 0;
        if (linked) {
            EXPECT_EQ(place.Whole("second"), place.FileBytes());
            EXPECT_EQ(place.LinkCount(place.Name()), 2u);
        }
    }
    std::printf("%d kills, seed %u: %d found a newer file, %d temporary files removed, %d contents "
                "put back, %d found finished\n",
                kills, seed, renewed, removed, restored, finished);
    EXPECT_GT(renewed, 0);
    EXPECT_LT(renewed, kills);
}

} // namespace
} // namespace quillane
