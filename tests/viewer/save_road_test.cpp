// Saves from the viewer: what goes into the file, what stays, and what is refused.
#include "save_road_support.h"

#include "imaging/acquire.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"
#include "imaging/thumbs/exif_preview.h"
#include <QColor>

namespace quillane {
namespace {

constexpr const char* kWithComments[] = {"AST_0101.JPG", "CHART.TIF", "sunrise.gif", "petals.png"};

TEST(SaveImage, WritesTheTextOfTheTagsWithCarriageReturns)
{
    for (const char* sample : kWithComments) {
        SaveRoadPlace place;
        place.Open(sample);
        place.held.tags = QStringLiteral("Name=Ann\nCity=Rome\n");
        place.Save();
        EXPECT_EQ(place.Description(sample), QStringLiteral("Name=Ann\r\nCity=Rome\r\n")) << sample;
        place.Save();
        EXPECT_EQ(place.Description(sample), QStringLiteral("Name=Ann\r\nCity=Rome\r\n")) << sample;
        place.held.tags.clear();
        place.Save();
        EXPECT_EQ(place.Description(sample), QString()) << sample;
    }
}

TEST(SaveImage, EveryOtherFieldOfTheFileStays)
{
    for (const char* sample : kWithComments) {
        SaveRoadPlace place;
        place.Open(sample);
        const CommentSet before = ReadComments(place.held.file);
        place.LEAD1.Invert();
        place.Save();
        const CommentSet after = ReadComments(place.held.file);
        for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
            if (slot != 9) {
                EXPECT_EQ(after.At(slot), before.At(slot)) << sample << ' ' << slot;
            }
        }
    }
}

TEST(SaveImage, KeepsFormatDepthAndSizeAndWritesTheNewPixels)
{
    for (const char* sample : {"AST_0101.JPG", "CHART.TIF", "sunrise.gif", "petals.png",
                               "chart.BMP", "flower.ppm", "chart.gif"}) {
        SaveRoadPlace place;
        place.Open(sample);
        const ImageFacts before = ProbeFile(place.held.file);
        const QRgb corner = place.LEAD1.Bitmap().ToDisplay().pixel(0, 0);
        place.LEAD1.Invert();
        place.Save();
        const LoadedImage after = LoadFile(place.held.file);
        EXPECT_EQ(after.facts.format, before.format) << sample;
        EXPECT_EQ(after.facts.bits, before.bits) << sample;
        EXPECT_EQ(after.facts.pages, before.pages) << sample;
        EXPECT_EQ(QSize(after.facts.width, after.facts.height), QSize(before.width, before.height));
        EXPECT_NEAR(qRed(after.bitmap.ToDisplay().pixel(0, 0)), 255 - qRed(corner), 12) << sample;
    }
}

TEST(SaveImage, ATextThatWasNotReadFromTheFileIsNotWritten)
{
    SaveRoadPlace place;
    place.Open("AST_0101.JPG");
    const QString before = place.Description("AST_0101.JPG");
    ASSERT_FALSE(before.isEmpty());
    place.held.tags = QStringLiteral("A=1");
    place.held.tagsRead = false;
    place.Save();
    EXPECT_EQ(place.Description("AST_0101.JPG"), before);
}

TEST(SaveImage, AFileThatCarriesNoCommentsGetsNone)
{
    SaveRoadPlace place;
    place.Open("chart.BMP");
    place.held.tags = QStringLiteral("A=1");
    place.held.general.txtArtistExif = QStringLiteral("Ann");
    place.held.generalRead = true;
    place.Save();
    for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
        EXPECT_TRUE(place.LEAD1.Comment(slot).IsEmpty()) << slot;
    }
}

