#include "core/folder_listing.h"
#include "core/native_path.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include <gtest/gtest.h>

namespace quillane {

constexpr const char* kMask43 =
    "*.AWD;*.BMP;*.CAL;*.CLP;*.CMP;*.CUR;*.CUT;*.DIC;*.DWF;*.DWG;*.DXF;*.EMF;*.EPS;*.FAX;*.FPX;"
    "*.GIF;*.ICA;*.ICO;*.IFF;*.IMG;*.ITG;*.JPG;*.MAC;*.MSP;*.PBM;*.PCT;*.FPX;*.PCX;*.PGM;*.PNG;"
    "*.PPM;*.PSD;*.RAS;*.RAW;*.MOV;*.TGA;*.TIF;*.WMF;*.WPG;*.IFL;*.LY2;*.AVI;*.MPG";

QStringList LeafNames(const FolderListing& listing, const QString& pattern, const QString& folder)
{
    QStringList names;
    for (const QString& path : listing.Paths(pattern)) {
        EXPECT_TRUE(path.startsWith(folder)) << path.toStdString();
        names.append(path.mid(folder.size()));
    }
    return names;
}

TEST(PatternsOf, KeepsTheirOrderAndTheOneThatStandsTwice)
{
    const QStringList patterns = PatternsOf(kMask43);
    EXPECT_EQ(patterns.size(), 43);
    EXPECT_EQ(patterns.first(), "*.AWD");
    EXPECT_EQ(patterns.last(), "*.MPG");
    EXPECT_EQ(patterns.count("*.FPX"), 2);
    EXPECT_EQ(PatternsOf({}), QStringList());
    EXPECT_EQ(PatternsOf("*.A;;*.B;"), (QStringList{"*.A", "*.B"}));
}

TEST(FolderListing, NamesMatchWithoutRegardToCaseAndStandInOrder)
{
    TempFolder folder;
    for (const char* name : {"b.JPG", "A.jpg", "c.Jpg", "d.jpeg", "e.tif", "f.txt", "noextension",
                             "g.jpg.txt", "h.JPG2"})
        folder.Write(name);
    FolderListing listing;
    listing.Read(folder.Path());
    EXPECT_TRUE(listing.IsReadable());
    EXPECT_EQ(listing.Folder(), folder.Path());
    EXPECT_EQ(listing.Names("*.JPG"), (QStringList{"A.jpg", "b.JPG", "c.Jpg"}));
    EXPECT_EQ(listing.Names("*.TIF;*.JPG"), (QStringList{"A.jpg", "b.JPG", "c.Jpg", "e.tif"}));
    EXPECT_EQ(listing.Names(kMask43), (QStringList{"A.jpg", "b.JPG", "c.Jpg", "e.tif"}));
    EXPECT_EQ(listing.Names("*").size(), 9);
    EXPECT_EQ(listing.Names({}), QStringList());
}

TEST(FolderListing, AFlashPixFileIsOneNameAndMeetsItsPatternTwice)
{
    TempFolder folder;
    folder.Write("a.fpx");
    FolderListing listing;
    listing.Read(folder.Path());
    EXPECT_EQ(listing.Names(kMask43), QStringList{"a.fpx"});
    int cells = 0;
    for (const QString& pattern : PatternsOf(kMask43))
        cells += int(listing.Paths(pattern).size());
    EXPECT_EQ(cells, 2);
}

TEST(FolderListing, PatternsOfEveryShape)
{
    TempFolder folder;
    for (const char* name : {"a.jpg", "a.jpeg", "abc", "x.tar.gz", "y.gz", "a.longext", "b."})
        folder.Write(name);
    FolderListing listing;
    listing.Read(folder.Path());
    const QString at = folder.Path();
    EXPECT_EQ(LeafNames(listing, "*.JPG", at), QStringList{"a.jpg"});
    EXPECT_EQ(LeafNames(listing, "*.JPEG", at), QStringList{"a.jpeg"});
    EXPECT_EQ(LeafNames(listing, "*.LONGEXT", at), QStringList{"a.longext"});
    EXPECT_EQ(LeafNames(listing, "*.J?G", at), QStringList{"a.jpg"});
    EXPECT_EQ(LeafNames(listing, "*.J*G", at), (QStringList{"a.jpeg", "a.jpg"}));
    EXPECT_EQ(LeafNames(listing, "A?C", at), QStringList{"abc"});
    EXPECT_EQ(LeafNames(listing, "*.TAR.GZ", at), QStringList{"x.tar.gz"});
    EXPECT_EQ(LeafNames(listing, "*.GZ", at), (QStringList{"x.tar.gz", "y.gz"}));
    EXPECT_EQ(LeafNames(listing, "*.", at), QStringList{"b."});
    EXPECT_EQ(LeafNames(listing, "*.G", at), QStringList());
    EXPECT_EQ(listing.Names("*.TAR.GZ;*.LONGEXT;A?C"),
              (QStringList{"a.longext", "abc", "x.tar.gz"}));
}

TEST(FolderListing, PathsAreTheFolderAsGivenJoinedToTheName)
{
    TempFolder folder;
    folder.Write("a.jpg");
    FolderListing listing;
    const QString bare = folder.Path().chopped(1);
    listing.Read(bare);
    EXPECT_EQ(listing.Paths("*.JPG"), QStringList{bare + "a.jpg"});
}

TEST(FolderListing, LeavesOutHiddenFilesAndWhatIsNoFile)
{
    TempFolder folder;
    folder.Write("a.jpg");
    folder.Write(".hidden.jpg");
    folder.Write(".jpg");
    folder.MakeFolder("folder.jpg");
    folder.Link("a.jpg", "link.jpg");
    folder.Link("gone.jpg", "dangling.jpg");
    folder.Link("folder.jpg", "linked folder.jpg");
    folder.Link("/dev/null", "device.jpg");
    ASSERT_EQ(mkfifo(folder.Bytes("fifo.jpg").constData(), 0644), 0);
    const qint64 opensBefore = PathCallCount().opens;
    FolderListing listing;
    listing.Read(folder.Path());
    EXPECT_EQ(listing.Names("*.JPG"), (QStringList{"a.jpg", "link.jpg"}));
    EXPECT_EQ(PathCallCount().opens, opensBefore);
}

TEST(FolderListing, NamesMayHoldAnyBytes)
{
    TempFolder folder;
    const QByteArrayList names{"a b.jpg",       "\xCE\xB1.jpg", "\xD7\x90.jpg",  "\xFF\xE4.jpg",
                               "new\nline.jpg", "*.jpg",        "semi;colon.jpg"};
    for (const QByteArray& name : names)
        folder.Write(name);
    FolderListing listing;
    listing.Read(folder.Path());
    QByteArrayList found;
    for (const QString& path : listing.Paths("*.JPG")) {
        EXPECT_EQ(StatPath(path).type, FileType::Regular);
        found.append(BytesFromPath(path).mid(folder.Bytes().size()));
    }
    EXPECT_EQ(QSet<QByteArray>(found.begin(), found.end()),
              QSet<QByteArray>(names.begin(), names.end()));
}

TEST(FolderListing, AFolderThatCannotBeReadIsEmpty)
{
    TempFolder folder;
    folder.MakeFolder("closed");
    folder.Write("closed/a.jpg");
    folder.Write("file");
    FolderListing listing;
    listing.Read(folder.Path("closed"));
    EXPECT_EQ(listing.Names("*").size(), 1);
    for (const char* name : {"missing", "file"}) {
        listing.Read(folder.Path(name));
        EXPECT_FALSE(listing.IsReadable()) << name;
        EXPECT_TRUE(listing.Names("*").isEmpty());
        EXPECT_TRUE(listing.Paths("*").isEmpty());
    }
    listing.Read({});
    EXPECT_FALSE(listing.IsReadable());
    folder.Chmod("closed", 0);
    {
        const Unprivileged now;
        listing.Read(folder.Path("closed"), true);
    }
    EXPECT_FALSE(listing.IsReadable());
    EXPECT_TRUE(listing.Names("*").isEmpty());
    folder.Chmod("closed", 0755);
}

TEST(FolderListing, DeepReadingFollowsSubFoldersFolderByFolder)
{
    TempFolder folder;
    folder.Write("z.jpg");
    folder.MakeFolder("B");
    folder.Write("B/b.jpg");
    folder.MakeFolder("B/inner");
    folder.Write("B/inner/a.jpg");
    folder.MakeFolder("a");
    folder.Write("a/y.jpg");
    folder.Write("a/x.tif");
    folder.MakeFolder(".hidden");
    folder.Write(".hidden/h.jpg");
    FolderListing listing;
    listing.Read(folder.Path(), true);
    EXPECT_EQ(LeafNames(listing, "*.JPG", folder.Path()),
              (QStringList{"z.jpg", "a/y.jpg", "B/b.jpg", "B/inner/a.jpg"}));
    EXPECT_EQ(listing.Names("*.JPG"), QStringList{"z.jpg"}) << "the folder's own alone";
    listing.Read(folder.Path());
    EXPECT_EQ(LeafNames(listing, "*.JPG", folder.Path()), QStringList{"z.jpg"});
}

TEST(FolderListing, DeepReadingFromAPathWithoutSeparatorStillFindsTheFoldersBelow)
{
    TempFolder folder;
    folder.MakeFolder("sub");
    folder.Write("sub/a.jpg");
    FolderListing listing;
    listing.Read(folder.Path().chopped(1), true);
    EXPECT_EQ(listing.Paths("*.JPG"), QStringList{folder.Path("sub/a.jpg")});
}

TEST(FolderListing, LinksInACircleAreVisitedOnce)
{
    TempFolder folder;
    folder.MakeFolder("a");
    folder.Write("a/one.jpg");
    folder.Link("..", "a/up");
    folder.Link(".", "a/self");
    folder.Link("a", "again");
    folder.Link("circle", "circle");
    FolderListing listing;
    listing.Read(folder.Path(), true);
    EXPECT_EQ(LeafNames(listing, "*.JPG", folder.Path()), QStringList{"a/one.jpg"});
}

TEST(FolderListing, DeepReadingPassesOverClosedFolders)
{
    TempFolder folder;
    folder.MakeFolder("closed");
    folder.Write("closed/a.jpg");
    folder.MakeFolder("open");
    folder.Write("open/b.jpg");
    folder.Chmod("closed", 0);
    FolderListing listing;
    {
        const Unprivileged now;
        listing.Read(folder.Path(), true);
    }
    folder.Chmod("closed", 0755);
    EXPECT_TRUE(listing.IsReadable());
    EXPECT_EQ(LeafNames(listing, "*.JPG", folder.Path()), QStringList{"open/b.jpg"});
}

TEST(FolderListing, DeepReadingEndsAtItsDepth)
{
    TempFolder folder;
    QByteArray path;
    for (int depth = 1; depth <= 66; ++depth) {
        path += "d/";
        folder.MakeFolder(path);
        folder.Write(path + "a.jpg");
    }
    FolderListing listing;
    listing.Read(folder.Path(), true);
    EXPECT_EQ(listing.Paths("*.JPG").size(), 64);
}

TEST(FolderListing, DeepReadingEndsWhenTold)
{
    TempFolder folder;
    for (const char* name : {"a", "b", "c"}) {
        folder.MakeFolder(name);
        folder.Write(QByteArray(name) + "/x.jpg");
    }
    FolderListing listing;
    int asked = 0;
    listing.Read(folder.Path(), true, [&] { return ++asked < 3; });
    EXPECT_EQ(LeafNames(listing, "*.JPG", folder.Path()), QStringList{"a/x.jpg"});
    EXPECT_TRUE(listing.IsReadable());
}

TEST(FolderListing, ALargeFolderIsReadOnceAndNoFileIsLookedAt)
{
    constexpr int kNames = 110'000;
    constexpr const char* kExtensions[] = {".JPG", ".jpg", ".TIF", ".txt"};
    TempFolder folder;
    for (int i = 0; i < kNames; ++i) {
        const QByteArray name = "IMG_" + QByteArray::number(i * 7919 % kNames) + kExtensions[i % 4];
        const FileHandle file(
            openat(AT_FDCWD, folder.Bytes(name).constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
        ASSERT_TRUE(file.IsOpen());
    }
    const PathCalls before = PathCallCount();
    FolderListing listing;
    listing.Read(folder.Path());
    const QStringList names = listing.Names(kMask43);
    qsizetype cells = 0;
    for (const QString& pattern : PatternsOf(kMask43))
        cells += listing.Paths(pattern).size();
    const PathCalls after = PathCallCount();

    EXPECT_EQ(after.lists - before.lists, 1);
    EXPECT_EQ(after.stats - before.stats, 0);
    EXPECT_EQ(after.opens - before.opens, 0);
    EXPECT_EQ(names.size(), kNames / 4 * 3);
    EXPECT_EQ(cells, kNames / 4 * 3);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end(), [](const auto& left, const auto& right) {
        return left.compare(right, Qt::CaseInsensitive) < 0;
    }));
}

} // namespace quillane
