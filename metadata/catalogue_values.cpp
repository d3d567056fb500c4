#include "metadata/catalogue_values.h"

#include "core/numbers.h"

#include <span>

namespace quillane::catalogue {

namespace {

struct ValueName {
    qint16 value;
    const char* name;
};

constexpr ValueName kMeteringModes[] = {
    {0, "Unidentified"}, {1, "Average"},   {2, "Center Weighted Average"},
    {3, "Spot"},         {4, "MultiSpot"}, {5, "Pattern"},
    {6, "Partial"},
};
/// The last three stand behind another 19 and are never reached: 20 to 22 read "Other".
constexpr ValueName kLightSources[] = {
    {0, "Unidentified"},
    {1, "Daylight"},
    {2, "Florescence light"},
    {3, "Tungsten Lamp"},
    {17, "Standard light source A"},
    {18, "Standard light source B"},
    {19, "Standard light source C"},
    {19, "D55"},
    {19, "D65"},
    {19, "D75"},
};
constexpr ValueName kExposurePrograms[] = {
    {0, "Not defined"},      {1, "Manual"},           {2, "Aperture priority"},
    {4, "Shutter priority"}, {5, "Creative program"}, {6, "Action program"},
    {7, "Portrait mode"},
};
constexpr ValueName kSensorTypes[] = {
    {1, "Not Defined"},
    {2, "One-Chip Color Area Sensor"},
    {3, "Two-Chip Color Area Sensor"},
    {4, "Three-Chip Color Area Sensor"},
    {5, "Color Sequential Area Sensor"},
    {7, "Trilinear Sensor"},
    {8, "Color Sequential Sensor"},
};
constexpr ValueName kLatitudeLetters[] = {{'N', "North"}, {'S', "South"}};
constexpr ValueName kLongitudeLetters[] = {{'E', "East"}, {'W', "West"}};
constexpr ValueName kSpeedLetters[] = {{'K', "Kilometers"}, {'M', "Miles"}, {'N', "Knots"}};
constexpr ValueName kBearingLetters[] = {{'T', "True"}, {'M', "Magnetic"}};

QString NameOf(std::span<const ValueName> names, int value, const char* other)
{
    for (const ValueName& row : names) {
        if (row.value == value) {
            return QString::fromLatin1(row.name);
        }
    }
    return QString::fromLatin1(other);
}

QString NameOfLetter(std::span<const ValueName> names, const QString& letter)
{
    return letter.size() == 1 ? NameOf(names, letter.at(0).toUpper().unicode(), "") : QString();
}

double Quotient(double above, double below)
{
    if (below == 0) {
        throw Failure(kFailureDivision, QStringLiteral("The field divides by zero."));
    }
    return above / below;
}

double Ratio(const CatalogueWork& work)
{
    return Quotient(work.RationalAt(0), work.RationalAt(1));
}

QString RatioText(const CatalogueWork& work, const char* format)
{
    return FormatNumber(Ratio(work), QLatin1String(format));
}

QString Whole(double value)
{
    return TextOf(qint32(ToInt16(value)));
}

struct TripleParts {
    explicit TripleParts(const CatalogueWork& work)
        : first(Quotient(work.TripleAt(0), work.TripleAt(1))),
          second(Quotient(work.TripleAt(2), work.TripleAt(3))),
          third(Quotient(work.TripleAt(3), work.TripleAt(4)))
    { }
    double first, second, third;
};

QString TripleText(const CatalogueWork& work, const char* firstFormat, QChar between)
{
    const TripleParts parts(work);
    const QLatin1String two("00");
    return FormatNumber(parts.first, QLatin1String(firstFormat)) + between
        + FormatNumber(parts.second, two) + between + FormatNumber(parts.third, two);
}

} // namespace

QString AsRead(const CatalogueWork& work)
{
    return work.Text();
}

QString WholeInteger(const CatalogueWork& work)
{
    return TextOf(qint32(work.Integer()));
}

QString IsoRating(const CatalogueWork& work)
{
    return work.Integer() < 1 ? QString() : WholeInteger(work);
}

QString FlashTaken(const CatalogueWork& work)
{
    constexpr ValueName kNames[] = {{1, "Yes"}, {0, "No"}};
    return NameOf(kNames, work.Integer(), "");
}

QString MeteringMode(const CatalogueWork& work)
{
    return NameOf(kMeteringModes, work.Integer(), "Other");
}

QString LightSource(const CatalogueWork& work)
{
    return NameOf(kLightSources, work.Integer(), "Other");
}

QString ExposureProgram(const CatalogueWork& work)
{
    return NameOf(kExposurePrograms, work.Integer(), "Other");
}

QString TwoDecimals(const CatalogueWork& work)
{
    return RatioText(work, "0.00");
}

QString OneDecimal(const CatalogueWork& work)
{
    return RatioText(work, "0.0");
}

QString FiveDigits(const CatalogueWork& work)
{
    return RatioText(work, "00000");
}

QString ThreeAndTwo(const CatalogueWork& work)
{
    return RatioText(work, "000.00");
}

QString FStop(const CatalogueWork& work)
{
    return QStringLiteral("f/") + RatioText(work, "0.0");
}

QString FocusDistance(const CatalogueWork& work)
{
    return RatioText(work, "0.0000") + QStringLiteral(" Meters");
}

QString FocalLength(const CatalogueWork& work)
{
    return RatioText(work, "0.00") + QStringLiteral(" mm");
}

QString Altitude(const CatalogueWork& work)
{
    return Whole(Ratio(work)) + QStringLiteral(" Meters");
}

QString ExposureTime(const CatalogueWork& work)
{
    Ratio(work); // a denominator of zero has no time
    const double above = work.RationalAt(0);
    const double below = work.RationalAt(1);
    const auto tenth = [](double element) { return TextOf(ToInt16(element) * 0.1); };
    const QString fraction =
        above > 1 ? tenth(above) + u'/' + tenth(below) : Whole(above) + u'/' + Whole(below);
    return fraction + QStringLiteral(" Second");
}

QString VersionText(const CatalogueWork& work)
{
    const QString end = QStringLiteral(".") + work.CharacterAt(2) + work.CharacterAt(3);
    const QString first = work.CharacterAt(0) == u'0' ? QString() : work.CharacterAt(0);
    return first + work.CharacterAt(1) + end;
}

QString SubjectLocation(const CatalogueWork& work)
{
    return QStringLiteral("X Column Number = ") + work.CharacterAt(0)
        + QStringLiteral("  Y Row Number = ") + work.CharacterAt(1);
}

QString FirstCharacter(const CatalogueWork& work)
{
    return work.CharacterAt(0);
}

QString FirstTwoCharacters(const CatalogueWork& work)
{
    return QString(work.CharacterAt(0)) + work.CharacterAt(1);
}

QString FirstByte(const CatalogueWork& work)
{
    return TextOf(qint32(work.ByteAt(0)));
}

QString CfaPattern(const CatalogueWork& work)
{
    return work.CharacterAt(0) + QStringLiteral(" X ") + work.CharacterAt(1);
}

QString ImageSource(const CatalogueWork& work)
{
    // With no bytes at all the question cannot be asked and counts as answered with yes.
    return !work.HasBytes() || work.ByteAt(0) == 3 ? QStringLiteral("DSC (Digital Still Camera)")
                                                   : QStringLiteral("Other");
}

QString SensorType(const CatalogueWork& work)
{
    // With no bytes at all every question counts as answered with yes, and the last one stays.
    const int type = work.HasBytes() ? work.ByteAt(0) : std::end(kSensorTypes)[-1].value;
    return NameOf(kSensorTypes, type, "");
}

QString GpsVersion(const CatalogueWork& work)
{
    const int sum = work.ByteAt(0) + work.ByteAt(1) + work.ByteAt(2) + work.ByteAt(3);
    if (sum > 255) {
        throw Failure(kFailureOverflow, QStringLiteral("The sum does not fit a byte."));
    }
    return TextOf(qint32(sum));
}

QString NorthOrSouth(const CatalogueWork& work)
{
    return NameOfLetter(kLatitudeLetters, work.Text());
}

QString EastOrWest(const CatalogueWork& work)
{
    return NameOfLetter(kLongitudeLetters, work.Text());
}

QString SpeedUnit(const CatalogueWork& work)
{
    return NameOfLetter(kSpeedLetters, work.Text());
}

QString TrueOrMagnetic(const CatalogueWork& work)
{
    return NameOfLetter(kBearingLetters, work.Text());
}

QString DegreeText(const CatalogueWork& work)
{
    const TripleParts parts(work);
    return Whole(parts.first) + u' ' + Whole(parts.second) + u'.' + Whole(parts.third);
}

QString TimeText(const CatalogueWork& work)
{
    return TripleText(work, "00", u':');
}

QString DestinationText(const CatalogueWork& work)
{
    return TripleText(work, "000", u'.');
}

} // namespace quillane::catalogue
