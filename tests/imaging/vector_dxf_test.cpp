// Drawing exchange files, drawn.
#include "codec_support_for_tests.h"
#include "drawn_maker.h"
#include "imaging/codecs/dxf_player.h"
#include "picture_maker.h"
#include <QStringList>
#include <cmath>

namespace quillane {

namespace {

using making::DxfMaker;

const QRgb kDxfWhite = qRgb(255, 255, 255);

/// A plan from (0, 0) to (100, 100), shown 1000 pixels high with a small margin.
struct DxfPlan {
    DxfMaker maker;
    DxfPlan()
    {
        maker.Header({{9, "$EXTMIN"}, {10, 0}, {20, 0}, {9, "$EXTMAX"}, {10, 100}, {20, 100}});
        // Two specks make the plan's corners sure.
        maker.Entity({{0, "SOLID"}, {62, 7}, {10, 0}, {20, 0}, {11, 0.3}, {21, 0}, {12, 0}});
        maker.Entity({{22, 0.3}, {0, "SOLID"}, {62, 7}, {10, 100}, {20, 100}, {11, 99.7}});
        maker.Entity({{21, 100}, {12, 100}, {22, 99.7}});
    }
    QImage Drawn() const { return making::DecodeBytes(maker.Written()).Pixels(); }
};

QPoint DxfAt(double x, double y)
{
    const double scale = 1000 / 104.0;
    return {int((x + 2) * scale), int((102 - y) * scale)};
}

/// Whether something is drawn within half a unit of a place.
bool DxfIsMarked(const QImage& image, double x, double y)
{
    const QPoint at = DxfAt(x, y);
    for (int dy = -4; dy <= 4; ++dy) {
        for (int dx = -4; dx <= 4; ++dx) {
            const QPoint here = at + QPoint(dx, dy);
            if (image.rect().contains(here) && qGray(image.pixel(here)) < 200) {
                return true;
            }
        }
    }
    return false;
}

TEST(Dxf, FactsAreThoseOfADrawing)
{
    const ImageFacts facts = making::ProbeBytes(DxfPlan().maker.Written());
    EXPECT_EQ(facts.width, 1000);
    EXPECT_EQ(facts.height, 1000);
    EXPECT_EQ(facts.bits, 24);
    EXPECT_EQ(facts.format, 58);
    EXPECT_EQ(facts.pages, 1);
}

TEST(Dxf, WrittenAndBinaryFilesDrawTheSame)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "LINE"}, {8, "0"}, {62, 1}, {10, 10}, {20, 20}, {11, 80}, {21, 30}});
    plan.maker.Entity({{0, "CIRCLE"}, {1001, "X"}, {10, 50}, {20, 60}, {40, 20.5}});
    const QImage written = plan.Drawn();
    EXPECT_EQ(written, making::DecodeBytes(plan.maker.Binary(2)).Pixels());
    EXPECT_EQ(written, making::DecodeBytes(plan.maker.Binary(1)).Pixels());
    EXPECT_TRUE(DxfIsMarked(written, 45, 25));
    EXPECT_TRUE(DxfIsMarked(written, 70.5, 60));
}

TEST(Dxf, AFileOfEntitiesAloneIsRead)
{
    const QByteArray bytes = "999\nremark\n0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n0\n20\n0\n11\n10\n"
                             "21\n5\n0\nENDSEC\n0\nEOF\n";
    const Bitmap bitmap = making::DecodeBytes(bytes);
    EXPECT_EQ(bitmap.Width(), 1000);
    EXPECT_EQ(bitmap.Height(), 519); // with a margin of a fiftieth all around
    EXPECT_FALSE(bitmap.IsPartial());
}

TEST(Dxf, UpIsUp)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "LINE"}, {10, 10}, {20, 90}, {11, 30}, {21, 90}});
    EXPECT_TRUE(DxfIsMarked(plan.Drawn(), 20, 90));
    EXPECT_FALSE(DxfIsMarked(plan.Drawn(), 20, 10));
}

