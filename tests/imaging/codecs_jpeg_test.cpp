#include "codec_support_for_tests.h"
#include "imaging/format_table.h"
#include "picture_maker.h"

namespace quillane {

namespace {

using making::ColourDistance;
using making::DecodeBytes;
using making::JpegMake;
using making::MakeExif;
using making::MakeJpeg;
using making::PlaceColour;
using making::ProbeBytes;
using making::RefusalOf;

/// Position of the frame header's marker.
qsizetype JpegFrameAt(const QByteArray& bytes)
{
    for (qsizetype at = 2; at + 4 < bytes.size();) {
        const uchar marker = uchar(bytes[at + 1]);
        if (marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8) {
            return at;
        }
        at += 2 + (uchar(bytes[at + 2]) << 8 | uchar(bytes[at + 3]));
    }
    return -1;
}

void JpegExpectPlaces(const QImage& pixels, int tolerance)
{
    for (int y = 1; y < pixels.height(); y += 3) {
        for (int x = 1; x < pixels.width(); x += 3) {
            ASSERT_LE(ColourDistance(pixels.pixel(x, y),
                                     PlaceColour(x, y, pixels.width(), pixels.height())),
                      tolerance)
                << x << "," << y;
        }
    }
}

TEST(JpegFacts, TheCodeFollowsSamplingAndExif)
{
    const struct {
        int channels, across, down;
        qint16 plain, exif;
    } rows[] = {
        {3, 1, 1, 10, 98},  {3, 2, 1, 23, 98},  {3, 1, 2, 23, 98},
        {3, 2, 2, 21, 101}, {3, 4, 1, 21, 101}, {3, 1, 4, 21, 101},
        {3, 4, 2, 21, 101}, {1, 1, 1, 10, 98},  {4, 1, 1, 10, 98},
    };
    for (const auto& row : rows) {
        JpegMake make;
        make.channels = row.channels;
        make.across = row.across;
        make.down = row.down;
        const ImageFacts plain = ProbeBytes(MakeJpeg(make));
        EXPECT_EQ(plain.format, row.plain) << row.across << "x" << row.down;
        EXPECT_EQ(plain.bits, row.channels * 8);
        EXPECT_EQ(plain.width, 64);
        EXPECT_EQ(plain.height, 48);
        EXPECT_EQ(plain.compression, "JPEG");
        EXPECT_EQ(plain.pages, 1);
        EXPECT_FALSE(IsExifFormat(plain.format));
        make.exif = MakeExif(1);
        const ImageFacts exif = ProbeBytes(MakeJpeg(make));
        EXPECT_EQ(exif.format, row.exif) << row.across << "x" << row.down;
        EXPECT_TRUE(IsExifFormat(exif.format));
    }
}

TEST(JpegFacts, ProgressiveIsSaid)
{
    JpegMake make;
    make.progressive = true;
    EXPECT_EQ(ProbeBytes(MakeJpeg(make)).compression, "JPEG, progressive");
}

TEST(JpegFacts, OrientationInBothByteOrders)
{
    for (const bool big : {false, true}) {
        for (int orientation = 0; orientation <= 9; ++orientation) {
            JpegMake make;
            make.exif = MakeExif(orientation, big);
            const int expected = orientation >= 1 && orientation <= 8 ? orientation : 1;
            EXPECT_EQ(ProbeBytes(MakeJpeg(make)).orientation, expected);
        }
    }
}

TEST(JpegFacts, ResolutionInDotsPerInch)
{
    JpegMake make;
    EXPECT_EQ(ProbeBytes(MakeJpeg(make)).xResolution, 0); // a mere ratio of sides
    make.densityUnit = 1;
    make.xDensity = 300;
    make.yDensity = 150;
    EXPECT_EQ(ProbeBytes(MakeJpeg(make)).xResolution, 300);
    EXPECT_EQ(ProbeBytes(MakeJpeg(make)).yResolution, 150);
    make.densityUnit = 2;
    make.xDensity = 100;
    EXPECT_EQ(ProbeBytes(MakeJpeg(make)).xResolution, 254);
    make.exif = MakeExif(1, true, 180);
    EXPECT_EQ(ProbeBytes(MakeJpeg(make)).xResolution, 180);
    EXPECT_EQ(ProbeBytes(MakeJpeg(make)).yResolution, 180);
    make.exif = MakeExif(1, false, 100, 3);
    EXPECT_EQ(ProbeBytes(MakeJpeg(make)).xResolution, 254);
    make.exif = MakeExif(1, false, 100, 1);
    EXPECT_EQ(ProbeBytes(MakeJpeg(make)).xResolution, 0);
}

TEST(JpegFacts, ADamagedExifBlockIsNone)
{
    for (const QByteArray& block :
         {QByteArray("II*\0", 4), QByteArray("XX*\0\x08\0\0\0", 8), QByteArray(30, '\xff'),
          MakeExif(6).left(9), QByteArray("II*\0\xff\xff\xff\x7f", 8) + QByteArray(40, '\0')}) {
        JpegMake make;
        make.exif = block;
        const ImageFacts facts = ProbeBytes(MakeJpeg(make));
        EXPECT_EQ(facts.orientation, 1);
        EXPECT_EQ(facts.format, 21);
    }
}

TEST(JpegFacts, AreReadWithOneReadWhereTheHeaderIsSmall)
{
    JpegMake make;
    make.exif = MakeExif(6, true, 72);
    make.width = make.height = 512;
    const QByteArray bytes = MakeJpeg(make);
    ASSERT_GT(bytes.size(), 8192);
    making::CountingSource source(bytes);
    making::CodecFor(bytes).probe(source);
    EXPECT_EQ(source.reads, 1);
    EXPECT_LE(source.bytes, 4096);
}

TEST(JpegFacts, ALargeBlockBeforeTheFrameIsPassedOver)
{
    JpegMake make;
    make.exif = MakeExif(3) + QByteArray(60000, 'x');
    const QByteArray bytes = MakeJpeg(make);
    making::CountingSource source(bytes);
    EXPECT_EQ(making::CodecFor(bytes).probe(source).orientation, 3);
    EXPECT_LE(source.reads, 3);
}

TEST(JpegFacts, RefuseWhatHasNoFrame)
{
    const QByteArray good = MakeJpeg({});
    const qsizetype frame = JpegFrameAt(good);
    const auto words = [](const QByteArray& bytes) {
        return RefusalOf([&] { ProbeBytes(bytes); }).words;
    };
    EXPECT_EQ(words(good.left(frame)), "This JPEG is damaged: it has no frame header.");
    EXPECT_EQ(words(QByteArray("\xff\xd8\xff\xd9")),
              "This JPEG is damaged: it has no frame header.");
    EXPECT_EQ(words(good.left(frame + 6)), "This JPEG is damaged: its frame header is cut short.");
    QByteArray flat = good;
    flat[frame + 5] = flat[frame + 6] = 0;
    EXPECT_EQ(words(flat),
              "This JPEG does not tell its height in its header, which is not supported.");
    flat = good;
    flat[frame + 7] = flat[frame + 8] = 0;
    EXPECT_EQ(words(flat), "This JPEG is damaged: it claims a size of 0 x 48 pixels.");
}

TEST(JpegFacts, AHeaderWithoutEndIsRefused)
{
    const QByteArray bytes = "\xff\xd8\xff" + QByteArray(20'000'000, '\0');
    making::CountingSource source(bytes);
    EXPECT_EQ(RefusalOf([&] { making::CodecFor(bytes).probe(source); }).number, kFailureLimit);
    EXPECT_LT(source.bytes, 9'000'000);
}

TEST(JpegDecode, EverySamplingAndKindShowsThePicture)
{
    for (const bool progressive : {false, true}) {
        for (const bool arithmetic : {false, true}) {
            for (const auto& [across, down] :
                 {std::pair(1, 1), {2, 1}, {1, 2}, {2, 2}, {4, 1}, {1, 4}, {4, 2}}) {
                JpegMake make;
                make.width = 131;
                make.height = 77;
                make.across = across;
                make.down = down;
                make.progressive = progressive;
                make.arithmetic = arithmetic;
                const Bitmap bitmap = DecodeBytes(MakeJpeg(make));
                ASSERT_EQ(bitmap.Width(), 131);
                ASSERT_EQ(bitmap.Height(), 77);
                EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_RGB32);
                EXPECT_EQ(bitmap.Model(), ColourModel::Rgb);
                EXPECT_EQ(bitmap.FileDepth(), 24);
                EXPECT_FALSE(bitmap.IsPartial());
                EXPECT_TRUE(bitmap.IsExact());
                JpegExpectPlaces(bitmap.Pixels(), 16);
                EXPECT_EQ(bitmap.Pixels().pixel(5, 5) >> 24, 255u);
            }
        }
    }
}

TEST(JpegDecode, GreyStaysGrey)
{
    JpegMake make;
    make.channels = 1;
    const Bitmap bitmap = DecodeBytes(MakeJpeg(make));
    EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_Grayscale8);
    EXPECT_EQ(bitmap.Model(), ColourModel::Grey);
    EXPECT_EQ(bitmap.FileDepth(), 8);
    EXPECT_NEAR(bitmap.Pixels().constScanLine(10)[32], 32 * 255 / 63.0, 4);
}

