#include "imaging/comments/slots.h"
#include <algorithm>

namespace quillane {

std::span<const CommentSlot> CommentSlots()
{
    using enum SlotShape;
    using enum SlotHome;
    // Tags as TIFF 6.0, Exif 2.3 (directories Exif and GPS), DICOM PS3.6 and PNG (keywords) name
    // them.
    static constexpr CommentSlot kCommentSlots[] = {
        {0, Text, TiffDirectory, 0x013b, "Artist"},
        {1, Text, TiffDirectory, 0x8298, "Copyright"},
        {2, Text, TiffDirectory, 0x0132, "DateTime"},
        {3, Text, TiffDirectory, 0x010e, "ImageDescription"},
        {4, Text, TiffDirectory, 0x013c, "HostComputer"},
        {5, Text, TiffDirectory, 0x010f, "Make"},
        {6, Text, TiffDirectory, 0x0110, "Model"},
        {7, Text, TiffDirectory, 0x010d, "DocumentName"},
        {8, Text, TiffDirectory, 0x011d, "PageName"},
        {9, Text, TiffDirectory, 0x0131, "Software"},

        {10, Text, Dicom, 0x00100010, "PatientName"},
        {11, Text, Dicom, 0x00100020, "PatientID"},
        {12, Text, Dicom, 0x00100030, "PatientBirthDate"},
        {13, Text, Dicom, 0x00100040, "PatientSex"},
        {14, Text, Dicom, 0x0020000d, "StudyInstanceUID"},
        {15, Text, Dicom, 0x00080020, "StudyDate"},
        {16, Text, Dicom, 0x00080030, "StudyTime"},
        {17, Text, Dicom, 0x00080090, "ReferringPhysicianName"},
        {18, Text, Dicom, 0x00080060, "Modality"},
        {19, Text, Dicom, 0x0020000e, "SeriesInstanceUID"},
        {20, Text, Dicom, 0x00200011, "SeriesNumber"},

        {21, Bytes, ExifDirectory, 0x9000, "ExifVersion"},
        {22, Text, ExifDirectory, 0x9003, "DateTimeOriginal"},
        {23, Text, ExifDirectory, 0x9004, "DateTimeDigitized"},
        {24, Rational, ExifDirectory, 0x9201, "ShutterSpeedValue"},
        {25, Rational, ExifDirectory, 0x9202, "ApertureValue"},
        {26, Rational, ExifDirectory, 0x9203, "BrightnessValue"},
        {27, Rational, ExifDirectory, 0x9204, "ExposureBiasValue"},
        {29, Rational, ExifDirectory, 0x9206, "SubjectDistance"},
        {30, Integer, ExifDirectory, 0x9207, "MeteringMode"},
        {31, Integer, ExifDirectory, 0x9208, "LightSource"},
        {32, Integer, ExifDirectory, 0x9209, "Flash"},
        {33, Rational, ExifDirectory, 0x920a, "FocalLength"},
        {34, Rational, ExifDirectory, 0x829a, "ExposureTime"},
        {35, Rational, ExifDirectory, 0x829d, "FNumber"},

        {41, Bytes, GpsDirectory, 0x0000, "GPSVersionID"},
        {42, Text, GpsDirectory, 0x0001, "GPSLatitudeRef"},
        {43, RationalTriple, GpsDirectory, 0x0002, "GPSLatitude"},
        {44, Text, GpsDirectory, 0x0003, "GPSLongitudeRef"},
        {45, RationalTriple, GpsDirectory, 0x0004, "GPSLongitude"},
        {46, Bytes, GpsDirectory, 0x0005, "GPSAltitudeRef"},
        {47, Rational, GpsDirectory, 0x0006, "GPSAltitude"},
        {48, RationalTriple, GpsDirectory, 0x0007, "GPSTimeStamp"},
        {49, Text, GpsDirectory, 0x0008, "GPSSatellites"},
        {50, Text, GpsDirectory, 0x0009, "GPSStatus"},
        {51, Text, GpsDirectory, 0x000a, "GPSMeasureMode"},
        {52, Rational, GpsDirectory, 0x000b, "GPSDOP"},
        {53, Text, GpsDirectory, 0x000c, "GPSSpeedRef"},
        {54, Rational, GpsDirectory, 0x000d, "GPSSpeed"},
        {55, Text, GpsDirectory, 0x000e, "GPSTrackRef"},
        {56, Rational, GpsDirectory, 0x000f, "GPSTrack"},
        {57, Text, GpsDirectory, 0x0010, "GPSImgDirectionRef"},
        {58, Rational, GpsDirectory, 0x0011, "GPSImgDirection"},
        {59, Text, GpsDirectory, 0x0012, "GPSMapDatum"},
        {60, Text, GpsDirectory, 0x0013, "GPSDestLatitudeRef"},
        {61, RationalTriple, GpsDirectory, 0x0014, "GPSDestLatitude"},
        {62, Text, GpsDirectory, 0x0015, "GPSDestLongitudeRef"},
        {63, RationalTriple, GpsDirectory, 0x0016, "GPSDestLongitude"},
        {64, Text, GpsDirectory, 0x0017, "GPSDestBearingRef"},
        {65, Rational, GpsDirectory, 0x0018, "GPSDestBearing"},
        {66, Text, GpsDirectory, 0x0019, "GPSDestDistanceRef"},
        {67, Rational, GpsDirectory, 0x001a, "GPSDestDistance"},

        {158, Bytes, ExifDirectory, 0xa000, "FlashpixVersion"},
        {160, Integer, ExifDirectory, 0x8822, "ExposureProgram"},
        {161, Text, ExifDirectory, 0x8824, "SpectralSensitivity"},
        {162, Integer, ExifDirectory, 0x8827, "ISOSpeedRatings"},
        {163, Bytes, ExifDirectory, 0x8828, "OECF"},
        {164, Text, ExifDirectory, 0xa004, "RelatedSoundFile"},
        {165, Rational, ExifDirectory, 0xa20b, "FlashEnergy"},
        {166, Bytes, ExifDirectory, 0xa20c, "SpatialFrequencyResponse"},
        {167, Bytes, ExifDirectory, 0xa20e, "FocalPlaneXResolution"},
        {168, Bytes, ExifDirectory, 0xa20f, "FocalPlaneYResolution"},
        {169, Bytes, ExifDirectory, 0xa214, "SubjectLocation"},
        {170, Bytes, ExifDirectory, 0xa215, "ExposureIndex"},
        {171, Bytes, ExifDirectory, 0xa217, "SensingMethod"},
        {172, Bytes, ExifDirectory, 0xa300, "FileSource"},
        {173, Bytes, ExifDirectory, 0xa301, "SceneType"},
        {174, Bytes, ExifDirectory, 0xa302, "CFAPattern"},
        {175, Text, PngText, 0, "Title"},
        {176, Text, PngText, 0, "Disclaimer"},
        {177, Text, PngText, 0, "Warning"},
        {178, Text, PngText, 0, "Comment"},
    };
    return kCommentSlots;
}

const CommentSlot* FindSlot(qint16 slot)
{
    const std::span<const CommentSlot> slots = CommentSlots();
    const auto found =
        std::lower_bound(slots.begin(), slots.end(), slot,
                         [](const CommentSlot& row, qint16 wanted) { return row.slot < wanted; });
    return found != slots.end() && found->slot == slot ? &*found : nullptr;
}

} // namespace quillane
