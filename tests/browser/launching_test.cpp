#include "browser/launching.h"
#include "browser/map_road.h"
#include "browser/wallpaper_road.h"

#include "core/expect_failure.h"
#include "core/paths.h"
#include "core/temp_folder.h"
#include "imaging/engine.h"
#include "platform/fake/fake_platform.h"
#include <limits>

namespace quillane {

class LaunchingTest : public testing::Test {
protected:
    LaunchingTest() : fakes(folder.Path("home"))
    {
        folder.MakeFolder("home");
        session.gsPath = folder.Path();
    }
    /// A picture with that description, in the format of its name.
    QString Picture(const QByteArray& name, const QString& description, qint16 format = 98)
    {
        QImage pixels(40, 30, QImage::Format_RGB32);
        pixels.fill(Qt::red);
        EngineInstance engine;
        engine.SetBitmap(Bitmap(pixels, ColourModel::Rgb, 24));
        if (!description.isEmpty()) {
            engine.SetComment(3, CommentValue(description));
        }
        engine.Save(folder.Path(name), format, 24, 2, kSaveReplace);
        return folder.Path(name);
    }
    TellLine Tell()
    {
        return [this](const QString& line) { told.append(line); };
    }

    TempFolder folder;
    FakePlatform fakes;
    Session session;
    QStringList told;
};

TEST_F(LaunchingTest, ASlotGetsTheFileUnquotedAndTheFolder)
{
    session.gsFileName = "/p/two blanks  here.jpg";
    RunCustomSlot({1, "Paint", "/opt/my paint"}, session, fakes.launcher, Tell());
    ASSERT_EQ(fakes.launcher.started.size(), 1);
    EXPECT_EQ(fakes.launcher.started[0].program, "/opt/my paint");
    EXPECT_EQ(fakes.launcher.started[0].arguments, QStringList({"/p/two", "blanks", "here.jpg"}));
    EXPECT_EQ(fakes.launcher.started[0].folder, folder.Path());
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(LaunchingTest, ASlotThatCannotBeStartedIsToldInALine)
{
    fakes.launcher.fails = true;
    RunCustomSlot({1, "Paint", "/opt/paint"}, session, fakes.launcher, Tell());
    RunCustomSlot({1, "", "/opt/paint"}, session, fakes.launcher, Tell());
    EXPECT_EQ(told,
              QStringList({"\"Paint\" failed: Nothing opens this.",
                           "\"paint\" failed: Nothing opens this."}));
}

TEST_F(LaunchingTest, ASlotThatIsOffIsNotRun)
{
    for (const qint16 active : {0, -1, 2}) {
        RunCustomSlot({active, "Pa&int", "/opt/paint"}, session, fakes.launcher, Tell());
    }
    EXPECT_TRUE(fakes.launcher.started.isEmpty());
    EXPECT_EQ(told, QStringList(3, "\"Paint\" is switched off in the preferences."));
}

TEST_F(LaunchingTest, ASlotWithoutAPathFailsWithALine)
{
    RunCustomSlot({1, "Paint", ""}, session, fakes.launcher, Tell());
    RunCustomSlot({1, "", ""}, session, fakes.launcher, Tell());
    EXPECT_TRUE(fakes.launcher.started.isEmpty());
    EXPECT_EQ(told,
              QStringList({"\"Paint\" has no program yet. Choose one in the preferences.",
                           "\"The tool\" has no program yet. Choose one in the preferences."}));
}

TEST_F(LaunchingTest, ALineHasRoomForTheNameOfASlot)
{
    fakes.launcher.fails = true;
    RunCustomSlot({1, QString(5000, u'W'), "/opt/paint"}, session, fakes.launcher, Tell());
    RunCustomSlot({1, "two\nlines", "/opt/paint"}, session, fakes.launcher, Tell());
    ASSERT_EQ(told.size(), 2);
    EXPECT_LT(told[0].size(), 120);
    EXPECT_EQ(told[1], "\"two lines\" failed: Nothing opens this.");
}

TEST_F(LaunchingTest, TheWorkingFolderOfAFilePickedInTheTreeIsItsFolder)
{
    folder.Write("a.jpg");
    session.gsPath = folder.Path("a.jpg");
    RunCustomSlot({1, "Paint", "/opt/paint"}, session, fakes.launcher, Tell());
    session.gsPath = WithoutSeparator(folder.Path()); // "Show All Files" leaves it without one
    RunCustomSlot({1, "Paint", "/opt/paint"}, session, fakes.launcher, Tell());
    session.gsPath = folder.Path("gone/");
    RunCustomSlot({1, "Paint", "/opt/paint"}, session, fakes.launcher, Tell());
    ASSERT_EQ(fakes.launcher.started.size(), 3);
    EXPECT_EQ(WithSeparator(fakes.launcher.started[0].folder), folder.Path());
    EXPECT_EQ(WithSeparator(fakes.launcher.started[1].folder), folder.Path());
    EXPECT_EQ(fakes.launcher.started[2].folder, folder.Path("gone/"));
}

TEST_F(LaunchingTest, NoCurrentFileIsNoParameter)
{
    RunCustomSlot({1, "Paint", "/opt/paint"}, session, fakes.launcher, Tell());
    ASSERT_EQ(fakes.launcher.started.size(), 1);
    EXPECT_TRUE(fakes.launcher.started[0].arguments.isEmpty());
}

TEST_F(LaunchingTest, AToolThatEndsBadlyLaterIsToldInALine)
{
    RunCustomSlot({1, "Paint", "/opt/paint"}, session, fakes.launcher, Tell());
    EXPECT_TRUE(told.isEmpty());
    ASSERT_TRUE(fakes.launcher.started[0].failed);
    fakes.launcher.started[0].failed("/opt/paint ended with error 1.");
    EXPECT_EQ(told, QStringList("\"Paint\" failed: /opt/paint ended with error 1."));
}

TEST_F(LaunchingTest, AMailGetsTheSelectedFilesInListOrder)
{
    session.lbFilTiffs = {"/c.jpg", "/a.jpg", "/b.jpg"};
    SendImagesByMail(session, {false, true, true}, fakes.mail, {});
    EXPECT_EQ(fakes.mail.composed, QVector<QStringList>({QStringList({"/a.jpg", "/b.jpg"})}));
}

TEST_F(LaunchingTest, TheMapOfSomethingElseThanAPictureHasNoArguments)
{
    for (const char* file : {"", "/p/album.ifl", "/p/notes.txt"}) {
        const MapCommand command = MapRoad(file, "/app/", fakes.loop);
        EXPECT_EQ(command.program, "/app/Wayfarix.exe");
        EXPECT_TRUE(command.arguments.isEmpty()) << file;
    }
}

TEST_F(LaunchingTest, TheMapOfAPictureGetsItsPosition)
{
    const QString file = Picture("a.jpg", "Lat=48.2\r\nLong=-16.37\r\nElevation=171 m\r\n");
    const MapCommand command = MapRoad(file, "/app/", fakes.loop);
    EXPECT_EQ(command.program, "/app/Wayfarix.exe");
    EXPECT_EQ(command.arguments, QStringList({file, "48.2", "-16.37", "171", "m"}));
}

TEST_F(LaunchingTest, AnAbsentTagIsAnEmptyTextBetweenBlanks)
{
    const QString some = Picture("some.jpg", "Long=16.37\r\n");
    EXPECT_EQ(MapRoad(some, "/app/", fakes.loop).arguments, QStringList({some, "", "16.37", ""}));
    const QString none = Picture("none.jpg", {});
    EXPECT_EQ(MapRoad(none, "/app/", fakes.loop).arguments.join(' '), none + "   ");
}

TEST_F(LaunchingTest, ABlankInThePathReachesTheMapAsTwoParameters)
{
    const QString file = Picture("a b.jpg", "Lat=1\r\nLong=2\r\nElevation=3\r\n");
    EXPECT_EQ(MapRoad(file, "/my app/", fakes.loop).arguments.join(' '), file + " 1 2 3");
    EXPECT_EQ(MapRoad(file, "/my app/", fakes.loop).arguments.size(), 5);
}

TEST_F(LaunchingTest, ThePositionOfAPictureThatCannotBeReadIsAFailure)
{
    folder.Write("damaged.jpg", "no picture");
    EXPECT_EQ(FailureOf([&] { MapRoad(folder.Path("damaged.jpg"), "/app/", fakes.loop); }),
              kFailureUnreadable);
    EXPECT_EQ(FailureOf([&] { MapRoad(folder.Path("absent.jpg"), "/app/", fakes.loop); }),
              kFailureNoFile);
}

TEST_F(LaunchingTest, TheWallpaperIsABitmapFileOf24BitsInItsPlace)
{
    const QString file = Picture("a.jpg", "text");
    SetPhotoAsWallpaper(file, fakes.Services(), Tell());
    const QString place = fakes.places.Wallpaper();
    EXPECT_EQ(fakes.wallpaper.set, QStringList(place));
    const ImageFacts facts = ProbeFile(place);
    EXPECT_EQ(facts.width, 40);
    EXPECT_EQ(facts.height, 30);
    EXPECT_EQ(facts.bits, 24);
    EXPECT_EQ(facts.format, 6);
    EXPECT_TRUE(folder.Content("home/Wallpaper.bmp").startsWith("BM"));
    EXPECT_TRUE(told.isEmpty());
    fakes.wallpaper.ended[0]({});
    EXPECT_EQ(told, QStringList("The photo is the wallpaper now."));
}

TEST_F(LaunchingTest, AnEarlierWallpaperIsReplaced)
{
    folder.Write("home/Wallpaper.bmp", "old");
    SetPhotoAsWallpaper(Picture("a.jpg", {}), fakes.Services(), Tell());
    EXPECT_EQ(ProbeFile(fakes.places.Wallpaper()).bits, 24);
}

TEST_F(LaunchingTest, WhenThePictureCannotBeReadTheDesktopIsToldTheOldPath)
{
    folder.Write("home/Wallpaper.bmp", "old");
    folder.Write("damaged.jpg", "no picture");
    SetPhotoAsWallpaper(folder.Path("damaged.jpg"), fakes.Services(), Tell());
    EXPECT_EQ(folder.Content("home/Wallpaper.bmp"), "old");
    EXPECT_EQ(fakes.wallpaper.set, QStringList(fakes.places.Wallpaper()));
    fakes.wallpaper.ended[0]({});
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].startsWith("The wallpaper could not be set: ")) << told[0].toStdString();
}

