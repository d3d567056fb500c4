#include "codec_support_for_tests.h"
#include "picture_maker.h"

namespace quillane {

namespace {

using making::DecodeBytes;
using making::GifMake;
using making::MakeGif;
using making::ProbeBytes;
using making::RefusalOf;

TEST(GifCodec, FactsAreThoseOfTheScreen)
{
    GifMake make;
    make.width = 30;
    make.height = 20;
    make.colours = 16;
    const ImageFacts facts = ProbeBytes(MakeGif(make));
    EXPECT_EQ(facts.width, 30);
    EXPECT_EQ(facts.height, 20);
    EXPECT_EQ(facts.bits, 4);
    EXPECT_EQ(facts.format, 2);
    EXPECT_EQ(facts.pages, 1);
    EXPECT_EQ(facts.compression, "LZW");
}

TEST(GifCodec, FramesAreCountedWithoutDecodingThem)
{
    for (const int frames : {1, 2, 5, 300}) {
        GifMake make;
        make.frames = frames;
        make.transparent = 1;
        EXPECT_EQ(ProbeBytes(MakeGif(make)).pages, frames);
    }
    // A frame's pixels may be nonsense: it still counts.
    GifMake make;
    make.frames = 3;
    const QByteArray bytes = MakeGif(make);
    EXPECT_EQ(ProbeBytes(bytes.left(bytes.size() - 1)).pages, 3);
    EXPECT_EQ(ProbeBytes(bytes.left(20)).pages, 1);
}

TEST(GifCodec, TheFirstFrameShowsInterlacedOrNot)
{
    for (const bool interlaced : {false, true}) {
        GifMake make;
        make.height = make.frameHeight = 21;
        make.interlaced = interlaced;
        make.frames = 2;
        const Bitmap bitmap = DecodeBytes(MakeGif(make));
        ASSERT_EQ(bitmap.Pixels().format(), QImage::Format_Indexed8);
        EXPECT_EQ(bitmap.Model(), ColourModel::Palette);
        EXPECT_EQ(bitmap.FileDepth(), 2);
        for (int y = 0; y < 21; ++y) {
            for (int x = 0; x < 20; ++x) {
                const int i = (x + y) % 4;
                ASSERT_EQ(bitmap.Pixels().pixel(x, y), qRgb(i * 10, 255 - i, i)) << x << "," << y;
            }
        }
    }
}

TEST(GifCodec, TheTransparentIndexShowsNothing)
{
    GifMake make;
    make.transparent = 2;
    const QImage pixels = DecodeBytes(MakeGif(make)).Pixels();
    EXPECT_EQ(qAlpha(pixels.pixel(2, 0)), 0);
    EXPECT_EQ(qAlpha(pixels.pixel(1, 0)), 255);
}

TEST(GifCodec, AFrameLiesInItsPlaceOnTheScreen)
{
    GifMake make;
    make.width = 40;
    make.height = 30;
    make.left = 7;
    make.top = 5;
    const QImage pixels = DecodeBytes(MakeGif(make)).Pixels();
    EXPECT_EQ(pixels.size(), QSize(40, 30));
    EXPECT_EQ(qAlpha(pixels.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(pixels.pixel(39, 29)), 0);
    EXPECT_EQ(pixels.pixel(7, 5), qRgb(0, 255, 0));
    EXPECT_EQ(pixels.pixel(8, 5), qRgb(10, 254, 1));
}

TEST(GifCodec, AFrameBeyondTheScreenIsCutOff)
{
    GifMake make;
    make.width = 10;
    make.height = 6;
    make.left = 4;
    make.top = 3;
    make.frameWidth = 50;
    make.frameHeight = 40;
    for (const bool interlaced : {false, true}) {
        make.interlaced = interlaced;
        const Bitmap bitmap = DecodeBytes(MakeGif(make));
        EXPECT_EQ(bitmap.Pixels().size(), QSize(10, 6));
        EXPECT_EQ(bitmap.Pixels().pixel(9, 5), qRgb(30, 252, 3));
        EXPECT_FALSE(bitmap.IsPartial());
    }
    make.left = 100; // wholly outside
    EXPECT_EQ(qAlpha(DecodeBytes(MakeGif(make)).Pixels().pixel(5, 5)), 0);
}

TEST(GifCodec, ATruncatedFrameIsPartial)
{
    GifMake make;
    make.width = make.frameWidth = 200;
    make.height = make.frameHeight = 200;
    make.colours = 64;
    const QByteArray bytes = MakeGif(make);
    const Bitmap bitmap = DecodeBytes(bytes.left(bytes.size() / 2));
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().pixel(3, 0), qRgb(30, 252, 3));
}

TEST(GifCodec, RefusesWithWords)
{
    const QByteArray good = MakeGif({});
    QByteArray bytes = good;
    bytes[6] = bytes[7] = 0;
    EXPECT_EQ(RefusalOf([&] { ProbeBytes(bytes); }).words,
              "This GIF is damaged: it claims a size of 0 x 10 pixels.");
    EXPECT_EQ(RefusalOf([&] { ProbeBytes(good.left(10)); }).words,
              "This GIF is damaged: it has no header.");
    const QByteArray empty = good.left(13 + 12) + ";";
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(empty); }).words,
              "This GIF is damaged: it holds no picture.");
}

TEST(GifCodec, MegabytesOfWordsBeforeTheFirstFrameAreNotRead)
{
    const QByteArray good = MakeGif({});
    QByteArray bytes = good.left(13 + 12) + "\x21\xfe";
    const QByteArray block = QByteArray(1, '\xff') + QByteArray(255, 'a');
    for (int i = 0; i < 60'000; ++i) {
        bytes += block;
    }
    bytes += QByteArray(1, '\0') + good.mid(13 + 12);
    making::CountingSource source(bytes);
    EXPECT_EQ(making::CodecFor(bytes).probe(source).pages, 1);
    EXPECT_LT(source.bytes, 9'000'000);
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(bytes); }).number, kFailureLimit);
}

TEST(GifCodec, StopsWhenCancelled)
{
    const std::atomic<bool> cancelled = true;
    DecodeRequest request;
    request.cancelled = &cancelled;
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(MakeGif({}), request); }).number, kFailureCancelled);
}

} // namespace

} // namespace quillane
