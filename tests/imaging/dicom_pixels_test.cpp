#include "dicom_maker.h"
#include "worker_support.h"

namespace quillane::test {

namespace {

class DicomPixels : public WorkerTest {
protected:
    Bitmap Read(const DicomMaker& maker)
    {
        return Decode(Write(QStringLiteral("picture.dic"), maker.File()), "DICOM");
    }
    /// A grey picture's first row, as values of 8 bits.
    static std::vector<int> Row(const Bitmap& bitmap)
    {
        const uchar* row = bitmap.Pixels().constScanLine(0);
        std::vector<int> values(row, row + bitmap.Width());
        if (bitmap.Pixels().format() == QImage::Format_Grayscale16) {
            const auto* words = reinterpret_cast<const quint16*>(row);
            std::transform(words, words + bitmap.Width(), values.begin(),
                           [](quint16 value) { return value >> 8; });
        }
        return values;
    }
};

QByteArray Words(std::initializer_list<int> values)
{
    QByteArray bytes;
    for (const int value : values) {
        bytes += DicomMaker::Number(quint32(value), 2);
    }
    return bytes;
}

} // namespace

TEST_F(DicomPixels, EightBitGreyWithoutWindowIsTakenAsItIsAndMonochromeOneInverted)
{
    QByteArray every;
    for (int value = 0; value < 256; ++value) {
        every.append(char(value));
    }
    for (const char* photometric : {"MONOCHROME2", "MONOCHROME1"}) {
        DicomMaker maker;
        maker.Picture(256, 1, 1, photometric, 8, 8, every);
        const Bitmap bitmap = Read(maker);
        const std::vector<int> row = Row(bitmap);
        const bool inverted = photometric[10] == '1';
        for (int value = 0; value < 256; ++value) {
            ASSERT_EQ(row[size_t(value)], inverted ? 255 - value : value);
        }
        EXPECT_EQ(bitmap.Model(), ColourModel::Grey);
        EXPECT_TRUE(bitmap.IsExact());
    }
}

TEST_F(DicomPixels, MonochromeOneOfManyBitsIsInvertedToo)
{
    DicomMaker maker;
    maker.Picture(2, 1, 1, "MONOCHROME1", 16, 12, Words({100, 200}));
    EXPECT_EQ(Row(Read(maker)), (std::vector<int>{255, 0}));
}

TEST_F(DicomPixels, DeepGreyGoesFromItsDarkestToItsBrightest)
{
    DicomMaker maker;
    maker.Picture(3, 1, 1, "MONOCHROME2", 16, 12, Words({1000, 1500, 2000}));
    const Bitmap bitmap = Read(maker);
    const std::vector<int> row = Row(bitmap);
    EXPECT_EQ(row[0], 0);
    EXPECT_NEAR(row[1], 127, 1);
    EXPECT_EQ(row[2], 255);
    EXPECT_EQ(bitmap.FileDepth(), 16);
    EXPECT_FALSE(bitmap.IsExact());
}

TEST_F(DicomPixels, TheFilesWindowDecides)
{
    DicomMaker maker;
    maker.Picture(4, 1, 1, "MONOCHROME2", 16, 12, Words({0, 1000, 1250, 4000}));
    maker.Text(0x00281050, "DS", "1000\\9").Text(0x00281051, "DS", "1000\\9");
    const std::vector<int> row = Row(Read(maker));
    EXPECT_EQ(row[0], 0);
    EXPECT_NEAR(row[1], 127, 1);
    EXPECT_NEAR(row[2], 191, 1);
    EXPECT_EQ(row[3], 255);
}

TEST_F(DicomPixels, RescaledValuesMeetTheWindow)
{
    DicomMaker maker;
    maker.Picture(3, 1, 1, "MONOCHROME2", 16, 12, Words({0, 1024, 2048}));
    maker.Text(0x00281050, "DS", "0").Text(0x00281051, "DS", "2048");
    maker.Text(0x00281052, "DS", "-1024").Text(0x00281053, "DS", "1");
    const std::vector<int> row = Row(Read(maker));
    EXPECT_LE(row[0], 1);
    EXPECT_NEAR(row[1], 127, 1);
    EXPECT_EQ(row[2], 255);
}

TEST_F(DicomPixels, ColourSideBySideAndInPlanes)
{
    DicomMaker beside;
    beside.Picture(2, 1, 3, "RGB", 8, 8, QByteArray("\x01\x02\x03\xf0\xf1\xf2", 6));
    DicomMaker planes;
    planes.Picture(2, 1, 3, "RGB", 8, 8, QByteArray("\x01\xf0\x02\xf1\x03\xf2", 6));
    planes.Short(0x00280006, {1});
    for (const DicomMaker& maker : {beside, planes}) {
        const Bitmap bitmap = Read(maker);
        EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_RGB32);
        EXPECT_EQ(bitmap.Pixels().pixel(0, 0), 0xff010203u);
        EXPECT_EQ(bitmap.Pixels().pixel(1, 0), 0xfff0f1f2u);
        EXPECT_TRUE(bitmap.IsExact());
    }
}

