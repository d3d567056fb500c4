// Photoshop files, made byte by byte.
#include "legacy_support.h"
#include <cmath>

namespace quillane {

namespace {

using making::LegacyFacts;
using making::LegacyPicture;
using making::LegacyRefusal;

TEST(Photoshop, EveryModeAndDepth)
{
    for (int kind = 0; kind < 4; ++kind) {
        for (const int depth : {8, 16}) {
            making::PsdMake make;
            make.packed = kind & 1;
            make.big = kind & 2;
            make.depth = depth;
            make.dotsPerInch = 240;
            make.icc = making::MakeWideProfile();
            const QByteArray file = making::MakePsd(make);
            const ImageFacts facts = LegacyFacts("PSD", file);
            EXPECT_EQ(facts.width, 9);
            EXPECT_EQ(facts.height, 7);
            EXPECT_EQ(facts.bits, 3 * depth);
            EXPECT_EQ(facts.format, 76);
            EXPECT_EQ(facts.xResolution, 240);
            EXPECT_EQ(facts.yResolution, 240);
            EXPECT_EQ(facts.compression.toStdString(), make.packed ? "PackBits" : "Uncompressed");
            const Bitmap bitmap = LegacyPicture("PSD", file);
            EXPECT_EQ(bitmap.Icc(), make.icc);
            EXPECT_TRUE(bitmap.IsExact());
            int wrong = 0;
            for (int y = 0; y < 7; ++y) {
                for (int x = 0; x < 9; ++x) {
                    const int base = x * 9 + y * 5;
                    const QRgb there = bitmap.Pixels().pixel(x, y);
                    wrong += making::ColourDistance(there, qRgb(base, base + 31, base + 62)) > 1;
                }
            }
            EXPECT_EQ(wrong, 0);
        }
    }
}

TEST(Photoshop, GreyIndexedBilevelAndInk)
{
    making::PsdMake make;
    make.mode = 1;
    make.channels = 1;
    make.depth = 16;
    const Bitmap grey = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_EQ(grey.Pixels().format(), QImage::Format_Grayscale16);
    EXPECT_EQ(reinterpret_cast<const quint16*>(grey.Pixels().constScanLine(1))[2], 23 * 256);
    make.mode = 2;
    make.depth = 8;
    const Bitmap indexed = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_EQ(indexed.Model(), ColourModel::Palette);
    EXPECT_EQ(indexed.Pixels().pixel(2, 1), qRgb(69, (256 + 23) * 3 & 255, (512 + 23) * 3 & 255));
    make.mode = 0;
    make.depth = 1;
    const Bitmap bits = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_EQ(bits.Model(), ColourModel::BlackWhite);
    EXPECT_EQ(bits.Pixels().pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(bits.Pixels().pixel(3, 0), qRgb(0, 0, 0));
    make.mode = 4;
    make.channels = 4;
    make.depth = 8;
    const Bitmap ink = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_EQ(ink.Model(), ColourModel::Cmyk);
    EXPECT_EQ(ink.Pixels().constScanLine(1)[2 * 4 + 3], 255 - (23 + 93));
}

TEST(Photoshop, TransparencyTakesThePaperOutOfTheMergedColours)
{
    making::PsdMake make;
    make.channels = 4;
    EXPECT_EQ(LegacyFacts("PSD", making::MakePsd(make)).bits, 24);
    make.transparency = true;
    EXPECT_EQ(LegacyFacts("PSD", making::MakePsd(make)).bits, 32);
    QByteArray file = making::MakePsd(make);
    const qsizetype plane = 9 * 7;
    const auto sample = [&](int channel) -> char& {
        return file[file.size() - (4 - channel) * plane];
    };
    sample(0) = char(227); // half transparent 200 over white
    sample(3) = char(128);
    const Bitmap bitmap = LegacyPicture("PSD", file);
    EXPECT_EQ(qAlpha(bitmap.Pixels().pixel(0, 0)), 128);
    EXPECT_NEAR(qRed(bitmap.Pixels().pixel(0, 0)), 199, 1);
}

TEST(Photoshop, LightInFloatingPointIsEncodedForTheScreen)
{
    making::PsdMake make;
    make.depth = 32;
    const Bitmap bitmap = LegacyPicture("PSD", making::MakePsd(make));
    EXPECT_FALSE(bitmap.IsExact());
    const double light = 62 / 255.0;
    const double expected = (1.055 * std::pow(light, 1 / 2.4) - 0.055) * 255;
    EXPECT_NEAR(qBlue(bitmap.Pixels().pixel(0, 0)), expected, 1);
}

TEST(Photoshop, LabIsShownInColour)
{
    making::PsdMake make;
    make.mode = 9;
    QByteArray file = making::MakePsd(make);
    const qsizetype plane = 9 * 7;
    file[file.size() - 3 * plane] = char(138); // L 54.1, a 81, b 70: red
    file[file.size() - 2 * plane] = char(128 + 81);
    file[file.size() - plane] = char(128 + 70);
    const QRgb red = LegacyPicture("PSD", file).Pixels().pixel(0, 0);
    EXPECT_LE(making::ColourDistance(red, qRgb(255, 0, 0)), 8);
}

TEST(Photoshop, RefusalsAreInWords)
{
    making::PsdMake make;
    make.mode = 5;
    EXPECT_EQ(LegacyRefusal("PSD", making::MakePsd(make)),
              "This Photoshop file is of colour mode 5, which is not supported.");
    make.mode = 4;
    EXPECT_EQ(LegacyRefusal("PSD", making::MakePsd(make)),
              "This Photoshop file is damaged: it has fewer channels than its colours need.");
    make.mode = 3;
    const QByteArray file = making::MakePsd(make);
    EXPECT_EQ(LegacyRefusal("PSD", file.left(30)),
              "This Photoshop file is damaged: it ends before its picture.");
    EXPECT_EQ(LegacyRefusal("PSD", file.left(file.size() - 3 * 9 * 7)),
              "This Photoshop file is damaged: it ends before its first row.");
}

} // namespace

} // namespace quillane
