// What the save dialog offers and how its choices hang together.
#include "viewer/save_choices.h"

#include "imaging/codec.h"
#include "imaging/format_table.h"
#include "imaging/worker/worker_host.h"
#include <gtest/gtest.h>

namespace quillane {
namespace {

Bitmap Coloured()
{
    QImage pixels(64, 48, QImage::Format_RGB32);
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x) {
            pixels.setPixel(x, y, qRgb(x * 4, y * 5, (x * y * 7) % 256));
        }
    }
    return {pixels, ColourModel::Rgb, 24};
}

Bitmap Grey(bool deep)
{
    QImage pixels(8, 8, deep ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
    pixels.fill(Qt::gray);
    return {pixels, ColourModel::Grey, deep ? 16 : 8};
}

qsizetype TypeNamed(const char* name)
{
    for (qsizetype i = 0; i < SaveTypes().size(); ++i) {
        if (SaveTypes().at(i).name == QLatin1String(name)) {
            return i;
        }
    }
    ADD_FAILURE() << name;
    return -1;
}

TEST(SaveTypes, HoldEveryFormatThatCanBeWrittenOnce)
{
    QList<qint16> offered;
    for (const SaveType& type : SaveTypes()) {
        EXPECT_FALSE(type.formats.isEmpty());
        for (const qint16 format : type.formats) {
            const SaveVariant* variant = FindSaveVariant(format);
            ASSERT_NE(variant, nullptr) << format;
            EXPECT_EQ(type.name, QLatin1String(variant->codec));
            EXPECT_TRUE(type.extensions.contains(QLatin1String(variant->extension)));
            EXPECT_FALSE(FormatDescription(format).isEmpty()) << format;
            EXPECT_EQ(SaveTypes().at(SaveTypeOf(format)).name, type.name);
            offered.append(format);
        }
    }
    std::sort(offered.begin(), offered.end());
    QList<qint16> all;
    for (const SaveVariant& variant : SaveVariants()) {
        all.append(variant.format);
    }
    EXPECT_EQ(offered, all);
    EXPECT_EQ(SaveTypeOf(124), -1);
    EXPECT_EQ(SaveTypeOf(0), -1);
}

TEST(SaveTypes, StandByNameWithTheirExtensions)
{
    const QList<SaveType>& types = SaveTypes();
    for (qsizetype i = 1; i < types.size(); ++i) {
        EXPECT_LT(types.at(i - 1).name.toLower(), types.at(i).name.toLower());
    }
    EXPECT_EQ(types.at(TypeNamed("JPEG")).Words(), QStringLiteral("JPEG (*.jpg *.jpeg *.jpe)"));
    EXPECT_EQ(types.at(TypeNamed("TIFF")).Words(), QStringLiteral("TIFF (*.tif *.tiff)"));
    EXPECT_EQ(types.at(TypeNamed("ICO")).Words(), QStringLiteral("ICO (*.ico *.cur)"));
}

TEST(ReadableExtensions, AreThoseOfTheCodecsThatRead)
{
    const QStringList all = ReadableExtensions();
    for (const char* one : {"jpg", "jpeg", "tif", "png", "dic", "avi", "pct", "fpx"}) {
        EXPECT_TRUE(all.contains(QLatin1String(one))) << one;
    }
    for (const char* one : {"dwg", "awd", "pdf", "xpm", ""}) {
        EXPECT_FALSE(all.contains(QLatin1String(one))) << one;
    }
}

TEST(TakesQuality, IsTrueWhereTheFactorChangesTheFile)
{
    worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
    const Bitmap picture = Coloured();
    for (const SaveVariant& variant : SaveVariants()) {
        EncodeRequest request;
        request.format = variant.format;
        request.bits = WrittenDepth(variant, picture, 0);
        request.quality = 40;
        // Files of some kinds hold a number of their own, of a length that varies a little.
        constexpr qsizetype kNumber = 64;
        const qsizetype better = EncodePicture(picture, request).size();
        request.quality = 200;
        EXPECT_EQ(EncodePicture(picture, request).size() < better - kNumber, TakesQuality(variant))
            << variant.format;
    }
}

TEST(DepthWords, TellDepthsOfAVariantApart)
{
    for (const SaveVariant& variant : SaveVariants()) {
        QStringList words;
        for (const qint32* depth = variant.depths; *depth != 0; ++depth) {
            words.append(DepthWords(variant, Coloured(), *depth));
            EXPECT_TRUE(words.last().startsWith(QString::number(*depth))) << variant.format;
        }
        EXPECT_EQ(words.removeDuplicates(), 0) << variant.format;
    }
    const Bitmap none;
    EXPECT_EQ(DepthWords(*FindSaveVariant(10), none, 8), QStringLiteral("8 bits: shades of grey"));
    EXPECT_EQ(DepthWords(*FindSaveVariant(10), none, 32),
              QStringLiteral("32 bits: printing inks (CMYK)"));
    EXPECT_EQ(DepthWords(*FindSaveVariant(75), none, 32),
              QStringLiteral("32 bits: full colours with transparency"));
    EXPECT_EQ(DepthWords(*FindSaveVariant(2), none, 4), QStringLiteral("4 bits: 16 colours"));
    EXPECT_EQ(DepthWords(*FindSaveVariant(29), none, 1), QStringLiteral("1 bit: black and white"));
    EXPECT_EQ(DepthWords(*FindSaveVariant(6), none, 16), QStringLiteral("16 bits: fewer colours"));
    EXPECT_EQ(DepthWords(*FindSaveVariant(75), none, 16), QStringLiteral("16 bits: deep grey"));
}

TEST(QualityWords, NameTheEnds)
{
    EXPECT_EQ(QualityWords(2), QStringLiteral("2 (best)"));
    EXPECT_EQ(QualityWords(10), QStringLiteral("10"));
    EXPECT_EQ(QualityWords(255), QStringLiteral("255 (smallest file)"));
}

TEST(SaveChoices, BeginWithFormatAndDepthOfTheFile)
{
    const SaveChoices jpeg(Coloured(), 98, 24);
    EXPECT_EQ(jpeg.Format(), 98);
    EXPECT_EQ(jpeg.Bits(), 24);
    EXPECT_EQ(SaveTypes().at(jpeg.Type()).formats.at(jpeg.SubFormat()), 98);
    const SaveChoices gif(Coloured(), 2, 5);
    EXPECT_EQ(gif.Bits(), 5);
    // A depth that is not written, and a format that is not.
    EXPECT_EQ(SaveChoices(Coloured(), 98, 12).Bits(), 24);
    EXPECT_EQ(SaveChoices(Coloured(), 57, 24).Format(), 75);
    EXPECT_EQ(SaveChoices(Bitmap(), 0, 0).Bits(), 24);
}

TEST(SaveChoices, AKindComesWithAFormatThatHoldsThePicture)
{
    SaveChoices colours(Coloured(), 75, 24);
    colours.ChooseType(TypeNamed("PNM"));
    EXPECT_EQ(colours.Format(), 106);
    colours.ChooseType(TypeNamed("DICOM"));
    EXPECT_EQ(colours.Format(), 90);
    colours.ChooseType(TypeNamed("JPEG"));
    EXPECT_EQ(colours.Format(), 10);
    EXPECT_EQ(colours.Bits(), 24);
    colours.ChooseType(TypeNamed("GIF"));
    EXPECT_EQ(colours.Bits(), 8);
    colours.ChooseType(TypeNamed("MSP"));
    EXPECT_EQ(colours.Bits(), 1);
    SaveChoices grey(Grey(true), 75, 16);
    grey.ChooseType(TypeNamed("PNM"));
    EXPECT_EQ(grey.Format(), 104);
    EXPECT_EQ(grey.Bits(), 16);
    grey.ChooseType(TypeNamed("JPEG"));
    EXPECT_EQ(grey.Bits(), 24);
}

TEST(SaveChoices, APictureWithAnExifBlockKeepsOne)
{
    SaveChoices exif(Coloured(), 96, 24);
    exif.ChooseType(TypeNamed("JPEG"));
    EXPECT_EQ(exif.Format(), 98);
    exif.ChooseType(TypeNamed("PNG"));
    exif.ChooseType(TypeNamed("TIFF"));
    EXPECT_EQ(exif.Format(), 96);
    SaveChoices plain(Coloured(), 75, 24);
    plain.ChooseType(TypeNamed("TIFF"));
    EXPECT_EQ(plain.Format(), 3);
}

TEST(SaveChoices, TransparencyDoesNotBecomeInk)
{
    const Bitmap clear(QImage(4, 4, QImage::Format_ARGB32), ColourModel::Rgb, 32);
    SaveChoices choices(clear, 75, 32);
    choices.ChooseType(TypeNamed("JPEG"));
    EXPECT_EQ(choices.Bits(), 24);
    const Bitmap inks(QImage(4, 4, QImage::Format_RGBA8888), ColourModel::Cmyk, 32);
    SaveChoices ink(inks, 85, 32);
    ink.ChooseType(TypeNamed("JPEG"));
    EXPECT_EQ(ink.Bits(), 32);
}

TEST(SaveChoices, AChosenDepthStaysWithAnotherSubFormat)
{
    SaveChoices choices(Coloured(), 3, 24);
    choices.ChooseBits(8);
    choices.ChooseSubFormat(qint32(SaveTypes().at(choices.Type()).formats.indexOf(17)));
    EXPECT_EQ(choices.Format(), 17);
    EXPECT_EQ(choices.Bits(), 8);
    choices.ChooseSubFormat(qint32(SaveTypes().at(choices.Type()).formats.indexOf(85)));
    EXPECT_EQ(choices.Bits(), 32);
    choices.ChooseBits(5);
    EXPECT_EQ(choices.Bits(), 32);
    choices.ChooseSubFormat(999);
    choices.ChooseType(-1);
    choices.ChooseType(999);
    EXPECT_EQ(choices.Format(), 85);
}

TEST(SaveChoices, ATypedExtensionChoosesItsKind)
{
    SaveChoices choices(Coloured(), 98, 24);
    const auto typed = [&](const char* name) {
        const bool changed = choices.NameTyped(QLatin1String(name));
        return std::pair<bool, qint16>(changed, choices.Format());
    };
    using Typed = std::pair<bool, qint16>;
    EXPECT_EQ(typed("a"), Typed(false, 98));
    EXPECT_EQ(typed("a.jp"), Typed(false, 98));
    EXPECT_EQ(typed("a.JPEG"), Typed(false, 98));
    EXPECT_EQ(typed("a.PNG"), Typed(true, 75));
    EXPECT_EQ(typed("a.tiff"), Typed(true, 96)); // the one with an Exif block
    EXPECT_EQ(typed("a.cur"), Typed(true, 92));
    EXPECT_EQ(typed("a.ico"), Typed(true, 91));
    EXPECT_EQ(typed("a.pgm"), Typed(true, 104));
    EXPECT_EQ(typed("a.j2k"), Typed(true, 164));
    EXPECT_EQ(typed("a.jp2"), Typed(true, 163));
    EXPECT_EQ(typed("a.bmp"), Typed(true, 6));
    EXPECT_EQ(typed("a.dib"), Typed(false, 6));
    EXPECT_EQ(typed("a.avi"), Typed(false, 6));
    EXPECT_EQ(typed(".png"), Typed(false, 6));
    EXPECT_EQ(typed("/a.png/b"), Typed(false, 6));
    EXPECT_EQ(typed("a.jpg"), Typed(true, 98));
}

TEST(SaveChoices, ChoosingAFormatChangesThePicturesExtension)
{
    SaveChoices choices(Coloured(), 75, 24);
    const auto renamed = [&](const char* name) { return choices.Renamed(QLatin1String(name)); };
    choices.ChooseType(TypeNamed("JPEG"));
    EXPECT_EQ(renamed("a.png"), QStringLiteral("a.jpg"));
    EXPECT_EQ(renamed("a.JPEG"), QStringLiteral("a.JPEG"));
    EXPECT_EQ(renamed("a"), QStringLiteral("a.jpg"));
    EXPECT_EQ(renamed("a.avi"), QStringLiteral("a.jpg"));
    EXPECT_EQ(renamed("Trip 2.5 km"), QStringLiteral("Trip 2.5 km.jpg"));
    EXPECT_EQ(renamed("/x.png/a.tif"), QStringLiteral("/x.png/a.jpg"));
    EXPECT_EQ(renamed(""), QString());
    EXPECT_EQ(renamed("/folder/"), QStringLiteral("/folder/"));
    choices.ChooseType(TypeNamed("ICO"));
    EXPECT_EQ(renamed("a.jpg"), QStringLiteral("a.ico"));
    choices.ChooseSubFormat(1);
    EXPECT_EQ(renamed("a.ico"), QStringLiteral("a.cur"));
}

TEST(SaveChoices, ANameWithoutAnExtensionThatIsWrittenGetsOne)
{
    const SaveChoices choices(Coloured(), 98, 24);
    EXPECT_EQ(choices.Completed(QStringLiteral("/p/a")), QStringLiteral("/p/a.jpg"));
    EXPECT_EQ(choices.Completed(QStringLiteral("/p/a.jpeg")), QStringLiteral("/p/a.jpeg"));
    EXPECT_EQ(choices.Completed(QStringLiteral("/p/a.avi")), QStringLiteral("/p/a.avi.jpg"));
    EXPECT_EQ(choices.Completed(QStringLiteral("/p/No. 5")), QStringLiteral("/p/No. 5.jpg"));
    // Whose content is of another kind keeps the name that somebody gave it.
    EXPECT_EQ(choices.Completed(QStringLiteral("/p/a.png")), QStringLiteral("/p/a.png"));
    EXPECT_EQ(choices.Completed(QString()), QString());
}

} // namespace
} // namespace quillane
