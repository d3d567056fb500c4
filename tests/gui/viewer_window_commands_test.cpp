// Every menu entry and every button of the viewer that works on the picture.
#include "gui/viewer_window_fixture.h"
#include "viewer/menu_table.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>

namespace quillane {

namespace {

class ViewerCommandTest : public ViewerWindowTest {
protected:
    static void Press(QDialog& dialog, const char* button)
    {
        auto* found = dialog.findChild<QAbstractButton*>(QLatin1String(button));
        ASSERT_NE(found, nullptr) << button;
        QTest::mouseClick(found, Qt::LeftButton);
    }
    using ViewerWindowTest::Press;
    /// Gives every number of a dialog a value of its own, and accepts.
    static void Accept(QDialog& dialog)
    {
        for (QSpinBox* box : dialog.findChildren<QSpinBox*>()) {
            box->setValue(std::clamp(box->minimum() + (box->maximum() - box->minimum()) * 2 / 3,
                                     box->minimum(), box->maximum()));
        }
        for (QDoubleSpinBox* box : dialog.findChildren<QDoubleSpinBox*>()) {
            box->setValue(box->minimum() + (box->maximum() - box->minimum()) * 0.6);
        }
        if (auto* bits = dialog.findChild<QComboBox*>(QStringLiteral("BitsBox"))) {
            bits->setCurrentIndex(bits->currentIndex() == 0 ? 1 : 0);
        }
        if (auto* filters = dialog.findChild<QListWidget*>()) {
            filters->setCurrentRow(0);
        }
        auto* ok = dialog.findChild<QAbstractButton*>(QStringLiteral("OkButton"));
        if (!ok) {
            ok = dialog.findChild<QAbstractButton*>(QStringLiteral("OkayButton"));
        }
        ASSERT_NE(ok, nullptr);
        QTest::mouseClick(ok, Qt::LeftButton);
    }
};

} // namespace

TEST_F(ViewerCommandTest, EveryCommandOfTheTableWorksFromItsEntry)
{
    const QString file = Small();
    for (const EnhanceCommand& command : EnhanceCommands()) {
        Open(file);
        const QImage before = Pixels();
        const auto trigger = [&] { Click(command.name); };
        switch (command.dialog) {
        case CommandDialog::None:
            trigger();
            break;
        case CommandDialog::MessageBox:
            fakes.dialogs.Answer(BoxAnswer::Ok);
            trigger();
            break;
        case CommandDialog::Histogram:
            InDialog(trigger, [](QDialog& dialog) {
                EXPECT_EQ(dialog.objectName(), QStringLiteral("Histogram"));
            });
            break;
        case CommandDialog::FillColor:
            InDialog(trigger, [](QDialog& dialog) {
                EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Fill Color"));
                auto* colours = qobject_cast<QColorDialog*>(&dialog);
                ASSERT_NE(colours, nullptr);
                colours->setCurrentColor(QColor(1, 2, 3));
                dialog.accept();
            });
            break;
        default:
            InDialog(trigger, [](QDialog& dialog) { Accept(dialog); });
            break;
        }
        EXPECT_EQ(Line(), QString()) << command.name;
        if (command.work) {
            EXPECT_NE(Pixels(), before) << command.name;
            EXPECT_EQ(View()->ImageSize(), Pixels().size()) << command.name;
        } else if (command.dialog != CommandDialog::None) {
            EXPECT_EQ(Pixels(), before) << command.name;
        }
        EXPECT_EQ(UndoPixels(), before) << command.name;
        Click("mnuUndoLast");
        EXPECT_EQ(Pixels(), before) << command.name;
        Click("mnuUndoLast");
        EXPECT_EQ(Pixels(), before) << command.name;
        EXPECT_FALSE(window->IsChanged()) << command.name;
    }
}

TEST_F(ViewerCommandTest, ACancelledDialogChangesNothingAndTheUndoCopyIsThatPicture)
{
    const QString file = Small();
    for (const EnhanceCommand& command : EnhanceCommands()) {
        if (command.dialog == CommandDialog::None || command.dialog == CommandDialog::MessageBox
            || command.dialog == CommandDialog::Histogram) {
            continue;
        }
        Open(file);
        Click("mnuInvert");
        const QImage inverted = Pixels();
        InDialog([&] { Click(command.name); },
                 [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
        EXPECT_EQ(Pixels(), inverted) << command.name;
        Click("mnuUndoLast");
        EXPECT_EQ(Pixels(), inverted) << command.name;
        EXPECT_EQ(Line(), QString()) << command.name;
    }
}

TEST_F(ViewerCommandTest, OnlyTheLastCommandIsTakenBack)
{
    Open(Small());
    Click("mnuInvert");
    const QImage inverted = Pixels();
    Click("mnuFlipImage");
    Click("mnuUndoLast");
    EXPECT_EQ(Pixels(), inverted);
}

TEST_F(ViewerCommandTest, NightEnhanceCannotBeTakenBackAlone)
{
    Open(Small());
    const QImage loaded = Pixels();
    Click("mnuInvert");
    Click("mnuNightEnhance");
    Click("mnuUndoLast");
    EXPECT_EQ(Pixels(), loaded);
}

TEST_F(ViewerCommandTest, UniqueColorsAreToldInABox)
{
    QImage two(4, 4, QImage::Format_RGB32);
    two.fill(Qt::red);
    two.setPixelColor(0, 0, Qt::blue);
    const QString file = Path(QStringLiteral("two.bmp"));
    ASSERT_TRUE(two.save(file));
    Open(file);
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Click("mnuCountUniqueColors");
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes().first().text,
              QStringLiteral("Bitmap contains 2 unique colors"));
    EXPECT_FALSE(window->IsChanged());
}

TEST_F(ViewerCommandTest, TheDateStampIsRedInTheCornerAndTakesNoUndoCopy)
{
    Open(Copy(QStringLiteral("AST_0101.JPG")));
    const QImage before = Pixels();
    Click("mnuDateStamp");
    const QImage after = Pixels();
    ASSERT_NE(after, before);
    EXPECT_EQ(UndoPixels(), before);
    EXPECT_TRUE(Entry("mnuZoom100")->isChecked());
    EXPECT_FALSE(Entry("mnuZoomOut")->isChecked());
    EXPECT_EQ(View()->PaintScalar(), 100);
    EXPECT_TRUE(View()->DragEnabled());
    QRect changed;
    bool red = false;
    for (int y = 0; y < after.height(); ++y) {
        for (int x = 0; x < after.width(); ++x) {
            if (after.pixel(x, y) != before.pixel(x, y)) {
                changed |= QRect(x, y, 1, 1);
                red = red || after.pixelColor(x, y) == QColor(255, 0, 0);
            }
        }
    }
    EXPECT_TRUE(red);
    EXPECT_GT(changed.left(), after.width() / 2);
    EXPECT_GT(changed.top(), after.height() * 3 / 4);
    EXPECT_LE(changed.right(), after.width() - 10);
    EXPECT_LE(changed.bottom(), after.height() - 10);
    EXPECT_TRUE(window->IsChanged());
}

TEST_F(ViewerCommandTest, AFileThatDoesNotTellItsDateGetsNoStamp)
{
    Open(Small());
    const QImage before = Pixels();
    Click("mnuDateStamp");
    EXPECT_EQ(Pixels(), before);
    EXPECT_EQ(Line(), QString());
}

TEST_F(ViewerCommandTest, ARegionHoldsEffectsIn)
{
    Open(Small(QStringLiteral("r.bmp"), {200, 150}));
    const QImage before = Pixels();
    Region(20, 10, 100, 80);
    const QRect bounds = window->Picture().RegionBounds();
    Click("mnuInvert");
    EXPECT_EQ(Pixels().pixel(5, 5), before.pixel(5, 5));
    EXPECT_NE(Pixels().pixel(bounds.center()), before.pixel(bounds.center()));
    Click("mnuUndoLast");
    EXPECT_EQ(Pixels(), before);
    EXPECT_EQ(window->Picture().RegionBounds(), bounds) << "undo leaves the region";
    Click("mnuRotate90");
    EXPECT_EQ(Pixels().size(), before.size());
    EXPECT_EQ(Pixels().pixel(5, 5), before.pixel(5, 5));
}

TEST_F(ViewerCommandTest, CropIsThereWhileThereIsARegion)
{
    Open(Small(QStringLiteral("r.bmp"), {200, 150}));
    EXPECT_FALSE(Entry("mnuCrop")->isEnabled());
    QMenu* edit = Find<QMenu>("mnuEdit");
    Q_EMIT edit->aboutToShow();
    EXPECT_FALSE(Entry("mnuCrop")->isEnabled());
    Region(20, 10, 100, 80);
    const QRect bounds = window->Picture().RegionBounds();
    Q_EMIT edit->aboutToShow();
    EXPECT_TRUE(Entry("mnuCrop")->isEnabled());
    Click("mnuCrop");
    EXPECT_EQ(Pixels().size(), bounds.size());
    EXPECT_EQ(View()->ImageSize(), bounds.size());
    EXPECT_FALSE(window->Picture().HasRegion());
    Q_EMIT edit->aboutToShow();
    EXPECT_FALSE(Entry("mnuCrop")->isEnabled());
}

TEST_F(ViewerCommandTest, TheCropButtonCropsAndIsQuietWithoutARegion)
{
    Open(Small(QStringLiteral("r.bmp"), {200, 150}));
    Press(19);
    EXPECT_EQ(Pixels().size(), QSize(200, 150));
    Region(20, 10, 100, 80);
    const QRect bounds = window->Picture().RegionBounds();
    Press(19);
    EXPECT_EQ(Pixels().size(), bounds.size());
}

TEST_F(ViewerCommandTest, RegionToolsAreChosenInTheMenu)
{
    Open(Small());
    const char* const entries[] = {"mnuSelectRectangle", "mnuSelectEllipse",
                                   "mnuSelectRoundedRectangle", "mnuSelectFreeHand"};
    for (const char* chosen : entries) {
        Click("mnuMag");
        EXPECT_TRUE(Entry("mnuMag")->isChecked());
        Click(chosen);
        EXPECT_FALSE(Entry("mnuMag")->isChecked()) << chosen;
        for (const char* other : entries) {
            EXPECT_EQ(Entry(other)->isChecked(), other == chosen) << other;
        }
        EXPECT_FALSE(View()->DragEnabled());
        Click("mnuSelectNone");
        EXPECT_FALSE(Entry(chosen)->isChecked());
    }
}

TEST_F(ViewerCommandTest, TheFrameOfARegionIsHiddenAndShownByTheMenu)
{
    Open(Small(QStringLiteral("r.bmp"), {200, 150}));
    Region(20, 10, 100, 80);
    EXPECT_EQ(View()->RegionFrame(), 1);
    Click("mnuCancelSelectRegion");
    EXPECT_EQ(View()->RegionFrame(), 0);
    EXPECT_TRUE(window->Picture().HasRegion());
    Q_EMIT Find<QMenu>("mnuSelectRegion")->aboutToShow();
    EXPECT_EQ(View()->RegionFrame(), 1);
}

TEST_F(ViewerCommandTest, TheMagnifierTogglesAndClearsARegion)
{
    Open(Small(QStringLiteral("r.bmp"), {200, 150}));
    Region(20, 10, 100, 80);
    Click("mnuMag");
    EXPECT_TRUE(Entry("mnuMag")->isChecked());
    EXPECT_TRUE(View()->IsMagnifierOn());
    EXPECT_FALSE(View()->DragEnabled());
    EXPECT_FALSE(window->Picture().HasRegion());
    Click("mnuMag");
    EXPECT_FALSE(Entry("mnuMag")->isChecked());
    EXPECT_FALSE(View()->IsMagnifierOn());
    EXPECT_TRUE(View()->DragEnabled());
    Press(13);
    EXPECT_TRUE(View()->IsMagnifierOn());
    EXPECT_TRUE(Button(13)->isChecked());
    Press(13);
    EXPECT_TRUE(View()->IsMagnifierOn()) << "the button only switches it on";
    Press(12);
    EXPECT_FALSE(View()->IsMagnifierOn());
    EXPECT_TRUE(Button(12)->isChecked());
    EXPECT_TRUE(View()->DragEnabled());
}

TEST_F(ViewerCommandTest, ZoomItemsExcludeOneAnother)
{
    Open(Small());
    EXPECT_TRUE(Entry("mnuZoomOut")->isChecked());
    for (const ZoomItem& item : kZoomItems) {
        Click(item.name);
        EXPECT_EQ(View()->PaintScalar(), item.percent);
        EXPECT_EQ(View()->PaintSizeMode(), 4);
        EXPECT_FALSE(Entry("mnuZoomOut")->isChecked());
        for (const ZoomItem& other : kZoomItems) {
            EXPECT_EQ(Entry(other.name)->isChecked(), &other == &item) << other.name;
        }
        Click(item.name);
        EXPECT_TRUE(Entry(item.name)->isChecked()) << "chosen again it stays checked";
    }
    Click("mnuZoomOut");
    EXPECT_EQ(View()->PaintSizeMode(), 3);
    EXPECT_TRUE(Entry("mnuZoomOut")->isChecked());
    EXPECT_FALSE(Entry("mnuZoom300")->isChecked());
}

TEST_F(ViewerCommandTest, ZoomImageGoesByTenAndLeavesNoItemChecked)
{
    Open(Small());
    Press(14);
    EXPECT_EQ(View()->PaintSizeMode(), 4);
    EXPECT_EQ(View()->PaintScalar(), 110);
    for (const ZoomItem& item : kZoomItems) {
        EXPECT_FALSE(Entry(item.name)->isChecked());
    }
    EXPECT_FALSE(Entry("mnuZoomOut")->isChecked());
    Press(14);
    EXPECT_EQ(View()->PaintScalar(), 120);
    Press(15);
    Press(15);
    Press(15);
    EXPECT_EQ(View()->PaintScalar(), 90);
    EXPECT_TRUE(View()->AutoScroll());
    for (int i = 0; i < 20; ++i) {
        Press(15);
    }
    EXPECT_GE(View()->PaintScalar(), 1);
    EXPECT_FALSE(Pixels().isNull());
}

TEST_F(ViewerCommandTest, ZoomingByWheelLeavesNoItemChecked)
{
    Open(Small());
    Q_EMIT View()->zoomChosen(140);
    EXPECT_FALSE(Entry("mnuZoomOut")->isChecked());
}

TEST_F(ViewerCommandTest, TheFacesOfTheButtons)
{
    Open(Small());
    for (const ToolButton& button : ViewerToolButtons()) {
        if (button.name[0] == '\0') {
            continue;
        }
        const QToolButton* widget = Button(button.index);
        EXPECT_EQ(widget->isVisible(), button.index < kDrawTextButton) << button.index;
        EXPECT_TRUE(widget->toolTip().startsWith(QString::fromUtf16(button.toolTip)));
        EXPECT_FALSE(widget->icon().pixmap(32).toImage().isNull()) << button.icon;
        EXPECT_FALSE(widget->accessibleName().isEmpty());
    }
}

TEST_F(ViewerCommandTest, UndoAndFillHaveButtons)
{
    Open(Small());
    const QImage before = Pixels();
    InDialog([this] { Press(20); },
             [](QDialog& dialog) {
                 qobject_cast<QColorDialog*>(&dialog)->setCurrentColor(QColor(9, 8, 7));
                 dialog.accept();
             });
    EXPECT_EQ(Pixels().pixelColor(3, 3), QColor(9, 8, 7));
    Press(10);
    EXPECT_EQ(Pixels(), before);
}

TEST_F(ViewerCommandTest, AreaButtonsTakeTheUndoCopy)
{
    Open(Small());
    Click("mnuInvert");
    const QImage inverted = Pixels();
    for (const int position : {16, 17}) {
        Click("mnuInvert");
        Press(position);
        EXPECT_EQ(UndoPixels(), Pixels());
        EXPECT_TRUE(Button(position)->isChecked());
        EXPECT_FALSE(Button(12)->isChecked());
        EXPECT_FALSE(View()->DragEnabled());
    }
    EXPECT_EQ(Pixels(), inverted);
}

} // namespace quillane
