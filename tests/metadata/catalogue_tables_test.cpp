// Every row of the catalogue: order, slot, labels in both copies, value.
#include "core/native_path.h"
#include "metadata/catalogue.h"
#include "platform/fake/fake_loop.h"

#include <gtest/gtest.h>
#include <set>

namespace quillane {

namespace {

struct ExpectedField {
    qint16 slot;
    const char* label;
    const char* textLabel; ///< nullptr for label and ": "
    CommentValue value;
    const char* text;
};

CommentValue Text(const char* text)
{
    return QString::fromLatin1(text);
}
CommentValue Integer(qint32 value)
{
    return value;
}
CommentValue Ratio(double above, double below)
{
    return QVector<double>{above, below};
}
CommentValue Triple(double a, double b, double c)
{
    return QVector<double>{a, 1, b, 1, c, 100};
}
CommentValue Bytes(const char* bytes)
{
    return QByteArray(bytes);
}

std::vector<ExpectedField> CameraFields()
{
    return {
        {21, "EXIF Version", nullptr, Bytes("0220"), "2.20"},
        {32, "Flash Taken", nullptr, Integer(1), "Yes"},
        {26, "Brightness", nullptr, Ratio(-3, 2), "-1.50"},
        {35, "F stop", nullptr, Ratio(56, 10), "f/5.6"},
        {29, "Focus Distance", nullptr, Ratio(5, 2), "2.5000 Meters"},
        {25, "Aperture", nullptr, Ratio(5, 1), "5.00"},
        {24, "Shutter Speed (APEX)", nullptr, Ratio(8, 1), "8.00"},
        {34, "Exposure Time", nullptr, Ratio(1, 250), "1/250 Second"},
        {30, "Metering Mode", nullptr, Integer(5), "Pattern"},
        {31, "Light Source", nullptr, Integer(21), "Other"},
        {160, "Exposure Program", nullptr, Integer(2), "Aperture priority"},
        {22, "Origional Date", nullptr, Text("2003:01:05 13:07:09"), "2003:01:05 13:07:09"},
        {23, "Date Digitized", nullptr, Text(" as read "), " as read "},
        {164, "Related Sound File", nullptr, Text("A.WAV"), "A.WAV"},
        {165, "Flash Energy", nullptr, Ratio(1, 3), "0.33"},
        {33, "Focal Length", nullptr, Ratio(50, 1), "50.00 mm"},
        {27, "Exposure Bias (APEX)", nullptr, Ratio(-1, 3), "-0.3"},
        {161, "Spectral Sensitivity", nullptr, Text("all"), "all"},
        {162, "ISO Rating", nullptr, Integer(100), "100"},
        {169, "Subject Location", nullptr, Bytes("ab"), "X Column Number = a  Y Row Number = b"},
        {170, "Exposure Index", nullptr, Bytes("c"), "c"},
        {167, "Focal Plane X Resolution", nullptr, Bytes("d"), "d"},
        {168, "Focal Plane Y Resolution", nullptr, Bytes("e"), "e"},
        {158, "Supported FlashPix Version", nullptr, Bytes("0100"), "1.00"},
        {172, "Image Source", nullptr, Bytes("\3"), "DSC (Digital Still Camera)"},
        {173, "Scene Type", nullptr, Bytes("\1"), "1"},
        {171, "Image Sensor Type ", "Image Sensor Type: ", Bytes("\2"),
         "One-Chip Color Area Sensor"},
        {174, "CFA Pattern", nullptr, Bytes("fg"), "f X g"},
        {166, "Spatial Frequency Response", nullptr, Bytes("hi"), "hi"},
        {163, "Optoelectric Coefficient ", "Optoelectric Coefficient: ", Bytes("jk"), "jk"},
        // Read from the same slot as an integer, which it is not: the ISO rating is left there.
        {163, "Color Space", nullptr, Bytes("jk"), "100"},
    };
}

std::vector<ExpectedField> GpsFields()
{
    return {
        {41, "GPS Version", nullptr, QByteArray("\2\2\0\0", 4), "4"},
        {42, "North or South Latitude", nullptr, Text("N"), "North"},
        {43, "Latitude", nullptr, Triple(40, 26, 4638), "40 26.0"},
        {44, "East or West Longitude", nullptr, Text("w"), "West"},
        {45, "Longitude", nullptr, Triple(79, 58, 56), "79 58.0"},
        {46, "Reference Altitude", nullptr, QByteArray(1, '\0'), "0"},
        {47, "Altitude", nullptr, Ratio(7, 2), "4 Meters"},
        {48, "Time Stamp in UTC", nullptr, Triple(13, 7, 9), "13:07:00"},
        {49, "GPS Satellites Used ", "GPS Satellites Used: ", Text("7"), "7"},
        {50, "Status of the GPS Receiver", nullptr, Text("A"), "A"},
        {51, "GPS Measurement Mode", nullptr, Text("3"), "3"},
        {52, "DOP (data precision) value", "DOP (data precision) value:", Ratio(7, 2), "00004"},
        {53, "Speed Measuring Unit", nullptr, Text("K"), "Kilometers"},
        {54, "Speed of the GPS receiver", nullptr, Ratio(120, 1), "00120"},
        {55, "Direction of Movement", nullptr, Text("T"), "True"},
        {56, "Direction of GPS Receiver Movement", nullptr, Ratio(90, 1), "00090"},
        {57, "Direction of Photography", nullptr, Text("M"), "Magnetic"},
        {58, "Direction of Photography in the Recorded Image", nullptr, Ratio(1801, 10), "00180"},
        {59, "Geodetic Survey Data", nullptr, Text("WGS-84"), "WGS-84"},
        {60, "North or South Latitude Destination Point", nullptr, Text("s"), "South"},
        {61, "Latitude Destination Point", nullptr, Triple(40, 26, 46), "040.26.00"},
        {62, "East or West Longitude Destination Point", nullptr, Text("E"), "East"},
        {63, "Longitude Destination Point", nullptr, Triple(9, 8, 7), "009.08.00"},
        {64, "Destination Point Unit", nullptr, Text("t"), "True"},
        {65, "Bearing - Destination Point", nullptr, Ratio(91, 2), "045.50"},
        {66, "Destination Point Unit Measure", nullptr, Text("N"), "Knots"},
        {67, "Distance to the Destination Point", nullptr, Ratio(5, 4), "001.25"},
    };
}

std::vector<ExpectedField> DicomFields()
{
    return {
        {10, "Patient Name", nullptr, Text(" Doe^John "), " Doe^John "},
        {11, "Patient ID", nullptr, Text("11"), "11"},
        {12, "Patient Birth Date", nullptr, Text("19700101"), "19700101"},
        {13, "Patient Sex", nullptr, Text("M"), "M"},
        {14, "Study Instance ID", nullptr, Text("1.2"), "1.2"},
        {15, "Study Date", nullptr, Text("20030105"), "20030105"},
        {16, "Study Time", nullptr, Text("130709"), "130709"},
        {17, "Referring Physician", nullptr, Text("Roe"), "Roe"},
        {18, "Series Modality", nullptr, Text("CT"), "CT"},
        {19, "Series ID", nullptr, Text("1.3"), "1.3"},
        {20, "Series Number", nullptr, Text("4"), "4"},
    };
}

struct Block {
    std::vector<ExpectedField> fields;
    QVector<CatalogueRow> (*fill)(const CommentSet& comments);
    QString (*text)(const CommentSet& comments);
    const char* heading; ///< with its line end; empty for none
};

std::vector<Block> Blocks()
{
    return {
        {CameraFields(), FillCameraList, CameraTagsText,
         "------------- Camera Exif Information -----------------\r\n"},
        {GpsFields(), FillGpsList, GpsTagsText,
         "--------------- GPS Exif Tags ----------------------------\r\n"},
        {DicomFields(), FillDicomList, DicomTagsText, ""},
    };
}

CommentSet AllOf(const std::vector<ExpectedField>& fields)
{
    CommentSet set;
    for (const ExpectedField& field : fields) {
        set.Set(field.slot, field.value);
    }
    return set;
}

QString ValueOf(const QVector<CatalogueRow>& rows, const char* label)
{
    for (const CatalogueRow& row : rows) {
        if (row.label == QLatin1String(label)) {
            return row.value;
        }
    }
    return QStringLiteral("no such row");
}

} // namespace

TEST(Catalogue, ListsHaveEveryRowInOrder)
{
    for (const Block& block : Blocks()) {
        const QVector<CatalogueRow> rows = block.fill(AllOf(block.fields));
        ASSERT_EQ(rows.size(), qsizetype(block.fields.size()));
        for (qsizetype i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(rows.at(i).label, block.fields[size_t(i)].label);
            EXPECT_EQ(rows.at(i).value, block.fields[size_t(i)].text)
                << rows.at(i).label.toStdString();
        }
    }
}

TEST(Catalogue, TextBlocksHaveTheSameValuesUnderTheirOwnLabels)
{
    for (const Block& block : Blocks()) {
        QString expected = QString::fromLatin1(block.heading);
        for (const ExpectedField& field : block.fields) {
            expected += field.textLabel ? QString::fromLatin1(field.textLabel)
                                        : QString::fromLatin1(field.label) + ": ";
            expected += QString::fromLatin1(field.text) + "\r\n";
        }
        EXPECT_EQ(block.text(AllOf(block.fields)), expected);
    }
}

TEST(Catalogue, EveryFieldKeepsItsRowWithoutAValue)
{
    for (const Block& block : Blocks()) {
        const QVector<CatalogueRow> rows = block.fill({});
        EXPECT_EQ(rows.size(), qsizetype(block.fields.size()));
        EXPECT_EQ(block.text({}).count("\r\n"), rows.size() + (*block.heading ? 1 : 0));
    }
}

TEST(Catalogue, NothingAtAllReadsAsTheWorkVariablesBegin)
{
    const std::set<QString> odd = {"Flash Taken",      "Metering Mode", "Light Source",
                                   "Exposure Program", "Image Source",  "Image Sensor Type ",
                                   "Color Space"};
    const QVector<CatalogueRow> rows = FillCameraList({});
    for (const CatalogueRow& row : rows) {
        EXPECT_EQ(row.value.isEmpty(), !odd.contains(row.label)) << row.label.toStdString();
    }
    EXPECT_EQ(ValueOf(rows, "Flash Taken"), "No");
    EXPECT_EQ(ValueOf(rows, "Metering Mode"), "Unidentified");
    EXPECT_EQ(ValueOf(rows, "Light Source"), "Unidentified");
    EXPECT_EQ(ValueOf(rows, "Exposure Program"), "Not defined");
    EXPECT_EQ(ValueOf(rows, "Image Source"), "DSC (Digital Still Camera)");
    EXPECT_EQ(ValueOf(rows, "Image Sensor Type "), "Color Sequential Sensor");
    EXPECT_EQ(ValueOf(rows, "Color Space"), "0");
    for (const CatalogueRow& row : FillGpsList({})) {
        EXPECT_EQ(row.value, "") << row.label.toStdString();
    }
}

TEST(Catalogue, UnreadBytesShowThoseOfTheFieldBefore)
{
    CommentSet set;
    set.Set(21, QByteArray("0220"));
    const QVector<CatalogueRow> rows = FillCameraList(set);
    EXPECT_EQ(ValueOf(rows, "Subject Location"), "X Column Number = 0  Y Row Number = 2");
    EXPECT_EQ(ValueOf(rows, "Exposure Index"), "0");
    EXPECT_EQ(ValueOf(rows, "Supported FlashPix Version"), "2.20");
    EXPECT_EQ(ValueOf(rows, "Image Source"), "Other");
    EXPECT_EQ(ValueOf(rows, "Scene Type"), "48");
    EXPECT_EQ(ValueOf(rows, "Image Sensor Type "), "");
    EXPECT_EQ(ValueOf(rows, "CFA Pattern"), "0 X 2");
    EXPECT_EQ(ValueOf(rows, "Optoelectric Coefficient "), "02");
}

TEST(Catalogue, UnreadIntegerShowsThatOfTheFieldBefore)
{
    CommentSet set;
    set.Set(32, 1);
    set.Set(31, 40'000); // does not fit: its read fails
    set.Set(162, 800);
    const QVector<CatalogueRow> rows = FillCameraList(set);
    EXPECT_EQ(ValueOf(rows, "Metering Mode"), "Average");
    EXPECT_EQ(ValueOf(rows, "Light Source"), "Daylight");
    EXPECT_EQ(ValueOf(rows, "Exposure Program"), "Manual");
    EXPECT_EQ(ValueOf(rows, "ISO Rating"), "800");
    EXPECT_EQ(ValueOf(rows, "Color Space"), "800");
}

TEST(Catalogue, UnreadTripleShowsThatOfTheFieldBefore)
{
    CommentSet set;
    set.Set(43, QVector<double>{40, 1, 26, 1, 4638, 100});
    set.Set(47, QVector<double>{5, 1});
    const QVector<CatalogueRow> rows = FillGpsList(set);
    EXPECT_EQ(ValueOf(rows, "Longitude"), "40 26.0");
    EXPECT_EQ(ValueOf(rows, "Time Stamp in UTC"), "40:26:00");
    EXPECT_EQ(ValueOf(rows, "Longitude Destination Point"), "040.26.00");
}

TEST(Catalogue, UnreadTextAndRationalAreEmpty)
{
    CommentSet set;
    set.Set(22, QStringLiteral("2003:01:05 13:07:09"));
    set.Set(26, QVector<double>{1, 2});
    set.Set(27, QStringLiteral("a text where a rational belongs"));
    const QVector<CatalogueRow> rows = FillCameraList(set);
    EXPECT_EQ(ValueOf(rows, "Date Digitized"), "");
    EXPECT_EQ(ValueOf(rows, "F stop"), "");
    EXPECT_EQ(ValueOf(rows, "Exposure Time"), "");
    EXPECT_EQ(ValueOf(rows, "Exposure Bias (APEX)"), "");
}

TEST(Catalogue, RunsDoNotLeaveAnythingToOneAnother)
{
    CommentSet set;
    set.Set(162, 800);
    FillCameraList(set);
    EXPECT_EQ(ValueOf(FillCameraList({}), "Color Space"), "0");
}

TEST(Catalogue, GeneralTagsOfOtherFiles)
{
    CommentSet set;
    for (qint16 slot = 0; slot <= 9; ++slot) {
        set.Set(slot, QStringLiteral("  text %1 ").arg(slot));
    }
    set.Set(175, QStringLiteral("a title"));
    EXPECT_EQ(GeneralTagsText("/a/b.jpg", set),
              "--------------- General Image Tags ---------------------\r\n"
              "Artist: text 0\r\n"
              "Copyright: text 1\r\n"
              "Creation Date/Time: text 2\r\n"
              "Make: text 5\r\n"
              "Model: text 6\r\n"
              "Name of Document: text 7\r\n"
              "Name of Page: text 8\r\n"
              "Software: text 9\r\n");
}

TEST(Catalogue, GeneralTagsOfAPng)
{
    CommentSet set;
    for (qint16 slot = 0; slot <= 9; ++slot) {
        set.Set(slot, QStringLiteral("text %1").arg(slot));
    }
    for (qint16 slot = 175; slot <= 178; ++slot) {
        set.Set(slot, QStringLiteral("text %1").arg(slot));
    }
    const QString text = GeneralTagsText("/a/b.PNG", set);
    EXPECT_EQ(text,
              "--------------- General Image Tags ---------------------\r\n"
              "Artist: text 0\r\n"
              "Copyright: text 1\r\n"
              "Creation Date/Time: text 2\r\n"
              "Title: text 175\r\n"
              "Host Computer: text 4\r\n"
              "Make: text 5\r\n"
              "Disclaimer: text 176\r\n"
              "Misc. Information: text 178\r\n"
              "Warning: text 177\r\n"
              "Software: text 9\r\n");
    EXPECT_FALSE(text.contains("Model: "));
    // Decided by the name, folders included.
    EXPECT_EQ(GeneralTagsText("/a.png/b.jpg", set), text);
}

TEST(Catalogue, GeneralBoxesOfTheViewer)
{
    CommentSet set;
    for (const qint16 slot : {0, 1, 2, 4, 5, 6, 7, 8, 9, 175, 176, 177, 178}) {
        set.Set(slot, QStringLiteral(" %1 ").arg(slot));
    }
    struct Row {
        const char* box;
        const char* label;
        const char* other;
        const char* png;
    };
    const Row expected[] = {
        {"txtArtistExif", "Aritst:", "0", "0"},
        {"txtCopyrightExif", "Copyright:", "1", "1"},
        {"txtDateCreated", "Date Created:", "2", "2"},
        {"txtComputer", "Computer:", "4", "175"},
        {"txtMake", "Make:", "5", "5"},
        {"txtModel", "Model:", "6", "176"},
        {"txtDocument", "Document:", "7", "178"},
        {"txtPage", "Page:", "8", "177"},
        {"txtSoftware", "Software:", "9", "9"},
    };
    const QVector<GeneralBox> other = FillGeneralBoxes("a.tif", set);
    const QVector<GeneralBox> png = FillGeneralBoxes("a.png", set);
    ASSERT_EQ(other.size(), qsizetype(std::size(expected)));
    ASSERT_EQ(png.size(), other.size());
    for (qsizetype i = 0; i < other.size(); ++i) {
        EXPECT_EQ(other.at(i).box, expected[i].box);
        EXPECT_EQ(other.at(i).label, expected[i].label);
        EXPECT_EQ(other.at(i).value, expected[i].other);
        EXPECT_EQ(png.at(i).box, expected[i].box);
        EXPECT_EQ(png.at(i).value, expected[i].png);
    }
}

TEST(Catalogue, ImageInformationRows)
{
    ImageFacts facts;
    facts.width = 1600;
    facts.height = 1200;
    facts.bits = 24;
    facts.format = 10;
    facts.xResolution = 72;
    facts.yResolution = 96;
    facts.sizeDisk = 123456;
    facts.sizeMemory = 5760000;
    facts.compression = QStringLiteral("JPEG");
    FileStat stat;
    stat.type = FileType::Regular;
    stat.modifiedSeconds = 1'000'000'000;
    const FakeLoop loop;
    const QVector<CatalogueRow> expected = {
        {"File Format", "JPEG File Interchange Format"},
        {"Image Width", "1600 Pixels"},
        {"Image Height", "1200 Pixels"},
        {"Bits per Pixel", "24 bits"},
        {"Compression Type", "JPEG"},
        {"X Resolution", "72"},
        {"Y Resolution", "96"},
        {"Image Size in Memory", "5760000 bytes"},
        {"Image Size on Disk", "123456 bytes"},
        {"File Date", loop.SystemDateText(ModifiedTime(stat))},
    };
    EXPECT_EQ(FillImageInfoList(facts, stat, loop), expected);
    EXPECT_FALSE(expected.last().value.isEmpty());
    EXPECT_EQ(FillImageInfoList(facts, FileStat(), loop).last().value, "");
}

TEST(Catalogue, ColumnsOfTheLists)
{
    const std::pair<CatalogueColumns, const char*> lists[] = {{kImageInfoColumns, "Image Field"},
                                                              {kCameraColumns, "Camera Tag"},
                                                              {kGpsColumns, "GPS Tag"},
                                                              {kDicomColumns, "DICOM Tag"}};
    for (const auto& [columns, title] : lists) {
        EXPECT_STREQ(columns.label, title);
        EXPECT_STREQ(columns.value, "Value");
        EXPECT_EQ(columns.labelTwips, 2300);
        EXPECT_EQ(columns.valueTwips, 3200);
    }
}

TEST(Catalogue, RowsReadTheirSlotsInTheSlotsOwnShape)
{
    for (const CatalogueBlock block :
         {CatalogueBlock::Camera, CatalogueBlock::Gps, CatalogueBlock::Dicom}) {
        for (const CatalogueField& field : CatalogueFields(block)) {
            const CommentSlot* slot = FindSlot(field.slot);
            ASSERT_NE(slot, nullptr) << field.slot;
            const bool colourSpace = QLatin1String(field.label) == QLatin1String("Color Space");
            EXPECT_EQ(field.shape == slot->shape, !colourSpace) << field.label;
        }
    }
}

} // namespace quillane