TEST(Dxf, ArcsRunAgainstTheClock)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "ARC"}, {10, 50}, {20, 50}, {40, 30}, {50, 350}, {51, 90}});
    const QImage image = plan.Drawn();
    EXPECT_TRUE(DxfIsMarked(image, 80, 50));
    EXPECT_TRUE(DxfIsMarked(image, 50 + 30 * M_SQRT1_2, 50 + 30 * M_SQRT1_2));
    EXPECT_FALSE(DxfIsMarked(image, 50 - 30 * M_SQRT1_2, 50 + 30 * M_SQRT1_2));
    EXPECT_FALSE(DxfIsMarked(image, 50 + 30 * M_SQRT1_2, 50 - 30 * M_SQRT1_2));
}

TEST(Dxf, AnEntityThatLooksDownIsMirrored)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "ARC"}, {10, -50}, {20, 50}, {40, 30}, {50, 0}, {51, 90}, {210, 0}});
    plan.maker.Entity({{220, 0}, {230, -1}});
    const QImage image = plan.Drawn();
    EXPECT_TRUE(DxfIsMarked(image, 50 - 30 * M_SQRT1_2, 50 + 30 * M_SQRT1_2));
    EXPECT_FALSE(DxfIsMarked(image, 50 + 30 * M_SQRT1_2, 50 + 30 * M_SQRT1_2));
}

TEST(Dxf, EllipsesHaveTheirAxesAndPart)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "ELLIPSE"}, {10, 50}, {20, 50}, {11, 0}, {21, 40}, {40, 0.25}});
    const QImage whole = plan.Drawn();
    EXPECT_TRUE(DxfIsMarked(whole, 50, 90));
    EXPECT_TRUE(DxfIsMarked(whole, 60, 50));
    EXPECT_TRUE(DxfIsMarked(whole, 40, 50));
    plan.maker.Entity({{41, 0}, {42, M_PI / 2}});
    const QImage part = plan.Drawn();
    EXPECT_TRUE(DxfIsMarked(part, 50 - 10 * M_SQRT1_2, 50 + 40 * M_SQRT1_2));
    EXPECT_FALSE(DxfIsMarked(part, 60, 50));
}

TEST(Dxf, BulgesAreArcs)
{
    // A bulge of 1 is half a circle, to the right of the way for a positive one.
    drawing::Path path;
    path.MoveTo({0, 0});
    codecs::AddDxfBulge(path, {0, 0}, {10, 0}, 1);
    EXPECT_NEAR(path.Bounds().height(), 5, 1e-6);
    EXPECT_LT(path.Bounds().top(), -4);
    DxfPlan plan;
    plan.maker.Entity({{0, "LWPOLYLINE"}, {90, 2}, {70, 0}, {10, 30}, {20, 50}, {42, 1}});
    plan.maker.Entity({{10, 70}, {20, 50}});
    const QImage image = plan.Drawn();
    EXPECT_TRUE(DxfIsMarked(image, 50, 30));
    EXPECT_FALSE(DxfIsMarked(image, 50, 70));
    EXPECT_FALSE(DxfIsMarked(image, 50, 50));
    DxfPlan old;
    old.maker.Entity({{0, "POLYLINE"}, {66, 1}, {70, 1}, {0, "VERTEX"}, {10, 30}, {20, 50}});
    old.maker.Entity({{42, -1}, {0, "VERTEX"}, {10, 70}, {20, 50}, {0, "SEQEND"}});
    EXPECT_TRUE(DxfIsMarked(old.Drawn(), 50, 70));
    EXPECT_TRUE(DxfIsMarked(old.Drawn(), 50, 50)); // closed by a line
}

TEST(Dxf, WidePolylinesAreWide)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "LWPOLYLINE"}, {43, 10}, {10, 20}, {20, 50}, {10, 80}, {20, 50}});
    const QImage image = plan.Drawn();
    EXPECT_EQ(image.pixel(DxfAt(50, 54)), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(DxfAt(50, 46)), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(DxfAt(50, 56)), kDxfWhite);
    EXPECT_EQ(image.pixel(DxfAt(18, 50)), kDxfWhite);
}

