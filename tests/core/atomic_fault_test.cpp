// A disk that fails, at every place where it can.
#include "core/expect_failure.h"
#include "core/save_support.h"
#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>

namespace quillane {

namespace {

const QByteArray kOldContent(300, 'o');
const QByteArray kNewContent(411, 'n');

int StepsOfRoad(SaveRoad road)
{
    const SavePlace place(QuickFolder());
    PrepareRoad(place, road, kOldContent);
    int steps = 0;
    SaveOnRoad(place, road, kNewContent, [&](SaveStep, qint64&) {
        ++steps;
        return 0;
    });
    return steps;
}

// After a save that failed or not, and after the next start: whole, and nothing besides.
void ExpectWhole(const SavePlace& place, SaveRoad road, qint32 failure)
{
    const bool none = StatPath(place.Path("a")).type == FileType::Missing;
    const CrashCleanUp done = CleanUpAfterCrash();
    EXPECT_TRUE(done.kept.isEmpty());
    EXPECT_EQ(done.waiting, 0);
    EXPECT_TRUE(place.Journals().isEmpty());
    if (road == SaveRoad::Create || road == SaveRoad::CreateNamed) {
        EXPECT_EQ(none, failure != 0);
        EXPECT_EQ(place.Entries(), none ? QStringList() : QStringList{"a"});
        if (none)
            return;
    } else {
        EXPECT_EQ(place.Entries(), NamesOfRoad(road));
    }
    // A disk that fails for good may do so when the new content stands and cannot be taken back.
    const bool whole = place.Content("a") == (failure != 0 ? kOldContent : kNewContent)
        || (done.finished == 1 && place.Content("a") == kNewContent);
    EXPECT_TRUE(whole);
    if (road == SaveRoad::HardLinks) {
        EXPECT_EQ(place.Content("second"), place.Content("a"));
        EXPECT_EQ(place.LinkCount("a"), 2u);
    }
    if (road == SaveRoad::KeepPrevious && failure == 0) {
        EXPECT_EQ(place.Content("a~"), kOldContent);
    }
}

} // namespace

TEST(SaveFaults, WhicheverStepFailsTheOldFileOrTheNewOneStandsWhole)
{
    for (const SaveRoad road : kSaveRoads) {
        const int steps = StepsOfRoad(road);
        ASSERT_GE(steps, 4);
        for (const int error : {ENOSPC, EIO, EACCES}) {
            for (const bool forGood : {false, true}) {
                for (int failing = 0; failing < steps; ++failing) {
                    SCOPED_TRACE(testing::Message()
                                 << "road " << int(road) << " step " << failing << " error "
                                 << error << (forGood ? " for good" : ""));
                    const SavePlace place(QuickFolder());
                    PrepareRoad(place, road, kOldContent);
                    int step = 0;
                    const SaveProbe probe = [&](SaveStep, qint64&) {
                        const int now = step++;
                        return now == failing || (forGood && now > failing) ? error : 0;
                    };
                    const qint32 failure =
                        FailureOf([&] { SaveOnRoad(place, road, kNewContent, probe); });
                    ExpectWhole(place, road, failure);
                }
            }
        }
    }
}

TEST(SaveFaults, AfterHoweverManyBytesTheDiskFailsTheOldFileStands)
{
    for (const SaveRoad road : kSaveRoads) {
        // With hard links draft, backup, the content itself and what is put back are written.
        const qint64 most = road == SaveRoad::HardLinks ? 2 * 411 + 300 : 411;
        for (qint64 room = 0; room <= most; ++room) {
            SCOPED_TRACE(testing::Message() << "road " << int(road) << " bytes " << room);
            const SavePlace place(QuickFolder());
            PrepareRoad(place, road, kOldContent);
            qint64 left = room;
            const SaveProbe probe = [&](SaveStep step, qint64& bytes) {
                if (step != SaveStep::Write)
                    return 0;
                bytes = qMin(bytes, left);
                left -= bytes;
                return bytes == 0 ? ENOSPC : 0;
            };
            const qint32 failure = FailureOf([&] { SaveOnRoad(place, road, kNewContent, probe); });
            EXPECT_EQ(failure != 0, room < most);
            ExpectWhole(place, road, failure);
        }
    }
}

TEST(SaveFaults, AContentThatCannotBePutBackIsNamedAndPutBackByTheNextStart)
{
    const SavePlace place(QuickFolder());
    PrepareRoad(place, SaveRoad::HardLinks, kOldContent);
    qint64 left = 411 + 300 + 100;
    QString words;
    try {
        SaveOnRoad(place, SaveRoad::HardLinks, kNewContent, [&](SaveStep step, qint64& bytes) {
            if (step != SaveStep::Write)
                return 0;
            bytes = qMin(bytes, left);
            left -= bytes;
            return bytes == 0 ? EIO : 0;
        });
    } catch (const Failure& failure) {
        words = failure.Description();
    }
    EXPECT_NE(place.Content("a"), kOldContent) << "the case that is meant";
    const qsizetype at = words.indexOf(u'"' + place.Path());
    ASSERT_GE(at, 0) << words.toStdString();
    const QString backup = words.mid(at + 1, words.indexOf(u'"', at + 1) - at - 1);
    EXPECT_EQ(ReadWholeFile(backup, 1000), kOldContent);

    const CrashCleanUp done = CleanUpAfterCrash();
    EXPECT_EQ(done.restored, 1);
    EXPECT_EQ(place.Content("second"), kOldContent);
    EXPECT_EQ(place.Entries(), NamesOfRoad(SaveRoad::HardLinks));
}

namespace {

// What the system itself refuses beyond a size, in this process.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &mBefore), 0);
        mHandler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit now{bytes, mBefore.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &now), 0);
    }
    ~FileSizeLimit()
    {
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &mBefore), 0);
        std::signal(SIGXFSZ, mHandler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit mBefore{};
    void (*mHandler)(int) = nullptr;
};

} // namespace

