#include "core/native_path.h"
#include "imaging/thumbs/thumbnail_scanner.h"
#include "platform/fake/fake_loop.h"
#include "thumbs_support.h"
#include <atomic>
#include <gtest/gtest.h>
#include <unistd.h>

namespace quillane {

namespace {

/// A folder that is scanned, and what was delivered.
class Scanner : public testing::Test {
protected:
    void WriteJpeg(const QByteArray& name, int width = 64) const
    {
        making::JpegMake make;
        make.width = width;
        mFolder.Write(name, making::MakeJpeg(make));
    }
    void Prepare(const QStringList& masks, bool deep = false)
    {
        FolderListing listing;
        listing.Read(mFolder.Path(), deep);
        mScanner.Prepare(listing, masks);
    }
    /// Browses one mask; answers the events' names, "name status" where it is not good.
    QStringList Browse(int index, int goOnFor = 1'000'000)
    {
        QStringList events;
        mFinished = mScanner.Browse(index, mGeneration, [&](const ScannedFile& file) {
            QString event = file.path.mid(mFolder.Path().size());
            if (file.status != kScanGood) {
                event += QStringLiteral(" %1").arg(file.status);
            }
            events.append(event);
            return events.size() < goOnFor;
        });
        return events;
    }

    TempFolder mFolder;
    FakeLoop mLoop;
    ThumbnailScanner mScanner{mLoop};
    Generation mGeneration = mLoop.NewGeneration();
    bool mFinished = false;
};

} // namespace

TEST_F(Scanner, DeliversEachMaskInTheOrderOfNames)
{
    WriteJpeg("b.jpg");
    WriteJpeg("A.JPG", 80);
    WriteJpeg("c.jpg");
    mFolder.Write("a.png", making::MakePng({}));
    mFolder.Write("note.txt", "text");
    Prepare({"*.GIF", "*.JPG", "*.PNG"});
    EXPECT_EQ(Browse(0), QStringList());
    EXPECT_EQ(Browse(1), QStringList({"A.JPG", "b.jpg", "c.jpg"}));
    EXPECT_EQ(Browse(2), QStringList({"a.png"}));
    EXPECT_TRUE(mFinished);
}

TEST_F(Scanner, TellsTheFactsOfTheHeader)
{
    WriteJpeg("a.jpg", 123);
    Prepare({"*.JPG"});
    ImageFacts facts;
    mScanner.Browse(0, mGeneration, [&](const ScannedFile& file) {
        facts = file.facts;
        return true;
    });
    EXPECT_EQ(facts.width, 123);
    EXPECT_EQ(facts.height, 48);
    EXPECT_EQ(facts.bits, 24);
    EXPECT_GT(facts.sizeDisk, 100);
}

TEST_F(Scanner, AFileUnderTwoMasksIsDeliveredTwice)
{
    WriteJpeg("a.jpg");
    WriteJpeg("b.jpg");
    Prepare({"*.JPG", "*.PNG", "*.JPG"});
    EXPECT_EQ(Browse(0), QStringList({"a.jpg", "b.jpg"}));
    EXPECT_EQ(Browse(1), QStringList());
    EXPECT_EQ(Browse(2), QStringList({"a.jpg", "b.jpg"}));
}

TEST_F(Scanner, OfAFileThatIsNotWantedNothingIsReadAndItsEventSaysSo)
{
    WriteJpeg("a.jpg");
    mFolder.Write("b.jpg", "no picture, which nobody finds out");
    WriteJpeg("c.jpg");
    const QString folder = mFolder.Path();
    std::atomic<int> asked = 0;
    mScanner.Prepare(
        {{folder + "a.jpg", folder + "b.jpg"}, {folder + "c.jpg", folder + "gone.jpg"}},
        [&](const QString& path) {
            ++asked;
            return !path.endsWith(QLatin1String("b.jpg"));
        });
    EXPECT_EQ(Browse(0), QStringList({"a.jpg", QStringLiteral("b.jpg %1").arg(kScanUnwanted)}));
    EXPECT_EQ(Browse(1), QStringList({"c.jpg", QStringLiteral("gone.jpg %1").arg(kScanIgnored)}));
    EXPECT_EQ(asked, 4);
}

TEST_F(Scanner, ANoEndsThatMaskAlone)
{
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) {
        WriteJpeg(name);
    }
    mFolder.Write("a.png", making::MakePng({}));
    mFolder.Write("b.png", making::MakePng({}));
    Prepare({"*.JPG", "*.PNG"});
    EXPECT_EQ(Browse(0, 1), QStringList({"a.jpg"}));
    EXPECT_TRUE(mFinished);
    EXPECT_EQ(Browse(1, 1), QStringList({"a.png"}));
    EXPECT_TRUE(mFinished);
}

