#include "gui/modal_dialog.h"
#include "viewer/ui/Histogram.h"

#include <QAbstractItemView>
#include <QButtonGroup>
#include <QComboBox>
#include <QLabel>
#include <QRadioButton>
#include <QScreen>
#include <QSignalSpy>

namespace quillane {

namespace {

class HistogramWindowTest : public testing::Test {
protected:
    void Open(const QImage& pixels)
    {
        mLead.SetBitmap(pixels.isNull() ? Bitmap() : Bitmap(pixels, ColourModel::Rgb, 24));
        OpenAgain();
    }
    void OpenAgain()
    {
        mWindow = std::make_unique<Histogram>(mLead);
        mWindow->show();
        mChart = static_cast<HistogramChart*>(In<QWidget>(*mWindow, "TheHist"));
    }
    QString Text(const char* name) { return In<QLabel>(*mWindow, name)->text(); }
    /// Lets events flow until YMax shows that.
    void Shows(const char* most)
    {
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return Text("YMax") == QLatin1String(most) && mChart->Max() > 0; }, 30'000))
            << Text("YMax").toStdString();
    }
    static QImage Plain(QSize size, QColor colour)
    {
        QImage pixels(size, QImage::Format_RGB32);
        pixels.fill(colour);
        return pixels;
    }

    EngineInstance mLead;
    std::unique_ptr<Histogram> mWindow;
    HistogramChart* mChart = nullptr;
};

} // namespace

TEST_F(HistogramWindowTest, HasItsWordsAndNames)
{
    Open(Plain({8, 8}, Qt::red));
    EXPECT_EQ(mWindow->windowTitle(), QStringLiteral("Image Histogram"));
    const char* const captions[] = {"&Master", "&Red", "&Green", "&Blue"};
    auto* group = mWindow->findChild<QButtonGroup*>(QStringLiteral("Channel"));
    ASSERT_NE(group, nullptr);
    for (int i = 0; i < 4; ++i) {
        auto* option = In<QRadioButton>(*mWindow, qPrintable(QStringLiteral("Channel_%1").arg(i)));
        EXPECT_EQ(option->text(), QLatin1String(captions[i]));
        EXPECT_EQ(option->isChecked(), i == 0) << "the master channel at first";
        EXPECT_EQ(group->id(option), i);
    }
    auto* filter = In<QComboBox>(*mWindow, "FilterBox");
    ASSERT_EQ(filter->count(), 1);
    EXPECT_TRUE(filter->itemText(0).isEmpty());
}

TEST_F(HistogramWindowTest, OneColourIsOneLineOfFullHeight)
{
    Open(Plain({50, 40}, QColor(128, 128, 128)));
    Shows("2000");
    EXPECT_EQ(Text("YMaxDiv2"), QStringLiteral("1000"));
    for (int i = 0; i < 256; ++i) {
        const HistogramLine& line = mChart->TheLine(i);
        EXPECT_EQ(line.X1, float(i));
        EXPECT_EQ(line.X2, float(i));
        EXPECT_EQ(line.Y1, 98.0f);
        EXPECT_EQ(line.Y2, i == 128 ? 4.0f : 98.0f) << i;
    }
}