TEST_F(LaunchingTest, WhenThePlaceCannotBeWrittenTheDesktopIsToldTheOldPath)
{
    folder.MakeFolder("home/Wallpaper.bmp"); // nothing can take the place of a folder
    SetPhotoAsWallpaper(Picture("a.jpg", {}), fakes.Services(), Tell());
    EXPECT_EQ(fakes.wallpaper.set, QStringList(fakes.places.Wallpaper()));
    EXPECT_TRUE(told.isEmpty()) << "no word before the end, and no box";
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchingTest, ADesktopThatFailsIsToldInALine)
{
    const QString file = Picture("a.jpg", {});
    SetPhotoAsWallpaper(file, fakes.Services(), Tell());
    fakes.wallpaper.ended[0](Failure(kFailureGeneral, "feh ended with error 2."));
    fakes.wallpaper.refuses = true;
    SetPhotoAsWallpaper(file, fakes.Services(), Tell());
    EXPECT_EQ(told,
              QStringList({"The wallpaper could not be set: feh ended with error 2.",
                           "The wallpaper could not be set: Nothing opens this."}));
}

TEST_F(LaunchingTest, AWallpaperThatAPersonRefusesStaysAsItWas)
{
    SetPhotoAsWallpaper(Picture("a.jpg", {}), fakes.Services(), Tell());
    fakes.wallpaper.ended[0](Failure(kFailureCancelled, "no"));
    EXPECT_EQ(told, QStringList("The wallpaper stays as it was."));
}