TEST_F(Scanner, MasksMayBeLeftOut)
{
    WriteJpeg("a.jpg");
    mFolder.Write("a.png", making::MakePng({}));
    Prepare({"*.JPG", "*.PNG"});
    EXPECT_EQ(Browse(1), QStringList({"a.png"}));
    EXPECT_EQ(Browse(7), QStringList());
    EXPECT_EQ(Browse(-1), QStringList());
}

TEST_F(Scanner, ANewerGenerationEndsItAtOnce)
{
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) {
        WriteJpeg(name);
    }
    Prepare({"*.JPG", "*.PNG"});
    int events = 0;
    EXPECT_FALSE(mScanner.Browse(0, mGeneration, [&](const ScannedFile&) {
        ++events;
        mLoop.NewGeneration();
        return true;
    }));
    EXPECT_EQ(events, 1);
    EXPECT_FALSE(mScanner.Browse(9, mGeneration, [](const ScannedFile&) { return true; }));
}

TEST_F(Scanner, YieldsWithEveryEvent)
{
    for (int i = 0; i < 50; ++i) {
        WriteJpeg("a" + QByteArray::number(i) + ".jpg");
    }
    Prepare({"*.JPG"});
    EXPECT_EQ(Browse(0).size(), 50);
    EXPECT_GE(mLoop.Yields(), 50);
}

TEST_F(Scanner, ManyMoreFilesThanAreHeldAheadKeepTheirOrder)
{
    constexpr int kFiles = 10'000;
    WriteJpeg("source");
    for (int i = 0; i < kFiles; ++i) {
        const QByteArray name = QByteArray::number(100'000 + i) + (i % 3 ? ".jpg" : ".png");
        ASSERT_EQ(link(mFolder.Bytes("source").constData(), mFolder.Bytes(name).constData()), 0);
    }
    Prepare({"*.PNG", "*.JPG"});
    QStringList events = Browse(0);
    EXPECT_EQ(events.size(), (kFiles + 2) / 3);
    QStringList ordered = events;
    ordered.sort();
    EXPECT_EQ(events, ordered);
    // Ended early: what was read ahead is dropped, and nothing of it comes back.
    EXPECT_EQ(Browse(1, 100).size(), 100);
    EXPECT_EQ(Browse(1).size(), 0);

    Prepare({"*.JPG"});
    events = Browse(0);
    EXPECT_EQ(events.size(), kFiles - (kFiles + 2) / 3);
    EXPECT_EQ(events.first(), "100001.jpg");
    EXPECT_EQ(events.last(), "109998.jpg");
}

TEST_F(Scanner, UnreadableFilesSaySo)
{
    mFolder.Write("broken.jpg", "no picture");
    mFolder.Write("empty.jpg", "");
    mFolder.Write("clip.avi", "RIFF....AVI ");
    Prepare({"*.JPG", "*.AVI"});
    EXPECT_EQ(Browse(0), QStringList({"broken.jpg 1", "empty.jpg 1"}));
    EXPECT_EQ(Browse(1), QStringList({"clip.avi 1"}));
}

TEST_F(Scanner, AlbumsAndPrintSettingsAreKnownWithoutBeingOpened)
{
    mFolder.Write("a.ifl", "album");
    mFolder.Write("B.LY2", "settings");
    const qint64 opens = PathCallCount().opens;
    Prepare({"*.IFL", "*.LY2"});
    EXPECT_EQ(Browse(0), QStringList({"a.ifl 5"}));
    EXPECT_EQ(Browse(1), QStringList({"B.LY2 5"}));
    EXPECT_EQ(PathCallCount().opens, opens);
}

TEST_F(Scanner, APictureInAFolderNamedLikeAnAlbumIsAPicture)
{
    mFolder.MakeFolder("my.ifl");
    WriteJpeg("my.ifl/a.jpg");
    mFolder.Write("my.ifl/b.jpg", "no picture");
    Prepare({"*.JPG"}, true);
    EXPECT_EQ(Browse(0), QStringList({"my.ifl/a.jpg", "my.ifl/b.jpg 5"}));
}

TEST_F(Scanner, EachFileIsOpenedOnce)
{
    for (int i = 0; i < 30; ++i) {
        WriteJpeg("a" + QByteArray::number(i) + ".jpg");
    }
    const PathCalls before = PathCallCount();
    Prepare({"*.GIF", "*.JPG", "*.PNG"});
    for (int i = 0; i < 3; ++i) {
        Browse(i);
    }
    EXPECT_EQ(PathCallCount().opens - before.opens, 30);
    EXPECT_EQ(PathCallCount().lists - before.lists, 1);
}

TEST_F(Scanner, WhatIsNoOrdinaryFileIsNeverOpened)
{
    WriteJpeg("a.jpg");
    ASSERT_EQ(mkfifo(mFolder.Bytes("b.jpg").constData(), 0600), 0);
    mFolder.Link("/dev/zero", "c.jpg");
    mFolder.Link("nowhere", "d.jpg");
    mFolder.MakeFolder("e.jpg");
    const qint64 opens = PathCallCount().opens;
    Prepare({"*.JPG"});
    EXPECT_EQ(Browse(0), QStringList({"a.jpg"}));
    EXPECT_EQ(PathCallCount().opens - opens, 1);
}

TEST_F(Scanner, WhatChangedSinceTheListingIsPassedOver)
{
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg"}) {
        WriteJpeg(name);
    }
    mFolder.Write("e.ifl", "album");
    FolderListing listing;
    listing.Read(mFolder.Path());
    RemoveFile(mFolder.Path("a.jpg"));
    RemoveFile(mFolder.Path("c.jpg"));
    RemoveFile(mFolder.Path("e.ifl"));
    ASSERT_EQ(mkfifo(mFolder.Bytes("c.jpg").constData(), 0600), 0);
    const qint64 opens = PathCallCount().opens;
    mScanner.Prepare(listing, {"*.JPG", "*.IFL"});
    EXPECT_EQ(Browse(0), QStringList({"a.jpg 2", "b.jpg", "c.jpg 2", "d.jpg"}));
    EXPECT_EQ(Browse(1), QStringList({"e.ifl 2"}));
    EXPECT_EQ(PathCallCount().opens - opens, 2);
}

