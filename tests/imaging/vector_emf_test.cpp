// Enhanced metafiles, drawn.
#include "codec_support_for_tests.h"
#include "drawn_maker.h"
#include "picture_maker.h"
#include <bit>

namespace quillane {

namespace {

using making::EmfMaker;

constexpr int kEmfSide = 100;

QImage EmfDrawn(const EmfMaker& emf)
{
    return making::DecodeBytes(emf.Bytes(kEmfSide, kEmfSide)).Pixels();
}

EmfMaker EmfPage()
{
    EmfMaker emf;
    emf.Pen(0, 0, 5);
    return emf;
}

int EmfFloat(float value)
{
    return std::bit_cast<int>(value);
}

QByteArray EmfWords(std::initializer_list<int> words)
{
    QByteArray bytes;
    for (const int word : words) {
        bytes += making::Little(quint32(word), 2);
    }
    return bytes;
}

int EmfDark(const QImage& image, QRect area)
{
    int dark = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            dark += qGray(image.pixel(x, y)) < 128;
        }
    }
    return dark;
}

const QRgb kEmfWhite = qRgb(255, 255, 255);
const QRgb kEmfBlack = qRgb(0, 0, 0);

TEST(Emf, FrameAtNinetySixDotsIsTheSize)
{
    const ImageFacts facts =
        making::ProbeBytes(EmfPage().Brush(0).Add(43, {0, 0, 50, 50}).Bytes(192, 96));
    EXPECT_EQ(facts.width, 192);
    EXPECT_EQ(facts.height, 96);
    EXPECT_EQ(facts.bits, 24);
    EXPECT_EQ(facts.format, 116);
}

TEST(Emf, FiguresStandWhereTheirBoxesSay)
{
    EmfMaker emf = EmfPage();
    emf.Brush(0x0000ff).Add(43, {10, 20, 40, 50}).Brush(0x00ff00).Add(42, {50, 50, 90, 90});
    emf.Brush(0xff0000).Add(44, {50, 5, 90, 45, 20, 20});
    const QImage image = EmfDrawn(emf);
    EXPECT_EQ(image.pixel(11, 21), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(39, 49), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(41, 30), kEmfWhite);
    EXPECT_EQ(image.pixel(70, 70), qRgb(0, 255, 0));
    EXPECT_EQ(image.pixel(53, 53), kEmfWhite);
    EXPECT_EQ(image.pixel(70, 7), qRgb(0, 0, 255));
    EXPECT_EQ(image.pixel(51, 6), kEmfWhite);
}

TEST(Emf, PointsOfSixteenBitsDrawTheSameAsThoseOfThirtyTwo)
{
    EmfMaker wide = EmfPage();
    wide.Brush(0xff).AddBoxed(3, {3, 10, 10, 90, 10, 50, 90}).Pen(0, 3);
    wide.AddBoxed(4, {3, 5, 95, 50, 60, 95, 95}).AddBoxed(2, {4, 5, 50, 30, 0, 60, 99, 95, 50});
    wide.AddBoxed(8, {2, 6, 3, 3, 1, 1, 9, 1, 5, 9, 80, 1, 99, 1, 90, 20});
    wide.AddBoxed(7, {1, 2, 2, 1, 30, 20, 40}).Add(27, {3, 3}).AddBoxed(6, {1, 60, 70});
    wide.AddBoxed(5, {3, 70, 70, 80, 60, 99, 60});
    wide.AddBoxed(56, {2, 10, 90, 30, 70}, QByteArray("\6\2", 2));
    EmfMaker narrow = EmfPage();
    narrow.Brush(0xff).AddBoxed(86, {3}, EmfWords({10, 10, 90, 10, 50, 90})).Pen(0, 3);
    narrow.AddBoxed(87, {3}, EmfWords({5, 95, 50, 60, 95, 95}));
    narrow.AddBoxed(85, {4}, EmfWords({5, 50, 30, 0, 60, 99, 95, 50}));
    narrow.AddBoxed(91, {2, 6, 3, 3}, EmfWords({1, 1, 9, 1, 5, 9, 80, 1, 99, 1, 90, 20}));
    narrow.AddBoxed(90, {1, 2, 2}, EmfWords({1, 30, 20, 40}));
    narrow.Add(27, {3, 3}).AddBoxed(89, {1}, EmfWords({60, 70}));
    narrow.AddBoxed(88, {3}, EmfWords({70, 70, 80, 60, 99, 60}));
    narrow.AddBoxed(92, {2}, EmfWords({10, 90, 30, 70}) + QByteArray("\6\2", 2));
    const QImage image = EmfDrawn(wide);
    EXPECT_EQ(image, EmfDrawn(narrow));
    EXPECT_EQ(image.pixel(50, 20), qRgb(255, 0, 0));
    EXPECT_GT(EmfDark(image, image.rect()), 500);
}

