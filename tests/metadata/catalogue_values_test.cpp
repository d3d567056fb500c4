// What each formatter makes of a value, at its edges.
#include "metadata/catalogue_values.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

using Format = QString (*)(const CatalogueWork& work);

/// A row's value: empty where the formatter fails.
QString Value(Format format, const CatalogueWork& work)
{
    QString value;
    ResumeNext([&] { value = format(work); });
    return value;
}

QString OfText(Format format, const char* text)
{
    CatalogueWork work;
    work.Read(CommentValue(QString::fromLatin1(text)), SlotShape::Text);
    return Value(format, work);
}

QString OfInteger(Format format, qint32 integer)
{
    CatalogueWork work;
    work.Read(CommentValue(integer), SlotShape::Integer);
    return Value(format, work);
}

QString OfRatio(Format format, double above, double below)
{
    CatalogueWork work;
    work.Read(CommentValue(QVector<double>{above, below}), SlotShape::Rational);
    return Value(format, work);
}

QString OfTriple(Format format, const QVector<double>& parts)
{
    CatalogueWork work;
    work.Read(CommentValue(parts), SlotShape::RationalTriple);
    return Value(format, work);
}

QString OfBytes(Format format, const QByteArray& bytes)
{
    CatalogueWork work;
    work.Read(CommentValue(bytes), SlotShape::Bytes);
    return Value(format, work);
}

void ExpectNames(Format format, const std::vector<std::pair<qint32, const char*>>& names)
{
    for (const auto& [integer, name] : names) {
        EXPECT_EQ(OfInteger(format, integer), name) << integer;
    }
}

} // namespace

TEST(CatalogueValues, MeteringModes)
{
    ExpectNames(catalogue::MeteringMode,
                {{0, "Unidentified"},
                 {1, "Average"},
                 {2, "Center Weighted Average"},
                 {3, "Spot"},
                 {4, "MultiSpot"},
                 {5, "Pattern"},
                 {6, "Partial"},
                 {7, "Other"},
                 {255, "Other"},
                 {-1, "Other"}});
}

TEST(CatalogueValues, LightSources)
{
    ExpectNames(catalogue::LightSource,
                {{0, "Unidentified"},
                 {1, "Daylight"},
                 {2, "Florescence light"},
                 {3, "Tungsten Lamp"},
                 {4, "Other"},
                 {10, "Other"},
                 {17, "Standard light source A"},
                 {18, "Standard light source B"},
                 {19, "Standard light source C"},
                 {20, "Other"},
                 {21, "Other"},
                 {22, "Other"},
                 {255, "Other"}});
}

TEST(CatalogueValues, ExposurePrograms)
{
    ExpectNames(catalogue::ExposureProgram,
                {{0, "Not defined"},
                 {1, "Manual"},
                 {2, "Aperture priority"},
                 {3, "Other"},
                 {4, "Shutter priority"},
                 {5, "Creative program"},
                 {6, "Action program"},
                 {7, "Portrait mode"},
                 {8, "Other"}});
}

TEST(CatalogueValues, FlashTaken)
{
    ExpectNames(catalogue::FlashTaken,
                {{0, "No"}, {1, "Yes"}, {5, ""}, {16, ""}, {25, ""}, {-1, ""}});
}

TEST(CatalogueValues, IsoRatings)
{
    ExpectNames(catalogue::IsoRating,
                {{0, ""}, {-5, ""}, {1, "1"}, {100, "100"}, {32767, "32767"}});
    ExpectNames(catalogue::WholeInteger, {{0, "0"}, {-5, "-5"}, {100, "100"}});
}

TEST(CatalogueValues, SensorTypes)
{
    const std::pair<int, const char*> names[] = {
        {0, ""},
        {1, "Not Defined"},
        {2, "One-Chip Color Area Sensor"},
        {3, "Two-Chip Color Area Sensor"},
        {4, "Three-Chip Color Area Sensor"},
        {5, "Color Sequential Area Sensor"},
        {6, ""},
        {7, "Trilinear Sensor"},
        {8, "Color Sequential Sensor"},
        {9, ""},
        {255, ""},
    };
    for (const auto& [type, name] : names) {
        EXPECT_EQ(OfBytes(catalogue::SensorType, QByteArray(1, char(type))), name) << type;
    }
    EXPECT_EQ(OfBytes(catalogue::SensorType, {}), "Color Sequential Sensor");
}

