#include "gui/modal_dialog.h"
#include "imaging/engine.h"
#include "viewer/ui/Resize.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSpinBox>

namespace quillane {

namespace {

struct Results {
    bool ok = true;
    float width = -1, height = -1;
    qint32 method = -1;
};

class ResizeWindowTest : public testing::Test {
protected:
    void Open(QSize size)
    {
        mWindow = std::make_unique<Resize>();
        mWindow->SetPictureSize(size);
        mWindow->InitTheForm(mKind);
        mWindow->show();
        mWindow->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(mWindow.get()));
        mBar1 = In<QScrollBar>(*mWindow, "Value1Bar");
        mBar2 = In<QScrollBar>(*mWindow, "Value2Bar");
        mBox1 = In<QSpinBox>(*mWindow, "Value1Box");
        mBox2 = In<QSpinBox>(*mWindow, "Value2Box");
    }
    Results Given() const
    {
        Results results;
        mWindow->GetResults(results.ok, results.width, results.height, results.method);
        return results;
    }
    void Click(const char* name)
    {
        auto* button = In<QAbstractButton>(*mWindow, name);
        QTest::mouseClick(button, Qt::LeftButton, {}, {10, button->height() / 2});
    }
    void ExpectSizes(int width, int height)
    {
        EXPECT_EQ(mBar1->value(), width);
        EXPECT_EQ(mBox1->value(), width);
        EXPECT_EQ(mBar2->value(), height);
        EXPECT_EQ(mBox2->value(), height);
    }

    QString mKind;
    std::unique_ptr<Resize> mWindow;
    QScrollBar* mBar1 = nullptr;
    QScrollBar* mBar2 = nullptr;
    QSpinBox* mBox1 = nullptr;
    QSpinBox* mBox2 = nullptr;
};

} // namespace

TEST_F(ResizeWindowTest, HasItsWordsRangesAndFirstValues)
{
    Open({4000, 3000});
    EXPECT_EQ(mKind, QStringLiteral("Resize"));
    EXPECT_EQ(mWindow->windowTitle(), QStringLiteral("Resize"));
    EXPECT_EQ(In<QGroupBox>(*mWindow, "Frame1")->title(), QStringLiteral("Width"));
    EXPECT_EQ(In<QGroupBox>(*mWindow, "Frame2")->title(), QStringLiteral("Height"));
    EXPECT_EQ(In<QGroupBox>(*mWindow, "Frame3")->title(), QStringLiteral("Type"));
    EXPECT_EQ(In<QCheckBox>(*mWindow, "AspectRatioBox")->text(),
              QStringLiteral("Maintain &Aspect-Ratio"));
    EXPECT_TRUE(In<QCheckBox>(*mWindow, "AspectRatioBox")->isChecked());
    EXPECT_TRUE(In<QRadioButton>(*mWindow, "Resize")->isChecked());
    EXPECT_FALSE(In<QRadioButton>(*mWindow, "Bicubic")->isChecked());
    EXPECT_FALSE(In<QRadioButton>(*mWindow, "Resample")->isChecked());
    EXPECT_EQ(In<QPushButton>(*mWindow, "OkayButton")->text(), QStringLiteral("&Okay"));
    EXPECT_EQ(In<QPushButton>(*mWindow, "CancelButton")->text(), QStringLiteral("&Cancel"));
    EXPECT_EQ(mBar1->minimum(), 1);
    EXPECT_EQ(mBar1->maximum(), 16384);
    EXPECT_EQ(mBar2->minimum(), 1);
    EXPECT_EQ(mBar2->maximum(), 12288);
    for (const QScrollBar* bar : {mBar1, mBar2}) {
        EXPECT_EQ(bar->pageStep(), 100);
        EXPECT_EQ(bar->singleStep(), 10);
    }
    ExpectSizes(4000, 3000);
}

TEST_F(ResizeWindowTest, AnotherKindIsLeftAsItIs)
{
    mKind = QStringLiteral("Frame");
    Open({640, 480});
    EXPECT_EQ(mKind, QStringLiteral("Frame"));
    EXPECT_EQ(mWindow->windowTitle(), QStringLiteral("Resize"));
}

TEST_F(ResizeWindowTest, OneSideFollowsTheOther)
{
    Open({4000, 3000});
    mBar1->setValue(2000);
    ExpectSizes(2000, 1500);
    mBar2->setValue(600);
    ExpectSizes(800, 600);
    Retype(mBox1, "400");
    ExpectSizes(400, 300);
    Retype(mBox2, "75");
    ExpectSizes(100, 75);
    QTest::keyClick(mBar1, Qt::Key_Right);
    ExpectSizes(110, 82);
    QTest::keyClick(mBar1, Qt::Key_PageUp);
    ExpectSizes(210, 158);
    QTest::keyClick(mBar1, Qt::Key_End);
    ExpectSizes(16384, 12288);
    QTest::keyClick(mBar2, Qt::Key_Home);
    ExpectSizes(1, 1);
}