TEST(Emf, WorldTransformTurnsAndMoves)
{
    // A quarter turn with the clock about the origin, then to the right.
    EmfMaker emf = EmfPage();
    emf.Brush(0).Add(35, {0, EmfFloat(1), EmfFloat(-1), 0, EmfFloat(100), 0});
    emf.Add(43, {10, 20, 40, 30});
    const QImage image = EmfDrawn(emf);
    EXPECT_EQ(image.pixel(75, 25), kEmfBlack);
    EXPECT_EQ(image.pixel(25, 25), kEmfWhite);
    EXPECT_EQ(EmfDark(image, image.rect()), 300);
}

TEST(Emf, ModifiedTransformsMultiplyOnTheSideThatIsSaid)
{
    const std::initializer_list<int> twice = {EmfFloat(2), 0, 0, EmfFloat(2), 0, 0};
    EmfMaker move = EmfPage();
    move.Brush(0).Add(35, {EmfFloat(1), 0, 0, EmfFloat(1), EmfFloat(20), 0});
    EmfMaker left = move, right = move;
    const auto numbers = [&](int mode) {
        QByteArray bytes;
        for (const int number : twice) {
            bytes += making::Little(quint32(number), 4);
        }
        return bytes + making::Little(quint32(mode), 4);
    };
    left.Add(36, {}, numbers(2)).Add(43, {0, 0, 10, 10});  // made larger, then moved
    right.Add(36, {}, numbers(3)).Add(43, {0, 0, 10, 10}); // moved, then made larger
    EXPECT_EQ(EmfDrawn(left).pixel(22, 5), kEmfBlack);
    EXPECT_EQ(EmfDrawn(left).pixel(45, 5), kEmfWhite);
    EXPECT_EQ(EmfDrawn(right).pixel(22, 5), kEmfWhite);
    EXPECT_EQ(EmfDrawn(right).pixel(45, 5), kEmfBlack);
}

TEST(Emf, WindowAndViewportScale)
{
    EmfMaker emf = EmfPage();
    emf.Add(17, {8}).Add(9, {1000, 1000}).Add(11, {100, 100}).Add(12, {10, 0});
    emf.Brush(0).Add(43, {0, 0, 500, 500});
    const QImage image = EmfDrawn(emf);
    EXPECT_EQ(image.pixel(12, 20), kEmfBlack);
    EXPECT_EQ(image.pixel(58, 48), kEmfBlack);
    EXPECT_EQ(image.pixel(8, 20), kEmfWhite);
    EXPECT_EQ(image.pixel(62, 20), kEmfWhite);
}

