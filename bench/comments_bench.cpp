// 179 slots of 1,000 files through the comment reader, against one parse of each file by the
// metadata library alone. Warm: every file is read once before.
#include "core/native_path.h"
#include "imaging/comments/comment_reader.h"
#include "imaging/comments/slots.h"

#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exiv2/exiv2.hpp>
#include <vector>

namespace quillane {

namespace {

constexpr int kBenchFiles = 1000;
constexpr int kBenchRounds = 5;

/// What a camera writes: all three directories, a MakerNote and a preview.
QByteArray CameraExif(int number)
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
    ascii("Exif.Image.ImageDescription",
          "Name=Ann\r\nCity=Rome\r\nEvent=Number " + std::to_string(number) + "\r\n");
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

/// A JPEG whose pixels nobody looks at, but which has their bytes.
QByteArray CameraJpeg(int number)
{
    return QByteArray("\xff\xd8") + Segment(0xe1, QByteArray("Exif\0\0", 6) + CameraExif(number))
        + Segment(0xdb, QByteArray(65, 1)) + Segment(0xdb, QByteArray(65, 1))
        + Segment(0xc4, QByteArray(30, 0)) + Segment(0xc4, QByteArray(180, 0))
        + Segment(0xc0, QByteArray::fromHex("080bb80fa003012100021101031101"))
        + Segment(0xda, QByteArray::fromHex("03010002110311003f00")) + QByteArray(60'000, 0x2a)
        + QByteArray("\xff\xd9");
}

template <typename Step> double SecondsOf(Step&& step)
{
    const auto begin = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

qint64 ReadAllSlots(const std::vector<QString>& paths)
{
    CommentReader reader;
    qint64 found = 0;
    for (const QString& path : paths) {
        reader.Revalidate();
        for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
            found += reader.ReadComment(path, 0, slot).IsEmpty() ? 0 : 1;
        }
    }
    return found;
}

qint64 ParseAll(const std::vector<std::string>& names)
{
    qint64 found = 0;
    for (const std::string& name : names) {
        const auto image = Exiv2::ImageFactory::open(name);
        image->readMetadata();
        found += qint64(image->exifData().count());
    }
    return found;
}

int Run()
{
    const QTemporaryDir folder;
    std::vector<QString> paths;
    std::vector<std::string> names;
    WriteOptions quick;
    quick.sync = false;
    for (int i = 0; i < kBenchFiles; ++i) {
        const QString path = folder.filePath(QStringLiteral("%1.jpg").arg(i));
        WriteWholeFile(path, CameraJpeg(i), quick);
        paths.push_back(path);
        names.push_back(BytesFromPath(path).toStdString());
    }
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    qint64 slots = ReadAllSlots(paths), fields = ParseAll(names);
    double ours = 1e9, reference = 1e9;
    for (int round = 0; round < kBenchRounds; ++round) {
        ours = std::min(ours, SecondsOf([&] { slots = ReadAllSlots(paths); }));
        reference = std::min(reference, SecondsOf([&] { fields = ParseAll(names); }));
    }
    std::printf("comments: 179 slots of %d files %.1f ms (%lld values), one parse each by the "
                "library %.1f ms (%lld fields), ratio %.2f (at most 1.5)\n",
                kBenchFiles, ours * 1e3, slots, reference * 1e3, fields, ours / reference);
    return ours / reference <= 1.5 ? 0 : 1;
}

} // namespace

} // namespace quillane

int main()
{
    return quillane::Run();
}
