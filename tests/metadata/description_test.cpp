#include "metadata/description.h"

#include "core/temp_folder.h"
#include "imaging/format_table.h"
#include "metadata/catalogue.h"
#include "platform/fake/fake_loop.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

const QString kDescriptionHeading =
    QStringLiteral("--------------- Image Description ------------------------\r\n");
constexpr int kX = 7;   // x0
constexpr int kY = 410; // y0

QStringList TextsOf(const PanelContent& content)
{
    QStringList texts;
    for (const PanelLine& line : content.lines) {
        texts << line.text;
    }
    return texts;
}

} // namespace

class Description : public testing::Test {
protected:
    Description()
    {
        mInput.surfaceWidth = 300;
        mInput.stat.type = FileType::Regular;
        mInput.stat.size = 12345;
        mInput.stat.modifiedSeconds = 1'000'000'000;
    }
    DescriptionInput Input(const char* fileName, qint16 format)
    {
        DescriptionInput input = mInput;
        input.fileName = QString::fromLatin1(fileName);
        ImageFacts facts;
        facts.width = 1600;
        facts.height = 1200;
        facts.bits = 24;
        facts.format = format;
        input.facts = facts;
        input.comments = std::make_shared<const CommentSet>(mComments);
        return input;
    }
    PanelContent Compose(const DescriptionInput& input)
    {
        return ComposeDescription(input, mGlobals, mLoop);
    }
    PanelContent Compose(const char* fileName, qint16 format)
    {
        return Compose(Input(fileName, format));
    }
    PanelContent ComposeFile(const QString& path)
    {
        DescriptionInput input = mInput;
        input.fileName = path;
        input.stat = StatPath(path);
        return Compose(input);
    }
    QString Date() const { return mLoop.SystemDateText(ModifiedTime(mInput.stat)); }

    FakeLoop mLoop;
    Globals mGlobals;
    CommentSet mComments;
    DescriptionInput mInput;
    TempFolder mFolder;
};

TEST_F(Description, BannerIsTheLeafNameAlone)
{
    const PanelContent content = ShowFileBanner("/pictures/summer/a b.jpg");
    EXPECT_EQ(content.banner, "a b.jpg");
    EXPECT_FALSE(content.boxVisible);
    EXPECT_FALSE(content.pictureWanted);
    EXPECT_TRUE(content.lines.isEmpty());
    EXPECT_EQ(content.icon, 0);
}

TEST_F(Description, IconIsThatOfTheFirstKindThatHolds)
{
    EXPECT_EQ(Compose("/a.ifl", 0).icon, 13);
    EXPECT_EQ(Compose("/a.avi", 0).icon, 19);
    EXPECT_EQ(Compose("/a.ly2", 0).icon, 20);
    EXPECT_EQ(Compose("/a.jpg", 10).icon, 17);
    EXPECT_EQ(Compose("/a.bmp", 6).icon, 17);
    EXPECT_EQ(Compose("/x.ifl/a.mp3", 0).icon, 13);
    EXPECT_EQ(Compose("/x.ly2/a.mp3", 0).icon, 19);
}

TEST_F(Description, PlacesOfThePanel)
{
    EXPECT_EQ(kPanelFactsTop, 345);
    EXPECT_EQ(kPanelFactsBase, kY);
    EXPECT_EQ(kPanelBoxTop, 430);
    EXPECT_EQ(kPanelUpperBackground, 3);
    EXPECT_EQ(kPanelLowerBackground, 1);
    EXPECT_EQ(Compose("/a.bmp", 6).boxWidth, 290);
}

TEST_F(Description, PlainBmpHasFormatDimensionModifiedAndSize)
{
    const PanelContent content = Compose("/a.bmp", 6);
    const QVector<PanelLine> expected = {
        {kX, kY - 50, "Format: Windows BMP"},
        {kX + 20, kY - 30, "Dimension:  1600 X 1200 X 24"},
        {kX + 20, kY + 18, "Modified: " + Date()},
        {kX + 20, kY + 33, "Size: 12345 Bytes"},
    };
    EXPECT_EQ(content.lines, expected);
    EXPECT_FALSE(content.boxVisible);
    EXPECT_EQ(content.boxText, "");
    EXPECT_TRUE(content.pictureWanted);
    EXPECT_FALSE(content.albumCommentVisible);
    EXPECT_EQ(content.banner, "a.bmp");
}