TEST(Emf, PathsAreFilledStrokedAndClippedTo)
{
    const auto triangle = [](EmfMaker& emf) {
        emf.Add(59).Add(27, {10, 10}).Add(54, {90, 10}).Add(54, {50, 90}).Add(61).Add(60);
    };
    EmfMaker fill;
    fill.Pen(0, 6).Brush(0x00ff00);
    triangle(fill);
    fill.AddBoxed(62, {});
    EXPECT_EQ(EmfDrawn(fill).pixel(50, 40), qRgb(0, 255, 0));
    EXPECT_EQ(EmfDark(EmfDrawn(fill), QRect(0, 0, 100, 9)), 0);
    EmfMaker stroke;
    stroke.Pen(0, 6).Brush(0x00ff00);
    triangle(stroke);
    stroke.AddBoxed(64, {});
    EXPECT_EQ(EmfDrawn(stroke).pixel(50, 40), kEmfWhite);
    EXPECT_EQ(EmfDrawn(stroke).pixel(50, 10), kEmfBlack);
    EmfMaker both;
    both.Pen(0, 6).Brush(0x00ff00);
    triangle(both);
    both.AddBoxed(63, {});
    EXPECT_EQ(EmfDrawn(both).pixel(50, 40), qRgb(0, 255, 0));
    EXPECT_EQ(EmfDrawn(both).pixel(50, 10), kEmfBlack);
    EmfMaker clip = EmfPage();
    clip.Brush(0x0000ff);
    triangle(clip);
    clip.Add(67, {5}).Add(43, {0, 0, 100, 100});
    EXPECT_EQ(EmfDrawn(clip).pixel(50, 40), qRgb(255, 0, 0));
    EXPECT_EQ(EmfDrawn(clip).pixel(15, 80), kEmfWhite);
}