TEST(SaveFaults, AFileTheSystemDoesNotLetGrowStays)
{
    const QByteArray large(200'000, 'n');
    for (const SaveRoad road : kSaveRoads) {
        for (const int limit : {0, 1, 299, 300, 301, 4095, 4096, 4097, 65'536, 199'999}) {
            SCOPED_TRACE(testing::Message() << "road " << int(road) << " limit " << limit);
            const SavePlace place(QuickFolder());
            PrepareRoad(place, road, kOldContent);
            qint32 failure = 0;
            {
                const FileSizeLimit limited{rlim_t(limit)};
                failure = FailureOf([&] { SaveOnRoad(place, road, large); });
            }
            EXPECT_NE(failure, 0);
            ExpectWhole(place, road, failure);
        }
    }
}

namespace {

// A disk of 256 kB of the child's own; false where the system does not allow one.
bool MountSmallDisk(const QByteArray& at)
{
    const uid_t user = getuid();
    const gid_t group = getgid();
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return false;
        const auto tell = [](const char* file, const QByteArray& text) {
            const FileHandle opened(open(file, O_WRONLY | O_CLOEXEC));
            return opened.IsOpen()
                && write(opened.Fd(), text.constData(), size_t(text.size())) == text.size();
        };
        const QByteArray same = " 1";
        if (!tell("/proc/self/setgroups", "deny")
            || !tell("/proc/self/uid_map", "0 " + QByteArray::number(user) + same)
            || !tell("/proc/self/gid_map", "0 " + QByteArray::number(group) + same))
            return false;
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount("none", at.constData(), "tmpfs", 0, "size=256k,mode=0700") == 0;
}

// In the child: fills the disk from both ends; the count of what is not as it should be.
int WrongOnSmallDisk(const SavePlace& place)
{
    int wrong = 0;
    const QByteArray disk = "disk/";
    for (const bool linked : {false, true}) {
        const QByteArray old(60'000, 'o');
        place.Write(disk + "a", old);
        if (linked)
            place.HardLink(disk + "a", disk + "second");
        for (int size = 60'000; size <= 300'000; size += 20'000) {
            const QByteArray wanted(size, 'n');
            const qint32 failure =
                FailureOf([&] { WriteWholeFile(place.Path(disk + "a"), wanted); });
            wrong += place.Whole(disk + "a") != (failure != 0 ? old : wanted);
            wrong += size == 60'000 && failure != 0;
            wrong += size == 300'000 && failure != kFailureIo;
            WriteWholeFile(place.Path(disk + "a"), old);
        }
        RemoveFile(place.Path(disk + "a"));
    }
    RemoveFile(place.Path(disk + "second"));
    ListFolder(place.Path(disk), [&](DirEntry&&) {
        ++wrong;
        return true;
    });
    return wrong;
}

} // namespace

TEST(SaveFaults, AFullDiskLeavesTheOldFile)
{
    const SavePlace place(QuickFolder());
    place.MakeFolder("disk");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0)
        _exit(MountSmallDisk(place.Bytes("disk")) ? qMin(WrongOnSmallDisk(place), 100) : 101);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    const bool allowed = WEXITSTATUS(status) != 101;
    printf("a small disk of our own: %s\n", allowed ? "yes" : "not allowed here");
    if (allowed) {
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
}

} // namespace quillane