TEST(Dxf, SplinesFollowTheirKnotsAndWeights)
{
    codecs::DxfSpline spline;
    spline.degree = 2;
    spline.knots = {0, 0, 0, 1, 1, 1};
    spline.points = {{0, 0}, {10, 20}, {20, 0}};
    std::vector<QPointF> line = codecs::SampleDxfSpline(spline);
    EXPECT_EQ(line.front(), QPointF(0, 0));
    EXPECT_EQ(line.back(), QPointF(20, 0));
    EXPECT_NEAR(line[line.size() / 2].y(), 10, 1e-9);
    // A quarter of a circle, exactly, with weights.
    spline.points = {{1, 0}, {1, 1}, {0, 1}};
    spline.weights = {1, M_SQRT1_2, 1};
    for (const QPointF& point : codecs::SampleDxfSpline(spline)) {
        EXPECT_NEAR(std::hypot(point.x(), point.y()), 1, 1e-12);
    }
    // Knots that make no sense leave the control points.
    spline.knots = {0, 0, 1};
    EXPECT_EQ(codecs::SampleDxfSpline(spline), spline.points);
    spline.knots = {0, 0, 0, -1, 1, 1};
    EXPECT_EQ(codecs::SampleDxfSpline(spline), spline.points);
}

TEST(Dxf, SolidsHaveTheirLastCornersAcross)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "SOLID"}, {62, 1}, {10, 20}, {20, 20}, {11, 80}, {21, 20}, {12, 20}});
    plan.maker.Entity({{22, 80}, {13, 80}, {23, 80}});
    const QImage image = plan.Drawn();
    for (const QPoint& at : {DxfAt(50, 25), DxfAt(50, 75), DxfAt(25, 50), DxfAt(75, 50)}) {
        EXPECT_EQ(image.pixel(at), qRgb(255, 0, 0));
    }
}

TEST(Dxf, HatchesFillAroundTheirIslands)
{
    DxfPlan plan;
    plan.maker.Entity(
        {{0, "HATCH"}, {62, 3}, {30, 0}, {70, 1}, {71, 0}, {91, 2}, {92, 3}, {72, 0}});
    plan.maker.Entity(
        {{73, 1}, {93, 4}, {10, 10}, {20, 10}, {10, 90}, {20, 10}, {10, 90}, {20, 90}});
    plan.maker.Entity({{10, 10}, {20, 90}, {97, 0}, {92, 1}, {93, 1}, {72, 2}, {10, 50}, {20, 50}});
    plan.maker.Entity({{40, 20}, {50, 0}, {51, 360}, {73, 1}, {97, 0}, {75, 0}, {76, 1}});
    const QImage image = plan.Drawn();
    EXPECT_EQ(image.pixel(DxfAt(20, 20)), qRgb(0, 255, 0));
    EXPECT_EQ(image.pixel(DxfAt(50, 28)), qRgb(0, 255, 0));
    EXPECT_EQ(image.pixel(DxfAt(50, 32)), kDxfWhite);
    EXPECT_EQ(image.pixel(DxfAt(50, 50)), kDxfWhite);
}

TEST(Dxf, HatchesOfLinesStayInside)
{
    DxfPlan plan;
    plan.maker.Entity(
        {{0, "HATCH"}, {62, 5}, {70, 0}, {71, 0}, {91, 1}, {92, 2}, {72, 0}, {73, 1}});
    plan.maker.Entity({{93, 4}, {10, 20}, {20, 20}, {10, 80}, {20, 20}, {10, 80}, {20, 80}});
    plan.maker.Entity({{10, 20}, {20, 80}, {97, 0}, {75, 1}, {76, 1}, {52, 0}, {41, 1}, {77, 0}});
    plan.maker.Entity({{78, 1}, {53, 0}, {43, 0}, {44, 5}, {45, 0}, {46, 10}, {79, 0}});
    const QImage image = plan.Drawn();
    for (const double y : {25.0, 45.0, 75.0}) {
        EXPECT_TRUE(DxfIsMarked(image, 50, y)) << y;
        EXPECT_FALSE(DxfIsMarked(image, 50, y + 5)) << y;
        EXPECT_FALSE(DxfIsMarked(image, 15, y)) << y;
        EXPECT_FALSE(DxfIsMarked(image, 85, y)) << y;
    }
}