TEST(Emf, RegionsClipAndFill)
{
    const QByteArray region = making::Little(32, 4) + making::Little(1, 4) + making::Little(2, 4)
        + making::Little(32, 4) + QByteArray(16, '\0') + making::Little(10, 4)
        + making::Little(10, 4) + making::Little(30, 4) + making::Little(30, 4)
        + making::Little(60, 4) + making::Little(60, 4) + making::Little(80, 4)
        + making::Little(80, 4);
    EmfMaker clip = EmfPage();
    clip.Brush(0).Add(75, {int(region.size()), 5}, region).Add(43, {0, 0, 100, 100});
    EXPECT_EQ(EmfDark(EmfDrawn(clip), QRect(0, 0, 100, 100)), 800);
    clip.Add(75, {0, 5}).Add(43, {0, 0, 100, 100});
    EXPECT_EQ(EmfDark(EmfDrawn(clip), QRect(0, 0, 100, 100)), 10'000);
    EmfMaker fill = EmfPage();
    fill.Brush(0xff).AddBoxed(71, {int(region.size()), 1}, region);
    EXPECT_EQ(EmfDrawn(fill).pixel(70, 70), qRgb(255, 0, 0));
    EXPECT_EQ(EmfDrawn(fill).pixel(45, 45), kEmfWhite);
    EmfMaker invert = EmfPage();
    invert.AddBoxed(73, {int(region.size())}, region);
    EXPECT_EQ(EmfDrawn(invert).pixel(20, 20), kEmfBlack);
}

TEST(Emf, ArcsRunTheWayThatIsSet)
{
    for (const int direction : {1, 2}) {
        EmfMaker emf = EmfPage();
        emf.Add(57, {direction}).Brush(0).Add(47, {5, 5, 95, 95, 100, 50, 50, 0});
        const QImage image = EmfDrawn(emf);
        EXPECT_EQ(image.pixel(70, 30), direction == 1 ? kEmfBlack : kEmfWhite);
        EXPECT_EQ(image.pixel(30, 70), direction == 1 ? kEmfWhite : kEmfBlack);
    }
}

TEST(Emf, StockObjectsAreThere)
{
    const int stock = int(0x80000000);
    EmfMaker emf;
    emf.Add(37, {stock | 8}).Add(37, {stock | 4}).Add(43, {0, 0, 40, 40});
    emf.Add(37, {stock | 2})
        .Add(43, {50, 50, 90, 90})
        .Add(37, {stock | 5})
        .Add(43, {0, 50, 40, 90});
    const QImage image = EmfDrawn(emf);
    EXPECT_EQ(image.pixel(20, 20), kEmfBlack);
    EXPECT_EQ(image.pixel(70, 70), qRgb(128, 128, 128));
    EXPECT_EQ(image.pixel(20, 70), kEmfWhite);
}

TEST(Emf, ExtendedPensHaveTheirWidthAndColour)
{
    EmfMaker emf;
    emf.Add(95, {3, 0, 0, 0, 0, 0x10200, 12, 0, 0xff, 0, 0}).Add(37, {3});
    emf.Add(27, {20, 50}).Add(54, {80, 50});
    const QImage image = EmfDrawn(emf);
    EXPECT_EQ(image.pixel(50, 45), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(50, 54), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(50, 58), kEmfWhite);
    EXPECT_EQ(image.pixel(17, 50), kEmfWhite); // a flat end
}

TEST(Emf, TextOfSixteenBitsStandsOnItsBaseLine)
{
    EmfMaker emf = EmfPage();
    emf.Add(82, {3, -24, 0, 0, 0, 700, 0, 0}, QByteArray("A\0r\0i\0a\0l\0\0\0", 12)).Add(37, {3});
    emf.Add(22, {0x18}).Add(18, {1});
    emf.AddBoxed(84, {1, 0, 0, 10, 60, 2, 76, 0, 0, 0, 0, 0, 80},
                 EmfWords({'H', 'H', 40, 0, 40, 0}));
    const QImage image = EmfDrawn(emf);
    EXPECT_GT(EmfDark(image, QRect(10, 41, 20, 20)), 80);
    EXPECT_GT(EmfDark(image, QRect(50, 41, 20, 20)), 80);
    EXPECT_EQ(EmfDark(image, QRect(31, 0, 18, 100)), 0);
    EXPECT_EQ(EmfDark(image, QRect(0, 61, 100, 39)), 0);
}

TEST(Emf, SmallTextIsDrawn)
{
    EmfMaker emf = EmfPage();
    emf.Add(82, {3, -30, 0, 0, 0, 700, 0, 0}, QByteArray("A\0r\0i\0a\0l\0\0\0", 12)).Add(37, {3});
    emf.Add(22, {0x18}).Add(108, {10, 60, 2, 0x300, 1, 0, 0}, QByteArray("HH", 2));
    EXPECT_GT(EmfDark(EmfDrawn(emf), QRect(10, 35, 60, 26)), 200);
}

TEST(Emf, PicturesAreStretched)
{
    EmfMaker emf = EmfPage();
    emf.Add(21, {4}).AddBoxed(81, {10, 10, 0, 0, 8, 8, 80, 40, 120, 192, 0, 0xcc0020, 80, 80},
                              making::MakeDib(8, 8));
    const QImage image = EmfDrawn(emf);
    EXPECT_LT(making::ColourDistance(image.pixel(12, 12), making::PlaceColour(0, 0, 8, 8)), 12);
    EXPECT_LT(making::ColourDistance(image.pixel(87, 12), making::PlaceColour(7, 0, 8, 8)), 12);
    EXPECT_LT(making::ColourDistance(image.pixel(12, 87), making::PlaceColour(0, 7, 8, 8)), 12);
    EXPECT_EQ(image.pixel(5, 50), kEmfWhite);
}

TEST(Emf, BlendedPicturesLetTheGroundThrough)
{
    // Half of red over white, and a quarter of what its alpha says.
    const QByteArray dib = making::Little(40, 4) + making::Little(1, 4) + making::Little(1, 4)
        + making::Little(1, 2) + making::Little(32, 2) + QByteArray(24, '\0')
        + making::Little(0x80800000, 4);
    const auto blend = [&](int operation) {
        EmfMaker emf = EmfPage();
        emf.AddBoxed(114, {0, 0, 100, 100, operation, 0,  0,   EmfFloat(1), 0, 0, EmfFloat(1),
                           0, 0, 0,   0,   108,       40, 148, 4,           1, 1},
                     dib);
        return EmfDrawn(emf).pixel(50, 50);
    };
    EXPECT_LT(making::ColourDistance(blend(0x01ff0000), qRgb(255, 127, 127)), 3);
    EXPECT_LT(making::ColourDistance(blend(0x01800000), qRgb(255, 191, 191)), 3);
    EXPECT_LT(making::ColourDistance(blend(0x00800000), qRgb(191, 127, 127)), 3);
}

TEST(Emf, GradientsRunFromColourToColour)
{
    const auto vertex = [](int x, int y, int red, int blue) {
        return making::Little(quint32(x), 4) + making::Little(quint32(y), 4)
            + making::Little(quint32(red), 2) + making::Little(0, 2)
            + making::Little(quint32(blue), 2) + making::Little(0, 2);
    };
    EmfMaker emf = EmfPage();
    emf.AddBoxed(118, {2, 1, 0},
                 vertex(0, 0, 0xff00, 0) + vertex(100, 100, 0, 0xff00) + making::Little(0, 4)
                     + making::Little(1, 4));
    const QImage image = EmfDrawn(emf);
    for (int x = 5; x < 100; x += 10) {
        const QRgb wanted = qRgb(255 - x * 255 / 100, 0, x * 255 / 100);
        EXPECT_LT(making::ColourDistance(image.pixel(x, 50), wanted), 8) << x;
    }
    EmfMaker triangle = EmfPage();
    triangle.AddBoxed(118, {3, 1, 2},
                      vertex(0, 0, 0xff00, 0) + vertex(100, 0, 0xff00, 0)
                          + vertex(50, 100, 0, 0xff00) + making::Little(0, 4) + making::Little(1, 4)
                          + making::Little(2, 4));
    const QImage drawn = EmfDrawn(triangle);
    EXPECT_LT(making::ColourDistance(drawn.pixel(50, 4), qRgb(248, 0, 8)), 30);
    EXPECT_LT(making::ColourDistance(drawn.pixel(50, 90), qRgb(25, 0, 230)), 40);
}

TEST(Emf, AFileThatIsDrawnInEmfPlusAloneIsRefusedInWords)
{
    const auto comment = [](int flags) {
        return making::Little(32, 4) + making::Little(0x2b464d45, 4) + making::Little(0x4001, 2)
            + making::Little(quint32(flags), 2) + making::Little(28, 4) + making::Little(16, 4)
            + QByteArray(16, '\0');
    };
    EmfMaker alone;
    alone.Add(70, {}, comment(0));
    const making::Refusal refusal =
        making::RefusalOf([&] { making::DecodeBytes(alone.Bytes(10, 10)); });
    EXPECT_EQ(refusal.number, kFailureUnreadable);
    EXPECT_TRUE(refusal.words.contains("EMF+")) << refusal.words.toStdString();
    EmfMaker dual = EmfPage();
    dual.Add(70, {}, comment(1)).Brush(0xff).Add(43, {0, 0, 100, 100});
    EXPECT_EQ(EmfDrawn(dual).pixel(50, 50), qRgb(255, 0, 0));
}

TEST(Emf, AFileThatEndsEarlyIsShownInPart)
{
    const QByteArray whole = EmfPage()
                                 .Brush(0)
                                 .Add(43, {0, 0, 40, 40})
                                 .Add(43, {50, 50, 90, 90})
                                 .Bytes(kEmfSide, kEmfSide);
    EXPECT_FALSE(making::DecodeBytes(whole).IsPartial());
    const Bitmap cut = making::DecodeBytes(whole.left(whole.size() - 24));
    EXPECT_TRUE(cut.IsPartial());
    EXPECT_EQ(cut.Pixels().pixel(20, 20), kEmfBlack);
    EXPECT_EQ(cut.Pixels().pixel(70, 70), kEmfWhite);
}

} // namespace

} // namespace quillane
