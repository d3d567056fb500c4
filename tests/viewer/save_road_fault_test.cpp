// Saves from the viewer when the file, its folder or the disk is not what it was.
#include "save_road_support.h"

#include "core/unprivileged.h"
#include "imaging/reader.h"
#include "platform/desktop/desktop_loop.h"
#include "platform/run_aside.h"
#include <QProcess>
#include <cerrno>
#include <functional>

namespace quillane {
namespace {

constexpr const char* kFaultSamples[] = {"AST_0101.JPG", "CHART.TIF", "petals.png", "chart.gif",
                                         "chart.BMP"};

/// What an independent program says of a file; empty when it fails.
QString Said(const char* program, const QStringList& arguments)
{
    QProcess process;
    process.start(QLatin1String(program), arguments);
    EXPECT_TRUE(process.waitForFinished()) << program;
    EXPECT_EQ(process.exitCode(), 0) << program;
    return QString::fromUtf8(process.readAllStandardOutput());
}

/// The file and the picture in memory after a save that failed.
void ExpectKept(const SaveRoadPlace& place, const QByteArray& name, const QByteArray& content,
                qint64 pixels)
{
    EXPECT_EQ(place.Whole(name), content);
    EXPECT_EQ(place.LEAD1.Bitmap().Pixels().cacheKey(), pixels);
    EXPECT_EQ(place.Entries(), QStringList{QString::fromUtf8(name)});
    EXPECT_TRUE(place.Journals().isEmpty());
}

TEST(SaveRoadFaults, AFileThatVanishedIsMadeAnewWithAllThatItHeld)
{
    for (const char* sample : kFaultSamples) {
        SaveRoadPlace place;
        place.Open(sample);
        const CommentSet before = ReadComments(place.held.file);
        ASSERT_TRUE(RemoveFile(place.held.file));
        for (int round = 0; round < 3; ++round) {
            place.LEAD1.Invert();
            place.Save();
            CommentSet after = ReadComments(place.held.file);
            after.Set(9, before.At(9));
            EXPECT_EQ(after, before) << sample << ' ' << round;
        }
        EXPECT_EQ(place.Entries(), QStringList{QLatin1String(sample)});
    }
}

TEST(SaveRoadFaults, WhatOthersMadeOfTheFileStaysAndThePictureIsSavedElsewhere)
{
    struct Case {
        const char* what;
        std::function<void(const SaveRoadPlace&, const QByteArray&)> meddle;
    };
    const Case cases[] = {
        {"cut",
         [](const auto& place, const QByteArray& name) {
             place.Write(name, place.Whole(name).left(300));
         }},
        {"emptied", [](const auto& place, const QByteArray& name) { place.Write(name, {}); }},
        {"longer",
         [](const auto& place, const QByteArray& name) {
             place.Write(name, place.Whole(name) + QByteArray(5000, 'x'));
         }},
        {"rewritten",
         [](const auto& place, const QByteArray& name) {
             place.Write(name, ReadWholeFile(ViewerSample("AST_0102.JPG"), 1 << 26));
         }},
        {"replaced",
         [](const auto& place, const QByteArray& name) {
             place.Write("other", "somebody's");
             ASSERT_EQ(std::rename(place.Bytes("other").constData(), place.Bytes(name).constData()),
                       0);
         }},
    };
    for (const Case& one : cases) {
        for (const char* sample : kFaultSamples) {
            SCOPED_TRACE(std::string(one.what) + ' ' + sample);
            SaveRoadPlace place;
            place.Open(sample);
            CommentSet before = ReadComments(place.held.file);
            place.LEAD1.Invert();
            const QImage shown = place.LEAD1.Bitmap().ToDisplay();
            one.meddle(place, sample);
            const QByteArray theirs = place.Whole(sample);
            const qint64 pixels = place.LEAD1.Bitmap().Pixels().cacheKey();
            EXPECT_EQ(FailureOf([&] { place.Save(); }), kFailureIo);
            ExpectKept(place, sample, theirs, pixels);
            SaveDialogChoice choice = place.Choice("elsewhere", place.held.format, place.held.bits);
            choice.quality = 2;
            place.SaveAs(choice);
            EXPECT_EQ(place.Whole(sample), theirs);
            const LoadedImage saved = LoadFile(choice.file);
            EXPECT_FALSE(saved.bitmap.IsPartial());
            EXPECT_EQ(saved.bitmap.Pixels().size(), shown.size());
            if (FindSaveVariant(place.held.format)->carrier != CommentCarrier::None) {
                EXPECT_EQ(ReadComments(choice.file).At(kDescriptionSlot),
                          before.At(kDescriptionSlot));
            }
        }
    }
}

TEST(SaveRoadFaults, OfAFileThatWasOnlyTouchedEverythingGoesAlong)
{
    SaveRoadPlace place;
    QByteArray camera = ReadWholeFile(ViewerSample("AST_0101.JPG"), 1 << 26);
    camera.insert(2, QByteArray("\xff\xeb\x00\x0dthe maker's", 15));
    place.Write("camera.jpg", camera);
    place.OpenFile("camera.jpg");
    const timespec times[2] = {{0, UTIME_OMIT}, {1'000'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, place.Bytes("camera.jpg").constData(), times, 0), 0);
    place.SaveAs(place.Choice("new.jpg", place.held.format));
    EXPECT_TRUE(place.Whole("new.jpg").contains("the maker's"));
    place.Write("camera.jpg", QByteArray(camera).replace("the maker's", "their maker"));
    place.SaveAs(place.Choice("new.jpg", place.held.format));
    EXPECT_NE(place.LEAD1.Loaded(), nullptr);
}

TEST(SaveRoadFaults, AFolderThatCannotBeWrittenLosesNothing)
{
    for (const char* sample : kFaultSamples) {
        SaveRoadPlace place;
        place.Open(sample);
        const QByteArray before = place.Whole(sample);
        place.LEAD1.Invert();
        const qint64 pixels = place.LEAD1.Bitmap().Pixels().cacheKey();
        ASSERT_EQ(chmod(place.Bytes().constData(), 0500), 0);
        {
            const Unprivileged nobody;
            EXPECT_EQ(FailureOf([&] { place.Save(); }), kFailureDenied) << sample;
            EXPECT_EQ(FailureOf([&] { place.SaveAs(place.Choice("new.png", 75)); }),
                      kFailureDenied);
        }
        ASSERT_EQ(chmod(place.Bytes().constData(), 0700), 0);
        ExpectKept(place, sample, before, pixels);
        place.Save();
        EXPECT_NE(place.Whole(sample), before);
    }
}

TEST(SaveRoadFaults, AtEveryStepThatFailsTheOldFileStandsOrTheNewOneIsWhole)
{
    for (const char* sample : kFaultSamples) {
        int steps = 1, failed = 0;
        for (int failing = 0; failing < steps; ++failing) {
            SaveRoadPlace place;
            place.Open(sample);
            const QByteArray before = place.Whole(sample);
            place.LEAD1.Invert();
            const qint64 pixels = place.LEAD1.Bitmap().Pixels().cacheKey();
            int step = 0;
            {
                const SaveProbeScope full(
                    [&](SaveStep, qint64&) { return step++ == failing ? ENOSPC : 0; });
                if (ResumeNext([&] { place.Save(); })) {
                    EXPECT_FALSE(LoadFile(place.held.file).bitmap.IsPartial());
                    EXPECT_EQ(place.Entries(), QStringList{QLatin1String(sample)});
                } else {
                    ++failed;
                    ExpectKept(place, sample, before, pixels);
                }
            }
            steps = std::max(steps, step);
            place.Save(); // with room again
        }
        EXPECT_GT(failed, 2) << sample;
    }
}

TEST(SaveRoadFaults, SavesRunBesideTheWindowThread)
{
    SaveRoadPlace place;
    place.Open("AST_0101.JPG");
    DesktopLoop loop;
    place.held.tags = QStringLiteral("A=1");
    RunAside(loop, [&] { SaveImage(place.LEAD1, place.held, loop); });
    EXPECT_EQ(place.Description("AST_0101.JPG"), QStringLiteral("A=1"));
    place.Write("AST_0101.JPG", "somebody's");
    EXPECT_EQ(FailureOf([&] { RunAside(loop, [&] { SaveImage(place.LEAD1, place.held, loop); }); }),
              kFailureIo);
}

/// Saves a changed copy of every file of a folder; counts those that were seen and saved.
void SaveEverySample(const QString& folder, int& seen, int& saved)
{
    ListFolder(folder, [&](DirEntry&& entry) {
        if (entry.type == FileType::Folder) {
            SaveEverySample(folder + entry.name + u'/', seen, saved);
        }
        if (entry.type != FileType::Regular || entry.name.endsWith(QStringLiteral(".md"))
            || entry.name.endsWith(QStringLiteral(".tsv"))) {
            return true;
        }
        ++seen;
        SaveRoadPlace place;
        const QByteArray name = entry.name.toUtf8();
        place.Write(name, ReadWholeFile(folder + entry.name, 1 << 26));
        place.OpenFile(name);
        const QByteArray before = place.Whole(name);
        if (place.LEAD1.HasBitmap()) {
            place.LEAD1.Invert();
        }
        const QSize size = place.LEAD1.Bitmap().Pixels().size();
        QString words;
        try {
            place.Save();
        } catch (const Failure& failure) {
            words = failure.Description();
        }
        if (words.isEmpty()) {
            ++saved;
            EXPECT_EQ(LoadFile(place.held.file).bitmap.Pixels().size(), size) << name.constData();
        } else {
            EXPECT_TRUE(words.endsWith(u'.')) << words.toStdString();
            EXPECT_EQ(place.Whole(name), before) << name.constData();
            std::printf("%s: %s\n", name.constData(), qUtf8Printable(words));
        }
        if (place.LEAD1.HasBitmap()) {
            SaveChoices choices(place.LEAD1.Bitmap(), place.held.format, place.held.bits);
            choices.NameTyped(QStringLiteral("copy.png"));
            SCOPED_TRACE(name.toStdString());
            EXPECT_EQ(FailureOf([&] {
                          place.SaveAs(place.Choice("copy.png", choices.Format(), choices.Bits()));
                      }),
                      0);
            if (StatPath(place.Path("copy.png")).type == FileType::Missing) {
                return true;
            }
            EXPECT_EQ(LoadFile(place.Path("copy.png")).bitmap.Pixels().size(), size);
        }
        return true;
    });
}

TEST(SaveRoadFaults, EverySampleIsSavedOrRefusedInWords)
{
    int seen = 0, saved = 0;
    SaveEverySample(ViewerSample(""), seen, saved);
    std::printf("%d samples, %d saved\n", seen, saved);
    EXPECT_GT(saved, 15);
    const QString shared = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/");
    if (StatPath(shared).type == FileType::Folder) {
        seen = saved = 0;
        SaveEverySample(shared, seen, saved);
        std::printf("%d samples beside the project, %d saved\n", seen, saved);
        EXPECT_GT(saved, 0);
    }
}

TEST(SaveRoadReaders, OtherProgramsFindWhatWasWritten)
{
    SaveRoadPlace place;
    place.Open("AST_0101.JPG");
    place.held.generalRead = true;
    place.held.general = {QStringLiteral("Ann Artist"), QStringLiteral("(c) Ann"),
                          QStringLiteral("Maker"),      {},
                          QStringLiteral("Box"),        QStringLiteral("Two"),
                          QStringLiteral("Paper"),      QStringLiteral("Seven")};
    place.held.tags = QStringLiteral("City=Rome\n");
    const QString software = GeneralTagSoftware(place.held.appTitle);
    place.Save();
    EXPECT_EQ(Said("exiftool",
                   {QStringLiteral("-s3"), QStringLiteral("-IFD0:Artist"),
                    QStringLiteral("-IFD0:Copyright"), QStringLiteral("-IFD0:Make"),
                    QStringLiteral("-IFD0:Model"), QStringLiteral("-IFD0:Software"),
                    QStringLiteral("-IFD0:HostComputer"), place.held.file}),
              QStringLiteral("Ann Artist\n(c) Ann\nMaker\nTwo\n%1\nBox\n").arg(software));
    EXPECT_TRUE(Said("gm", {QStringLiteral("identify"), place.held.file})
                    .contains(QStringLiteral("JPEG 1600x1200")));
    EXPECT_FALSE(place.held.general.txtDateCreated.isEmpty());

    place.SaveAs(place.Choice("new.tif", 96));
    const QString tiff = Said("tiffinfo", {place.Path("new.tif")});
    for (const QString& one :
         {QStringLiteral("Artist: Ann Artist"), QStringLiteral("Software: ") + software,
          QStringLiteral("PageName: Seven"), QStringLiteral("DocumentName: Paper"),
          QStringLiteral("DateTime: ") + place.held.general.txtDateCreated,
          QStringLiteral("Image Width: 1600 Image Length: 1200")}) {
        EXPECT_TRUE(tiff.contains(one)) << one.toStdString() << '\n' << tiff.toStdString();
    }

    place.Open("petals.png");
    place.held.generalRead = true;
    place.held.general.txtComputer = QStringLiteral("My title");
    place.held.general.txtModel = QStringLiteral("No promise");
    place.held.general.txtPage = QStringLiteral("Careful");
    place.held.general.txtDocument = QStringLiteral("Well");
    place.Save();
    EXPECT_EQ(
        Said("exiftool",
             {QStringLiteral("-s3"), QStringLiteral("-PNG:Title"),
              QStringLiteral("-PNG:Disclaimer"), QStringLiteral("-PNG:Comment"), place.held.file}),
        QStringLiteral("My title\nNo promise\nWell\n"));
    EXPECT_TRUE(
        Said("gm", {QStringLiteral("identify"), QStringLiteral("-verbose"), place.held.file})
            .contains(QStringLiteral("Warning: Careful")));
}

TEST(SaveRoadReaders, AStampAndTheCopyForPrintingAreReadElsewhere)
{
    SaveRoadPlace place;
    place.Open("AST_0101.JPG");
    SaveDialogChoice choice = place.Choice("stamped.jpg", 98);
    choice.stampWanted = true;
    choice.stampSize = 120;
    place.SaveAs(choice);
    place.Write("stamp.jpg",
                QByteArray::fromBase64(Said("sh",
                                            {QStringLiteral("-c"),
                                             QStringLiteral("exiftool -b -ThumbnailImage "
                                                            "\"$0\" | base64"),
                                             choice.file})
                                           .toLatin1()));
    EXPECT_TRUE(Said("gm", {QStringLiteral("identify"), place.Path("stamp.jpg")})
                    .contains(QStringLiteral("JPEG 120x90")));
    ASSERT_TRUE(MakeFolder(place.Path("home")));
    FakePlaces places(place.Path("home"));
    const QString copy = SavePrintCopy(place.LEAD1, place.held, places);
    EXPECT_TRUE(Said("tiffinfo", {copy}).contains(QStringLiteral("Compression Scheme: None")));
}

} // namespace
} // namespace quillane
