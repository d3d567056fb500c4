// What every encoder is promised: depths, colours, profiles, refusals.
#include "codec_support_for_tests.h"
#include "encode_support.h"
#include "imaging/encode_pixels.h"
#include "picture_maker.h"

namespace quillane {

namespace {

using making::DecodeBytes;
using making::ProbeBytes;
using making::RefusalOf;
using test::SamePixels;

Bitmap PictureOf(qint32 bits, QSize size = {40, 30})
{
    return test::PictureFor(*FindSaveVariant(75), bits, size);
}

EncodeRequest RequestFor(qint16 format, qint32 bits = 0)
{
    EncodeRequest request;
    request.format = format;
    request.bits = bits;
    return request;
}

TEST(WrittenDepth, IsTheOneAskedForWhereTheVariantHasIt)
{
    for (const SaveVariant& variant : SaveVariants()) {
        for (const qint32* bits = variant.depths; *bits != 0; ++bits) {
            EXPECT_EQ(WrittenDepth(variant, PictureOf(24), *bits), *bits);
        }
    }
}

TEST(WrittenDepth, WidensWhereNothingIsLost)
{
    const SaveVariant& jpeg = *FindSaveVariant(10);
    const SaveVariant& bmp = *FindSaveVariant(6);
    EXPECT_EQ(WrittenDepth(jpeg, PictureOf(1), 1), 8);
    EXPECT_EQ(WrittenDepth(bmp, PictureOf(2), 2), 4);
    EXPECT_EQ(WrittenDepth(bmp, PictureOf(5), 5), 8);
    const SaveVariant ink = {85,   "",    "",    StoredColour::Cmyk,
                             {32}, false, false, CommentCarrier::None};
    EXPECT_EQ(WrittenDepth(ink, PictureOf(8), 8), 32);
    EXPECT_EQ(WrittenDepth(ink, PictureOf(24), 24), 32);
    const SaveVariant full = {93,   "",    "",    StoredColour::YCbCr,
                              {24}, false, false, CommentCarrier::None};
    EXPECT_EQ(WrittenDepth(full, PictureOf(8), 8), 24);
}

TEST(WrittenDepth, WithoutAWishIsTheNearest)
{
    const SaveVariant& png = *FindSaveVariant(75);
    for (const qint32 bits : {1, 2, 4, 8, 16, 24, 32, 48, 64}) {
        EXPECT_EQ(WrittenDepth(png, PictureOf(bits), 0), bits);
    }
    EXPECT_EQ(WrittenDepth(*FindSaveVariant(2), PictureOf(24), 0), 8);
    EXPECT_EQ(WrittenDepth(*FindSaveVariant(6), PictureOf(64), 0), 32);
    EXPECT_EQ(WrittenDepth(*FindSaveVariant(14), PictureOf(48), 0), 24);
}

TEST(WrittenDepth, RefusesWhatWouldBeLost)
{
    const auto refusal = [](qint16 format, qint32 bits) {
        return RefusalOf([&] { WrittenDepth(*FindSaveVariant(format), PictureOf(24), bits); });
    };
    EXPECT_EQ(refusal(2, 24).words.toStdString(),
              "\"CompuServe GIF\" cannot be written with 24 bits per pixel, only with 1, 2, 3, 4, "
              "5, 6, 7 or 8.");
    EXPECT_EQ(refusal(10, 48).words.toStdString(),
              "\"JPEG File Interchange Format\" cannot be written with 48 bits per pixel, only "
              "with 8, 24 or 32.");
    for (const qint32 bits : {-1, -24, 12, 96, 33}) {
        EXPECT_EQ(refusal(75, bits).number, kFailureGeneral) << bits;
    }
}

TEST(EncodePicture, RefusesCodesThatAreNotWritten)
{
    for (const qint16 format : {0, 5, 124, 246, -3, 32767}) {
        EXPECT_EQ(RefusalOf([&] { EncodePicture(PictureOf(24), RequestFor(format)); }).number,
                  kFailureGeneral);
    }
    EXPECT_EQ(RefusalOf([&] { EncodePicture(PictureOf(24), RequestFor(124)); }).words.toStdString(),
              "\"DWG - AutoCAD\" cannot be written. Choose another format.");
    EXPECT_EQ(RefusalOf([&] { EncodePicture(Bitmap(), RequestFor(10)); }).words.toStdString(),
              "There is no picture to write.");
}

TEST(EncodePicture, KeepsFewColoursAsTheyAre)
{
    // A picture in full colours that uses but few of them loses nothing in a palette.
    const Bitmap few = test::PictureFor(*FindSaveVariant(2), 4, {50, 40});
    const Bitmap full(few.Pixels().convertToFormat(QImage::Format_RGB32), ColourModel::Rgb, 24);
    for (const qint32 bits : {4, 5, 8}) {
        EXPECT_TRUE(SamePixels(full, DecodeBytes(EncodePicture(full, RequestFor(2, bits)))));
    }
}

TEST(EncodePicture, ReducesManyColoursToAsManyAsAskedFor)
{
    for (qint32 bits = 1; bits <= 8; ++bits) {
        const QByteArray file = EncodePicture(PictureOf(24), RequestFor(2, bits));
        EXPECT_EQ(ProbeBytes(file).bits, bits);
        const QImage back = DecodeBytes(file).Pixels();
        QSet<QRgb> seen;
        for (int y = 0; y < back.height(); ++y) {
            for (int x = 0; x < back.width(); ++x) {
                seen.insert(back.pixel(x, y));
            }
        }
        EXPECT_GT(seen.size(), 1);
        EXPECT_LE(seen.size(), 1 << bits);
    }
}

TEST(EncodePicture, APaletteKeepsWhatIsClear)
{
    QImage image = PictureOf(32, {60, 50}).Pixels();
    for (int y = 0; y < 25; ++y) {
        for (int x = 0; x < 60; ++x) {
            image.setPixel(x, y, qRgba(10, 20, 30, 0));
        }
        for (int x = 0; x < 60; ++x) {
            image.setPixel(x, y + 25, image.pixel(x, y + 25) | 0xff000000u);
        }
    }
    const Bitmap picture(image, ColourModel::Rgb, 32);
    for (const qint16 format : {2, 75}) {
        for (const qint32 bits : {4, 8}) {
            const QImage back =
                DecodeBytes(EncodePicture(picture, RequestFor(format, bits))).Pixels();
            EXPECT_EQ(qAlpha(back.pixel(30, 10)), 0) << format << " " << bits;
            EXPECT_EQ(qAlpha(back.pixel(30, 40)), 255) << format << " " << bits;
        }
    }
}

TEST(EncodePicture, SixteenBitsOfGreyWithTransparencyStay)
{
    QImage image(30, 20, QImage::Format_ARGB32);
    QImage wide(30, 20, QImage::Format_RGBA64);
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 30; ++x) {
            image.setPixel(x, y, qRgba(x * 8, x * 8, x * 8, y * 12));
            const quint16 grey = quint16(x * 2000 + 1);
            wide.setPixelColor(x, y, QColor::fromRgba64(grey, grey, grey, quint16(y * 3001)));
        }
    }
    const Bitmap picture(image, ColourModel::Rgb, 16);
    const QByteArray file = EncodePicture(picture, RequestFor(75, 16));
    EXPECT_EQ(ProbeBytes(file).bits, 16);
    EXPECT_TRUE(SamePixels(picture, DecodeBytes(file)));