TEST(CatalogueValues, ImageSource)
{
    EXPECT_EQ(OfBytes(catalogue::ImageSource, QByteArray(1, 3)), "DSC (Digital Still Camera)");
    EXPECT_EQ(OfBytes(catalogue::ImageSource, QByteArray(1, 2)), "Other");
    EXPECT_EQ(OfBytes(catalogue::ImageSource, "3"), "Other");
    EXPECT_EQ(OfBytes(catalogue::ImageSource, {}), "DSC (Digital Still Camera)");
}

TEST(CatalogueValues, VersionTexts)
{
    EXPECT_EQ(OfBytes(catalogue::VersionText, "0210"), "2.10");
    EXPECT_EQ(OfBytes(catalogue::VersionText, "0220"), "2.20");
    EXPECT_EQ(OfBytes(catalogue::VersionText, "1234"), "12.34");
    EXPECT_EQ(OfBytes(catalogue::VersionText, "0100abc"), "1.00");
    EXPECT_EQ(OfBytes(catalogue::VersionText, "021"), "");
    EXPECT_EQ(OfBytes(catalogue::VersionText, {}), "");
}

TEST(CatalogueValues, BytesAsCharacters)
{
    EXPECT_EQ(OfBytes(catalogue::SubjectLocation, "ab"), "X Column Number = a  Y Row Number = b");
    EXPECT_EQ(OfBytes(catalogue::SubjectLocation, "a"), "");
    EXPECT_EQ(OfBytes(catalogue::FirstCharacter, "ab"), "a");
    EXPECT_EQ(OfBytes(catalogue::FirstCharacter, QByteArray(1, '\1')), QString(QChar(1)));
    EXPECT_EQ(OfBytes(catalogue::FirstCharacter, "\xe9"), QString(QChar(0xe9)));
    EXPECT_EQ(OfBytes(catalogue::FirstCharacter, "\x80"), QString(QChar(0x20ac)));
    EXPECT_EQ(OfBytes(catalogue::FirstCharacter, {}), "");
    EXPECT_EQ(OfBytes(catalogue::FirstTwoCharacters, "abc"), "ab");
    EXPECT_EQ(OfBytes(catalogue::FirstTwoCharacters, "a"), "");
    EXPECT_EQ(OfBytes(catalogue::CfaPattern, "ab"), "a X b");
    EXPECT_EQ(OfBytes(catalogue::FirstByte, QByteArray(1, '\1')), "1");
    EXPECT_EQ(OfBytes(catalogue::FirstByte, "\xff"), "255");
    EXPECT_EQ(OfBytes(catalogue::FirstByte, {}), "");
}

TEST(CatalogueValues, GpsVersionIsASumThatFitsAByte)
{
    EXPECT_EQ(OfBytes(catalogue::GpsVersion, QByteArray("\2\2\0\0", 4)), "4");
    EXPECT_EQ(OfBytes(catalogue::GpsVersion, QByteArray("\xff\0\0\0", 4)), "255");
    EXPECT_EQ(OfBytes(catalogue::GpsVersion, QByteArray("\xff\1\0\0", 4)), "");
    EXPECT_EQ(OfBytes(catalogue::GpsVersion, QByteArray("\2\2\0", 3)), "");
}