TEST_F(LaunchingTest, TheHourglassIsOnWhileTheWallpaperIsMade)
{
    class Watching : public WallpaperService {
    public:
        explicit Watching(const FakeLoop& watched) : mLoop(watched) { }
        int depth = 0;
        void Set(const QString&, ServiceEnded) override { depth = mLoop.HourglassDepth(); }

    private:
        const FakeLoop& mLoop;
    } watching(fakes.loop);
    const Platform all = fakes.Services();
    SetPhotoAsWallpaper(Picture("a.jpg", {}),
                        {all.dialogs, all.loop, all.launcher, all.places, all.watch, all.scanner,
                         watching, all.mail, all.files},
                        Tell());
    EXPECT_EQ(watching.depth, 1);
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
}

TEST_F(LaunchingTest, EveryDepthBecomesABitmapOf24Bits)
{
    QImage grey(20, 10, QImage::Format_Grayscale8);
    grey.fill(100);
    QImage glass(20, 10, QImage::Format_ARGB32);
    glass.fill(qRgba(10, 20, 30, 40));
    QImage bits(20, 10, QImage::Format_Mono);
    bits.fill(1);
    int number = 0;
    for (const QImage& image : {grey, glass, bits}) {
        const QByteArray name = "depth" + QByteArray::number(++number) + ".png";
        ASSERT_TRUE(image.save(folder.Path(name)));
        SetPhotoAsWallpaper(folder.Path(name), fakes.Services(), Tell());
        const ImageFacts facts = ProbeFile(fakes.places.Wallpaper());
        EXPECT_EQ(facts.bits, 24) << number;
        EXPECT_EQ(facts.width, 20) << number;
    }
    EXPECT_EQ(number, 3);
}

TEST_F(LaunchingTest, AQualityThatNoFormatKnowsIsTheNearestOne)
{
    // What a person can type into the preferences.
    const QString file = Picture("a.jpg", {});
    EngineInstance engine;
    engine.Load(file, 0, 0);
    const auto sizeWith = [&](qint32 quality) {
        engine.Save(folder.Path("q.jpg"), 98, 24, quality, kSaveReplace);
        return StatPath(folder.Path("q.jpg")).size;
    };
    for (const qint32 low : {1, 0, -7, std::numeric_limits<qint32>::min()}) {
        EXPECT_EQ(sizeWith(low), sizeWith(2)) << low;
    }
    for (const qint32 high : {256, 1'000'000'000, std::numeric_limits<qint32>::max()}) {
        EXPECT_EQ(sizeWith(high), sizeWith(255)) << high;
    }
}

TEST_F(LaunchingTest, TheHourglassEndsWithTheRoad)
{
    folder.Write("damaged.jpg", "no picture");
    SetPhotoAsWallpaper(folder.Path("damaged.jpg"), fakes.Services(), Tell());
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
}

} // namespace quillane