TEST(Dxf, InsertionsScaleTurnAndRepeat)
{
    DxfPlan plan;
    plan.maker.Block({{0, "BLOCK"}, {2, "unit"}, {10, 1}, {20, 1}, {0, "LINE"}, {10, 1}, {20, 1}});
    plan.maker.Block({{11, 2}, {21, 1}, {0, "ENDBLK"}});
    plan.maker.Entity({{0, "INSERT"}, {2, "UNIT"}, {10, 10}, {20, 10}, {41, 20}, {50, 90}});
    const QImage turned = plan.Drawn();
    EXPECT_TRUE(DxfIsMarked(turned, 10, 25));
    EXPECT_FALSE(DxfIsMarked(turned, 25, 10));
    plan.maker.Entity({{0, "INSERT"}, {2, "UNIT"}, {10, 40}, {20, 40}, {41, 5}, {70, 3}, {71, 2}});
    plan.maker.Entity({{44, 20}, {45, 30}});
    const QImage many = plan.Drawn();
    for (const double x : {42.0, 62.0, 82.0}) {
        EXPECT_TRUE(DxfIsMarked(many, x, 40));
        EXPECT_TRUE(DxfIsMarked(many, x, 70));
        EXPECT_FALSE(DxfIsMarked(many, x, 55));
        EXPECT_FALSE(DxfIsMarked(many, x + 10, 40));
    }
}

TEST(Dxf, ColoursComeFromEntityLayerBlockOrInsertion)
{
    DxfPlan plan;
    plan.maker.Table({{0, "TABLE"}, {2, "LAYER"}, {0, "LAYER"}, {2, "Blue"}, {70, 0}, {62, 5}});
    plan.maker.Table({{0, "LAYER"}, {2, "gone"}, {70, 0}, {62, -5}, {0, "LAYER"}, {2, "cold"}});
    plan.maker.Table({{70, 1}, {62, 5}, {0, "ENDTAB"}});
    const auto solid = [](double x, std::initializer_list<DxfMaker::Pair> more) {
        DxfMaker one;
        std::vector<DxfMaker::Pair> pairs = {{0, "SOLID"}, {10, x},     {20, 10.0},
                                             {11, x + 5},  {21, 10.0},  {12, x},
                                             {22, 20.0},   {13, x + 5}, {23, 20.0}};
        pairs.insert(pairs.end(), more);
        return pairs;
    };
    const auto add = [&](double x, std::initializer_list<DxfMaker::Pair> more) {
        for (const DxfMaker::Pair& pair : solid(x, more)) {
            plan.maker.Entity({pair});
        }
    };
    plan.maker.Block({{0, "BLOCK"}, {2, "b"}});
    for (const auto& pair : solid(50, {{8, "0"}, {62, 0}})) { // as the insertion says
        plan.maker.Block({pair});
    }
    for (const auto& pair : solid(60, {{8, "0"}})) { // as the insertion's layer says
        plan.maker.Block({pair});
    }
    plan.maker.Block({{0, "ENDBLK"}});
    add(10, {{62, 2}});
    add(20, {{8, "BLUE"}});
    add(30, {{8, "BLUE"}, {62, 256}});
    add(40, {{62, 1}, {420, double(0x123456)}});
    plan.maker.Entity({{0, "INSERT"}, {2, "b"}, {8, "Blue"}, {62, 6}});
    add(70, {{8, "gone"}});
    add(75, {{8, "cold"}});
    add(80, {{62, 7}});
    add(90, {{62, 1}, {67, 1}});
    const QImage image = plan.Drawn();
    const auto at = [&](double x) { return image.pixel(DxfAt(x + 1, 13)); };
    EXPECT_EQ(at(10), qRgb(255, 255, 0));
    EXPECT_EQ(at(20), qRgb(0, 0, 255));
    EXPECT_EQ(at(30), qRgb(0, 0, 255));
    EXPECT_EQ(at(40), qRgb(0x12, 0x34, 0x56));
    EXPECT_EQ(at(50), qRgb(255, 0, 255));
    EXPECT_EQ(at(60), qRgb(0, 0, 255));
    EXPECT_EQ(at(70), kDxfWhite);     // a layer that is off
    EXPECT_EQ(at(75), kDxfWhite);     // and one that is frozen
    EXPECT_EQ(at(80), qRgb(0, 0, 0)); // white ink on white paper
    EXPECT_EQ(at(90), kDxfWhite);     // of the sheet, not of the model
}

