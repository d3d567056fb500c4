#include "platform/file_service_fixture.h"

#include "core/expect_failure.h"
#include "core/unprivileged.h"

#include <array>
#include <sys/xattr.h>

namespace quillane {

namespace {

TEST_F(FileServiceTest, ACopyHasContentPermissionsTimesAndAttributes)
{
    folder.Write("a/x.jpg", "picture");
    folder.Chmod("a/x.jpg", 0640);
    const std::array<timespec, 2> times{timespec{1000, 0}, timespec{123456789, 987654000}};
    ASSERT_EQ(utimensat(AT_FDCWD, folder.Bytes("a/x.jpg").constData(), times.data(), 0), 0);
    const bool attributes =
        setxattr(folder.Bytes("a/x.jpg").constData(), "user.comment", "nice", 4, 0) == 0;
    const FileId made = service.Copy(Path("a/x.jpg"), Path("b/x.jpg"));
    EXPECT_EQ(folder.Content("b/x.jpg"), "picture");
    const struct stat copy = Stat("b/x.jpg");
    EXPECT_EQ(copy.st_mode & 07777, 0640u);
    EXPECT_EQ(copy.st_mtim.tv_sec, 123456789);
    EXPECT_EQ(copy.st_mtim.tv_nsec, 987654000);
    EXPECT_EQ(made, FileId(copy.st_dev, copy.st_ino));
    if (attributes) {
        std::array<char, 8> value{};
        EXPECT_EQ(getxattr(folder.Bytes("b/x.jpg").constData(), "user.comment", value.data(),
                           value.size()),
                  4);
    }
    EXPECT_EQ(Names("b"), QStringList("x.jpg"));
}

TEST_F(FileServiceTest, ContentOfEverySizeComesOver)
{
    for (const qsizetype size : {qsizetype(0), qsizetype(1), qsizetype(4096), qsizetype(1) << 22}) {
        const QByteArray content(size, char('a' + size % 7));
        WriteWholeFile(Path("a/x"), content);
        service.Copy(Path("a/x"), Path("b/x"));
        EXPECT_EQ(ReadWholeFile(Path("b/x"), 1 << 23), content) << size;
    }
}

TEST_F(FileServiceTest, WhatIsThereIsOverwritten)
{
    folder.Write("a/x.jpg", "new");
    folder.Write("b/x.jpg", "old and longer");
    service.Copy(Path("a/x.jpg"), Path("b/x.jpg"));
    EXPECT_EQ(folder.Content("b/x.jpg"), "new");
    EXPECT_EQ(Names("b"), QStringList("x.jpg"));
}

TEST_F(FileServiceTest, ACopyOntoItselfIsRefusedByWhateverName)
{
    folder.Write("a/x.jpg", "only");
    folder.Link("a", "way");
    folder.Link("../a/x.jpg", "b/x.jpg");
    ASSERT_EQ(link(folder.Bytes("a/x.jpg").constData(), folder.Bytes("b/hard.jpg").constData()), 0);
    for (const char* target : {"a/x.jpg", "way/x.jpg", "b/x.jpg", "b/hard.jpg"}) {
        EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/x.jpg"), Path(target)); }), kFailureGeneral)
            << target;
        EXPECT_EQ(FailureOf([&] { service.Move(Path("a/x.jpg"), Path(target)); }), kFailureGeneral)
            << target;
        EXPECT_EQ(folder.Content("a/x.jpg"), "only");
    }
}

TEST_F(FileServiceTest, ALinkAtTheTargetIsReplacedAndWhatItLeadsToStays)
{
    folder.Write("a/x.jpg", "new");
    folder.Write("b/other.jpg", "other");
    folder.Link("other.jpg", "b/x.jpg");
    folder.Link("nowhere.jpg", "b/y.jpg");
    service.Copy(Path("a/x.jpg"), Path("b/x.jpg"));
    service.Copy(Path("a/x.jpg"), Path("b/y.jpg"));
    EXPECT_EQ(folder.Content("b/other.jpg"), "other");
    EXPECT_EQ(folder.Content("b/x.jpg"), "new");
    EXPECT_TRUE(S_ISREG(Stat("b/x.jpg").st_mode));
    EXPECT_EQ(folder.Content("b/y.jpg"), "new");
    EXPECT_FALSE(Exists("b/nowhere.jpg"));
}

TEST_F(FileServiceTest, TargetsThatAreFoldersFilesOnTheWayOrWriteProtectedAreRefused)
{
    folder.Write("a/x.jpg", "new");
    folder.MakeFolder("b/x.jpg");
    EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/x.jpg"), Path("b/x.jpg")); }), kFailureIo);
    folder.Write("b/file");
    EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/x.jpg"), Path("b/file/x.jpg")); }),
              kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/x.jpg"), Path("gone/x.jpg")); }),
              kFailureNoFile);
    folder.Write("b/kept.jpg", "old");
    folder.Chmod("b/kept.jpg", 0444);
    const Unprivileged user;
    EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/x.jpg"), Path("b/kept.jpg")); }),
              kFailureDenied);
    EXPECT_EQ(folder.Content("b/kept.jpg"), "old");
    folder.Chmod("b", 0555);
    EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/x.jpg"), Path("b/fresh.jpg")); }),
              kFailureDenied);
    EXPECT_EQ(FailureOf([&] { service.Move(Path("a/x.jpg"), Path("b/fresh.jpg")); }),
              kFailureDenied);
    EXPECT_EQ(folder.Content("a/x.jpg"), "new");
    folder.Chmod("b", 0755);
}