TEST(JpegDecode, AdobesInvertedInkIsTurned)
{
    JpegMake make;
    make.channels = 4;
    const Bitmap bitmap = DecodeBytes(MakeJpeg(make));
    ASSERT_EQ(bitmap.Model(), ColourModel::Cmyk);
    EXPECT_EQ(bitmap.Bits(), 32);
    // What was written as light left is ink here, and shows as that light.
    const uchar* ink = bitmap.Pixels().constScanLine(0);
    EXPECT_NEAR(ink[0], 255, 4); // no light at the left: full cyan
    EXPECT_NEAR(ink[3], 0, 4);   // no black
    JpegExpectPlaces(bitmap.ToDisplay(), 12);
}

TEST(JpegDecode, ReducesAsFarAsTheResultStillCovers)
{
    JpegMake make;
    make.width = 1000;
    make.height = 600;
    const QByteArray bytes = MakeJpeg(make);
    const struct {
        QSize atLeast;
        QSize result;
    } rows[] = {
        {QSize(), QSize(1000, 600)},           {QSize(100, 60), QSize(125, 75)},
        {QSize(125, 75), QSize(125, 75)},      {QSize(126, 10), QSize(250, 150)},
        {QSize(10, 76), QSize(250, 150)},      {QSize(250, 150), QSize(250, 150)},
        {QSize(300, 150), QSize(500, 300)},    {QSize(501, 1), QSize(1000, 600)},
        {QSize(5000, 5000), QSize(1000, 600)}, {QSize(1, 1), QSize(125, 75)},
    };
    for (const auto& row : rows) {
        DecodeRequest request;
        request.atLeast = row.atLeast;
        const Bitmap bitmap = DecodeBytes(bytes, request);
        EXPECT_EQ(bitmap.Pixels().size(), row.result);
        EXPECT_EQ(bitmap.IsExact(), row.result.width() == 1000);
        JpegExpectPlaces(bitmap.Pixels(), 16);
    }
}