TEST(SaveImage, TheQualityIsThatOfTheWindowAndNoneForAPng)
{
    qint64 sizes[2] = {};
    for (const qint32 quality : {2, 200}) {
        SaveRoadPlace place;
        place.held.quality = quality;
        place.Open("AST_0101.JPG");
        place.Save();
        sizes[quality == 2 ? 0 : 1] = StatPath(place.held.file).size;
        place.Open("petals.png");
        const QImage before = place.LEAD1.Bitmap().ToDisplay();
        place.Save();
        EXPECT_EQ(LoadFile(place.held.file).bitmap.ToDisplay(), before);
    }
    EXPECT_GT(sizes[0], 2 * sizes[1]);
}

TEST(SaveImage, TheOtherPagesOfATiffStay)
{
    SaveRoadPlace place;
    place.Open("three_pages.tif");
    const QImage second = [&] {
        DecodeRequest request;
        request.page = 1;
        return LoadFile(place.held.file, request).bitmap.ToDisplay();
    }();
    place.LEAD1.Invert();
    place.Save();
    DecodeRequest request;
    request.page = 1;
    EXPECT_EQ(ProbeFile(place.held.file).pages, 3);
    EXPECT_EQ(LoadFile(place.held.file, request).bitmap.ToDisplay(), second);
}

TEST(SaveImage, AFormatThatIsOnlyReadIsRefusedBeforeAnythingIsTouched)
{
    SaveRoadPlace place;
    place.Open("dunes.AVI");
    ASSERT_NE(place.held.format, 0);
    const QByteArray before = place.Whole("dunes.AVI");
    QString words;
    try {
        place.Save();
    } catch (const Failure& failure) {
        words = failure.Description();
    }
    EXPECT_TRUE(
        words.startsWith(QStringLiteral("\"dunes.AVI\" cannot be saved in its own format: ")))
        << words.toStdString();
    EXPECT_TRUE(words.endsWith(QStringLiteral("Save it under another name, in another format.")));
    EXPECT_EQ(place.Whole("dunes.AVI"), before);
    EXPECT_TRUE(place.LEAD1.HasBitmap());
    place.SaveAs(place.Choice("frame.png", 75));
    EXPECT_EQ(LoadFile(place.Path("frame.png")).bitmap.ToDisplay(),
              place.LEAD1.Bitmap().ToDisplay());
}

TEST(SaveImage, AFileThatDidNotLoadIsNotSavedOver)
{
    SaveRoadPlace place;
    place.Write("broken.jpg", "no picture at all");
    place.OpenFile("broken.jpg");
    place.Paste();
    EXPECT_EQ(FailureOf([&] { place.Save(); }), kFailureGeneral);
    EXPECT_EQ(place.Whole("broken.jpg"), "no picture at all");
}

TEST(SaveImageAs, CarriesTheCommentsIntoEveryFormatThatHoldsThem)
{
    struct Case {
        const char* name;
        qint16 format;
    };
    for (const Case& one : {Case{"new.jpg", 98}, Case{"new.tif", 96}, Case{"new.png", 75}}) {
        SaveRoadPlace place;
        place.Open("AST_0101.JPG");
        place.held.tags = QStringLiteral("Name=Ann\n");
        const CommentSet before = ReadComments(place.held.file);
        const QByteArray source = place.Whole("AST_0101.JPG");
        place.SaveAs(place.Choice(one.name, one.format));
        EXPECT_EQ(place.Description(one.name), QStringLiteral("Name=Ann\r\n")) << one.name;
        EXPECT_EQ(ProbeFile(place.Path(one.name)).format, one.format);
        if (one.format != 75) {
            const CommentSet after = ReadComments(place.Path(one.name));
            for (const qint16 slot :
                 {kDateTakenSlot, qint16(5), qint16(6), qint16(24), qint16(25)}) {
                EXPECT_EQ(after.At(slot), before.At(slot)) << one.name << ' ' << slot;
            }
        }
        EXPECT_EQ(place.Whole("AST_0101.JPG"), source);
        EXPECT_EQ(place.held.file, place.Path("AST_0101.JPG"));
    }
}

