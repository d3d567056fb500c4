#include "metadata/catalogue_fields.h"

#include "metadata/catalogue_values.h"

namespace quillane {

namespace {

constexpr auto kFieldText = SlotShape::Text;
constexpr auto kFieldInteger = SlotShape::Integer;
constexpr auto kFieldRational = SlotShape::Rational;
constexpr auto kFieldTriple = SlotShape::RationalTriple;
constexpr auto kFieldBytes = SlotShape::Bytes;

constexpr CatalogueField kCameraFields[] = {
    {21, "EXIF Version", nullptr, kFieldBytes, catalogue::VersionText},
    {32, "Flash Taken", nullptr, kFieldInteger, catalogue::FlashTaken},
    {26, "Brightness", nullptr, kFieldRational, catalogue::TwoDecimals},
    {35, "F stop", nullptr, kFieldRational, catalogue::FStop},
    {29, "Focus Distance", nullptr, kFieldRational, catalogue::FocusDistance},
    {25, "Aperture", nullptr, kFieldRational, catalogue::TwoDecimals},
    {24, "Shutter Speed (APEX)", nullptr, kFieldRational, catalogue::TwoDecimals},
    {34, "Exposure Time", nullptr, kFieldRational, catalogue::ExposureTime},
    {30, "Metering Mode", nullptr, kFieldInteger, catalogue::MeteringMode},
    {31, "Light Source", nullptr, kFieldInteger, catalogue::LightSource},
    {160, "Exposure Program", nullptr, kFieldInteger, catalogue::ExposureProgram},
    {22, "Origional Date", nullptr, kFieldText, catalogue::AsRead},
    {23, "Date Digitized", nullptr, kFieldText, catalogue::AsRead},
    {164, "Related Sound File", nullptr, kFieldText, catalogue::AsRead},
    {165, "Flash Energy", nullptr, kFieldRational, catalogue::TwoDecimals},
    {33, "Focal Length", nullptr, kFieldRational, catalogue::FocalLength},
    {27, "Exposure Bias (APEX)", nullptr, kFieldRational, catalogue::OneDecimal},
    {161, "Spectral Sensitivity", nullptr, kFieldText, catalogue::AsRead},
    {162, "ISO Rating", nullptr, kFieldInteger, catalogue::IsoRating},
    {169, "Subject Location", nullptr, kFieldBytes, catalogue::SubjectLocation},
    {170, "Exposure Index", nullptr, kFieldBytes, catalogue::FirstCharacter},
    {167, "Focal Plane X Resolution", nullptr, kFieldBytes, catalogue::FirstCharacter},
    {168, "Focal Plane Y Resolution", nullptr, kFieldBytes, catalogue::FirstCharacter},
    {158, "Supported FlashPix Version", nullptr, kFieldBytes, catalogue::VersionText},
    {172, "Image Source", nullptr, kFieldBytes, catalogue::ImageSource},
    {173, "Scene Type", nullptr, kFieldBytes, catalogue::FirstByte},
    {171, "Image Sensor Type ", "Image Sensor Type: ", kFieldBytes, catalogue::SensorType},
    {174, "CFA Pattern", nullptr, kFieldBytes, catalogue::CfaPattern},
    {166, "Spatial Frequency Response", nullptr, kFieldBytes, catalogue::FirstTwoCharacters},
    {163, "Optoelectric Coefficient ", "Optoelectric Coefficient: ", kFieldBytes,
     catalogue::FirstTwoCharacters},
    {163, "Color Space", nullptr, kFieldInteger, catalogue::WholeInteger},
};

constexpr CatalogueField kGpsFields[] = {
    {41, "GPS Version", nullptr, kFieldBytes, catalogue::GpsVersion},
    {42, "North or South Latitude", nullptr, kFieldText, catalogue::NorthOrSouth},
    {43, "Latitude", nullptr, kFieldTriple, catalogue::DegreeText},
    {44, "East or West Longitude", nullptr, kFieldText, catalogue::EastOrWest},
    {45, "Longitude", nullptr, kFieldTriple, catalogue::DegreeText},
    {46, "Reference Altitude", nullptr, kFieldBytes, catalogue::FirstByte},
    {47, "Altitude", nullptr, kFieldRational, catalogue::Altitude},
    {48, "Time Stamp in UTC", nullptr, kFieldTriple, catalogue::TimeText},
    {49, "GPS Satellites Used ", "GPS Satellites Used: ", kFieldText, catalogue::AsRead},
    {50, "Status of the GPS Receiver", nullptr, kFieldText, catalogue::AsRead},
    {51, "GPS Measurement Mode", nullptr, kFieldText, catalogue::AsRead},
    {52, "DOP (data precision) value", "DOP (data precision) value:", kFieldRational,
     catalogue::FiveDigits},
    {53, "Speed Measuring Unit", nullptr, kFieldText, catalogue::SpeedUnit},
    {54, "Speed of the GPS receiver", nullptr, kFieldRational, catalogue::FiveDigits},
    {55, "Direction of Movement", nullptr, kFieldText, catalogue::TrueOrMagnetic},
    {56, "Direction of GPS Receiver Movement", nullptr, kFieldRational, catalogue::FiveDigits},
    {57, "Direction of Photography", nullptr, kFieldText, catalogue::TrueOrMagnetic},
    {58, "Direction of Photography in the Recorded Image", nullptr, kFieldRational,
     catalogue::FiveDigits},
    {59, "Geodetic Survey Data", nullptr, kFieldText, catalogue::AsRead},
    {60, "North or South Latitude Destination Point", nullptr, kFieldText, catalogue::NorthOrSouth},
    {61, "Latitude Destination Point", nullptr, kFieldTriple, catalogue::DestinationText},
    {62, "East or West Longitude Destination Point", nullptr, kFieldText, catalogue::EastOrWest},
    {63, "Longitude Destination Point", nullptr, kFieldTriple, catalogue::DestinationText},
    {64, "Destination Point Unit", nullptr, kFieldText, catalogue::TrueOrMagnetic},
    {65, "Bearing - Destination Point", nullptr, kFieldRational, catalogue::ThreeAndTwo},
    {66, "Destination Point Unit Measure", nullptr, kFieldText, catalogue::SpeedUnit},
    {67, "Distance to the Destination Point", nullptr, kFieldRational, catalogue::ThreeAndTwo},
};

constexpr CatalogueField kDicomFields[] = {
    {10, "Patient Name", nullptr, kFieldText, catalogue::AsRead},
    {11, "Patient ID", nullptr, kFieldText, catalogue::AsRead},
    {12, "Patient Birth Date", nullptr, kFieldText, catalogue::AsRead},
    {13, "Patient Sex", nullptr, kFieldText, catalogue::AsRead},
    {14, "Study Instance ID", nullptr, kFieldText, catalogue::AsRead},
    {15, "Study Date", nullptr, kFieldText, catalogue::AsRead},
    {16, "Study Time", nullptr, kFieldText, catalogue::AsRead},
    {17, "Referring Physician", nullptr, kFieldText, catalogue::AsRead},
    {18, "Series Modality", nullptr, kFieldText, catalogue::AsRead},
    {19, "Series ID", nullptr, kFieldText, catalogue::AsRead},
    {20, "Series Number", nullptr, kFieldText, catalogue::AsRead},
};

constexpr GeneralField kGeneralFields[] = {
    {{0, 0}, {"Artist: ", "Artist: "}, {0, 0}, "txtArtistExif", "Aritst:"},
    {{1, 1}, {"Copyright: ", "Copyright: "}, {1, 1}, "txtCopyrightExif", "Copyright:"},
    {{2, 2},
     {"Creation Date/Time: ", "Creation Date/Time: "},
     {2, 2},
     "txtDateCreated",
     "Date Created:"},
    {{kNoSlot, 175}, {nullptr, "Title: "}, {4, 175}, "txtComputer", "Computer:"},
    {{kNoSlot, 4}, {nullptr, "Host Computer: "}, {kNoSlot, kNoSlot}, nullptr, nullptr},
    {{5, 5}, {"Make: ", "Make: "}, {5, 5}, "txtMake", "Make:"},
    {{6, 176}, {"Model: ", "Disclaimer: "}, {6, 176}, "txtModel", "Model:"},
    {{7, 178}, {"Name of Document: ", "Misc. Information: "}, {7, 178}, "txtDocument", "Document:"},
    {{8, 177}, {"Name of Page: ", "Warning: "}, {8, 177}, "txtPage", "Page:"},
    {{9, 9}, {"Software: ", "Software: "}, {9, 9}, "txtSoftware", "Software:"},
};

} // namespace

std::span<const CatalogueField> CatalogueFields(CatalogueBlock block)
{
    switch (block) {
    case CatalogueBlock::Camera:
        return kCameraFields;
    case CatalogueBlock::Gps:
        return kGpsFields;
    case CatalogueBlock::Dicom:
        break;
    }
    return kDicomFields;
}

QString TextLabelOf(const CatalogueField& field)
{
    return field.textLabel ? QString::fromLatin1(field.textLabel)
                           : QString::fromLatin1(field.label) + QStringLiteral(": ");
}

std::span<const GeneralField> GeneralFields()
{
    return kGeneralFields;
}

} // namespace quillane