    const Bitmap deep(wide, ColourModel::Rgb, 32);
    const QByteArray deepFile = EncodePicture(deep, RequestFor(75, 32));
    EXPECT_EQ(ProbeBytes(deepFile).bits, 32);
    EXPECT_TRUE(SamePixels(deep, DecodeBytes(deepFile)));
}

TEST(EncodePicture, ColoursOfAProfileThatTheFileCannotHoldBecomeSrgb)
{
    Bitmap picture = PictureOf(24);
    picture.SetIcc(making::MakeWideProfile());
    EncodeRequest request = RequestFor(6, 24);
    request.icc = picture.Icc();
    const Bitmap back = DecodeBytes(EncodePicture(picture, request));
    const Bitmap shown(picture.ToDisplay(), ColourModel::Rgb, 24);
    EXPECT_TRUE(SamePixels(shown, back));
    EXPECT_FALSE(SamePixels(picture, back));

    request.format = 75;
    const Bitmap kept = DecodeBytes(EncodePicture(picture, request));
    EXPECT_TRUE(SamePixels(picture, kept));
    EXPECT_EQ(kept.Icc(), picture.Icc());
}

TEST(PlainSrgbToCmyk, ShowsTheSameColoursAgain)
{
    QImage colours(256, 256, QImage::Format_RGB32);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            colours.setPixel(x, y, qRgb(x, y, (x * 7 + y * 13) & 255));
        }
    }
    const Bitmap ink(PlainSrgbToCmyk(colours), ColourModel::Cmyk, 32);
    EXPECT_EQ(ink.ToDisplay(), colours);
}