TEST(Dxf, IndexColoursAreThoseOfTheDrawingProgram)
{
    const std::pair<int, QRgb> rows[] = {
        {1, qRgb(255, 0, 0)},       {2, qRgb(255, 255, 0)},    {3, qRgb(0, 255, 0)},
        {4, qRgb(0, 255, 255)},     {5, qRgb(0, 0, 255)},      {6, qRgb(255, 0, 255)},
        {7, qRgb(0, 0, 0)},         {8, qRgb(128, 128, 128)},  {9, qRgb(192, 192, 192)},
        {10, qRgb(255, 0, 0)},      {11, qRgb(255, 127, 127)}, {14, qRgb(127, 0, 0)},
        {30, qRgb(255, 127, 0)},    {90, qRgb(0, 255, 0)},     {130, qRgb(0, 255, 255)},
        {170, qRgb(0, 0, 255)},     {210, qRgb(255, 0, 255)},  {250, qRgb(51, 51, 51)},
        {255, qRgb(255, 255, 255)},
    };
    for (const auto& [index, colour] : rows) {
        EXPECT_EQ(codecs::DxfIndexColour(index), colour) << index;
    }
}

TEST(Dxf, TextStandsAtItsPointWithItsHeight)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "TEXT"}, {10, 20}, {20, 40}, {40, 10}, {1, "HH"}});
    const QImage left = plan.Drawn();
    EXPECT_TRUE(DxfIsMarked(left, 21.5, 45));
    EXPECT_FALSE(DxfIsMarked(left, 21.5, 39));
    EXPECT_FALSE(DxfIsMarked(left, 21.5, 51));
    EXPECT_FALSE(DxfIsMarked(left, 18, 45));
    DxfPlan middle;
    middle.maker.Entity({{0, "TEXT"}, {10, 0}, {20, 0}, {40, 10}, {1, "HH"}, {72, 2}, {73, 3}});
    middle.maker.Entity({{11, 80}, {21, 60}});
    EXPECT_TRUE(DxfIsMarked(middle.Drawn(), 78.5, 55));
    EXPECT_FALSE(DxfIsMarked(middle.Drawn(), 82, 55));
    EXPECT_FALSE(DxfIsMarked(middle.Drawn(), 78.5, 62));
    EXPECT_FALSE(DxfIsMarked(middle.Drawn(), 78.5, 48));
}

TEST(Dxf, TextsResolveTheirEscapes)
{
    EXPECT_EQ(codecs::DxfText("%%c12 %%P 3%%d \\U+00C4 %%065%%u!", {}),
              QString::fromUtf8("\xe2\x8c\x80"
                                "12 \xc2\xb1 3\xc2\xb0 \xc3\x84 A!"));
    EXPECT_EQ(codecs::DxfText("100%", {}), u"100%");
    EXPECT_EQ(codecs::DxfText("\xc3\x84", "ANSI_1252"), QString(QChar(0xc4)));
    EXPECT_EQ(codecs::DxfText("\xc4", "ANSI_1252"), QString(QChar(0xc4)));
    EXPECT_EQ(codecs::DxfText("\\U+12", {}), u"\\U+12");
}