TEST_F(Description, PlainJpegHasTheDescriptionBlockAlone)
{
    mComments.Set(3, QStringLiteral("Name=Ann\nCity=Rome"));
    for (const qint16 format : {10, 21, 23}) {
        const PanelContent content = Compose("/a.jpg", format);
        EXPECT_EQ(content.boxText, kDescriptionHeading + "Name=Ann\r\nCity=Rome\r\n");
        EXPECT_TRUE(content.boxVisible);
        EXPECT_EQ(content.lines.first(),
                  (PanelLine{kX - 5, kY - 15, "Image Description Comments/Metadata"}));
    }
}

TEST_F(Description, ExifFormatsHaveAllBlocks)
{
    mComments.Set(3, QStringLiteral("words\r\n"));
    mComments.Set(5, QStringLiteral("Maker"));
    mComments.Set(162, 100);
    for (const qint16 format : {96, 97, 98, 101}) {
        const char* name = format < 98 ? "/a.bin.gif" : "/a.jpg";
        const PanelContent content = Compose(name, format);
        EXPECT_EQ(content.boxText,
                  kDescriptionHeading + "words\r\n\r\n" + GeneralTagsText(name, mComments) + "\r\n"
                      + CameraTagsText(mComments) + "\r\n" + GpsTagsText(mComments))
            << format;
    }
}

TEST_F(Description, TiffThatIsNoExifHasGeneralTagsAndNoCameraBlock)
{
    mComments.Set(3, QStringLiteral("words"));
    EXPECT_EQ(Compose("/a.TIF", 17).boxText,
              kDescriptionHeading + "words\r\n\r\n" + GeneralTagsText("/a.TIF", mComments));
}

TEST_F(Description, PngHasGeneralTagsWithItsOwnFields)
{
    mComments.Set(175, QStringLiteral("a title"));
    const QString text = Compose("/a.png", 75).boxText;
    EXPECT_EQ(text, kDescriptionHeading + "\r\n\r\n" + GeneralTagsText("/a.png", mComments));
    EXPECT_TRUE(text.contains("Title: a title\r\n"));
    EXPECT_FALSE(text.contains("Model: "));
}

TEST_F(Description, GifHasTheDescriptionBlockAlone)
{
    mComments.Set(3, QStringLiteral("comment"));
    EXPECT_EQ(Compose("/a.gif", 2).boxText, kDescriptionHeading + "comment\r\n");
}

TEST_F(Description, DicomShowsItsFieldsAlone)
{
    mComments.Set(3, QStringLiteral("Name=Ann"));
    mComments.Set(10, QStringLiteral("Doe^John"));
    const PanelContent content = Compose("/a.dic", 89);
    EXPECT_EQ(content.boxText, DicomTagsText(mComments));
    EXPECT_EQ(content.lines.first(), (PanelLine{kX + 30, kY - 15, "DICOM Image Information"}));
    EXPECT_FALSE(content.boxText.contains("Ann"));
    EXPECT_TRUE(content.boxVisible);
}

TEST_F(Description, EmptyDescriptionIsOneLineEnd)
{
    EXPECT_EQ(Compose("/a.jpg", 10).boxText, kDescriptionHeading + "\r\n");
}

TEST_F(Description, DescriptionThatBeginsWithALineFeedIsLeftOut)
{
    mComments.Set(3, QStringLiteral("\nwords"));
    mComments.Set(5, QStringLiteral("Maker"));
    EXPECT_EQ(Compose("/a.tif", 3).boxText,
              kDescriptionHeading + "\r\n" + GeneralTagsText("/a.tif", mComments));
}

TEST_F(Description, DateTakenStandsBelowTheHeadingAndMovesWhatFollowsDown)
{
    mComments.Set(22, QStringLiteral("2003:01:05 13:07:09"));
    const PanelContent content = Compose("/a.jpg", 98);
    const QVector<PanelLine> expected = {
        {kX - 5, kY - 15, "Image Description Comments/Metadata"},
        {kX, kY - 50, "Format: JPEG compressed YUV 4:2:2 EXIF File"},
        {kX + 20, kY - 30, "Dimension:  1600 X 1200 X 24"},
        {kX + 20, kY, "Date Taken:  Jan 05,2003  1:07:09 PM"},
        {kX + 20, kY + 18, "Modified: " + Date()},
        {kX + 20, kY + 33, "Size: 12345 Bytes"},
    };
    EXPECT_EQ(content.lines, expected);
    EXPECT_GT(content.boxTop, kY + 33 + 14);
}