TEST(PngEncoder, ResolutionIsKept)
{
    EncodeRequest request = RequestFor(75);
    for (const qint32 dots : {72, 96, 150, 299, 300, 1200}) {
        request.xResolution = dots;
        request.yResolution = dots + 1;
        const ImageFacts facts = ProbeBytes(EncodePicture(PictureOf(24), request));
        EXPECT_EQ(facts.xResolution, dots);
        EXPECT_EQ(facts.yResolution, dots + 1);
    }
}

TEST(PngEncoder, APaletteKeepsItsOrderAndItsTransparency)
{
    QImage image(4, 1, QImage::Format_Indexed8);
    image.setColorTable({qRgba(1, 2, 3, 0), qRgba(4, 5, 6, 100), qRgb(7, 8, 9), qRgb(9, 9, 9)});
    for (int x = 0; x < 4; ++x) {
        image.scanLine(0)[x] = uchar(x);
    }
    for (const qint32 bits : {2, 4, 8}) {
        const QByteArray file =
            EncodePicture(Bitmap(image, ColourModel::Palette, bits), RequestFor(75, bits));
        EXPECT_EQ(ProbeBytes(file).bits, bits);
        EXPECT_EQ(DecodeBytes(file).Pixels().colorTable().first(4), image.colorTable());
    }
}

TEST(BmpEncoder, RunsOfEveryLengthUnpackAsTheyWere)
{
    for (const qint32 bits : {4, 8}) {
        for (int width = 1; width < 620; width += width < 20 ? 1 : 37) {
            QImage image(width, 5, QImage::Format_Indexed8);
            image.setColorTable(
                test::PictureFor(*FindSaveVariant(2), bits, {9, 9}).Pixels().colorTable());
            for (int x = 0; x < width; ++x) {
                image.scanLine(0)[x] = 3;                            // one run
                image.scanLine(1)[x] = uchar(x % 13);                // no run
                image.scanLine(2)[x] = uchar(x / 3 % 11);            // short ones
                image.scanLine(3)[x] = uchar(x % 7 < 2 ? x % 5 : 9); // both
                image.scanLine(4)[x] = uchar(x * x / 300 % 14);
            }
            const Bitmap picture(image, ColourModel::Palette, bits);
            const QByteArray file = EncodePicture(picture, RequestFor(84, bits));
            ASSERT_TRUE(SamePixels(picture, DecodeBytes(file))) << bits << " " << width;
        }
    }
}

TEST(BmpEncoder, SixGreenBitsAreKeptInSixteen)
{
    QImage image(64, 2, QImage::Format_RGB32);
    for (int x = 0; x < 64; ++x) {
        image.setPixel(x, 0, qRgb(255, (x * 255 + 31) / 63, 0));
        image.setPixel(x, 1, qRgb(0, (x * 255 + 31) / 63, 255));
    }
    const Bitmap picture(image, ColourModel::Rgb, 16);
    const QByteArray file = EncodePicture(picture, RequestFor(6, 16));
    EXPECT_EQ(ProbeBytes(file).bits, 16);
    EXPECT_TRUE(SamePixels(picture, DecodeBytes(file)));
}

TEST(BmpEncoder, TransparencyAndResolutionAreKept)
{
    EncodeRequest request = RequestFor(6, 32);
    request.xResolution = request.yResolution = 300;
    const Bitmap clear = PictureOf(32);
    EXPECT_TRUE(SamePixels(clear, DecodeBytes(EncodePicture(clear, request))));
    EXPECT_EQ(ProbeBytes(EncodePicture(clear, request)).xResolution, 300);
    const Bitmap opaque = PictureOf(24);
    const QByteArray file = EncodePicture(opaque, request);
    EXPECT_EQ(ProbeBytes(file).bits, 32);
    EXPECT_TRUE(SamePixels(opaque, DecodeBytes(file)));
}

TEST(GifEncoder, LargeSidesAreRefusedWithWords)
{
    const Bitmap wide(QImage(65536, 1, QImage::Format_Grayscale8), ColourModel::Grey, 8);
    EXPECT_EQ(RefusalOf([&] { EncodePicture(wide, RequestFor(2)); }).words.toStdString(),
              "A GIF cannot hold a picture of 65536 x 1 pixels, at most 65535 x 65535.");
}

} // namespace

} // namespace quillane