TEST_F(ResizeWindowTest, SidesGoTheirOwnWaysWithoutTheRatio)
{
    Open({4000, 3000});
    Click("AspectRatioBox");
    mBar1->setValue(2000);
    ExpectSizes(2000, 3000);
    Retype(mBox2, "17");
    ExpectSizes(2000, 17);
    Click("AspectRatioBox");
    ExpectSizes(2000, 1500);
}

TEST_F(ResizeWindowTest, TypedSizesOutOfRangeAreBroughtIntoIt)
{
    Open({4000, 3000});
    Retype(mBox1, "99999999");
    ExpectSizes(16384, 12288);
    QTest::keyClick(mBox1, Qt::Key_Tab);
    EXPECT_TRUE(mBox1->text().startsWith(QStringLiteral("16384")));
    Retype(mBox2, "0");
    ExpectSizes(1, 1);
    Retype(mBox2, "-50");
    ExpectSizes(1, 1);
}

TEST_F(ResizeWindowTest, GivesWhatWasAccepted)
{
    const std::pair<const char*, qint32> methods[] = {
        {"Resize", kResizePlain}, {"Resample", kResizeResample}, {"Bicubic", kResizeBicubic}};
    for (const auto& [name, flag] : methods) {
        Open({1600, 1200});
        EXPECT_FALSE(Given().ok) << "nobody has accepted yet";
        Click(name);
        Retype(mBox1, "800");
        Click("OkayButton");
        EXPECT_TRUE(Given().ok);
        EXPECT_EQ(Given().width, 800.0f);
        EXPECT_EQ(Given().height, 600.0f);
        EXPECT_EQ(Given().method, flag) << name;
        EXPECT_FALSE(mWindow->isVisible());
    }
    EXPECT_EQ(kResizePlain, 0);
    EXPECT_EQ(kResizeResample, 2);
    EXPECT_EQ(kResizeBicubic, 4);
}

TEST_F(ResizeWindowTest, CancelAndEscapeAreNoAcceptance)
{
    Open({1600, 1200});
    Click("CancelButton");
    EXPECT_FALSE(Given().ok);
    Open({1600, 1200});
    QTest::keyClick(mBox1, Qt::Key_Escape);
    EXPECT_FALSE(Given().ok);
    EXPECT_FALSE(mWindow->isVisible());
    // The same window once more forgets what was answered before.
    Open({1600, 1200});
    Click("OkayButton");
    mWindow->InitTheForm(mKind);
    EXPECT_FALSE(Given().ok);
}

TEST_F(ResizeWindowTest, EnterInABoxAccepts)
{
    Open({1600, 1200});
    Retype(mBox2, "300");
    QTest::keyClick(mBox2, Qt::Key_Return);
    EXPECT_TRUE(Given().ok);
    EXPECT_EQ(Given().width, 400.0f);
}

TEST_F(ResizeWindowTest, PicturesBeyondTheBarsAreCutToThem)
{
    Open({20'000, 20'000});
    ExpectSizes(16384, 16384);
    Open({40'000, 1});
    ExpectSizes(16384, 1);
    EXPECT_EQ(mBar2->maximum(), 1);
    Open({1000, 3000});
    EXPECT_EQ(mBar2->maximum(), 32767);
    ExpectSizes(1000, 3000);
    mBar1->setValue(500);
    EXPECT_EQ(mBar2->value(), 1000) << "the ratio has its limit";
}

TEST_F(ResizeWindowTest, TheWordsTellTheNewSize)
{
    Open({4000, 3000});
    mWindow->setLocale(QLocale::c());
    Retype(mBox1, "2000");
    EXPECT_EQ(In<QLabel>(*mWindow, "SizeWords")->text(),
              QStringLiteral("4000 x 3000 (12.0 megapixels) becomes 2000 x 1500 (3.0 megapixels)"));
}

TEST_F(ResizeWindowTest, EveryControlIsReachedByTabAndHasAName)
{
    Open({4000, 3000});
    ExpectNamedByTab(*mWindow,
                     {QStringLiteral("Value1Bar"), QStringLiteral("Value1Box"),
                      QStringLiteral("Value2Bar"), QStringLiteral("Value2Box"),
                      QStringLiteral("AspectRatioBox"), QStringLiteral("Resize"),
                      QStringLiteral("OkayButton"), QStringLiteral("CancelButton")});
}

} // namespace quillane