TEST_F(Description, NoTwoLinesStandOnOneAnotherNorOnTheBox)
{
    mComments.Set(22, QStringLiteral("2003:01:05 13:07:09"));
    for (const char* name : {"/a.jpg", "/a.mp3.jpg", "/a.dic", "/a.bmp", "/a.avi", "/a.png"}) {
        const PanelContent content = Compose(name, 98);
        for (qsizetype i = 0; i < content.lines.size(); ++i) {
            for (qsizetype j = 0; j < i; ++j) {
                EXPECT_GE(std::abs(content.lines.at(i).y - content.lines.at(j).y), kPanelLineHeight)
                    << name;
            }
            if (content.boxVisible) {
                EXPECT_LE(content.lines.at(i).y + kPanelLineHeight, content.boxTop) << name;
            }
        }
    }
}

TEST_F(Description, DateTakenIsPrintedForImageFilesWithADateAlone)
{
    const auto hasDate = [](const PanelContent& content) {
        return TextsOf(content).join(u'|').contains("Date Taken:  ");
    };
    EXPECT_FALSE(hasDate(Compose("/a.jpg", 98)));
    mComments.Set(22, QStringLiteral("2003:01:05 13:07:09"));
    EXPECT_TRUE(hasDate(Compose("/a.jpg", 98)));
    EXPECT_FALSE(hasDate(Compose("/a.bmp", 6)));
    mComments.Set(22, 5); // no text
    EXPECT_FALSE(hasDate(Compose("/a.jpg", 98)));
}

TEST_F(Description, FactsPrintedFromAnyPlace)
{
    mComments.Set(22, QStringLiteral("2003:01:05 13:07:09"));
    const DescriptionInput input = Input("/a.jpg", 98);
    mGlobals.gsImageFormat = QStringLiteral("Format: F");
    mGlobals.gsImageDimension = QStringLiteral("Dimension:  D");
    QVector<PanelLine> lines;
    PrintImageFacts(input, 100, 1000, mGlobals, mLoop, lines);
    const QVector<PanelLine> expected = {
        {100, 950, "Format: F"},
        {120, 970, "Dimension:  D"},
        {120, 985, "Date Taken:  Jan 05,2003  1:07:09 PM"},
        {120, 1018, "Modified: " + Date()},
        {120, 1033, "Size: 12345 Bytes"},
    };
    EXPECT_EQ(lines, expected);
}

TEST_F(Description, PlaceBeyondSixteenBitsEndsThePrinting)
{
    const DescriptionInput input = Input("/a.bmp", 6);
    QVector<PanelLine> lines;
    EXPECT_THROW(PrintImageFacts(input, 0, 32740, mGlobals, mLoop, lines), Failure);
    EXPECT_EQ(lines.size(), 3);
    EXPECT_THROW(PrintImageFacts(input, 32767, 0, mGlobals, mLoop, lines), Failure);
    DescriptionInput wide = input;
    wide.surfaceWidth = 40000;
    EXPECT_TRUE(Compose(wide).lines.isEmpty());
}

TEST_F(Description, NarrowPanelGoesOn)
{
    DescriptionInput input = Input("/a.bmp", 6);
    input.surfaceWidth = 3;
    const PanelContent content = Compose(input);
    EXPECT_EQ(content.boxWidth, -7);
    EXPECT_EQ(content.lines.size(), 4);
    EXPECT_EQ(content.lines.first().x, kX);
}

TEST_F(Description, FailedLoadPrintsTheFactsOfTheFileBefore)
{
    Compose("/a.jpg", 98);
    DescriptionInput broken = Input("/b.jpg", 98);
    broken.facts.reset();
    broken.comments.reset();
    const PanelContent content = Compose(broken);
    EXPECT_TRUE(TextsOf(content).contains("Format: JPEG compressed YUV 4:2:2 EXIF File"));
    EXPECT_TRUE(TextsOf(content).contains("Dimension:  1600 X 1200 X 24"));
    EXPECT_EQ(content.boxText, kDescriptionHeading + "\r\n");
    broken.lastFormat = 98;
    EXPECT_TRUE(Compose(broken).boxText.contains("Camera Exif Information"));
}

TEST_F(Description, LinesOfTheLastFileAreGlobal)
{
    Compose("/a.bmp", 6);
    EXPECT_EQ(mGlobals.gsImageDimension, "Dimension:  1600 X 1200 X 24");
    EXPECT_EQ(mGlobals.gsImageFormat, "Format: Windows BMP");
    Compose("/a.xyz", 0);
    EXPECT_EQ(mGlobals.gsImageFormat, "Format: ");
}

TEST_F(Description, MediaFileHasItsLineAndGoesOnAsAnImage)
{
    DescriptionInput input = Input("/a.avi", 0);
    input.facts.reset();
    const PanelContent content = Compose(input);
    EXPECT_EQ(content.lines.first().text, "Video File");
    EXPECT_EQ(content.lines.first().x, kX + 50);
    EXPECT_EQ(content.lines.first().y, kY + 60);
    EXPECT_TRUE(TextsOf(content).contains("Size: 12345 Bytes"));
    EXPECT_TRUE(content.pictureWanted);
    EXPECT_FALSE(content.boxVisible);
}

