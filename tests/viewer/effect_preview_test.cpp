#include "core/failure.h"
#include "imaging/processing/neighbourhood.h"
#include "imaging/resize.h"
#include "viewer/effect_preview.h"
#include "viewer/effect_ranges.h"
#include "viewer/preview_pictures.h"
#include <QSet>
#include <cstring>
#include <gtest/gtest.h>

namespace quillane {

namespace {

constexpr QSize kRoom(200, 150);

/// What the dialog should show of an effect: the effect on the whole picture, made small.
QImage Truth(const Bitmap& picture, const Region* region, const EffectWish& wish)
{
    return Resized(wish.work({picture, region}), PreviewFit(picture.Pixels().size(), kRoom),
                   ResizeWay::Resample)
        .ToDisplay();
}

EffectWish Value(quint32 flag, qint32 value)
{
    return WishOf(*FindValueEffect(flag), value);
}

} // namespace

TEST(PreviewFit, KeepsTheShapeAndNeverEnlarges)
{
    EXPECT_EQ(PreviewFit({4000, 3000}, {480, 340}), QSize(453, 340));
    EXPECT_EQ(PreviewFit({3000, 4000}, {480, 340}), QSize(255, 340));
    EXPECT_EQ(PreviewFit({100, 50}, {480, 340}), QSize(100, 50));
    EXPECT_EQ(PreviewFit({65'000, 1}, {480, 340}), QSize(480, 1));
    EXPECT_EQ(PreviewFit({}, {480, 340}), QSize(1, 1));
    EXPECT_EQ(PreviewFit({100, 50}, {}), QSize(1, 1));
}

TEST(PreviewPart, LiesOnThePicture)
{
    EXPECT_EQ(PreviewPart({1000, 800}, {200, 100}, {500, 400}), QRect(400, 350, 200, 100));
    EXPECT_EQ(PreviewPart({1000, 800}, {200, 100}, {0, 0}), QRect(0, 0, 200, 100));
    EXPECT_EQ(PreviewPart({1000, 800}, {200, 100}, {5000, 5000}), QRect(800, 700, 200, 100));
    EXPECT_EQ(PreviewPart({50, 40}, {200, 100}, {25, 20}), QRect(0, 0, 50, 40));
}

TEST(PreviewWorked, HasTheMarginAndBeginsOnTheGrid)
{
    const QSize picture(1000, 800);
    const QRect part(400, 350, 200, 100);
    EXPECT_EQ(PreviewWorked(part, picture, {}, {{}, EffectReach::Near, 5, 1}),
              QRect(395, 345, 210, 110));
    EXPECT_EQ(PreviewWorked(part, picture, {}, {{}, EffectReach::Own, 0, 64}),
              QRect(QPoint(384, 320), QPoint(639, 511)));
    const QRect shifted = PreviewWorked(part, picture, {10, 20}, {{}, EffectReach::Own, 0, 64});
    EXPECT_EQ((shifted.left() - 10) % 64, 0);
    EXPECT_EQ((shifted.top() - 20) % 64, 0);
    EXPECT_TRUE(shifted.contains(part));
    EXPECT_EQ(PreviewWorked(part, picture, {}, {{}, EffectReach::Own, 5000, 1}),
              QRect(QPoint(), picture));
}

TEST(ReducedSize, ScalesDistancesAndKeepsNone)
{
    EXPECT_EQ(ReducedSize(40, 4), 10);
    EXPECT_EQ(ReducedSize(3, 8), 1);
    EXPECT_EQ(ReducedSize(0, 8), 0);
    EXPECT_EQ(ReducedSize(1, 8), 1);
    EXPECT_EQ(ReducedSize(7, 1), 7);
}

TEST(ReducedPicture, OfFewBitsIsTheMeanOfWhatAPixelStandsFor)
{
    // More pixels than are reduced at once, not a multiple of anything.
    QImage bits(4001, 3003, QImage::Format_Mono);
    bits.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    for (int y = 0; y < bits.height(); ++y) {
        std::memset(bits.scanLine(y), y % 2 ? 0x55 : 0xff, size_t(bits.bytesPerLine()));
    }
    const Bitmap reduced = ReducedPicture(Bitmap(bits, ColourModel::BlackWhite, 1), {200, 150});
    EXPECT_EQ(reduced.Pixels().size(), QSize(200, 150));
    double sum = 0;
    for (int y = 0; y < 150; ++y) {
        for (int x = 0; x < 200; ++x) {
            const int grey = qGray(reduced.Pixels().pixel(x, y));
            EXPECT_NEAR(grey, 191, 8) << x << ' ' << y;
            sum += grey;
        }
    }
    EXPECT_NEAR(sum / 30000, 191.25, 1);
}

TEST(ReducedRegion, KeepsPlaceAndShape)
{
    const QSize all(4000, 3000);
    const QSize small(400, 300);
    const Region box = Region::Rectangle(all, 1000, 500, 2000, 1000);
    EXPECT_EQ(ReducedRegion(box, all, small).Bounds(), QRect(100, 50, 200, 100));
    EXPECT_TRUE(ReducedRegion(box, all, small).IsRectangle());

    const Region ellipse = ReducedRegion(Region::Ellipse(all, 1000, 500, 2000, 1000), all, small);
    EXPECT_EQ(ellipse.Bounds(), QRect(100, 50, 200, 100));
    const Region expected = Region::Ellipse(small, 100, 50, 200, 100);
    int differ = 0;
    for (int y = 0; y < small.height(); ++y) {
        for (int x = 0; x < small.width(); ++x) {
            differ += ellipse.Contains(x, y) != expected.Contains(x, y);
        }
    }
    EXPECT_LE(differ, 40) << "but for single pixels of its edge";
    EXPECT_EQ(ReducedRegion(box, all, all), box);
}

TEST(ReducedRegion, StaysARegionWhenItVanishes)
{
    const Region speck = Region::Ellipse({4000, 3000}, 3997, 2997, 3, 3);
    const Region reduced = ReducedRegion(speck, {4000, 3000}, {40, 30});
    EXPECT_FALSE(reduced.IsEmpty());
    EXPECT_LE(reduced.Bounds().width() * reduced.Bounds().height(), 1);
    EXPECT_TRUE(ReducedRegion({}, {4000, 3000}, {40, 30}).IsEmpty());
}

TEST(RegionOutline, IsTheEdgeAlone)
{
    const QImage outline =
        RegionOutline(Region::Rectangle({40, 30}, 10, 5, 20, 10), QRect(0, 0, 40, 30));
    EXPECT_EQ(outline.size(), QSize(40, 30));
    EXPECT_EQ(qAlpha(outline.pixel(10, 5)), 255);
    EXPECT_EQ(qAlpha(outline.pixel(29, 14)), 255);
    EXPECT_EQ(qAlpha(outline.pixel(29, 9)), 255);
    EXPECT_EQ(qAlpha(outline.pixel(15, 9)), 0) << "inside";
    EXPECT_EQ(qAlpha(outline.pixel(9, 5)), 0) << "outside";
    int black = 0;
    int white = 0;
    for (int x = 10; x < 30; ++x) {
        black += outline.pixel(x, 5) == qRgb(0, 0, 0);
        white += outline.pixel(x, 5) == qRgb(255, 255, 255);
    }
    EXPECT_EQ(black + white, 20);
    EXPECT_GT(black, 4);
    EXPECT_GT(white, 4);
}

TEST(RegionOutline, OfAPartHasNoEdgeWhereTheRegionGoesOn)
{
    for (const Region& region : {Region::Rectangle({400, 300}, 10, 20, 300, 200),
                                 Region::Ellipse({400, 300}, 10, 20, 300, 200)}) {
        const QImage all = RegionOutline(region, QRect(0, 0, 400, 300));
        for (const QRect& part : {QRect(100, 100, 60, 40), QRect(0, 0, 50, 60),
                                  QRect(290, 200, 110, 100), QRect(350, 250, 50, 50)}) {
            EXPECT_EQ(RegionOutline(region, part), all.copy(part)) << part.left();
        }
    }
}

TEST(PreviewSource, AFittedLookIsWhatTheWholePictureWouldLookLike)
{
    const Bitmap picture = SmoothPicture({1200, 900});
    PreviewSource source(picture, {});
    struct Row {
        quint32 flag;
        qint32 value;
        double most; ///< mean difference in levels
    };
    for (const Row& row : {Row{2, 300, 1}, Row{4, 400, 1.5}, Row{8, 500, 1.5}, Row{16, -500, 1.5},
                           Row{32, 6000, 2}, Row{128, 4, 4}, Row{256, 60, 3}, Row{512, 121, 2},
                           Row{1024, 61, 2}, Row{1, 1000, 1}, Row{64, 3000, 1}}) {
        const EffectWish wish = Value(row.flag, row.value);
        const PreviewLook look = source.Look({true, kRoom, {}}, wish);
        EXPECT_TRUE(look.failure.isEmpty());
        EXPECT_EQ(look.after.size(), QSize(200, 150));
        EXPECT_LE(MeanDifference(look.after, Truth(picture, nullptr, wish)), row.most)
            << FindValueEffect(row.flag)->title;
        EXPECT_EQ(MeanDifference(look.before, source.Look({true, kRoom, {}}, {}).after), 0.0);
    }
}

TEST(PreviewSource, ADraftIsCloseToTheLook)
{
    const Bitmap picture = SmoothPicture({3000, 2000});
    PreviewSource source(picture, {});
    const PreviewView view{true, kRoom, {}};
    int row = 0;
    for (const EffectWish& wish :
         {Value(1, 900), NoiseWish(200, 0), EmbossWish(2, 1000), Value(64, 4500)}) {
        SCOPED_TRACE(row);
        const double most = row++ == 3 ? 6 : 3; // a mean of few dots is a rough one
        EXPECT_TRUE(source.HasDraft(view, wish));
        EXPECT_FALSE(source.HasDraft({false, kRoom, {}}, wish)) << "a part is quick as it is";
        const QImage look = source.Look(view, wish).after;
        EXPECT_LE(MeanDifference(source.Look(view, wish, true).after, look), most);
        EXPECT_LE(MeanDifference(look, Truth(picture, nullptr, wish)), 1);
    }
    EXPECT_TRUE(source.HasDraft(view, DepthWish(8, 0, 1)));
    EXPECT_FALSE(source.HasDraft(view, Value(2, 300))) << "pixels by themselves need none";
    EXPECT_FALSE(source.HasDraft(view, {}));
    EXPECT_FALSE(PreviewSource(SmoothPicture({300, 200}), {}).HasDraft(view, Value(1, 900)));
}

TEST(PreviewSource, ADraftOfAWideLookAroundIsCloseAndKeepsToTheRegion)
{
    const Bitmap picture = SmoothPicture({900, 700});
    const Region region = Region::Ellipse({900, 700}, 350, 250, 160, 150);
    const PreviewView view{false, kRoom, {450, 350}};
    for (const EffectWish& wish : {Value(512, 61), Value(1024, 41), ContourWish(0, 40, 31, 3)}) {
        PreviewSource source(picture, region);
        EXPECT_TRUE(source.HasDraft(view, wish));
        const PreviewLook draft = source.Look(view, wish, true);
        const PreviewLook look = source.Look(view, wish);
        EXPECT_LE(MeanDifference(draft.after, look.after), 2);
        const QRect part = PreviewPart({900, 700}, kRoom, view.centre);
        for (int y = 0; y < part.height(); ++y) {
            for (int x = 0; x < part.width(); ++x) {
                if (!region.Contains(part.left() + x, part.top() + y)) {
                    ASSERT_EQ(draft.after.pixel(x, y), draft.before.pixel(x, y)) << x << ' ' << y;
                }
            }
        }
        EXPECT_FALSE(PreviewSource(picture, {}).HasDraft(view, Value(512, 9))) << "quick";
    }
}

TEST(PreviewSource, ADeepPictureIsDraftedAsTheScreenShowsIt)
{
    const Bitmap colours = SmoothPicture({500, 400});
    for (const QImage::Format format :
         {QImage::Format_Grayscale16, QImage::Format_RGBX64, QImage::Format_RGBA64}) {
        const bool grey = format == QImage::Format_Grayscale16;
        const Bitmap deep(colours.Pixels().convertToFormat(format),
                          grey ? ColourModel::Grey : ColourModel::Rgb, grey ? 16 : 48);
        PreviewSource source(deep, {});
        for (const bool fit : {true, false}) {
            const PreviewView view{fit, kRoom, {250, 200}};
            for (const EffectWish& wish : {Value(2, 150), Value(1024, 9), Value(1, 700)}) {
                EXPECT_TRUE(source.HasDraft(view, wish));
                const QImage draft = source.Look(view, wish, true).after;
                EXPECT_LE(MeanDifference(draft, source.Look(view, wish).after), 3) << format;
            }
        }
    }
}

TEST(PreviewSource, APartInFullSizeIsExactlyThatPartOfTheResult)
{
    const Bitmap picture = SmoothPicture({700, 500});
    const QPointF centre(401, 237);
    const QRect part = PreviewPart({700, 500}, kRoom, centre);
    for (const Region& region : {Region(), Region::Ellipse({700, 500}, 333, 151, 120, 140),
                                 Region::Rectangle({700, 500}, 13, 17, 600, 300)}) {
        PreviewSource source(picture, region);
        const Region* inside = region.IsEmpty() ? nullptr : &region;
        for (const ValueEffect& effect : ValueEffects()) {
            if (effect.flag == 16 || effect.flag == 64) {
                continue; // the mean is that of a copy, the screen of dots stands elsewhere
            }
            const EffectWish wish = WishOf(effect, IntoRange(effect.range, 37));
            const QImage all = wish.work({picture, inside}).ToDisplay();
            const PreviewLook look = source.Look({false, kRoom, centre}, wish);
            EXPECT_EQ(look.after, all.copy(part)) << effect.title;
            EXPECT_EQ(look.before, picture.Pixels().copy(part)) << effect.title;
        }
        const EffectWish emboss = EmbossWish(3, 700);
        EXPECT_EQ(source.Look({false, kRoom, centre}, emboss).after,
                  emboss.work({picture, inside}).ToDisplay().copy(part));
        const EffectWish contour = ContourWish(0, 20, 9, 4);
        EXPECT_EQ(source.Look({false, kRoom, centre}, contour).after,
                  contour.work({picture, inside}).ToDisplay().copy(part));
        for (const FilterGroup& group : FilterGroups()) {
            const EffectWish filter = FilterWish(group, FiltersOf(group).front().code);
            EXPECT_EQ(source.Look({false, kRoom, centre}, filter).after,
                      filter.work({picture, inside}).ToDisplay().copy(part))
                << group.title;
        }
    }
}

TEST(PreviewSource, SquaresStandWhereTheyWillInEveryPartOfAShape)
{
    const QSize all(900, 700);
    const Bitmap picture = SmoothPicture(all);
    const Region region = Region::Ellipse(all, 61, 43, 777, 611);
    PreviewSource source(picture, region);
    for (const qint32 size : {7, 37, 200, 500}) {
        const EffectWish wish = Value(256, size);
        const QImage result = wish.work({picture, &region}).ToDisplay();
        for (const QPoint& centre : {QPoint(150, 120), QPoint(800, 600), QPoint(450, 60),
                                     QPoint(90, 350), QPoint(450, 350)}) {
            const QRect part = PreviewPart(all, kRoom, centre);
            EXPECT_EQ(source.Look({false, kRoom, centre}, wish).after, result.copy(part))
                << size << " at " << centre.x() << ' ' << centre.y();
        }
    }
}

TEST(PreviewSource, APartIsContrastedAroundTheMeanOfTheWhole)
{
    QImage pixels(1000, 600, QImage::Format_RGB32);
    pixels.fill(QColor(220, 220, 220));
    for (int y = 0; y < 600; ++y) {
        for (int x = 0; x < 300; ++x) {
            pixels.setPixelColor(x, y, QColor(30, 30, 30));
        }
    }
    const Bitmap picture(pixels, ColourModel::Rgb, 24);
    PreviewSource source(picture, {});
    const EffectWish wish = Value(16, 400);
    const PreviewLook look = source.Look({false, kRoom, {900, 300}}, wish);
    const QImage all = wish.work({picture}).ToDisplay();
    EXPECT_NEAR(qGray(look.after.pixel(50, 50)), qGray(all.pixel(900, 300)), 1);
    EXPECT_NE(qGray(look.after.pixel(50, 50)), 220) << "as it would be around its own mean";
}

TEST(PreviewSource, APartHasThePaletteOfTheWhole)
{
    // Grey where it is looked at, colours elsewhere: sixteen colours must serve both.
    const Bitmap picture = SmoothPicture({800, 600});
    PreviewSource source(picture, {});
    const PreviewLook look = source.Look({false, {64, 64}, {100, 100}}, DepthWish(4, 0, 0));
    EXPECT_EQ(look.after.size(), QSize(64, 64));
    QSet<QRgb> colours;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            colours.insert(look.after.pixel(x, y));
        }
    }
    EXPECT_LE(colours.size(), 16);
    EXPECT_GT(colours.size(), 1);
}

TEST(PreviewSource, OnlyTheRegionChangesAndItsEdgeIsShown)
{
    const Bitmap picture = SmoothPicture({800, 600});
    const Region region = Region::Rectangle({800, 600}, 200, 160, 400, 200);
    PreviewSource source(picture, region);
    const PreviewLook look = source.Look({true, {400, 300}, {}}, Value(2, 500));
    ASSERT_EQ(look.after.size(), QSize(400, 300));
    for (int y = 0; y < 300; y += 3) {
        for (int x = 0; x < 400; x += 3) {
            const bool inside = QRect(100, 80, 200, 100).contains(x, y);
            EXPECT_EQ(look.after.pixel(x, y) != look.before.pixel(x, y), inside) << x << ' ' << y;
        }
    }
    ASSERT_EQ(look.outline.size(), look.after.size());
    EXPECT_EQ(qAlpha(look.outline.pixel(100, 80)), 255);
    EXPECT_EQ(qAlpha(look.outline.pixel(99, 80)), 0);
    EXPECT_TRUE(PreviewSource(picture, {}).Look({true, {400, 300}, {}}, {}).outline.isNull());
}

TEST(PreviewSource, APartBesideTheRegionStays)
{
    const Bitmap picture = SmoothPicture({800, 600});
    PreviewSource source(picture, Region::Rectangle({800, 600}, 0, 0, 50, 50));
    const PreviewLook look = source.Look({false, {100, 100}, {700, 500}}, Value(2, 500));
    EXPECT_EQ(look.after, look.before);
}

TEST(PreviewSource, ATurnedPictureIsShownWhole)
{
    PreviewSource source(SmoothPicture({800, 400}), {});
    const PreviewLook look = source.Look({true, {200, 200}, {}}, RotateWish(9000, true, 0));
    EXPECT_EQ(look.after.size(), QSize(100, 200));
    EXPECT_EQ(look.before.size(), QSize(200, 100));
    const PreviewLook kept = source.Look({true, {200, 200}, {}}, RotateWish(4500, false, 0xff));
    EXPECT_EQ(kept.after.size(), QSize(200, 100));
    EXPECT_EQ(kept.after.pixel(1, 1), qRgb(255, 0, 0)) << "red has the low byte";
    const PreviewLook slanted = source.Look({true, {200, 200}, {}}, ShearWish(4500, true, 0));
    EXPECT_EQ(slanted.after.size(), QSize(200, 67)) << "half as wide again";
    // There is no part of the picture that could be told before it is turned.
    EXPECT_EQ(source.Look({false, {200, 200}, {}}, RotateWish(9000, true, 0)).after.size(),
              QSize(100, 200));
}

TEST(PreviewSource, EveryKindOfPictureHasALook)
{
    const Bitmap colours = SmoothPicture({300, 200});
    const QImage& rgb = colours.Pixels();
    const std::pair<QImage::Format, ColourModel> kinds[] = {
        {QImage::Format_Mono, ColourModel::BlackWhite},
        {QImage::Format_Grayscale8, ColourModel::Grey},
        {QImage::Format_Grayscale16, ColourModel::Grey},
        {QImage::Format_Indexed8, ColourModel::Palette},
        {QImage::Format_RGB32, ColourModel::Rgb},
        {QImage::Format_ARGB32, ColourModel::Rgb},
        {QImage::Format_RGBX64, ColourModel::Rgb},
        {QImage::Format_RGBA64, ColourModel::Rgb},
        {QImage::Format_RGBA8888, ColourModel::Cmyk},
    };
    for (const auto& [format, model] : kinds) {
        const Bitmap picture(rgb.convertToFormat(format), model, 24);
        PreviewSource source(picture, Region::Ellipse({300, 200}, 50, 50, 100, 100));
        for (const bool fit : {true, false}) {
            const PreviewView view{fit, {120, 90}, {100, 100}};
            for (const ValueEffect& effect : ValueEffects()) {
                const PreviewLook look =
                    source.Look(view, WishOf(effect, IntoRange(effect.range, 30)));
                EXPECT_TRUE(look.failure.isEmpty()) << int(format) << effect.title;
                EXPECT_FALSE(look.after.isNull()) << int(format) << effect.title;
                EXPECT_EQ(look.after.size(), look.before.size()) << int(format) << effect.title;
            }
            for (const DepthEntry& entry : DepthEntries()) {
                const PreviewLook look = source.Look(view, DepthWish(entry.bits, 0, 1));
                EXPECT_TRUE(look.failure.isEmpty()) << int(format) << entry.words;
                EXPECT_EQ(look.after.size(), look.before.size()) << int(format) << entry.words;
            }
        }
    }
}

TEST(PreviewSource, APixelIsAPicture)
{
    PreviewSource source(SmoothPicture({1, 1}), {});
    for (const bool fit : {true, false}) {
        const PreviewLook look = source.Look({fit, kRoom, {0.5, 0.5}}, Value(512, 200));
        EXPECT_EQ(look.after.size(), QSize(1, 1));
    }
    EXPECT_TRUE(source.Look({true, {}, {}}, {}).after.isNull()) << "no room";
    EXPECT_TRUE(PreviewSource({}, {}).Look({true, kRoom, {}}, {}).after.isNull());
}

TEST(PreviewSource, AFailureIsToldInWords)
{
    PreviewSource source(SmoothPicture({300, 200}), {});
    const EffectWish wish{[](const EffectInput&) -> Bitmap {
        throw Failure(kFailureLimit, QStringLiteral("Too large."));
    }};
    const PreviewLook look = source.Look({true, kRoom, {}}, wish);
    EXPECT_EQ(look.failure, QStringLiteral("Too large."));
    EXPECT_FALSE(look.before.isNull());
    EXPECT_EQ(look.after, look.before);
}

} // namespace quillane