TEST(CatalogueValues, RatioFormats)
{
    EXPECT_EQ(OfRatio(catalogue::TwoDecimals, 1, 3), "0.33");
    EXPECT_EQ(OfRatio(catalogue::TwoDecimals, -1, 8), "-0.13");
    EXPECT_EQ(OfRatio(catalogue::TwoDecimals, 1, 8), "0.13"); // ties away from zero
    EXPECT_EQ(OfRatio(catalogue::TwoDecimals, 1234, 1), "1234.00");
    EXPECT_EQ(OfRatio(catalogue::OneDecimal, -1, 3), "-0.3");
    EXPECT_EQ(OfRatio(catalogue::OneDecimal, 0, 3), "0.0");
    EXPECT_EQ(OfRatio(catalogue::FStop, 28, 10), "f/2.8");
    EXPECT_EQ(OfRatio(catalogue::FocusDistance, 1, 3), "0.3333 Meters");
    EXPECT_EQ(OfRatio(catalogue::FocalLength, 71, 10), "7.10 mm");
    EXPECT_EQ(OfRatio(catalogue::FiveDigits, 25, 10), "00003");
    EXPECT_EQ(OfRatio(catalogue::FiveDigits, 123456, 1), "123456");
    EXPECT_EQ(OfRatio(catalogue::ThreeAndTwo, 27, 2), "013.50");
    EXPECT_EQ(OfRatio(catalogue::ThreeAndTwo, 2703, 2), "1351.50");
}

TEST(CatalogueValues, ZeroDenominatorIsEmpty)
{
    for (const Format format :
         {catalogue::TwoDecimals, catalogue::OneDecimal, catalogue::FiveDigits,
          catalogue::ThreeAndTwo, catalogue::FStop, catalogue::FocusDistance,
          catalogue::FocalLength, catalogue::Altitude, catalogue::ExposureTime}) {
        EXPECT_EQ(OfRatio(format, 1, 0), "");
        EXPECT_EQ(OfRatio(format, 0, 0), "");
        CatalogueWork work;
        work.Read({}, SlotShape::Rational);
        EXPECT_EQ(Value(format, work), "");
    }
}

TEST(CatalogueValues, AltitudeIsTheNearestWholeNumber)
{
    EXPECT_EQ(OfRatio(catalogue::Altitude, 5, 2), "2 Meters"); // ties to even
    EXPECT_EQ(OfRatio(catalogue::Altitude, 7, 2), "4 Meters");
    EXPECT_EQ(OfRatio(catalogue::Altitude, -7, 2), "-4 Meters");
    EXPECT_EQ(OfRatio(catalogue::Altitude, 32767, 1), "32767 Meters");
    EXPECT_EQ(OfRatio(catalogue::Altitude, 32768, 1), "");
}

TEST(CatalogueValues, ExposureTimes)
{
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 1, 250), "1/250 Second");
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 10, 600), "1/60 Second");
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 1, 1), "1/1 Second");
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 10, 10), "1/1 Second");
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 0, 1), "0/1 Second");
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 3, 10), "0.3/1 Second");
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 2, 1), "0.2/0.1 Second");
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 1, 32767), "1/32767 Second");
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 1, 32768), "");
    EXPECT_EQ(OfRatio(catalogue::ExposureTime, 32768, 10), "");
}