TEST_F(Description, VanishedFileLeavesOutItsDateAndSize)
{
    DescriptionInput input = Input("/a.bmp", 6);
    input.stat = FileStat();
    EXPECT_EQ(TextsOf(Compose(input)),
              QStringList({"Format: Windows BMP", "Dimension:  1600 X 1200 X 24"}));
}

TEST_F(Description, PrintSettingFile)
{
    const PanelContent content = Compose("/a.ly2", 0);
    const QVector<PanelLine> expected = {
        {kX + 40, kY - 250, "Print Setting File"},
        {kX + 50, kY - 200, "Date: " + Date()},
        {kX + 50, kY - 185, "Size: 12345"},
    };
    EXPECT_EQ(content.lines, expected);
    EXPECT_FALSE(content.boxVisible);
    EXPECT_FALSE(content.pictureWanted);
}

TEST_F(Description, AlbumWithAComment)
{
    const QByteArray text = "#\r\nSummer trip\r\nto Rome\r\n#\r\n/p/a.jpg\r\n/p/b.tif\r\n";
    mFolder.Write("a.ifl", text);
    const QString path = mFolder.Path("a.ifl");
    const PanelContent content = ComposeFile(path);
    const QVector<PanelLine> expected = {
        {kX + 40, kY - 250, "Photo Album"},
        {kX + 50, kY - 200, "Date: " + mLoop.SystemDateText(ModifiedTime(StatPath(path)))},
        {kX + 50, kY - 185, "Size: " + QString::number(text.size())},
        {kX + 40, kY - 120, "Photo Album Comments"},
        {kX + 45, kY - 15, "Photo Album File(s)"},
        {kX + 50, kY - 170, "Total Files: 2"},
    };
    EXPECT_EQ(content.lines, expected);
    EXPECT_EQ(content.albumComment, "Summer trip\r\nto Rome\r\n");
    EXPECT_TRUE(content.albumCommentVisible);
    EXPECT_EQ(content.boxText, "/p/a.jpg\r\n/p/b.tif\r\n");
    EXPECT_TRUE(content.boxVisible);
    EXPECT_EQ(content.boxTop, 430);
    EXPECT_FALSE(content.pictureWanted);
    EXPECT_EQ(content.icon, 13);
}

TEST_F(Description, AlbumWithoutACommentCountsAllLines)
{
    mFolder.Write("a.ifl", "/p/a.jpg\r\n\r\n/p/b.tif\r\n");
    const PanelContent content = ComposeFile(mFolder.Path("a.ifl"));
    EXPECT_EQ(content.lines.last().text, "Total Files: 3");
    EXPECT_EQ(content.boxText, "/p/a.jpg\r\n\r\n/p/b.tif\r\n");
    EXPECT_FALSE(content.albumCommentVisible);
}

TEST_F(Description, AlbumWithoutASecondMarkIsAllComment)
{
    mFolder.Write("a.ifl", "#\r\n/p/a.jpg\r\n/p/b.tif\r\n");
    const PanelContent content = ComposeFile(mFolder.Path("a.ifl"));
    EXPECT_EQ(content.lines.last().text, "Total Files: 0");
    EXPECT_EQ(content.albumComment, "/p/a.jpg\r\n/p/b.tif\r\n");
    EXPECT_EQ(content.boxText, "");
    EXPECT_TRUE(content.boxVisible);
}

TEST_F(Description, AlbumThatCannotBeReadLeavesThePanelAsFarAsItGot)
{
    mFolder.Write("empty.ifl", "");
    const QStringList texts = TextsOf(ComposeFile(mFolder.Path("empty.ifl")));
    EXPECT_EQ(texts.first(), "Photo Album");
    EXPECT_EQ(texts.last(), "Photo Album File(s)");
    EXPECT_EQ(TextsOf(ComposeFile(mFolder.Path("none.ifl"))), QStringList({"Photo Album"}));
    EXPECT_EQ(mLoop.HourglassDepth(), 0);
}

TEST_F(Description, HourglassIsAlwaysTakenBack)
{
    for (const char* name : {"/a.jpg", "/nowhere/a.ifl", "/a.ly2", "/a.bmp"}) {
        const int begins = mLoop.HourglassBegins();
        Compose(name, 10);
        EXPECT_EQ(mLoop.HourglassBegins(), begins + 1);
        EXPECT_EQ(mLoop.HourglassDepth(), 0);
    }
}

} // namespace quillane
