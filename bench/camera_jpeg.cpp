#include "camera_jpeg.h"

#include <exiv2/exiv2.hpp>
#include <string>
#include <vector>

namespace quillane::bench {

namespace {

/// What a camera writes: all three directories, a MakerNote and a preview.
QByteArray CameraExif(int number, const QByteArray& description)
{
    Exiv2::ExifData data;
    const auto ascii = [&](const char* key, const std::string& text) { data[key] = text; };
    const auto of = [&](const char* key, Exiv2::TypeId type, const char* text) {
        auto value = Exiv2::Value::create(type);
        value->read(text);
        data.add(Exiv2::ExifKey(key), value.get());
    };
    ascii("Exif.Image.Make", "Quillane Optics");
    ascii("Exif.Image.Model", "Model " + std::to_string(number % 7));
    ascii("Exif.Image.ImageDescription", description.toStdString());
    ascii("Exif.Image.Artist", "Somebody");
    ascii("Exif.Image.Copyright", "Nobody in particular");
    ascii("Exif.Image.Software", "Firmware 1.0");
    ascii("Exif.Image.DateTime", "2003:01:05 13:07:09");
    of("Exif.Image.Orientation", Exiv2::unsignedShort, "1");
    of("Exif.Image.XResolution", Exiv2::unsignedRational, "72/1");
    of("Exif.Image.YResolution", Exiv2::unsignedRational, "72/1");
    of("Exif.Image.ResolutionUnit", Exiv2::unsignedShort, "2");
    of("Exif.Photo.ExifVersion", Exiv2::undefined, "48 50 50 48");
    ascii("Exif.Photo.DateTimeOriginal", "2003:01:05 13:07:09");
    ascii("Exif.Photo.DateTimeDigitized", "2003:01:05 13:07:09");
    of("Exif.Photo.ExposureTime", Exiv2::unsignedRational, "1/250");
    of("Exif.Photo.FNumber", Exiv2::unsignedRational, "56/10");
    of("Exif.Photo.ExposureProgram", Exiv2::unsignedShort, "2");
    of("Exif.Photo.ISOSpeedRatings", Exiv2::unsignedShort, "100");
    of("Exif.Photo.ShutterSpeedValue", Exiv2::signedRational, "8/1");
    of("Exif.Photo.ApertureValue", Exiv2::unsignedRational, "5/1");
    of("Exif.Photo.ExposureBiasValue", Exiv2::signedRational, "-1/3");
    of("Exif.Photo.MeteringMode", Exiv2::unsignedShort, "5");
    of("Exif.Photo.LightSource", Exiv2::unsignedShort, "0");
    of("Exif.Photo.Flash", Exiv2::unsignedShort, "0");
    of("Exif.Photo.FocalLength", Exiv2::unsignedRational, "50/1");
    of("Exif.Photo.FlashpixVersion", Exiv2::undefined, "48 49 48 48");
    of("Exif.Photo.PixelXDimension", Exiv2::unsignedLong, "4000");
    of("Exif.Photo.PixelYDimension", Exiv2::unsignedLong, "3000");
    of("Exif.Photo.FileSource", Exiv2::undefined, "3");
    of("Exif.Photo.SceneType", Exiv2::undefined, "1");
    of("Exif.GPSInfo.GPSVersionID", Exiv2::unsignedByte, "2 2 0 0");
    ascii("Exif.GPSInfo.GPSLatitudeRef", "N");
    of("Exif.GPSInfo.GPSLatitude", Exiv2::unsignedRational, "40/1 26/1 4638/100");
    ascii("Exif.GPSInfo.GPSLongitudeRef", "W");
    of("Exif.GPSInfo.GPSLongitude", Exiv2::unsignedRational, "79/1 58/1 5600/100");
    of("Exif.GPSInfo.GPSAltitude", Exiv2::unsignedRational, "120/1");
    std::string note;
    for (int i = 0; i < 2000; ++i) {
        note += std::to_string(i % 200) + ' ';
    }
    of("Exif.Photo.MakerNote", Exiv2::undefined, note.c_str());
    std::vector<Exiv2::byte> preview(6000, 0x55);
    Exiv2::ExifThumb(data).setJpegThumbnail(preview.data(), decltype(Exiv2::DataBuf().size_)(6000));
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, Exiv2::littleEndian, data);
    return QByteArray(reinterpret_cast<const char*>(blob.data()), qsizetype(blob.size()));
}

QByteArray Segment(quint8 marker, const QByteArray& content)
{
    const qsizetype size = content.size() + 2;
    return QByteArray("\xff") + char(marker) + char(size >> 8) + char(size) + content;
}

} // namespace

QByteArray CameraJpeg(int number, const QByteArray& description)
{
    return QByteArray("\xff\xd8")
        + Segment(0xe1, QByteArray("Exif\0\0", 6) + CameraExif(number, description))
        + Segment(0xdb, QByteArray(65, 1)) + Segment(0xdb, QByteArray(65, 1))
        + Segment(0xc4, QByteArray(30, 0)) + Segment(0xc4, QByteArray(180, 0))
        + Segment(0xc0, QByteArray::fromHex("080bb80fa003012100021101031101"))
        + Segment(0xda, QByteArray::fromHex("03010002110311003f00")) + QByteArray(60'000, 0x2a)
        + QByteArray("\xff\xd9");
}

} // namespace quillane::bench
