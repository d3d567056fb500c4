// TIFF with JPEG 2000 codestreams as strips and tiles.
#include "encode_pictures.h"
#include "encode_support.h"
#include "imaging/exif/tiff_structure.h"
#include "tiff_maker.h"
#include "worker_support.h"

namespace quillane::test {

namespace {

constexpr char kTiff[] = "TIFF";
constexpr quint16 kJpeg2000 = 34712;
constexpr quint16 kRgbColours = 2, kLightIsMore = 1;

class TiffJpeg2000 : public WorkerTest {
protected:
    TiffJpeg2000() : WorkerTest(kShippedWorker, 1) { }
    static EncodeRequest Wish(qint16 format, qint32 bits, qint32 quality = kBestQuality)
    {
        EncodeRequest request;
        request.format = format;
        request.bits = bits;
        request.quality = quality;
        return request;
    }
    static QByteArray Encoded(const Bitmap& picture, qint32 bits, qint32 quality = kBestQuality)
    {
        return worker::Encode(picture, Wish(166, bits, quality), kTiff);
    }
    /// The samples of a picture as a bare codestream.
    static QByteArray Codestream(const QImage& image)
    {
        const bool grey = image.format() == QImage::Format_Grayscale8;
        return worker::Encode(
            Bitmap(image, grey ? ColourModel::Grey : ColourModel::Rgb, grey ? 8 : 24),
            Wish(164, grey ? 8 : 24), "JPEG 2000");
    }
    QImage Seen(const QByteArray& file)
    {
        return Decode(Write(QStringLiteral("seen.tif"), file), kTiff)
            .Pixels()
            .convertToFormat(QImage::Format_RGB32);
    }
    static QImage Colours(int width, int height)
    {
        return WavePicture(24, width, height).Pixels().convertToFormat(QImage::Format_RGB32);
    }
};

} // namespace

TEST_F(TiffJpeg2000, QualityIsMonotonicAndKeepsWhatItPromises)
{
    const Bitmap picture = WavePicture(24, 300, 200);
    qsizetype before = 0;
    double best = 0;
    for (const auto& [quality, least] :
         {std::pair{255, 20.0}, {180, 27.0}, {100, 34.0}, {40, 40.0}, {10, 44.0}}) {
        SCOPED_TRACE(quality);
        const QByteArray file = Encoded(picture, 24, quality);
        EXPECT_GE(file.size(), before);
        before = file.size();
        const Bitmap back = Decode(Write(QStringLiteral("q.tif"), file), kTiff);
        EXPECT_FALSE(back.IsPartial());
        const double psnr = Psnr(back, picture);
        EXPECT_GE(psnr, least);
        EXPECT_GE(psnr, best - 0.5);
        best = std::max(best, psnr);
    }
    EXPECT_TRUE(
        SamePixels(Decode(Write(QStringLiteral("q.tif"), Encoded(picture, 24)), kTiff), picture));
}

TEST_F(TiffJpeg2000, StripsTilesAndPlanesOfOtherWritersAreRead)
{
    const QImage whole = Colours(100, 70);
    TiffMaker strips;
    strips.Picture(100, 70, {8, 8, 8}, kRgbColours, 32).Compression(kJpeg2000);
    for (int top = 0; top < 70; top += 32) {
        strips.Chunk(Codestream(whole.copy(0, top, 100, std::min(32, 70 - top))));
    }
    EXPECT_EQ(Seen(strips.File()), whole);

    TiffMaker tiles(true);
    tiles.Picture(100, 70, {8, 8, 8}, kRgbColours).Compression(kJpeg2000).Tiles(64, 48);
    for (int top = 0; top < 70; top += 48) {
        for (int left = 0; left < 100; left += 64) {
            tiles.Chunk(Codestream(whole.copy(left, top, 64, 48)));
        }
    }
    EXPECT_EQ(Seen(tiles.File()), whole);

    TiffMaker planes;
    planes.Picture(100, 70, {8, 8, 8}, kRgbColours, 70).Compression(kJpeg2000).Short(284, {2});
    for (const int shift : {16, 8, 0}) {
        QImage plane(whole.size(), QImage::Format_Grayscale8);
        for (int y = 0; y < plane.height(); ++y) {
            for (int x = 0; x < plane.width(); ++x) {
                plane.scanLine(y)[x] = uchar(whole.pixel(x, y) >> shift);
            }
        }
        planes.Chunk(Codestream(plane));
    }
    EXPECT_EQ(Seen(planes.File()), whole);
}

TEST_F(TiffJpeg2000, GarbageIsRefusedAndCostsNoProcess)
{
    const QImage whole = Colours(64, 48);
    const QByteArray good = Codestream(whole);
    QByteArray noise(4000, '\0');
    quint32 state = 7;
    for (char& byte : noise) {
        state = state * 1664525 + 1013904223;
        byte = char(state >> 24);
    }
    QByteArray huge = good; // sides of 4 billion in the size marker
    huge.replace(8, 8, QByteArray(8, '\x7f'));
    const QByteArray rows[] = {QByteArray(),
                               QByteArray(1, '\0'),
                               noise,
                               good.left(2),
                               good.left(60),
                               good.left(4) + noise,
                               huge,
                               Codestream(Colours(64, 47)),
                               Codestream(Colours(65, 48)),
                               Codestream(whole.convertToFormat(QImage::Format_Grayscale8))};
    const auto file = [&](const QByteArray& stream) {
        TiffMaker maker;
        maker.Picture(64, 48, {8, 8, 8}, kRgbColours, 48).Compression(kJpeg2000).Chunk(stream);
        return maker.File();
    };
    EXPECT_EQ(Seen(file(good)), whole);
    const std::vector<int> processes = ChildProcesses();
    ASSERT_EQ(processes.size(), 1u);
    for (size_t row = 0; row < std::size(rows); ++row) {
        const QString path = Write(QStringLiteral("garbage.tif"), file(rows[row]));
        const Failure failure = FailureOf([&] { Decode(path, kTiff); });
        EXPECT_EQ(failure.Number(), kFailureUnreadable) << row;
        EXPECT_TRUE(failure.Description().contains(QStringLiteral("TIFF")))
            << failure.Description().toStdString();
    }
    // Cut or changed within the coefficients: refused, or a picture that says it is in part.
    int partial = 0;
    for (qsizetype cut = 100; cut < good.size(); cut += 97) {
        const QString path = Write(QStringLiteral("garbage.tif"), file(good.left(cut)));
        const Failure failure =
            FailureOf([&] { partial += Decode(path, kTiff).IsPartial() ? 1 : 0; });
        EXPECT_TRUE(failure.Number() == 0 || failure.Number() == kFailureUnreadable);
    }
    EXPECT_GT(partial, 0);
    EXPECT_EQ(ChildProcesses(), processes);
    EXPECT_EQ(Seen(file(good)), whole);
}

TEST_F(TiffJpeg2000, ADamagedStripLeavesTheOthers)
{
    const QImage whole = Colours(40, 32);
    TiffMaker maker;
    maker.Picture(40, 32, {8, 8, 8}, kRgbColours, 16).Compression(kJpeg2000);
    maker.Chunk(QByteArray(200, 'x')).Chunk(Codestream(whole.copy(0, 16, 40, 16)));
    const Bitmap back = Decode(Write(QStringLiteral("half.tif"), maker.File()), kTiff);
    EXPECT_TRUE(back.IsPartial());
    EXPECT_EQ(back.Pixels().convertToFormat(QImage::Format_RGB32).copy(0, 16, 40, 16),
              whole.copy(0, 16, 40, 16));
}

TEST_F(TiffJpeg2000, DepthsAndColoursThatAreNotMeantAreRefusedByName)
{
    const QByteArray stream = Codestream(Colours(8, 8));
    TiffMaker twelve;
    twelve.Picture(8, 8, {12}, kLightIsMore, 8).Compression(kJpeg2000).Chunk(stream);
    TiffMaker luminance;
    luminance.Picture(8, 8, {8, 8, 8}, 6, 8).Compression(kJpeg2000).Chunk(stream);
    for (const QByteArray& file : {twelve.File(), luminance.File()}) {
        const QString path = Write(QStringLiteral("other.tif"), file);
        const Failure failure = FailureOf([&] { Decode(path, kTiff); });
        EXPECT_EQ(failure.Number(), kFailureUnreadable);
        EXPECT_TRUE(failure.Description().contains(QStringLiteral("JPEG 2000")))
            << failure.Description().toStdString();
    }
}

TEST_F(TiffJpeg2000, TwelveMegapixelsStayUnderTheMemoryLimit)
{
    const Bitmap picture = WavePicture(48, 4000, 3000);
    const QString path = Write(QStringLiteral("large.tif"), Encoded(picture, 48, 120));
    const ImageFacts facts = Probe(path, kTiff);
    EXPECT_EQ(facts.format, 166);
    EXPECT_EQ(facts.width, 4000);
    const Bitmap back = Decode(path, kTiff);
    EXPECT_FALSE(back.IsPartial());
    EXPECT_GE(Psnr(back, picture), 30);
}

} // namespace quillane::test
