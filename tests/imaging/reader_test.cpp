#include "codec_support_for_tests.h"
#include "core/native_path.h"
#include "imaging/codecs/encoders.h"
#include "imaging/reader.h"
#include "picture_maker.h"
#include <QTemporaryDir>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

namespace {

using making::RefusalOf;

class ReaderTest : public ::testing::Test {
protected:
    QString Write(const QString& name, const QByteArray& content)
    {
        const QString path = mFolder.filePath(name);
        WriteWholeFile(path, content);
        return path;
    }
    QTemporaryDir mFolder;
};

TEST_F(ReaderTest, TheContentDecidesNotTheExtension)
{
    EXPECT_EQ(ProbeFile(Write("a.png", making::MakeJpeg({}))).format, 21);
    EXPECT_EQ(ProbeFile(Write("a.jpg", making::MakePng({}))).format, 75);
    EXPECT_EQ(ProbeFile(Write("noextension", making::MakeGif({}))).format, 2);
}

TEST_F(ReaderTest, FactsHaveSizesOnDiskAndInMemory)
{
    making::PngMake make;
    make.width = 13;
    make.colourType = 0;
    make.depth = 1;
    const QByteArray bytes = making::MakePng(make);
    const ImageFacts facts = ProbeFile(Write("a.png", bytes));
    EXPECT_EQ(facts.sizeDisk, bytes.size());
    EXPECT_EQ(facts.sizeMemory, 4 * 24);
}

TEST_F(ReaderTest, PixelsStandUprightAndFactsStayTheFiles)
{
    for (int orientation = 1; orientation <= 8; ++orientation) {
        making::PngMake png;
        png.exif = making::MakeExif(orientation);
        const LoadedImage loaded = LoadFile(Write("a.png", making::MakePng(png)));
        EXPECT_EQ(loaded.facts.width, 32);
        EXPECT_EQ(loaded.facts.height, 24);
        EXPECT_EQ(loaded.facts.orientation, orientation);
        EXPECT_EQ(loaded.bitmap.Width(), orientation >= 5 ? 24 : 32);
        const Bitmap stored = making::DecodeBytes(making::MakePng(png));
        EXPECT_EQ(loaded.bitmap.Pixels(), stored.Upright(orientation).Pixels());
    }
}

TEST_F(ReaderTest, AReducedPictureStandsUprightToo)
{
    making::JpegMake make;
    make.width = 800;
    make.height = 400;
    make.exif = making::MakeExif(6);
    DecodeRequest request;
    request.atLeast = QSize(200, 100);
    const LoadedImage loaded = LoadFile(Write("a.jpg", making::MakeJpeg(make)), request);
    EXPECT_EQ(loaded.bitmap.Pixels().size(), QSize(100, 200));
    EXPECT_EQ(loaded.facts.width, 800);
}

TEST_F(ReaderTest, RefusesWhatIsNoPictureWithWordsThatNameTheFile)
{
    const auto words = [&](const QString& path) {
        return RefusalOf([&] { ProbeFile(path); }).words;
    };
    EXPECT_EQ(words(Write("notes.jpg", "Dear diary")),
              "\"notes.jpg\" is not a picture this program reads.");
    EXPECT_EQ(words(Write("empty.jpg", "")), "\"empty.jpg\" is empty.");
    EXPECT_EQ(RefusalOf([&] { LoadFile(mFolder.filePath("none.jpg")); }).number, kFailureNoFile);
    EXPECT_NE(RefusalOf([&] { LoadFile(mFolder.path()); }).number, 0);
}

TEST_F(ReaderTest, AFifoWithAPicturesNameIsNeverOpened)
{
    const QString path = mFolder.filePath("pipe.jpg");
    ASSERT_EQ(::mkfifo(path.toUtf8().constData(), 0600), 0);
    EXPECT_NE(RefusalOf([&] { ProbeFile(path); }).number, 0);
    EXPECT_NE(RefusalOf([&] { LoadFile(path); }).number, 0);
}

TEST_F(ReaderTest, NamesAreBytes)
{
    const QString path = mFolder.path() + PathFromBytes("/\xff\xfe \n\xce\xb1.jpg");
    WriteWholeFile(path, making::MakeJpeg({}));
    EXPECT_EQ(ProbeFile(path).width, 64);
    EXPECT_EQ(LoadFile(path).bitmap.Width(), 64);
    EXPECT_TRUE(RemoveFile(path)); // the folder's own clearing does not see such names
}

TEST_F(ReaderTest, AnEnormousFileIsRefusedUnread)
{
    const QString path = Write("a.jpg", making::MakeJpeg({}));
    ASSERT_EQ(::truncate(path.toUtf8().constData(), off_t(3) << 30), 0); // a hole
    EXPECT_EQ(RefusalOf([&] { ProbeFile(path); }).words,
              "\"a.jpg\" is too large: it has 3072 MB, and at most 2048 MB can be read.");
}

TEST(FindCodec, TellsEachFormatByItsBeginning)
{
    const QByteArray preamble(128, '\0');
    const struct {
        QByteArray head;
        const char* extension;
        const char* name;
    } rows[] = {
        {"\xff\xd8\xff\xe1", "", "JPEG"},
        {"\x89PNG\r\n\x1a\n", "JPG", "PNG"},
        {"GIF87a", "", "GIF"},
        {"GIF89a", "", "GIF"},
        {QByteArray("II*\0\x08\0\0\0", 8), "", "TIFF"},
        {QByteArray("MM\0*\0\0\0\x08", 8), "", "TIFF"},
        {QByteArray("II+\0\x08\0\0\0", 8), "", "TIFF"},
        {QByteArray("MM\0+\0\x08\0\0", 8), "", "TIFF"},
        {preamble + "DICM", "", "DICOM"},
        {QByteArray("II*\0\x08\0\0\0", 8).leftJustified(128, '\0') + "DICM", "dic", "DICOM"},
        {QByteArray("II*\0\x08\0\0\0", 8).leftJustified(128, '\0') + "DICM", "tif", "TIFF"},
        {QByteArray("\x08\0\x05\0\x0a\0\0\0ISO_IR 100", 18), "dic", "DICOM"},
        {QByteArray("\0\x08\0\x05\0\0\0\x0aISO_IR 100", 18), "DCM", "DICOM"},
        {QByteArray("\x02\0\0\0UL\x04\0\0\0\0\0\0\0\0\0", 16), "dcm", "DICOM"},
        {QByteArray("\x08\0\x05\0\x0a\0\0\0ISO_IR 100", 18), "", nullptr},
        {"BM" + QByteArray(12, '\0') + making::Little(40, 4), "", "BMP"},
        {"BM" + QByteArray(12, '\0') + making::Little(400, 4), "bmp", nullptr},
        {"BMW is a make of car.", "", nullptr},
        {QByteArray("\0\0\1\0\1\0", 6) + QByteArray(12, '\0') + making::Little(22, 4), "", "ICO"},
        {QByteArray("\0\0\2\0\1\0", 6) + QByteArray(12, '\0') + making::Little(22, 4), "", "ICO"},
        {QByteArray("\0\0\2\0\0\0", 6) + QByteArray(16, '\0'), "tga", nullptr},
        {QByteArray("\0\0\1\xba", 4) + QByteArray(16, '\0'), "mpg", "MPEG"},
        {QByteArray("\0\0\1\xb3", 4) + QByteArray(16, '\0'), "", "MPEG"},
        {QByteArray("\0\0\1\xb6", 4) + QByteArray(16, '\0'), "mpg", nullptr},
        {QByteArray(512, 'G'), "mpg", "MPEG"},
        {QByteArray(512, 'G'), "", nullptr},
        {"RIFF1234AVI LIST", "", "AVI"},
        {"RIFF1234WAVEfmt ", "avi", nullptr},
        {QByteArray("\0\0\0\x14"
                    "ftypqt  ",
                    12),
         "", "MOV"},
        {QByteArray("\0\0\0\x14"
                    "ftypisom",
                    12),
         "", "MOV"},
        {QByteArray("\0\0\0\x14"
                    "ftypheic",
                    12),
         "mov", nullptr},
        {QByteArray("\0\0\0\x08"
                    "wide\0\0\0\0",
                    12),
         "", "MOV"},
        {QByteArray("\0\0\x02\x14"
                    "moov\0\0\0\0",
                    12),
         "", "MOV"},
        {QByteArray("\0\0\x02\x14"
                    "moo?\0\0\0\0",
                    12),
         "mov", nullptr},
        {"P6\n1 1\n255\n", "", "PNM"},
        {"P1#", "", "PNM"},
        {"P7\n", "", nullptr},
        {"P6x", "", nullptr},
        {"PK\3\4", "zip", nullptr},
        {"", "jpg", nullptr},
    };
    for (const auto& row : rows) {
        const Codec* codec = FindCodec(row.head, QString(row.extension));
        EXPECT_STREQ(codec ? codec->name : "none", row.name ? row.name : "none")
            << row.head.toHex().toStdString() << " " << row.extension;
    }
}

TEST(AllCodecs, ThoseOfTheDecodingProcessHaveNoFunctionsHere)
{
    EXPECT_GE(AllCodecs().size(), 8u);
    for (const Codec& codec : AllCodecs()) {
        const bool elsewhere = codec.inWorker || codec.matches == codecs::NoFileMatches;
        EXPECT_EQ(codec.probe == nullptr, elsewhere) << codec.name;
        EXPECT_EQ(codec.decode == nullptr, elsewhere) << codec.name;
        EXPECT_FALSE(codec.encode && codec.encodesInWorker) << codec.name;
    }
}

TEST_F(ReaderTest, AFileSourceReadsItsFirstBytesOnceAndTheRestWhereAsked)
{
    QByteArray content;
    for (int i = 0; i < 20'000; ++i) {
        content += char(i * 7 % 251);
    }
    FileSource source(Write("bytes", content));
    EXPECT_EQ(source.Size(), content.size());
    EXPECT_EQ(source.Stat().size, content.size());
    for (const qint64 from : {0, 1, 4000, 4095, 4096, 5000, 19'999}) {
        for (const qint64 count : {1, 10, 96, 97, 5000, 30'000}) {
            QByteArray got(count, 'x');
            got.resize(source.ReadAt(from, got.data(), count));
            ASSERT_EQ(got, content.mid(from, count)) << from << " " << count;
        }
    }
    char one;
    EXPECT_EQ(source.ReadAt(20'000, &one, 1), 0);
    EXPECT_EQ(source.ReadAt(-1, &one, 1), 0);
    EXPECT_EQ(source.Head(10), content.left(10));
    EXPECT_EQ(source.All(20'000), content);
    EXPECT_EQ(RefusalOf([&] { source.All(19'999); }).number, kFailureLimit);
}

TEST_F(ReaderTest, AFileThatShrinksWhileItIsReadJustEnds)
{
    const QString path = Write("bytes", QByteArray(20'000, 'a'));
    FileSource source(path);
    QByteArray got(20'000, 'x');
    source.ReadAt(0, got.data(), 10);
    ASSERT_EQ(::truncate(path.toUtf8().constData(), 6000), 0);
    EXPECT_EQ(source.ReadAt(0, got.data(), 20'000), 6000);
    EXPECT_EQ(source.ReadAt(10'000, got.data(), 10), 0);
}

} // namespace

} // namespace quillane
