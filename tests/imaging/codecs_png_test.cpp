#include "codec_support_for_tests.h"
#include "picture_maker.h"

namespace quillane {

namespace {

using making::ColourDistance;
using making::DecodeBytes;
using making::MakePng;
using making::PlaceColour;
using making::PngMake;
using making::ProbeBytes;
using making::RefusalOf;

TEST(PngCodec, EveryTypeAndDepthInterlacedOrNot)
{
    const struct {
        int type, depth, bits;
        QImage::Format format;
        ColourModel model;
    } rows[] = {
        {0, 1, 1, QImage::Format_Mono, ColourModel::BlackWhite},
        {0, 2, 2, QImage::Format_Grayscale8, ColourModel::Grey},
        {0, 4, 4, QImage::Format_Grayscale8, ColourModel::Grey},
        {0, 8, 8, QImage::Format_Grayscale8, ColourModel::Grey},
        {0, 16, 16, QImage::Format_Grayscale16, ColourModel::Grey},
        {2, 8, 24, QImage::Format_RGB32, ColourModel::Rgb},
        {2, 16, 48, QImage::Format_RGBX64, ColourModel::Rgb},
        {3, 1, 1, QImage::Format_Indexed8, ColourModel::Palette},
        {3, 2, 2, QImage::Format_Indexed8, ColourModel::Palette},
        {3, 4, 4, QImage::Format_Indexed8, ColourModel::Palette},
        {3, 8, 8, QImage::Format_Indexed8, ColourModel::Palette},
        {4, 8, 16, QImage::Format_ARGB32, ColourModel::Rgb},
        {4, 16, 32, QImage::Format_RGBA64, ColourModel::Rgb},
        {6, 8, 32, QImage::Format_ARGB32, ColourModel::Rgb},
        {6, 16, 64, QImage::Format_RGBA64, ColourModel::Rgb},
    };
    for (const auto& row : rows) {
        for (const bool interlaced : {false, true}) {
            SCOPED_TRACE(::testing::Message() << "type " << row.type << " depth " << row.depth
                                              << " interlaced " << interlaced);
            PngMake make;
            make.colourType = row.type;
            make.depth = row.depth;
            make.interlaced = interlaced;
            const QByteArray bytes = MakePng(make);
            const ImageFacts facts = ProbeBytes(bytes);
            EXPECT_EQ(facts.width, 32);
            EXPECT_EQ(facts.height, 24);
            EXPECT_EQ(facts.bits, row.bits);
            EXPECT_EQ(facts.format, 75);
            EXPECT_EQ(facts.compression, "Deflate");
            const Bitmap bitmap = DecodeBytes(bytes);
            ASSERT_EQ(bitmap.Pixels().format(), row.format);
            EXPECT_EQ(bitmap.Model(), row.model);
            EXPECT_EQ(bitmap.FileDepth(), row.bits);
            EXPECT_FALSE(bitmap.IsPartial());
            // The same as another reader of the same bytes sees.
            const QImage other = QImage::fromData(bytes, "PNG");
            for (int y = 0; y < 24; ++y) {
                for (int x = 0; x < 32; ++x) {
                    const QRgb ours = bitmap.Pixels().pixel(x, y);
                    ASSERT_LE(ColourDistance(ours, other.pixel(x, y)), 1) << x << "," << y;
                    ASSERT_EQ(qAlpha(ours), qAlpha(other.pixel(x, y)));
                }
            }
        }
    }
}

TEST(PngCodec, SixteenBitsAreKept)
{
    PngMake make;
    make.colourType = 0;
    make.depth = 16;
    const Bitmap bitmap = DecodeBytes(MakePng(make));
    const quint16* row = reinterpret_cast<const quint16*>(bitmap.Pixels().constScanLine(0));
    EXPECT_EQ(row[0], 0);
    EXPECT_EQ(row[10], (10 * 255 / 31) * 257);
    EXPECT_EQ(row[31], 0xffff);
}

TEST(PngCodec, ATransparentColourBecomesAlpha)
{
    const struct {
        int type, depth;
        QImage::Format format;
    } rows[] = {{0, 1, QImage::Format_ARGB32},
                {0, 8, QImage::Format_ARGB32},
                {0, 16, QImage::Format_RGBA64},
                {3, 8, QImage::Format_Indexed8},
                {3, 1, QImage::Format_Indexed8}};
    for (const auto& row : rows) {
        PngMake make;
        make.colourType = row.type;
        make.depth = row.depth;
        make.transparentColour = true;
        const Bitmap bitmap = DecodeBytes(MakePng(make));
        ASSERT_EQ(bitmap.Pixels().format(), row.format) << row.type << " " << row.depth;
        EXPECT_EQ(qAlpha(bitmap.Pixels().pixel(0, 0)), 0);
        EXPECT_EQ(qAlpha(bitmap.Pixels().pixel(31, 5)),
                  row.depth == 1 && row.type == 3 ? 128 : 255);
    }
}

TEST(PngCodec, FactsTellResolutionAndOrientation)
{
    PngMake make;
    EXPECT_EQ(ProbeBytes(MakePng(make)).xResolution, 0);
    EXPECT_EQ(ProbeBytes(MakePng(make)).orientation, 1);
    make.dotsPerMetre = 11811;
    make.exif = making::MakeExif(6, true);
    const ImageFacts facts = ProbeBytes(MakePng(make));
    EXPECT_EQ(facts.xResolution, 300);
    EXPECT_EQ(facts.yResolution, 300);
    EXPECT_EQ(facts.orientation, 6);
}

TEST(PngCodec, TheProfileIsKept)
{
    PngMake make;
    make.icc = making::MakeWideProfile();
    EXPECT_EQ(DecodeBytes(MakePng(make)).Icc(), make.icc);
}

TEST(PngCodec, ATextThatInflatesWithoutEndIsNotInflated)
{
    PngMake make;
    make.text = QByteArray(30'000'000, 'a');
    const QByteArray bytes = MakePng(make);
    ASSERT_LT(bytes.size(), 100'000);
    EXPECT_FALSE(DecodeBytes(bytes).IsPartial());
}

TEST(PngCodec, ATruncatedPictureShowsItsUpperRows)
{
    PngMake make;
    make.width = make.height = 1200;
    const QByteArray bytes = MakePng(make);
    const Bitmap bitmap = DecodeBytes(bytes.left(bytes.size() / 2));
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(ColourDistance(bitmap.Pixels().pixel(100, 5), PlaceColour(100, 5, 1200, 1200)), 0);
    EXPECT_EQ(bitmap.Pixels().pixel(100, 1199), qRgb(128, 128, 128));
}

TEST(PngCodec, RefusesWithWords)
{
    const QByteArray good = MakePng({});
    EXPECT_EQ(RefusalOf([&] { ProbeBytes(good.left(20)); }).words,
              "This PNG is damaged: it has no header.");
    QByteArray bytes = good;
    bytes.replace(16, 8, making::Big(0, 4) + making::Big(5, 4));
    EXPECT_EQ(RefusalOf([&] { ProbeBytes(bytes); }).words,
              "This PNG is damaged: it claims a size of 0 x 5 pixels.");
    bytes.replace(16, 8, making::Big(2'000'000, 4) + making::Big(5, 4));
    EXPECT_EQ(RefusalOf([&] { ProbeBytes(bytes); }).number, kFailureLimit);
    bytes = good;
    bytes[25] = 5;
    EXPECT_EQ(RefusalOf([&] { ProbeBytes(bytes); }).words,
              "This PNG is damaged: it claims 8 bits in colour type 5.");
    const auto cut = RefusalOf([&] { DecodeBytes(good.left(60)); });
    EXPECT_EQ(cut.number, kFailureUnreadable);
    EXPECT_TRUE(cut.words.startsWith("This PNG is damaged: ")) << cut.words.toStdString();
}

TEST(PngCodec, StopsWhenCancelled)
{
    const std::atomic<bool> cancelled = true;
    DecodeRequest request;
    request.cancelled = &cancelled;
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(MakePng({}), request); }).number, kFailureCancelled);
}

} // namespace

} // namespace quillane
