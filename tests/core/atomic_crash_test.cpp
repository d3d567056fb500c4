// The program is killed while it saves.
#include "core/save_support.h"
#include <cerrno>
#include <csignal>
#include <random>
#include <sched.h>
#include <sys/wait.h>

namespace quillane {

namespace {

constexpr int kCrashed = 7;

// A content that tells its version and whether it is whole.
QByteArray VersionContent(int version)
{
    std::mt19937_64 random{unsigned(version)};
    QByteArray content(QByteArray::number(version) + '\n');
    const qsizetype words = qsizetype(random() % 100'000);
    content.reserve(content.size() + words * qsizetype(sizeof(quint64)));
    for (qsizetype i = 0; i < words; ++i) {
        const quint64 word = random();
        content.append(reinterpret_cast<const char*>(&word), sizeof word);
    }
    return content;
}

// -1 when it is not whole.
int VersionOf(const QByteArray& content)
{
    bool number = false;
    const int version = content.first(qMax<qsizetype>(content.indexOf('\n'), 0)).toInt(&number);
    return number && VersionContent(version) == content ? version : -1;
}

// Runs step in a child; its exit code, or minus the signal that ended it.
template <typename Step> int InChild(Step&& step)
{
    const pid_t child = fork();
    EXPECT_GE(child, 0);
    if (child == 0) {
        step();
        _exit(0);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// Ends the process at its n-th step, and a write at half of its bytes.
SaveProbe CrashAt(int wanted)
{
    auto step = std::make_shared<int>(0);
    auto half = std::make_shared<bool>(false);
    return [step, half, wanted](SaveStep kind, qint64& bytes) {
        if (*half || (*step == wanted && (kind != SaveStep::Write || bytes < 2)))
            _exit(kCrashed);
        if (*step == wanted) {
            bytes /= 2;
            *half = true;
        } else {
            ++*step;
        }
        return 0;
    };
}

// What must hold after the next start, whatever happened.
void ExpectWholeAfterStart(const SavePlace& place, SaveRoad road, const QByteArray& old,
                           const QByteArray& wanted)
{
    const bool creates = road == SaveRoad::Create || road == SaveRoad::CreateNamed;
    const bool missing = StatPath(place.Path("a")).type == FileType::Missing;
    EXPECT_TRUE(place.Journals().isEmpty());
    if (missing) {
        EXPECT_TRUE(creates);
        EXPECT_TRUE(place.Entries().isEmpty()) << place.Entries().join(u' ').toStdString();
        return;
    }
    EXPECT_EQ(place.Entries(), NamesOfRoad(road)) << place.Entries().join(u' ').toStdString();
    const QByteArray content = place.Whole("a");
    EXPECT_TRUE(content == wanted || (!creates && content == old));
    if (road == SaveRoad::HardLinks) {
        EXPECT_EQ(place.Whole("second"), content);
        EXPECT_EQ(place.LinkCount("a"), 2u);
    }
    if (road == SaveRoad::KeepPrevious) {
        const QByteArray previous = place.Whole("a~");
        EXPECT_TRUE(previous == old || (content == old && previous == "older"));
    }
}

} // namespace

TEST(SaveCrash, AtWhicheverStepTheProgramDiesTheNextStartFindsAWholeFileAndNothingElse)
{
    const QByteArray old(1000, 'o');
    const QByteArray wanted(700, 'n');
    for (const SaveRoad road : kSaveRoads) {
        bool came = false;
        for (int step = 0; !came; ++step) {
            SCOPED_TRACE(testing::Message() << "road " << int(road) << " step " << step);
            const SavePlace place(QuickFolder());
            PrepareRoad(place, road, old);
            came = InChild([&] { SaveOnRoad(place, road, wanted, CrashAt(step)); }) == 0;
            ASSERT_LT(step, 100);
            if (road != SaveRoad::HardLinks
                && StatPath(place.Path("a")).type != FileType::Missing) {
                const QByteArray content = place.Whole("a");
                EXPECT_TRUE(content == old || content == wanted) << "before the next start too";
            }
            const CrashCleanUp done = CleanUpAfterCrash();
            EXPECT_TRUE(done.kept.isEmpty());
            EXPECT_EQ(done.waiting, 0);
            ExpectWholeAfterStart(place, road, old, wanted);
        }
    }
}

TEST(SaveCrash, ATidyingUpThatIsKilledIsDoneByTheOneAfterIt)
{
    const QByteArray old(700, 'o');
    const QByteArray wanted(1000, 'n');
    bool came = false;
    for (int step = 0; !came; ++step) {
        bool tidied = false;
        for (int inner = 0; !tidied; ++inner) {
            SCOPED_TRACE(testing::Message() << "step " << step << " then " << inner);
            const SavePlace place(QuickFolder());
            PrepareRoad(place, SaveRoad::HardLinks, old);
            came = InChild([&] { SaveOnRoad(place, SaveRoad::HardLinks, wanted, CrashAt(step)); })
                == 0;
            tidied = InChild([&] { CleanUpAfterCrash(CrashAt(inner)); }) == 0;
            EXPECT_TRUE(CleanUpAfterCrash().kept.isEmpty());
            ExpectWholeAfterStart(place, SaveRoad::HardLinks, old, wanted);
            ASSERT_LT(inner, 100);
        }
        ASSERT_LT(step, 100);
    }
}

TEST(SaveCrash, KilledAtRandomMoments)
{
    const bool many = qEnvironmentVariableIsSet("QUILLANE_LONG");
    const int kills = many ? 1000 : 50;
    const unsigned seed = qEnvironmentVariableIsSet("QUILLANE_SEED")
        ? qEnvironmentVariable("QUILLANE_SEED").toUInt()
        : 3;
    std::mt19937 random{seed};
    int removed = 0, restored = 0, finished = 0, renewed = 0;
    for (int round = 0; round < kills; ++round) {
        const SaveRoad road = kSaveRoads[size_t(round) % std::size(kSaveRoads)];
        SCOPED_TRACE(testing::Message() << "seed " << seed << " round " << round);
        const SavePlace place(QuickFolder());
        PrepareRoad(place, road, VersionContent(0));
        int notes[2];
        ASSERT_EQ(pipe(notes), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int version = 1;; ++version) {
                if (road == SaveRoad::Create || road == SaveRoad::CreateNamed)
                    RemoveFile(place.Path("a"));
                const QByteArray content = VersionContent(version);
                SaveOnRoad(place, road, content, [&](SaveStep, qint64&) {
                    return write(notes[1], "s", 1) == 1 ? 0 : EIO;
                });
            }
        }
        // So many steps, and then any moment: the child goes on meanwhile.
        close(notes[1]);
        char note;
        for (unsigned left = random() % 60; left > 0; --left)
            ASSERT_EQ(read(notes[0], &note, 1), 1);
        for (unsigned turns = random() % 200; turns > 0; --turns)
            sched_yield();
        kill(child, SIGKILL);
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        close(notes[0]);
        ASSERT_TRUE(WIFSIGNALED(status));

        const CrashCleanUp done = CleanUpAfterCrash();
        removed += done.removed;
        restored += done.restored;
        finished += done.finished;
        EXPECT_TRUE(done.kept.isEmpty());
        EXPECT_EQ(done.waiting, 0);
        EXPECT_TRUE(place.Journals().isEmpty());
        const bool creates = road == SaveRoad::Create || road == SaveRoad::CreateNamed;
        if (creates && StatPath(place.Path("a")).type == FileType::Missing) {
            EXPECT_TRUE(place.Entries().isEmpty());
            continue;
        }
        EXPECT_EQ(place.Entries(), NamesOfRoad(road)) << place.Entries().join(u' ').toStdString();
        const int version = VersionOf(place.Whole("a"));
        EXPECT_GE(version, 0);
        renewed += version > 0 ? 1 : 0;
        if (road == SaveRoad::HardLinks) {
            EXPECT_EQ(VersionOf(place.Whole("second")), version);
        }
        if (road == SaveRoad::KeepPrevious && version > 1) {
            const int previous = VersionOf(place.Whole("a~"));
            EXPECT_GE(previous, version - 2);
            EXPECT_LE(previous, version);
        }
    }
    printf("%d kills, seed %u: %d found a newer version, %d temporary files removed, %d contents "
           "put back, %d found finished\n",
           kills, seed, renewed, removed, restored, finished);
    EXPECT_GT(renewed, 0);
}

TEST(SaveCrash, WhatALivingProgramIsSavingIsLeftAlone)
{
    const SavePlace place(QuickFolder());
    PrepareRoad(place, SaveRoad::ReplaceNamed, "old");
    bool looked = false;
    SaveOnRoad(place, SaveRoad::ReplaceNamed, "new", [&](SaveStep step, qint64&) {
        if (step == SaveStep::Rename) {
            looked = true;
            const CrashCleanUp done = CleanUpAfterCrash();
            EXPECT_EQ(done.removed + done.restored + done.waiting, 0);
            EXPECT_EQ(place.Entries().size(), 2);
            EXPECT_EQ(place.Journals().size(), 1);
        }
        return 0;
    });
    EXPECT_TRUE(looked);
    EXPECT_EQ(place.Content("a"), "new");
}

TEST(SaveCrash, AFileThatSomebodyChangedSinceIsLeftAndTheOldContentKept)
{
    const QByteArray old(1000, 'o');
    const QByteArray wanted(700, 'n');
    struct Case {
        const char* name;
        std::function<void(const SavePlace&)> change;
    };
    const Case cases[] = {
        {"written to", [](const SavePlace& in) { in.Write("a", "theirs"); }},
        {"replaced",
         [](const SavePlace& in) {
             WriteWholeFile(in.Path("b"), "theirs");
             ASSERT_EQ(rename(in.Bytes("b").constData(), in.Bytes("a").constData()), 0);
         }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const SavePlace place(QuickFolder());
        PrepareRoad(place, SaveRoad::HardLinks, old);
        place.Write("a~", "of somebody");
        // Draft and backup are written, then half of the content.
        int writes = 0;
        ASSERT_EQ(InChild([&] {
                      SaveOnRoad(place, SaveRoad::HardLinks, wanted,
                                 [&](SaveStep step, qint64& bytes) {
                                     if (step != SaveStep::Write)
                                         return 0;
                                     if (++writes == 4)
                                         _exit(kCrashed);
                                     if (writes == 3)
                                         bytes /= 2;
                                     return 0;
                                 });
                  }),
                  kCrashed);
        EXPECT_NE(place.Content("a"), old);
        row.change(place);
        const CrashCleanUp done = CleanUpAfterCrash();
        EXPECT_EQ(done.kept, QStringList{place.Path("a~2")});
        EXPECT_EQ(place.Content("a~2"), old);
        EXPECT_EQ(place.Content("a~"), "of somebody");
        EXPECT_EQ(place.Content("a"), "theirs");
        EXPECT_EQ(place.Entries(), (QStringList{"a", "a~", "a~2", "second"}));
        EXPECT_TRUE(place.Journals().isEmpty());
    }
}

TEST(SaveCrash, AVolumeThatIsAwayIsTidiedUpWhenItIsBack)
{
    const SavePlace place(QuickFolder());
    place.MakeFolder("stick");
    PrepareRoad(place, SaveRoad::Replace, "old");
    ASSERT_EQ(InChild([&] {
                  SaveOptions options;
                  options.probe = [](SaveStep step, qint64&) {
                      if (step == SaveStep::Sync)
                          _exit(kCrashed);
                      return step == SaveStep::OpenUnnamed ? EOPNOTSUPP : 0;
                  };
                  SaveAtomically(place.Path("stick/a"), "new", options);
              }),
              kCrashed);
    ASSERT_EQ(rename(place.Bytes("stick").constData(), place.Bytes("away").constData()), 0);
    EXPECT_EQ(CleanUpAfterCrash().waiting, 1);
    EXPECT_EQ(place.Journals().size(), 1);
    ASSERT_EQ(rename(place.Bytes("away").constData(), place.Bytes("stick").constData()), 0);
    EXPECT_EQ(CleanUpAfterCrash().removed, 1);
    EXPECT_TRUE(place.Journals().isEmpty());
    EXPECT_EQ(rmdir(place.Bytes("stick").constData()), 0) << "nothing is left in it";
}

TEST(SaveCrash, NothingIsRemovedForItsNameAlone)
{
    const SavePlace place(QuickFolder());
    const QByteArray name = ".quillane-0123456789abcdef.tmp";
    place.Write(name, "not noted");
    place.Write("mine", "the user's");
    ASSERT_TRUE(MakeFolder(PathFromBytes(place.JournalFolder())));
    // A journal that names what no save can have made, one that is damaged, one that is none.
    const auto journal = [&](const char* leaf, const QByteArray& content) {
        WriteWholeFile(PathFromBytes(place.JournalFolder() + leaf), content);
    };
    const QByteArray end("\0\n\0", 3);
    journal("1", QByteArray("T\0", 2) + place.Bytes("mine") + end);
    journal("2", QByteArray("T\0", 2) + place.Bytes(name));
    journal("3", QByteArray(100'000, '\xff'));
    journal("4", {});
    const QByteArray zero(1, '\0');
    journal("5",
            "I" + zero + place.Bytes("mine") + zero + place.Bytes("mine") + zero
                + place.Bytes("mine") + zero + zero + "1" + zero + "2" + end);
    const CrashCleanUp done = CleanUpAfterCrash();
    EXPECT_EQ(done.removed + done.restored + done.finished, 0);
    EXPECT_EQ(place.Content("mine"), "the user's");
    EXPECT_EQ(place.Content(name), "not noted");
    EXPECT_TRUE(place.Journals().isEmpty());
}

} // namespace quillane