TEST(CatalogueValues, ReferenceLettersInBothCases)
{
    struct Row {
        Format format;
        const char* letter;
        const char* name;
    };
    const Row rows[] = {
        {catalogue::NorthOrSouth, "N", "North"},
        {catalogue::NorthOrSouth, "n", "North"},
        {catalogue::NorthOrSouth, "S", "South"},
        {catalogue::NorthOrSouth, "s", "South"},
        {catalogue::NorthOrSouth, "E", ""},
        {catalogue::NorthOrSouth, "", ""},
        {catalogue::NorthOrSouth, "North", ""},
        {catalogue::EastOrWest, "E", "East"},
        {catalogue::EastOrWest, "e", "East"},
        {catalogue::EastOrWest, "W", "West"},
        {catalogue::EastOrWest, "w", "West"},
        {catalogue::EastOrWest, "N", ""},
        {catalogue::SpeedUnit, "K", "Kilometers"},
        {catalogue::SpeedUnit, "k", "Kilometers"},
        {catalogue::SpeedUnit, "M", "Miles"},
        {catalogue::SpeedUnit, "m", "Miles"},
        {catalogue::SpeedUnit, "N", "Knots"},
        {catalogue::SpeedUnit, "n", "Knots"},
        {catalogue::SpeedUnit, "T", ""},
        {catalogue::TrueOrMagnetic, "T", "True"},
        {catalogue::TrueOrMagnetic, "t", "True"},
        {catalogue::TrueOrMagnetic, "M", "Magnetic"},
        {catalogue::TrueOrMagnetic, "m", "Magnetic"},
        {catalogue::TrueOrMagnetic, "K", ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(OfText(row.format, row.letter), row.name) << row.letter;
    }
}

TEST(CatalogueValues, ThirdComponentOfATripleIsElementThreeByElementFour)
{
    EXPECT_EQ(OfTriple(catalogue::DegreeText, {40, 1, 26, 1, 4638, 100}), "40 26.0");
    EXPECT_EQ(OfTriple(catalogue::DegreeText, {40, 1, 264, 10, 4, 1}), "40 26.2");
    EXPECT_EQ(OfTriple(catalogue::TimeText, {13, 1, 7, 1, 9, 1}), "13:07:00");
    EXPECT_EQ(OfTriple(catalogue::TimeText, {13, 1, 70, 10, 1, 1}), "13:07:10");
    EXPECT_EQ(OfTriple(catalogue::DestinationText, {40, 1, 26, 1, 4638, 100}), "040.26.00");
}

TEST(CatalogueValues, TriplesWithAZeroAmongTheDivisorsAreEmpty)
{
    EXPECT_EQ(OfTriple(catalogue::DegreeText, {40, 1, 26, 1, 0, 1}), "");
    EXPECT_EQ(OfTriple(catalogue::DegreeText, {40, 0, 26, 1, 46, 1}), "");
    EXPECT_EQ(OfTriple(catalogue::TimeText, {13, 1, 7, 0, 9, 1}), "");
    EXPECT_EQ(OfTriple(catalogue::DegreeText, {40, 1, 26, 1, 46, 0}), "40 26.0");
}

TEST(CatalogueValues, TriplesNeedFiveElements)
{
    EXPECT_EQ(OfTriple(catalogue::DegreeText, {40, 1, 26, 1}), "");
    EXPECT_EQ(OfTriple(catalogue::DegreeText, {40, 1, 26, 1, 46}), "40 26.0");
}

TEST(CatalogueValues, TripleBeyondSixteenBitsIsEmptyAsDegreesAlone)
{
    EXPECT_EQ(OfTriple(catalogue::DegreeText, {40000, 1, 26, 1, 46, 1}), "");
    EXPECT_EQ(OfTriple(catalogue::DestinationText, {40000, 1, 26, 1, 46, 1}), "40000.26.00");
}

TEST(CatalogueWork, IntegerStartsAtZeroAndKeepsWhatItHeld)
{
    CatalogueWork work;
    EXPECT_EQ(work.Integer(), 0);
    work.Read(CommentValue(7), SlotShape::Integer);
    work.Read({}, SlotShape::Integer);
    EXPECT_EQ(work.Integer(), 7);
    work.Read(CommentValue(32768), SlotShape::Integer);
    EXPECT_EQ(work.Integer(), 7);
    work.Read(CommentValue(QByteArray("ab")), SlotShape::Integer);
    EXPECT_EQ(work.Integer(), 7);
    work.Read(CommentValue(32767), SlotShape::Integer);
    EXPECT_EQ(work.Integer(), 32767);
}

TEST(CatalogueWork, BytesAndTripleKeepWhatTheyHeld)
{
    CatalogueWork work;
    work.Read(CommentValue(QByteArray("ab")), SlotShape::Bytes);
    work.Read(CommentValue(QVector<double>{1, 2, 3, 4, 5, 6}), SlotShape::RationalTriple);
    work.Read({}, SlotShape::Bytes);
    work.Read({}, SlotShape::RationalTriple);
    work.Read(CommentValue(QVector<double>{9, 9}), SlotShape::Rational);
    EXPECT_EQ(work.ByteAt(0), 'a');
    EXPECT_EQ(work.TripleAt(4), 5);
}

TEST(CatalogueWork, TextAndRationalBeginEmptyWithEveryField)
{
    CatalogueWork work;
    work.Read(CommentValue(QStringLiteral("text")), SlotShape::Text);
    work.Read(CommentValue(QVector<double>{1, 2}), SlotShape::Rational);
    EXPECT_EQ(work.Text(), "");
    work.Read({}, SlotShape::Rational);
    EXPECT_THROW(work.RationalAt(0), Failure);
}

} // namespace quillane