TEST(SaveImageAs, AJpegWithFieldsBecomesABmpWithoutThem)
{
    SaveRoadPlace place;
    place.Open("AST_0101.JPG");
    place.SaveAs(place.Choice("new.bmp", 6));
    const LoadedImage made = LoadFile(place.Path("new.bmp"));
    EXPECT_EQ(made.facts.format, 6);
    EXPECT_EQ(made.bitmap.ToDisplay(), place.LEAD1.Bitmap().ToDisplay());
    EXPECT_TRUE(ReadComments(place.Path("new.bmp")).IsEmpty());
}

TEST(SaveImageAs, APngIsLosslessWhateverTheDialogSaid)
{
    SaveRoadPlace place;
    place.Open("AST_0101.JPG");
    SaveDialogChoice choice = place.Choice("new.PNG", 75);
    choice.quality = 255;
    place.SaveAs(choice);
    EXPECT_EQ(LoadFile(choice.file).bitmap.ToDisplay(), place.LEAD1.Bitmap().ToDisplay());
    // The name decides, so that a JPEG of such a name is the best there is.
    choice = place.Choice("odd.png", 10);
    choice.quality = 255;
    place.SaveAs(choice);
    const qint64 best = StatPath(choice.file).size;
    choice = place.Choice("plain.jpg", 10);
    choice.quality = 255;
    place.SaveAs(choice);
    EXPECT_GT(best, 4 * StatPath(choice.file).size);
}

TEST(SaveImageAs, ZerosThatACameraLeftInTheTextDoNotStopASave)
{
    struct Case {
        const char* name;
        qint16 format;
    };
    for (const Case& one : {Case{"new.png", 75}, Case{"new.jpg", 98}, Case{"new.tif", 3},
                            Case{"new.gif", 2}, Case{"plain.jpg", 10}}) {
        SaveRoadPlace place;
        place.Open("AST_0101.JPG");
        place.held.tags = QStringLiteral("CAMERA") + QChar(u'\0') + QStringLiteral("  ")
            + QChar(u'\0') + QChar(u'\0');
        place.SaveAs(place.Choice(one.name, one.format, one.format == 2 ? 8 : 24));
        EXPECT_TRUE(place.Description(one.name).startsWith(QStringLiteral("CAMERA"))) << one.name;
    }
}

TEST(SaveImageAs, WithoutANameNothingHappens)
{
    SaveRoadPlace place;
    place.Open("petals.png");
    SaveDialogChoice choice = place.Choice("x", 75);
    choice.file.clear();
    place.SaveAs(choice);
    EXPECT_EQ(place.Entries(), QStringList{QStringLiteral("petals.png")});
}

TEST(SaveImageAs, AStampIsEmbedded)
{
    SaveRoadPlace place;
    place.Open("petals.png");
    SaveDialogChoice choice = place.Choice("new.jpg", 98);
    choice.stampWanted = true;
    choice.stampSize = 96;
    choice.stampBits = 8;
    place.SaveAs(choice);
    FileSource made(choice.file);
    MemorySource stamp(ReadEmbeddedPreview(made));
    const Codec* codec = FindCodec(stamp.Head(512), {});
    ASSERT_NE(codec, nullptr);
    const Bitmap small = codec->decode(stamp, {});
    EXPECT_EQ(qMax(small.Width(), small.Height()), 96);
    EXPECT_EQ(small.Model(), ColourModel::Grey);
}

TEST(SaveImageAs, AFurtherPageIsAddedAndTheOldOnesStay)
{
    SaveRoadPlace place;
    place.Open("petals.png");
    SaveDialogChoice choice = place.Choice("pages.tif", 3);
    choice.multiPage = 1;
    choice.stampWanted = true;
    choice.stampSize = 64;
    for (int pages = 1; pages <= 3; ++pages) {
        place.SaveAs(choice);
        EXPECT_EQ(ProbeFile(choice.file).pages, pages);
    }
    choice.format = 75;
    EXPECT_EQ(FailureOf([&] { place.SaveAs(choice); }), kFailureGeneral);
    EXPECT_EQ(ProbeFile(choice.file).pages, 3);
}