TEST(Dxf, ParagraphsLoseTheirFormatting)
{
    EXPECT_EQ(codecs::DxfLines("{\\fArial|b1;One} \\H2.5;two\\Pthree\\~four \\\\ \\{x\\} \\S1^2;!"),
              QStringList({"One two", QString("three") + QChar(0xa0) + "four \\ {x} 1/2!"}));
    EXPECT_EQ(codecs::DxfLines("\\Lunder\\l \\C1"), QStringList({"under 1"}));
    DxfPlan plan;
    plan.maker.Entity({{0, "MTEXT"}, {10, 20}, {20, 80}, {40, 10}, {71, 1}, {1, "H\\PH"}});
    const QImage image = plan.Drawn();
    EXPECT_TRUE(DxfIsMarked(image, 21.5, 75));
    EXPECT_FALSE(DxfIsMarked(image, 21.5, 67));
    EXPECT_TRUE(DxfIsMarked(image, 21.5, 58));
}

TEST(Dxf, MeshesAndFacesShowTheirEdges)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "POLYLINE"}, {70, 64}, {71, 4}, {72, 1}});
    for (const auto& [x, y] : {std::pair{20.0, 20.0}, {80.0, 20.0}, {80.0, 80.0}, {20.0, 80.0}}) {
        plan.maker.Entity({{0, "VERTEX"}, {10, x}, {20, y}, {70, 192}});
    }
    plan.maker.Entity({{0, "VERTEX"}, {70, 128}, {71, 1}, {72, -2}, {73, 3}, {74, 4}});
    plan.maker.Entity({{0, "SEQEND"}});
    const QImage image = plan.Drawn();
    EXPECT_TRUE(DxfIsMarked(image, 50, 20));
    EXPECT_FALSE(DxfIsMarked(image, 80, 50));
    EXPECT_TRUE(DxfIsMarked(image, 50, 80));
    DxfPlan face;
    face.maker.Entity({{0, "3DFACE"}, {10, 20}, {20, 20}, {11, 80}, {21, 20}, {12, 80}, {22, 80}});
    face.maker.Entity({{13, 20}, {23, 80}, {70, 4}});
    EXPECT_TRUE(DxfIsMarked(face.Drawn(), 80, 50));
    EXPECT_FALSE(DxfIsMarked(face.Drawn(), 50, 80));
}

TEST(Dxf, DimensionsLookAsTheirBlocksDo)
{
    DxfPlan plan;
    plan.maker.Block({{0, "BLOCK"}, {2, "*D1"}, {0, "LINE"}, {10, 20}, {20, 30}, {11, 80}});
    plan.maker.Block({{21, 30}, {0, "ENDBLK"}});
    plan.maker.Entity({{0, "DIMENSION"}, {2, "*D1"}, {10, 50}, {20, 50}});
    EXPECT_TRUE(DxfIsMarked(plan.Drawn(), 50, 30));
}

TEST(Dxf, BlocksThatHoldThemselvesEnd)
{
    DxfPlan plan;
    plan.maker.Block({{0, "BLOCK"}, {2, "A"}, {0, "LINE"}, {10, 20}, {20, 30}, {11, 80}, {21, 30}});
    for (int i = 0; i < 8; ++i) {
        plan.maker.Block({{0, "INSERT"}, {2, "A"}});
    }
    plan.maker.Block({{0, "ENDBLK"}});
    plan.maker.Entity({{0, "INSERT"}, {2, "A"}, {70, 32000}, {71, 32000}});
    const Bitmap bitmap = making::DecodeBytes(plan.maker.Written());
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_TRUE(DxfIsMarked(bitmap.Pixels(), 50, 30));
}

TEST(Dxf, AFileWithoutEntitiesIsRefused)
{
    const making::Refusal refusal = making::RefusalOf(
        [] { making::DecodeBytes("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n0\nENDSEC\n"); });
    EXPECT_EQ(refusal.number, kFailureUnreadable);
    EXPECT_EQ(refusal.words, u"This DXF is damaged: it has no entities.");
}

TEST(Dxf, AFileThatEndsEarlyIsShownInPart)
{
    DxfPlan plan;
    plan.maker.Entity({{0, "LINE"}, {10, 10}, {20, 20}, {11, 80}, {21, 30}});
    const QByteArray whole = plan.maker.Written();
    EXPECT_FALSE(making::DecodeBytes(whole).IsPartial());
    EXPECT_TRUE(making::DecodeBytes(whole.left(whole.size() - 30)).IsPartial());
}

} // namespace

} // namespace quillane