TEST_F(Scanner, FilesOfSubFoldersFollowFolderByFolder)
{
    WriteJpeg("z.jpg");
    mFolder.MakeFolder("b");
    WriteJpeg("b/a.jpg");
    mFolder.MakeFolder("a");
    WriteJpeg("a/y.jpg");
    mFolder.Write("a/x.png", making::MakePng({}));
    mFolder.Link("..", "b/circle");
    Prepare({"*.JPG", "*.PNG"}, true);
    EXPECT_EQ(Browse(0), QStringList({"z.jpg", "a/y.jpg", "b/a.jpg"}));
    EXPECT_EQ(Browse(1), QStringList({"a/x.png"}));
    Prepare({"*.JPG"}, false);
    EXPECT_EQ(Browse(0), QStringList({"z.jpg"}));
}

TEST_F(Scanner, NamesAreBytes)
{
    const QList<QByteArray> names{"new\nline.jpg", "a b.jpg", "\xff\xfe.jpg",
                                  "\xce\x95\xce\xb9.jpg", "\xd7\xa9.jpg"};
    for (const QByteArray& name : names) {
        WriteJpeg(name);
    }
    Prepare({"*.JPG"});
    QStringList events = Browse(0);
    QStringList expected;
    for (const QByteArray& name : names) {
        expected.append(PathFromBytes(name));
    }
    events.sort();
    expected.sort();
    EXPECT_EQ(events, expected);
}

TEST_F(Scanner, AFolderThatCannotBeReadHasNoEvents)
{
    FolderListing listing;
    listing.Read(mFolder.Path("nowhere/"));
    mScanner.Prepare(listing, {"*.JPG"});
    EXPECT_EQ(Browse(0), QStringList());
    EXPECT_TRUE(mFinished);
}

TEST_F(Scanner, StopForgetsWhatWasPrepared)
{
    EXPECT_EQ(Browse(0), QStringList());
    for (int i = 0; i < 200; ++i) {
        WriteJpeg("a" + QByteArray::number(i) + ".jpg");
    }
    Prepare({"*.JPG"});
    mScanner.Stop();
    EXPECT_EQ(Browse(0), QStringList());
    Prepare({"*.JPG"});
    Prepare({"*.JPG"});
    EXPECT_EQ(Browse(0).size(), 200);
}

TEST_F(Scanner, MayBePreparedAnewInsideAnEvent)
{
    for (int i = 0; i < 100; ++i) {
        WriteJpeg("a" + QByteArray::number(i) + ".jpg");
    }
    Prepare({"*.JPG"});
    int events = 0;
    mScanner.Browse(0, mGeneration, [&](const ScannedFile&) {
        if (++events == 3) {
            Prepare({"*.JPG"});
        }
        return events < 5;
    });
    EXPECT_EQ(events, 5);
    EXPECT_EQ(Browse(0).size(), 100);
}

} // namespace quillane