TEST(SaveImageAs, OverTheOwnFileNotesItsNewFormat)
{
    SaveRoadPlace place;
    place.Open("AST_0101.JPG", "one.tif");
    const CommentSet before = ReadComments(place.held.file);
    place.SaveAs(place.Choice("one.tif", 96));
    EXPECT_EQ(place.held.format, 96);
    EXPECT_EQ(place.held.bits, 24);
    // From here on it is a TIFF to every further save.
    for (int round = 0; round < 3; ++round) {
        place.LEAD1.Invert();
        place.held.tags = QStringLiteral("Round=%1\n").arg(round);
        place.Save();
        EXPECT_EQ(ProbeFile(place.held.file).format, 96);
        EXPECT_EQ(place.Description("one.tif"), QStringLiteral("Round=%1\r\n").arg(round));
        EXPECT_EQ(ReadComments(place.held.file).At(kDateTakenSlot), before.At(kDateTakenSlot));
    }
}

TEST(SavePrintCopy, IsAFlatExifTiffUnderItsFixedName)
{
    SaveRoadPlace place;
    place.Open("AST_0101.JPG");
    ASSERT_TRUE(MakeFolder(place.Path("home")));
    place.held.tags = QStringLiteral("typed but not saved");
    const QByteArray source = place.Whole("AST_0101.JPG");
    FakePlaces places(place.Path("home"));
    const QString copy = SavePrintCopy(place.LEAD1, place.held, places);
    EXPECT_EQ(copy, place.Path("home") + QStringLiteral("/TPrinter2Image.jpg"));
    const LoadedImage made = LoadFile(copy);
    EXPECT_EQ(made.facts.format, 96);
    EXPECT_EQ(made.facts.bits, 24);
    EXPECT_EQ(made.bitmap.ToDisplay(), place.LEAD1.Bitmap().ToDisplay());
    EXPECT_EQ(ReadComments(copy).At(kDescriptionSlot),
              ReadComments(place.held.file).At(kDescriptionSlot));
    EXPECT_EQ(StatPath(copy).mode & 0777, 0600u);
    EXPECT_EQ(place.Whole("AST_0101.JPG"), source);
    // Again, in another depth, and the viewer's own save is none the worse for it.
    place.Open("chart.gif");
    SavePrintCopy(place.LEAD1, place.held, places);
    EXPECT_EQ(ProbeFile(copy).bits, 24);
    place.Save();
    EXPECT_EQ(ProbeFile(place.held.file).format, 2);
}

TEST(SavePrintCopy, AFailureLeavesNoEmptyFile)
{
    SaveRoadPlace place;
    ASSERT_TRUE(MakeFolder(place.Path("home")));
    FakePlaces places(place.Path("home"));
    EXPECT_EQ(FailureOf([&] { SavePrintCopy(place.LEAD1, place.held, places); }), kFailureGeneral);
    EXPECT_EQ(StatPath(places.PrintCopy()).type, FileType::Missing);
}

TEST(SaveImage, APastedPictureTakesThePlaceOfTheLoadedOne)
{
    SaveRoadPlace place;
    place.Open("petals.png");
    const CommentSet before = ReadComments(place.held.file);
    for (const QSize size : {QSize(31, 17), QSize(40, 20)}) {
        place.Paste(size);
        place.Save();
        const LoadedImage made = LoadFile(place.held.file);
        EXPECT_EQ(made.bitmap.Pixels().size(), size);
        EXPECT_EQ(made.facts.format, 75);
        EXPECT_EQ(ReadComments(place.held.file).At(kDescriptionSlot), before.At(kDescriptionSlot));
    }
}