TEST_F(DicomPixels, YbrIsConverted)
{
    DicomMaker maker;
    maker.Picture(2, 1, 3, "YBR_FULL", 8, 8, QByteArray("\x4c\x55\xff\x96\x80\x80", 6));
    const Bitmap bitmap = Read(maker);
    EXPECT_NEAR(qRed(bitmap.Pixels().pixel(0, 0)), 254, 2);
    EXPECT_NEAR(qGreen(bitmap.Pixels().pixel(0, 0)), 0, 2);
    EXPECT_NEAR(qGreen(bitmap.Pixels().pixel(1, 0)), 150, 1);
}

TEST_F(DicomPixels, PalettesAreLookedUp)
{
    DicomMaker maker;
    maker.Picture(2, 1, 1, "PALETTE COLOR", 8, 8, QByteArray("\x01\x02", 2));
    for (quint32 channel = 0; channel < 3; ++channel) {
        maker.Short(0x00281101 + channel, {256, 0, 16});
        QByteArray table;
        for (int i = 0; i < 256; ++i) {
            table += DicomMaker::Number(quint32((i * 10 + int(channel)) << 8 & 0xffff), 2);
        }
        maker.Element(0x00281201 + channel, "OW", table);
    }
    const Bitmap bitmap = Read(maker);
    EXPECT_EQ(bitmap.Pixels().pixel(0, 0), 0xff0a0b0cu);
    EXPECT_EQ(bitmap.Pixels().pixel(1, 0), 0xff141516u);
    EXPECT_EQ(Probe(mFolder.filePath(QStringLiteral("picture.dic")), "DICOM").format, 90);
}

TEST_F(DicomPixels, TheFrameAskedForIsRead)
{
    DicomMaker maker;
    maker.Picture(1, 1, 1, "MONOCHROME2", 8, 8, QByteArray("\x0a\x14\x1e\x28", 4));
    maker.Text(0x00280008, "IS", "4");
    const QString path = Write(QStringLiteral("frames.dic"), maker.File());
    EXPECT_EQ(Probe(path, "DICOM").pages, 4);
    DecodeRequest request;
    for (const auto& [page, value] : {std::pair(0, 10), std::pair(2, 30), std::pair(3, 40)}) {
        request.page = page;
        EXPECT_EQ(Row(Decode(path, "DICOM", request)), std::vector<int>{value});
    }
    for (const qint32 page : {-1, 4}) {
        request.page = page;
        EXPECT_EQ(FailureOf([&] { Decode(path, "DICOM", request); }).Number(), kFailureGeneral);
    }
}

TEST_F(DicomPixels, AFileWithoutItsLastPixelsIsPartial)
{
    DicomMaker maker;
    maker.Picture(10, 10, 1, "MONOCHROME2", 8, 8, QByteArray(100, '\x64'));
    const QByteArray whole = maker.File();
    const Bitmap bitmap =
        Decode(Write(QStringLiteral("cut.dic"), whole.first(whole.size() - 45)), "DICOM");
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().constScanLine(4)[9], 100);
    EXPECT_EQ(bitmap.Pixels().constScanLine(9)[9], 0);
}

TEST_F(DicomPixels, APictureBeyondTheLimitsOrWithoutPixelsIsRefusedInWords)
{
    DicomMaker huge;
    huge.Picture(65'000, 65'000, 1, "MONOCHROME2", 8, 8, "xx");
    const QString path = Write(QStringLiteral("huge.dic"), huge.File());
    EXPECT_EQ(FailureOf([&] { Probe(path, "DICOM"); }).Number(), kFailureLimit);
    EXPECT_EQ(FailureOf([&] { Decode(path, "DICOM"); }).Number(), kFailureLimit);
    DicomMaker none;
    none.Text(0x00100010, "PN", "Nobody");
    const Failure failure =
        FailureOf([&] { Probe(Write(QStringLiteral("none.dic"), none.File()), "DICOM"); });
    EXPECT_EQ(failure.Number(), kFailureUnreadable);
    EXPECT_TRUE(failure.Description().contains(QStringLiteral("DICOM")));
}

TEST_F(DicomPixels, DeflatedFilesAreReadAndBombsRefused)
{
    const auto deflated = [](const QByteArray& bytes) {
        // The format wants the bare stream, without the header and the checksum around it.
        const QByteArray wrapped = qCompress(bytes, 9);
        return wrapped.sliced(4 + 2, wrapped.size() - 4 - 2 - 4);
    };
    DicomMaker maker("1.2.840.10008.1.2.1.99");
    maker.Picture(3, 1, 1, "MONOCHROME2", 8, 8, QByteArray("\x0a\x64\xc8", 3));
    const QString path =
        Write(QStringLiteral("deflated.dic"), maker.File(deflated(maker.DataSet())));
    EXPECT_EQ(Row(Decode(path, "DICOM")), (std::vector<int>{10, 100, 200}));
    EXPECT_EQ(Probe(path, "DICOM").compression, QStringLiteral("Deflate"));

    DicomMaker bomb("1.2.840.10008.1.2.1.99");
    bomb.Element(0x00091010, "UN", QByteArray(600 << 20, '\0'));
    const QString bad = Write(QStringLiteral("bomb.dic"), bomb.File(deflated(bomb.DataSet())));
    EXPECT_LT(StatPath(bad).size, 1 << 20);
    const qint32 number = FailureOf([&] { Decode(bad, "DICOM"); }).Number();
    EXPECT_NE(number, 0);
}

} // namespace quillane::test
