// Copies and moves that fail on the way: full volumes, a disk that fails at every step, the program
// killed at every step. Nothing of the user's is lost and no half file is left.
#include "core/expect_failure.h"
#include "core/save_support.h"
#include "platform/desktop/file_service.h"

#include <cerrno>
#include <csignal>
#include <memory>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>

namespace quillane {

namespace {

constexpr int kKilled = 7;
constexpr int kThrown = 9;
constexpr qsizetype kBig = 1 << 20;    // bytes
constexpr rlim_t kLittle = 256 * 1024; // bytes that there is room for

/// Folders "a" with a file "x.jpg" of that content and "b".
class CopyPlace : public SavePlace {
public:
    explicit CopyPlace(const QByteArray& content) : service(Path("Trash"))
    {
        MakeFolder("a");
        MakeFolder("b");
        Write("a/x.jpg", content);
    }
    QStringList Names(const QByteArray& folder) const
    {
        QStringList names;
        ListFolder(Path(folder), [&](DirEntry&& entry) {
            names.append(entry.name);
            return true;
        });
        names.sort();
        return names;
    }
    DesktopFileService service;
};

template <typename Work> int InChildProcess(Work&& work)
{
    const pid_t child = fork();
    EXPECT_GE(child, 0);
    if (child == 0) {
        int code = kThrown;
        try {
            code = work();
        } catch (const Failure& failure) {
            std::fprintf(stderr, "%s\n", qPrintable(failure.Description()));
        }
        _exit(code);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool Tell(const char* path, const QByteArray& text)
{
    const FileHandle file(open(path, O_WRONLY | O_CLOEXEC));
    return write(file.Fd(), text.constData(), size_t(text.size())) == text.size();
}

/// Whether this process has a view of the mounted volumes of its own now.
bool LeaveOthersVolumesAlone()
{
    const QByteArray user = "0 " + QByteArray::number(geteuid()) + " 1";
    const QByteArray group = "0 " + QByteArray::number(getegid()) + " 1";
    return unshare(CLONE_NEWNS) == 0
        || (unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && Tell("/proc/self/uid_map", user)
            && Tell("/proc/self/setgroups", "deny") && Tell("/proc/self/gid_map", group));
}

/// Makes the folder a volume of its own with little room; where that is not allowed no file of this
/// process may be larger than that.
bool MakeSmall(const QByteArray& folder)
{
    if (LeaveOthersVolumesAlone() && mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount("tmpfs", folder.constData(), "tmpfs", 0, "size=256k") == 0) {
        return true;
    }
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little{kLittle, kLittle};
    return setrlimit(RLIMIT_FSIZE, &little) == 0;
}

/// Counts the steps of what is copied, and fails one of them.
SaveProbe FailAt(int wanted, int error, const std::shared_ptr<bool>& reached)
{
    auto step = std::make_shared<int>(0);
    return [step, wanted, error, reached](SaveStep, qint64&) {
        if ((*step)++ != wanted) {
            return 0;
        }
        *reached = true;
        return error;
    };
}

/// Ends the process at a step; a write after half of its bytes.
SaveProbe KillAt(int wanted)
{
    auto step = std::make_shared<int>(0);
    auto half = std::make_shared<bool>(false);
    return [step, half, wanted](SaveStep kind, qint64& bytes) {
        if (*half || (*step == wanted && kind != SaveStep::Write)) {
            _exit(kKilled);
        }
        if (*step == wanted) {
            bytes = std::min<qint64>(bytes, kBig) / 2;
            *half = true;
        }
        ++*step;
        return 0;
    };
}

TEST(CopyFaults, AVolumeThatIsFullLosesNothingAndKeepsNoHalfFile)
{
    const QByteArray big(kBig, 'x');
    const CopyPlace place(big);
    // Its hole is not copied, but its content is more than there is room for as well.
    const FileHandle holes(open(place.Bytes("a/holes.jpg").constData(), O_CREAT | O_WRONLY, 0644));
    ASSERT_EQ(pwrite(holes.Fd(), big.constData(), size_t(big.size()), off_t(4) * kBig), kBig);
    place.Write("a/small.jpg", "small");
    const int wrong = InChildProcess([&] {
        if (!MakeSmall(place.Bytes("b"))) {
            return 1;
        }
        place.Write("b/old.jpg", "old");
        DesktopFileService service(place.Path("Trash"));
        for (const char* name : {"a/x.jpg", "a/holes.jpg"}) {
            for (const char* target : {"b/fresh.jpg", "b/old.jpg"}) {
                QString words;
                try {
                    service.Copy(place.Path(name), place.Path(target));
                } catch (const Failure& failure) {
                    words = failure.Description();
                }
                if (!words.contains(QLatin1String("the disk is full. Make room there"))
                    && !words.contains(QLatin1String("the disk takes no file of that size"))) {
                    std::fprintf(stderr, "%s to %s: %s\n", name, target, qPrintable(words));
                    return 2;
                }
            }
        }
        if (place.Content("b/old.jpg") != "old" || place.Names("b") != QStringList("old.jpg")) {
            return 3;
        }
        service.Copy(place.Path("a/small.jpg"), place.Path("b/small.jpg"));
        return place.Content("b/small.jpg") == "small" ? 0 : 4;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(place.Whole("a/x.jpg"), big);
}

TEST(CopyFaults, AMoveToAVolumeThatIsFullLeavesTheSource)
{
    const QByteArray big(kBig, 'x');
    const CopyPlace place(big);
    const int wrong = InChildProcess([&] {
        // A second way to the folder, so that the move must copy.
        if (!MakeSmall(place.Bytes("b"))) {
            return 1;
        }
        struct stat here {
        }, there{};
        stat(place.Bytes("a").constData(), &here);
        stat(place.Bytes("b").constData(), &there);
        DesktopFileService service(place.Path("Trash"));
        bool failed = false;
        try {
            service.Move(place.Path("a/x.jpg"), place.Path("b/x.jpg"));
        } catch (const Failure&) {
            failed = true;
        }
        if (here.st_dev == there.st_dev) {
            return !failed && place.Whole("b/x.jpg") == big ? 0 : 2; // renamed: no room is needed
        }
        return failed && place.Names("b").isEmpty() && place.Whole("a/x.jpg") == big ? 0 : 3;
    });
    EXPECT_EQ(wrong, 0);
}

TEST(CopyFaults, WhateverStepFailsTheTargetIsOldOrNewAndTheSourceThere)
{
    const QByteArray content(100'000, 'n');
    for (const bool replaces : {false, true}) {
        for (int step = 0;; ++step) {
            const CopyPlace place(content);
            if (replaces) {
                place.Write("b/x.jpg", "old");
            }
            const auto reached = std::make_shared<bool>(false);
            bool failed = false;
            {
                const SaveProbeScope scope(FailAt(step, EIO, reached));
                DesktopFileService service(place.Path("Trash"));
                failed =
                    FailureOf([&] { service.Copy(place.Path("a/x.jpg"), place.Path("b/x.jpg")); })
                    != 0;
            }
            const QStringList names = place.Names("b");
            if (!failed) {
                EXPECT_EQ(place.Whole("b/x.jpg"), content) << step;
            } else if (replaces) {
                EXPECT_EQ(place.Whole("b/x.jpg"), "old") << step;
            }
            EXPECT_EQ(names, failed && !replaces ? QStringList() : QStringList("x.jpg")) << step;
            EXPECT_EQ(place.Whole("a/x.jpg"), content) << step;
            if (!*reached) {
                EXPECT_FALSE(failed);
                EXPECT_GT(step, 3);
                break;
            }
        }
    }
}

TEST(CopyFaults, AMoveToAnotherVolumeNeverEndsInNothing)
{
    const QByteArray content(100'000, 'n');
    for (int step = 0;; ++step) {
        const CopyPlace place(content);
        const TempFolder other(QuickFolder());
        const auto reached = std::make_shared<bool>(false);
        {
            const SaveProbeScope scope(FailAt(step, ENOSPC, reached));
            DesktopFileService service(place.Path("Trash"));
            ResumeNext([&] { service.Move(place.Path("a/x.jpg"), other.Path("x.jpg")); });
        }
        const bool moved = place.Names("a").isEmpty();
        if (moved) {
            EXPECT_EQ(other.Content("x.jpg"), content) << step;
        } else {
            EXPECT_EQ(place.Whole("a/x.jpg"), content) << step;
            EXPECT_TRUE(other.Entries().isEmpty()) << step;
        }
        if (!*reached) {
            EXPECT_TRUE(moved);
            break;
        }
    }
}

TEST(CopyFaults, KilledAtAnyStepItLeavesNothingThatTheNextStartDoesNotTidyUp)
{
    const QByteArray content(kBig, 'n');
    for (const bool replaces : {false, true}) {
        int step = 0;
        for (int code = kKilled; code == kKilled; ++step) {
            const CopyPlace place(content);
            if (replaces) {
                place.Write("b/x.jpg", "old");
            }
            code = InChildProcess([&] {
                const SaveProbeScope scope(KillAt(step));
                DesktopFileService service(place.Path("Trash"));
                service.Copy(place.Path("a/x.jpg"), place.Path("b/x.jpg"));
                return 0;
            });
            CleanUpAfterCrash();
            const QStringList names = place.Names("b");
            EXPECT_TRUE(names == QStringList("x.jpg") || (!replaces && names.isEmpty()))
                << step << ' ' << names.join(u' ').toStdString();
            if (!names.isEmpty()) {
                const QByteArray now = place.Whole("b/x.jpg");
                EXPECT_TRUE(now == content || (replaces && now == "old")) << step;
            }
            EXPECT_EQ(place.Whole("a/x.jpg"), content) << step;
            EXPECT_TRUE(place.Journals().isEmpty()) << step;
        }
        EXPECT_GT(step, 4);
    }
}

} // namespace

} // namespace quillane