TEST(SaveImage, APastedPictureDoesNotTakeOtherPagesAway)
{
    SaveRoadPlace place;
    place.Open("three_pages.tif");
    const QByteArray before = place.Whole("three_pages.tif");
    place.Paste();
    EXPECT_EQ(FailureOf([&] { place.Save(); }), kFailureGeneral);
    EXPECT_EQ(place.Whole("three_pages.tif"), before);
}

TEST(SaveImage, APastedPictureDoesNotReplaceWhatOthersWroteMeanwhile)
{
    SaveRoadPlace place;
    place.Open("petals.png");
    place.Paste();
    place.Write("petals.png", "somebody's");
    EXPECT_EQ(FailureOf([&] { place.Save(); }), kFailureIo);
    EXPECT_EQ(place.Whole("petals.png"), "somebody's");
}

TEST(SaveImage, APasteThatWasTakenBackLosesNothingOfTheFile)
{
    SaveRoadPlace place;
    // A segment that no field of ours names.
    QByteArray camera = ReadWholeFile(ViewerSample("AST_0101.JPG"), 1 << 26);
    camera.insert(2, QByteArray("\xff\xeb\x00\x0dthe maker's", 15));
    place.Write("camera.jpg", camera);
    place.OpenFile("camera.jpg");
    for (int round = 0; round < 3; ++round) {
        place.LEAD1.Flip();
        const Bitmap undo = place.LEAD1.Bitmap();
        NoteBeforeNewPicture(place.held, place.LEAD1);
        place.Paste();
        place.LEAD1.SetBitmap(undo);
        place.Save();
        EXPECT_NE(place.LEAD1.Loaded(), nullptr) << round;
        EXPECT_TRUE(place.Whole("camera.jpg").contains("the maker's")) << round;
    }
    // Neither does an undo without a note, of pixels as they were saved.
    const Bitmap undo = place.LEAD1.Bitmap();
    place.Paste();
    place.LEAD1.SetBitmap(undo);
    place.Save();
    EXPECT_TRUE(place.Whole("camera.jpg").contains("the maker's"));
    place.Paste();
    place.Save();
    EXPECT_FALSE(place.Whole("camera.jpg").contains("the maker's"));
}

TEST(SaveImage, AScannedPageTakesThePlaceOfTheLoadedPicture)
{
    SaveRoadPlace place;
    place.Open("petals.png");
    FakeScanner scanner;
    FakeLoop loop;
    scanner.sources = {
        {QStringLiteral("one"), QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}};
    scanner.page.width = 2;
    scanner.page.height = 3;
    scanner.page.channels = 1;
    scanner.page.depth = 8;
    scanner.page.bytesPerLine = 2;
    scanner.page.rows = QByteArray("\x01\x02\x03\x04\x05\x06", 6);
    ASSERT_EQ(TwainAcquire(place.LEAD1, scanner, loop), 0);
    EXPECT_EQ(place.LEAD1.Loaded(), nullptr);
    EXPECT_EQ(place.held.file, place.Path("petals.png"));
    place.Save();
    EXPECT_EQ(LoadFile(place.held.file).bitmap.Pixels().size(), QSize(2, 3));
    EXPECT_EQ(ProbeFile(place.held.file).format, 75);
}

TEST(NoteLoaded, AFileThatDoesNotLoadHasNoFormat)
{
    SaveRoadPlace place;
    place.Open("AST_0101.JPG");
    EXPECT_TRUE(IsExifFormat(place.held.format));
    EXPECT_EQ(place.held.bits, 24);
    EXPECT_NE(place.held.loaded, nullptr);
    place.held.general.txtArtistExif = QStringLiteral("Ann");
    place.held.generalRead = true;
    place.Write("broken.jpg", "no picture");
    place.OpenFile("broken.jpg");
    EXPECT_EQ(place.held.format, 0);
    EXPECT_EQ(place.held.loaded, nullptr);
    EXPECT_FALSE(place.held.tagsRead);
    EXPECT_FALSE(place.held.generalRead);
    EXPECT_EQ(place.held.general.txtArtistExif, QString());
}

} // namespace
} // namespace quillane