TEST_F(FileServiceTest, AFileThatIsToBeKeptIsNotReplaced)
{
    folder.Write("a/x.jpg", "one");
    folder.Write("a/y.jpg", "two");
    const FileIds keep{service.Copy(Path("a/x.jpg"), Path("b/x.jpg"))};
    EXPECT_EQ(FailureOf([&] { service.Copy(Path("a/y.jpg"), Path("b/x.jpg"), keep); }),
              kFailureGeneral);
    EXPECT_EQ(FailureOf([&] { service.Move(Path("a/y.jpg"), Path("b/x.jpg"), keep); }),
              kFailureGeneral);
    EXPECT_EQ(folder.Content("b/x.jpg"), "one");
    EXPECT_EQ(folder.Content("a/y.jpg"), "two");
}

TEST_F(FileServiceTest, AMoveTakesTheFileAway)
{
    folder.Write("a/x.jpg", "one");
    folder.Write("b/x.jpg", "old");
    EXPECT_EQ(service.Move(Path("a/x.jpg"), Path("b/x.jpg")).sourceStays, QString());
    EXPECT_FALSE(Exists("a/x.jpg"));
    EXPECT_EQ(folder.Content("b/x.jpg"), "one");
}

TEST_F(FileServiceTest, AMoveToAnotherVolumeTakesTheFileAway)
{
    const TempFolder other("/dev/shm");
    struct stat here {
    }, there{};
    ASSERT_EQ(stat(folder.Bytes().constData(), &here), 0);
    ASSERT_EQ(stat(other.Bytes().constData(), &there), 0);
    ASSERT_NE(here.st_dev, there.st_dev);
    folder.Write("a/x.jpg", "one");
    EXPECT_EQ(service.Move(Path("a/x.jpg"), other.Path("x.jpg")).sourceStays, QString());
    EXPECT_FALSE(Exists("a/x.jpg"));
    EXPECT_EQ(other.Content("x.jpg"), "one");
}

TEST_F(FileServiceTest, AMovedLinkLeavesItsContentAtTheTarget)
{
    folder.Write("a/real.jpg", "one");
    folder.Link("real.jpg", "a/x.jpg");
    service.Move(Path("a/x.jpg"), Path("b/x.jpg"));
    EXPECT_EQ(folder.Content("b/x.jpg"), "one");
    EXPECT_EQ(Names("a"), QStringList("real.jpg"));
}

TEST_F(FileServiceTest, ADeletedLinkLeavesItsTarget)
{
    folder.Write("a/real.jpg", "one");
    folder.Link("real.jpg", "a/x.jpg");
    service.Delete(Path("a/x.jpg"));
    EXPECT_EQ(Names("a"), QStringList("real.jpg"));
    EXPECT_EQ(FailureOf([&] { service.Delete(Path("a")); }), kFailureIo);
    EXPECT_EQ(FailureOf([&] { service.Delete(Path("a/gone")); }), kFailureNoFile);
}

TEST_F(FileServiceTest, ARenameReplacesOnlyWhenTold)
{
    folder.Write("a/x.jpg", "one");
    folder.Write("a/y.jpg", "two");
    EXPECT_TRUE(service.WouldReplace(Path("a/x.jpg"), Path("a/y.jpg")));
    EXPECT_FALSE(service.WouldReplace(Path("a/x.jpg"), Path("a/X.jpg")));
    EXPECT_EQ(FailureOf([&] { service.Rename(Path("a/x.jpg"), Path("a/y.jpg"), false); }),
              kFailureIo);
    EXPECT_EQ(folder.Content("a/y.jpg"), "two");
    service.Rename(Path("a/x.jpg"), Path("a/X.jpg"), false);
    EXPECT_EQ(Names("a"), (QStringList{"X.jpg", "y.jpg"}));
    service.Rename(Path("a/X.jpg"), Path("a/y.jpg"), true);
    EXPECT_EQ(folder.Content("a/y.jpg"), "one");
    EXPECT_EQ(Names("a"), QStringList("y.jpg"));
    EXPECT_EQ(FailureOf([&] { service.Rename(Path("a/y.jpg"), Path("b"), true); }), kFailureIo);
}

TEST_F(FileServiceTest, NamesThatAreNoTextAreCopiedAsTheyAre)
{
    const QByteArray name = "a/\xff\xfe.jpg";
    folder.Write(name, "bytes");
    service.Copy(folder.Path(name), folder.Path("b/\xff\xfe.jpg"));
    EXPECT_EQ(folder.Content("b/\xff\xfe.jpg"), "bytes");
}

} // namespace

} // namespace quillane