TEST_F(HistogramWindowTest, AChangeOfChannelDrawsAnother)
{
    QImage pixels = Plain({30, 10}, QColor(10, 200, 50));
    for (int x = 0; x < 30; ++x) {
        pixels.setPixelColor(x, 0, QColor(20, 200, 60));
    }
    Open(pixels);
    Shows("270");
    QTest::mouseClick(In<QRadioButton>(*mWindow, "Channel_2"), Qt::LeftButton);
    Shows("300");
    EXPECT_EQ(mChart->TheLine(200).Y2, 4.0f) << "green";
    QTest::keyClick(In<QRadioButton>(*mWindow, "Channel_2"), Qt::Key_Left);
    Shows("270");
    EXPECT_TRUE(In<QRadioButton>(*mWindow, "Channel_1")->isChecked());
    EXPECT_EQ(mChart->TheLine(10).Y2, 4.0f) << "red";
    EXPECT_FLOAT_EQ(mChart->TheLine(20).Y2, 98.0f - 94.0f / 9.0f);
    QTest::mouseClick(In<QRadioButton>(*mWindow, "Channel_3"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return mChart->TheLine(50).Y2 == 4.0f; }, 30'000));
}

TEST_F(HistogramWindowTest, HalfOfAnOddNumberHasADecimal)
{
    Open(Plain({3, 1}, Qt::white));
    Shows("3");
    EXPECT_EQ(Text("YMaxDiv2"), QStringLiteral("1.5"));
}

TEST_F(HistogramWindowTest, TheRegionAloneCounts)
{
    mLead.SetBitmap(Bitmap(Plain({50, 40}, Qt::white), ColourModel::Rgb, 24));
    mLead.SetRegionRect(5, 5, 10, 10);
    OpenAgain();
    Shows("100");
}

TEST_F(HistogramWindowTest, TheEmptyFilterDrawsTheChannelAgain)
{
    Open(Plain({50, 40}, Qt::blue));
    Shows("2000");
    QTest::mouseClick(In<QRadioButton>(*mWindow, "Channel_3"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return mChart->TheLine(255).Y2 == 4.0f; }, 30'000));
    mChart->ShowWords(QStringLiteral("x"));
    EXPECT_EQ(mChart->Max(), 0);
    auto* filter = In<QComboBox>(*mWindow, "FilterBox");
    QTest::keyClick(filter, Qt::Key_Space); // opens the list
    QTest::keyClick(filter->view(), Qt::Key_Return);
    Shows("2000");
    EXPECT_EQ(mChart->TheLine(255).Y2, 4.0f) << "the channel that is on";
}

TEST_F(HistogramWindowTest, AChangeOfChannelCountsThePictureOfNow)
{
    Open(Plain({50, 40}, Qt::white));
    Shows("2000");
    mLead.SetBitmap(Bitmap(Plain({30, 10}, Qt::black), ColourModel::Rgb, 24));
    QTest::mouseClick(In<QRadioButton>(*mWindow, "Channel_1"), Qt::LeftButton);
    Shows("300");
    EXPECT_EQ(mChart->TheLine(0).Y2, 4.0f);
    mLead.SetBitmap({});
    QTest::mouseClick(In<QRadioButton>(*mWindow, "Channel_2"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !mChart->Words().isEmpty(); }, 30'000));
}

TEST_F(HistogramWindowTest, NoPictureIsToldInWordsAndDoesNoHarm)
{
    Open({});
    for (const char* name : {"Channel_1", "Channel_2", "Channel_3", "Channel_0"}) {
        QTest::mouseClick(In<QRadioButton>(*mWindow, name), Qt::LeftButton);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return !mChart->Words().isEmpty(); }, 30'000));
    EXPECT_EQ(mChart->Max(), 0);
    EXPECT_TRUE(Text("YMax").isEmpty());
    EXPECT_TRUE(Text("YMaxDiv2").isEmpty());
    EXPECT_FALSE(mWindow->grab().isNull());
}

TEST_F(HistogramWindowTest, MayBeClosedWhileItCounts)
{
    Open(Plain({2000, 1500}, Qt::white));
    mWindow.reset();
    QCoreApplication::processEvents();
}

TEST_F(HistogramWindowTest, StandsInTheMiddleOfTheScreenAndIsResized)
{
    Open(Plain({50, 40}, Qt::white));
    const QPoint middle = mWindow->screen()->availableGeometry().center();
    const QPoint off = mWindow->geometry().center() - middle;
    EXPECT_LE(std::max(qAbs(off.x()), qAbs(off.y())), 40) << "but for the frame";
    Shows("2000");
    const QSize before = mChart->size();
    mWindow->resize(mWindow->size() + QSize(120, 90));
    ASSERT_TRUE(QTest::qWaitFor([&] { return mChart->height() == before.height() + 90; }, 30'000));
    EXPECT_EQ(mChart->width(), before.width() + 120);
}

TEST_F(HistogramWindowTest, PaintsALineWhereItStands)
{
    Open(Plain({50, 40}, QColor(128, 128, 128)));
    Shows("2000");
    mChart->resize(540, 240);
    const QImage painted = mChart->grab().toImage();
    // Level 128 stands at (128 + 5) / 270 of the width.
    const int x = 1 + int(538 * 133.0 / 270);
    int dark = 0;
    for (int near = x - 2; near <= x + 2; ++near) {
        dark += painted.pixelColor(near, 120) == mChart->palette().color(QPalette::Text);
    }
    EXPECT_GE(dark, 1);
    EXPECT_EQ(painted.pixelColor(x + 40, 120), mChart->palette().color(QPalette::Base));
}

} // namespace quillane