TEST(JpegDecode, KeepsTheColourProfileHoweverItIsCutUp)
{
    JpegMake make;
    make.icc = making::MakeWideProfile() + QByteArray(150'000, 'p');
    EXPECT_EQ(DecodeBytes(MakeJpeg(make)).Icc(), make.icc);
    make.icc.clear();
    EXPECT_TRUE(DecodeBytes(MakeJpeg(make)).Icc().isEmpty());
}

TEST(JpegDecode, AProfileWithAMissingPieceIsDropped)
{
    JpegMake make;
    make.icc = QByteArray(1000, 'p');
    QByteArray bytes = MakeJpeg(make);
    const qsizetype at = bytes.indexOf("ICC_PROFILE");
    bytes[at + 13] = 2; // says that there are two
    EXPECT_TRUE(DecodeBytes(bytes).Icc().isEmpty());
}

TEST(JpegDecode, RefusesOtherDepthsAndKindsWithWords)
{
    QByteArray bytes = MakeJpeg({});
    const qsizetype frame = JpegFrameAt(bytes);
    bytes[frame + 4] = 12;
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(bytes); }).words,
              "This JPEG has 12 bits per sample, which is not supported.");
    EXPECT_EQ(ProbeBytes(bytes).bits, 36);
    bytes = MakeJpeg({});
    bytes[frame + 1] = char(0xc3);
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(bytes); }).words,
              "This JPEG is of the lossless kind, which is not supported.");
    bytes[frame + 1] = char(0xc5);
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(bytes); }).words,
              "This JPEG is of the hierarchical kind, which is not supported.");
}

TEST(JpegDecode, ATruncatedPictureShowsItsUpperRowsAndGreyBelow)
{
    JpegMake make;
    make.width = 256;
    make.height = 256;
    const QByteArray bytes = MakeJpeg(make);
    const Bitmap bitmap = DecodeBytes(bytes.left(bytes.size() * 6 / 10));
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Height(), 256);
    EXPECT_LE(ColourDistance(bitmap.Pixels().pixel(100, 60), PlaceColour(100, 60, 256, 256)), 12);
    EXPECT_EQ(bitmap.Pixels().pixel(100, 250), qRgb(128, 128, 128));
}

TEST(JpegDecode, AMissingEndMarkIsNotMissed)
{
    const QByteArray bytes = MakeJpeg({});
    const Bitmap bitmap = DecodeBytes(bytes.left(bytes.size() - 2));
    EXPECT_FALSE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels(), DecodeBytes(bytes).Pixels());
}

