// What the file operations do with everything that is no plain photograph in a plain folder.
#include "core/expect_failure.h"
#include "core/unprivileged.h"
#include "platform/file_service_fixture.h"

#include <array>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/xattr.h>

namespace quillane {

namespace {

class OddFilesTest : public FileServiceTest {
protected:
    void Fifo(const char* name) const
    {
        ASSERT_EQ(mkfifo(folder.Bytes(name).constData(), 0644), 0);
    }
    void Socket(const char* name) const
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray path = folder.Bytes(name);
        ASSERT_LT(path.size(), qsizetype(sizeof address.sun_path));
        std::copy(path.begin(), path.end(), std::begin(address.sun_path));
        const FileHandle made(socket(AF_UNIX, SOCK_STREAM, 0));
        ASSERT_EQ(bind(made.Fd(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
};

TEST_F(OddFilesTest, PipesSocketsAndDevicesAreNoSourcesAndNobodyWaitsForThem)
{
    Fifo("a/pipe.jpg");
    Socket("a/socket.jpg");
    folder.Link("pipe.jpg", "a/way.jpg");
    folder.Link("/dev/zero", "a/endless.jpg");
    for (const char* name : {"a/pipe.jpg", "a/socket.jpg", "a/way.jpg", "a/endless.jpg"}) {
        EXPECT_NE(FailureOf([&] { service.Copy(Path(name), Path("b/x.jpg")); }), 0) << name;
        EXPECT_NE(FailureOf([&] { service.Move(Path(name), Path("b/x.jpg")); }), 0) << name;
        EXPECT_TRUE(Exists(name)) << name;
    }
    EXPECT_NE(FailureOf([&] { service.Copy("/dev/zero", Path("b/x.jpg")); }), 0);
    EXPECT_TRUE(Names("b").isEmpty());
}

TEST_F(OddFilesTest, PipesAndSocketsAreNoTargets)
{
    folder.Write("a/x.jpg", "one");
    Fifo("b/pipe.jpg");
    Socket("b/socket.jpg");
    for (const char* name : {"b/pipe.jpg", "b/socket.jpg"}) {
        EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/x.jpg"), Path(name)); }), kFailureIo);
        EXPECT_EQ(FailureOf([&] { service.Move(Path("a/x.jpg"), Path(name)); }), kFailureIo);
        EXPECT_EQ(FailureOf([&] { service.Rename(Path("a/x.jpg"), Path(name), false); }),
                  kFailureIo);
    }
    EXPECT_TRUE(S_ISFIFO(Stat("b/pipe.jpg").st_mode));
    EXPECT_TRUE(S_ISSOCK(Stat("b/socket.jpg").st_mode));
    EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/x.jpg"), "/dev/full"); }), kFailureIo);
    EXPECT_EQ(folder.Content("a/x.jpg"), "one");
}

TEST_F(OddFilesTest, APipeIsDeletedAndTrashedAsItIs)
{
    Fifo("a/pipe.jpg");
    const TrashedFile file = service.Trash(Path("a/pipe.jpg"));
    EXPECT_FALSE(Exists("a/pipe.jpg"));
    service.BringBack(file);
    EXPECT_TRUE(S_ISFIFO(Stat("a/pipe.jpg").st_mode));
    service.Delete(Path("a/pipe.jpg"));
    EXPECT_FALSE(Exists("a/pipe.jpg"));
}

TEST_F(OddFilesTest, FoldersThatNobodyCanWriteToTakeNothing)
{
    // Not even the superuser makes files there.
    folder.Write("a/x.jpg", "one");
    for (const char* target : {"/proc/x.jpg", "/sys/x.jpg"}) {
        EXPECT_NE(FailureOf([&] { service.Copy(Path("a/x.jpg"), target); }), 0) << target;
        EXPECT_NE(FailureOf([&] { service.Move(Path("a/x.jpg"), target); }), 0) << target;
        EXPECT_NE(FailureOf([&] { service.Rename(Path("a/x.jpg"), target, false); }), 0) << target;
        EXPECT_EQ(folder.Content("a/x.jpg"), "one");
    }
}

TEST_F(OddFilesTest, AFolderThatIsReadOnlyKeepsItsFiles)
{
    folder.Write("a/x.jpg", "one");
    folder.Chmod("a", 0555);
    {
        const Unprivileged user;
        EXPECT_EQ(FailureOf([&] { service.Delete(Path("a/x.jpg")); }), kFailureDenied);
        EXPECT_EQ(FailureOf([&] { service.Trash(Path("a/x.jpg")); }), kFailureDenied);
        EXPECT_EQ(FailureOf([&] { service.Rename(Path("a/x.jpg"), Path("a/y.jpg"), false); }),
                  kFailureDenied);
        // The copy is made; what could not be removed is told of.
        EXPECT_TRUE(service.Move(Path("a/x.jpg"), Path("b/x.jpg"))
                        .sourceStays.contains(QStringLiteral("x.jpg")));
    }
    folder.Chmod("a", 0755);
    EXPECT_EQ(folder.Content("a/x.jpg"), "one");
    EXPECT_EQ(folder.Content("b/x.jpg"), "one");
    QStringList left = Names("Trash/info");
    EXPECT_TRUE(left.isEmpty()) << left.join(u' ').toStdString();
}

TEST_F(OddFilesTest, AFileThatCannotBeReadIsNotCopied)
{
    folder.Write("a/x.jpg", "secret");
    folder.Chmod("a/x.jpg", 0000);
    const Unprivileged user;
    EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/x.jpg"), Path("b/x.jpg")); }), kFailureDenied);
    EXPECT_TRUE(Names("b").isEmpty());
    folder.Chmod("a/x.jpg", 0600);
}

TEST_F(OddFilesTest, AFileThatIsReadOnlyIsCopiedMovedAndStaysReadOnly)
{
    folder.Write("a/x.jpg", "one");
    folder.Chmod("a/x.jpg", 0444);
    const Unprivileged user;
    service.Copy(Path("a/x.jpg"), Path("b/x.jpg"));
    EXPECT_EQ(Stat("b/x.jpg").st_mode & 07777, 0444u);
    const TempFolder other("/dev/shm");
    service.Move(Path("a/x.jpg"), other.Path("x.jpg"));
    EXPECT_EQ(StatPath(other.Path("x.jpg")).mode & 07777, 0444u);
    EXPECT_FALSE(Exists("a/x.jpg"));
}

TEST_F(OddFilesTest, AMoveToAnotherVolumeKeepsTimesAndPermissions)
{
    const TempFolder other("/dev/shm");
    folder.Write("a/x.jpg", "one");
    folder.Chmod("a/x.jpg", 0640);
    const std::array<timespec, 2> times{timespec{1000, 0}, timespec{123456789, 987654000}};
    ASSERT_EQ(utimensat(AT_FDCWD, folder.Bytes("a/x.jpg").constData(), times.data(), 0), 0);
    service.Move(Path("a/x.jpg"), other.Path("x.jpg"));
    const FileStat moved = StatPath(other.Path("x.jpg"));
    EXPECT_EQ(moved.mode & 07777, 0640u);
    EXPECT_EQ(moved.modifiedSeconds, 123456789);
    EXPECT_EQ(moved.modifiedNanos, 987654000);
}

TEST_F(OddFilesTest, NamesThatDifferOnlyInCaseStandSideBySide)
{
    folder.Write("a/photo.jpg", "small");
    folder.Write("a/PHOTO.JPG", "large");
    service.Copy(Path("a/photo.jpg"), Path("b/photo.jpg"));
    service.Copy(Path("a/PHOTO.JPG"), Path("b/PHOTO.JPG"));
    EXPECT_EQ(folder.Content("b/photo.jpg"), "small");
    EXPECT_EQ(folder.Content("b/PHOTO.JPG"), "large");
    EXPECT_TRUE(service.WouldReplace(Path("a/photo.jpg"), Path("a/PHOTO.JPG")));
}

TEST_F(OddFilesTest, AHugeFileOfHolesIsCopiedWithoutThem)
{
    constexpr off_t kHuge = off_t(64) << 30;
    const QByteArray name = folder.Bytes("a/huge.tif");
    {
        const FileHandle huge(open(name.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
        ASSERT_EQ(ftruncate(huge.Fd(), kHuge), 0);
        ASSERT_EQ(pwrite(huge.Fd(), "head", 4, 0), 4);
        ASSERT_EQ(pwrite(huge.Fd(), "middle", 6, kHuge / 2), 6);
    }
    const TempFolder other("/dev/shm");
    for (const QString& to : {Path("b/huge.tif"), other.Path("huge.tif")}) {
        service.Copy(Path("a/huge.tif"), to);
        struct stat made { };
        ASSERT_EQ(stat(BytesFromPath(to).constData(), &made), 0);
        EXPECT_EQ(made.st_size, kHuge);
        EXPECT_LT(made.st_blocks, 1000);
        const FileHandle copy = OpenForReading(to);
        std::array<char, 8> bytes{};
        EXPECT_EQ(pread(copy.Fd(), bytes.data(), 6, kHuge / 2), 6);
        EXPECT_EQ(QByteArray(bytes.data(), 6), "middle");
        EXPECT_EQ(pread(copy.Fd(), bytes.data(), 4, 0), 4);
        EXPECT_EQ(QByteArray(bytes.data(), 4), "head");
        service.Delete(to);
    }
}

TEST_F(OddFilesTest, ASourceThatTellsNoSizeIsCopiedWhole)
{
    service.Copy("/proc/version", Path("b/version"));
    EXPECT_TRUE(folder.Content("b/version").contains("Linux"));
    const MoveResult moved = service.Move("/proc/version", Path("b/moved"));
    EXPECT_FALSE(moved.sourceStays.isEmpty());
    EXPECT_TRUE(folder.Content("b/moved").contains("Linux"));
}

TEST_F(OddFilesTest, NamesOfAnyBytesGoThroughEveryOperation)
{
    for (const QByteArray& name :
         {QByteArray("\xff\xfe\x80.jpg"), QByteArray("two\nlines.jpg"), QByteArray(" .jpg"),
          QByteArray("-rf"), QByteArray("%41\"'\\.jpg"), QByteArray("a\t\x1b[0m.jpg"),
          QByteArray(255, 'n')}) {
        const QByteArray from = "a/" + name;
        const QByteArray to = "b/" + name;
        folder.Write(from, "bytes");
        service.Copy(folder.Path(from), folder.Path(to));
        EXPECT_EQ(folder.Content(to), "bytes") << name.constData();
        service.BringBack(service.Trash(folder.Path(to)));
        EXPECT_EQ(folder.Content(to), "bytes") << name.constData();
        service.Move(folder.Path(from), folder.Path(to));
        EXPECT_FALSE(Exists(from));
        service.Rename(folder.Path(to), folder.Path("b/plain.jpg"), false);
        service.Rename(folder.Path("b/plain.jpg"), folder.Path(to), false);
        EXPECT_EQ(folder.Content(to), "bytes") << name.constData();
        service.Delete(folder.Path(to));
    }
    EXPECT_TRUE(Names("a").isEmpty());
    EXPECT_TRUE(Names("b").isEmpty());
    EXPECT_TRUE(Names("Trash/files").isEmpty());
    EXPECT_TRUE(Names("Trash/info").isEmpty());
}

TEST_F(OddFilesTest, ALinkIsTrashedAndNotWhatItLeadsTo)
{
    folder.Write("a/real.jpg", "one");
    folder.Link("real.jpg", "a/x.jpg");
    folder.Link("nowhere", "a/dangling.jpg");
    for (const char* name : {"a/x.jpg", "a/dangling.jpg"}) {
        const TrashedFile file = service.Trash(Path(name));
        EXPECT_FALSE(Exists(name));
        EXPECT_EQ(folder.Content("a/real.jpg"), "one");
        service.BringBack(file);
        EXPECT_TRUE(S_ISLNK(Stat(name).st_mode));
    }
    EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/dangling.jpg"), Path("b/x.jpg")); }),
              kFailureNoFile);
    EXPECT_TRUE(Names("b").isEmpty());
}

TEST_F(OddFilesTest, EmptyAndOverlongPathsAreRefused)
{
    folder.Write("a/x.jpg", "one");
    const QString overlong = Path("b/") + QString(300, u'n');
    EXPECT_NE(FailureOf([&] { service.Copy(Path("a/x.jpg"), overlong); }), 0);
    EXPECT_NE(FailureOf([&] { service.Move(Path("a/x.jpg"), overlong); }), 0);
    EXPECT_NE(FailureOf([&] { service.Rename(Path("a/x.jpg"), overlong, false); }), 0);
    EXPECT_NE(FailureOf([&] { service.Copy(Path("a/x.jpg"), Path("b/")); }), 0);
    for (const QString& none : {QString(), QString(QChar(u'\0'))}) {
        EXPECT_NE(FailureOf([&] { service.Copy(Path("a/x.jpg"), none); }), 0);
        EXPECT_NE(FailureOf([&] { service.Copy(none, Path("b/x.jpg")); }), 0);
        EXPECT_NE(FailureOf([&] { service.Move(none, Path("b/x.jpg")); }), 0);
        EXPECT_NE(FailureOf([&] { service.Delete(none); }), 0);
        EXPECT_NE(FailureOf([&] { service.Trash(none); }), 0);
        EXPECT_NE(FailureOf([&] { service.Rename(none, Path("b/x.jpg"), false); }), 0);
    }
    EXPECT_EQ(folder.Content("a/x.jpg"), "one");
    EXPECT_TRUE(Names("b").isEmpty());
}

} // namespace

} // namespace quillane