TEST(JpegDecode, ATruncatedProgressivePictureIsWholeButCoarse)
{
    JpegMake make;
    make.width = make.height = 256;
    make.progressive = true;
    const QByteArray bytes = MakeJpeg(make);
    const Bitmap bitmap = DecodeBytes(bytes.left(bytes.size() * 7 / 10));
    EXPECT_TRUE(bitmap.IsPartial());
    JpegExpectPlaces(bitmap.Pixels(), 60);
}

TEST(JpegDecode, APictureWithoutAnyPixelsIsRefused)
{
    for (const bool progressive : {false, true}) {
        JpegMake make;
        make.progressive = progressive;
        const QByteArray bytes = MakeJpeg(make);
        const qsizetype scan = bytes.indexOf("\xff\xda");
        const auto refusal = RefusalOf([&] { DecodeBytes(bytes.left(scan)); });
        EXPECT_EQ(refusal.number, kFailureUnreadable);
        EXPECT_TRUE(refusal.words.startsWith("This JPEG is damaged: "))
            << refusal.words.toStdString();
    }
}

TEST(JpegDecode, ManyScansAreRefusedInsteadOfWaitedFor)
{
    JpegMake make;
    make.width = make.height = 64;
    make.progressive = true;
    const QByteArray bytes = MakeJpeg(make);
    // The last scan refines the last bit; the first one can stand for it any number of times.
    const qsizetype first = bytes.indexOf("\xff\xda");
    qsizetype second = bytes.indexOf("\xff\xc4", first);
    if (second < 0) {
        second = bytes.indexOf("\xff\xda", first + 2);
    }
    ASSERT_GT(second, first);
    QByteArray bomb = bytes.left(second);
    const QByteArray scan = bytes.mid(first, second - first);
    for (int i = 0; i < 3000; ++i) {
        bomb += scan;
    }
    bomb += "\xff\xd9";
    const auto refusal = RefusalOf([&] { DecodeBytes(bomb); });
    EXPECT_EQ(refusal.number, kFailureLimit);
    EXPECT_EQ(refusal.words,
              "This JPEG is stored in an absurd number of scans, which is more than can be read.");
}

TEST(JpegDecode, AHugeProgressivePictureDoesNotTakeAllMemory)
{
    JpegMake make;
    make.progressive = true;
    make.across = make.down = 1;
    QByteArray bytes = MakeJpeg(make);
    const qsizetype frame = JpegFrameAt(bytes);
    bytes.replace(frame + 5, 4, making::Big(9500, 2) + making::Big(9500, 2));
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(bytes); }).words,
              "This JPEG needs a lot of memory to put its scans together, which is more than can "
              "be read.");
    bytes.replace(frame + 5, 4, making::Big(60000, 2) + making::Big(60000, 2));
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(bytes); }).words,
              "This JPEG has 60000 x 60000 pixels, which is more than can be read.");
}

TEST(JpegDecode, AClaimOfHugeSizeIsRefusedHoweverSmallItIsWished)
{
    QByteArray bytes = MakeJpeg({});
    const qsizetype size = JpegFrameAt(bytes) + 5;
    bytes.replace(size, 4, QByteArray::fromHex("ffdcffdc"));
    DecodeRequest request;
    request.atLeast = QSize(16, 16);
    const making::Refusal refusal = RefusalOf([&] { DecodeBytes(bytes, request); });
    EXPECT_EQ(refusal.number, kFailureLimit);
    EXPECT_EQ(
        refusal.words,
        QStringLiteral("This JPEG has 65500 x 65500 pixels, which is more than can be read."));
}

TEST(JpegDecode, StopsWhenCancelled)
{
    const std::atomic<bool> cancelled = true;
    DecodeRequest request;
    request.cancelled = &cancelled;
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(MakeJpeg({}), request); }).number, kFailureCancelled);
}

/// Calls the work off when the reading has come so far.
class CancellingSource : public making::CountingSource {
public:
    using CountingSource::CountingSource;
    std::atomic<bool> cancelled = false;
    int after = 3;
    qint64 ReadAt(qint64 position, void* to, qint64 count) override
    {
        if (reads >= after) {
            cancelled = true;
        }
        return CountingSource::ReadAt(position, to, count);
    }
};

TEST(JpegDecode, StopsInTheMiddleWhenCancelled)
{
    for (const bool progressive : {false, true}) {
        JpegMake make;
        make.width = make.height = 2000;
        make.quality = 100;
        make.progressive = progressive;
        const QByteArray bytes = MakeJpeg(make);
        CancellingSource source(bytes);
        DecodeRequest request;
        request.cancelled = &source.cancelled;
        const auto refusal = RefusalOf([&] { making::CodecFor(bytes).decode(source, request); });
        EXPECT_EQ(refusal.number, kFailureCancelled);
        EXPECT_LE(source.reads, source.after + 2);
    }
}

} // namespace

} // namespace quillane
