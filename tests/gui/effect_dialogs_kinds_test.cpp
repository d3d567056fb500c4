#include "gui/effect_dialogs_fixture.h"
#include "viewer/ui/colour_button.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>

namespace quillane {

namespace {

class EffectDialogKindsTest : public EffectDialogsTest { };

} // namespace

TEST_F(EffectDialogKindsTest, FiltersAreChosenByWords)
{
    const auto ask = [this](quint32 flag, const std::function<void(QDialog&)>& act) {
        FilterChoice choice{-1, -1};
        InDialog(
            "FilterDialog", [&] { choice = mDialogs.FilterDialog(mOwner, kHigh | flag); }, act);
        return choice;
    };
    const FilterChoice sobel = ask(kFilterSobel, [](QDialog& dialog) {
        auto* list = In<QListWidget>(dialog, "FilterList");
        EXPECT_EQ(dialog.focusWidget(), list);
        ASSERT_EQ(list->count(), 2);
        EXPECT_EQ(list->item(0)->text(), QStringLiteral("Horizontal"));
        EXPECT_EQ(list->currentRow(), 0);
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Return);
    });
    EXPECT_EQ(sobel.spatial, 13);
    const FilterChoice dilation = ask(kFilterDilation, [](QDialog& dialog) {
        auto* list = In<QListWidget>(dialog, "FilterList");
        list->setCurrentRow(3);
        Click(dialog, "OkButton");
    });
    EXPECT_EQ(dilation.binary, 7);
    const FilterChoice gradient = ask(kFilterGradient, [](QDialog& dialog) {
        auto* list = In<QListWidget>(dialog, "FilterList");
        list->setCurrentRow(5);
        Click(dialog, "ResetButton");
        EXPECT_EQ(list->currentRow(), 0);
        const QRect row = list->visualItemRect(list->item(2));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, row.center());
    });
    EXPECT_EQ(gradient.spatial, 2);
}

TEST_F(EffectDialogKindsTest, NoiseHasARangeAndAChannel)
{
    NoiseChoice choice;
    InDialog(
        "NoiseDialog", [&] { choice = mDialogs.NoiseDialog(mOwner, {}); },
        [](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Add Noise"));
            EXPECT_EQ(In<QSlider>(dialog, "RangeSlider")->value(), 0);
            auto* channel = In<QComboBox>(dialog, "ChannelBox");
            ASSERT_EQ(channel->count(), 4);
            EXPECT_EQ(channel->currentIndex(), 0);
            Retype(In<QSpinBox>(dialog, "RangeBox"), "25");
            QTest::keyClick(channel, Qt::Key_Down);
            QTest::keyClick(channel, Qt::Key_Down);
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
    EXPECT_EQ(choice.range, 250) << "shown in percent";
    EXPECT_EQ(choice.channel, 2);
}

TEST_F(EffectDialogKindsTest, EmbossHasACompassAndADepth)
{
    EmbossChoice choice;
    InDialog(
        "EmbossDialog", [&] { choice = mDialogs.EmbossDialog(mOwner, {}); },
        [](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Emboss"));
            EXPECT_TRUE(In<QToolButton>(dialog, "Direction_0")->isChecked());
            Click(dialog, "Direction_5");
            EXPECT_FALSE(In<QToolButton>(dialog, "Direction_0")->isChecked());
            EXPECT_EQ(In<QToolButton>(dialog, "Direction_5")->accessibleName(),
                      QStringLiteral("South West"));
            QTest::keyClick(In<QToolButton>(dialog, "Direction_5"), Qt::Key_Up);
            EXPECT_TRUE(In<QToolButton>(dialog, "Direction_6")->isChecked());
            Retype(In<QSpinBox>(dialog, "DepthBox"), "640");
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(choice.direction, 6);
    EXPECT_EQ(choice.depth, 640);
    InDialog(
        "EmbossDialog", [&] { choice = mDialogs.EmbossDialog(mOwner, choice); },
        [](QDialog& dialog) {
            Click(dialog, "Direction_1");
            Retype(In<QSpinBox>(dialog, "DepthBox"), "1");
            Click(dialog, "ResetButton");
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(choice.direction, 6);
    EXPECT_EQ(choice.depth, 640);
}

TEST_F(EffectDialogKindsTest, GammaBeginsWhereNothingChanges)
{
    qint32 gamma = 0;
    InDialog(
        "GammaDialog", [&] { gamma = mDialogs.GammaDialog(mOwner, 0); },
        [](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Gamma Correction"));
            EXPECT_EQ(In<QSlider>(dialog, "GammaSlider")->value(), 100);
            Retype(In<QSpinBox>(dialog, "GammaBox"), "2.2");
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(gamma, 220);
}

TEST_F(EffectDialogKindsTest, IntensitiesNeverCross)
{
    IntensityChoice choice;
    InDialog(
        "IntensityDialog",
        [&] {
            choice = mDialogs.IntensityDialog(mOwner, {0, 255});
        },
        [](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Intensity Detect"));
            auto* low = In<QSlider>(dialog, "LowSlider");
            auto* high = In<QSlider>(dialog, "HighSlider");
            EXPECT_EQ(low->value(), 0);
            EXPECT_EQ(high->value(), 255);
            high->setValue(100);
            low->setValue(180);
            EXPECT_EQ(high->value(), 180) << "taken along";
            Retype(In<QSpinBox>(dialog, "HighBox"), "40");
            EXPECT_EQ(low->value(), 40);
            Retype(In<QSpinBox>(dialog, "LowBox"), "20");
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(choice.low, 20);
    EXPECT_EQ(choice.high, 40);
    InDialog(
        "IntensityDialog",
        [&] {
            choice = mDialogs.IntensityDialog(mOwner, {0, 255});
        },
        [](QDialog& dialog) {
            In<QSlider>(dialog, "LowSlider")->setValue(200);
            In<QSlider>(dialog, "HighSlider")->setValue(3);
            Click(dialog, "ResetButton");
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(choice.low, 0);
    EXPECT_EQ(choice.high, 255);
}

TEST_F(EffectDialogKindsTest, ColorDepthHasBitsPaletteAndDithering)
{
    ColorDepthChoice choice;
    InDialog(
        "ColorDepthDialog", [&] { choice = mDialogs.ColorDepthDialog(mOwner, kColorDepthFlags); },
        [](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Change Color Depth"));
            auto* bits = In<QComboBox>(dialog, "BitsBox");
            auto* palette = In<QComboBox>(dialog, "PaletteBox");
            auto* dither = In<QComboBox>(dialog, "DitherBox");
            EXPECT_EQ(bits->currentData().toInt(), 24) << "the picture's own";
            EXPECT_FALSE(palette->isEnabled());
            EXPECT_FALSE(dither->isEnabled());
            bits->setCurrentIndex(bits->findData(1));
            EXPECT_FALSE(palette->isEnabled());
            EXPECT_TRUE(dither->isEnabled());
            bits->setCurrentIndex(bits->findData(4));
            EXPECT_TRUE(palette->isEnabled());
            palette->setCurrentIndex(2);
            dither->setCurrentIndex(0);
            ASSERT_TRUE(Settled(dialog));
            EXPECT_TRUE(Preview(dialog).Look().after.allGray()
                        || qGray(Preview(dialog).Look().after.pixel(9, 9)) >= 0);
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(choice.bits, 4);
    EXPECT_EQ(choice.palette, 2);
    EXPECT_EQ(choice.dither, 0);
}

TEST_F(EffectDialogKindsTest, ContourHasFourValues)
{
    ContourValues values;
    InDialog(
        "ContourDialog", [&] { values = mDialogs.ContourDialog(mOwner, kContourFlags, 31); },
        [](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Contour Fill"));
            EXPECT_EQ(In<QSlider>(dialog, "IntervalSlider")->value(), 31);
            Retype(In<QSpinBox>(dialog, "ThresholdBox"), "12");
            Retype(In<QSpinBox>(dialog, "SmoothingBox"), "9");
            auto* option = In<QComboBox>(dialog, "OptionBox");
            EXPECT_EQ(option->count(), 5);
            EXPECT_EQ(option->currentIndex(), 3) << "filled";
            QTest::keyClick(option, Qt::Key_End);
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(values.threshold, 12);
    EXPECT_EQ(values.interval, 31);
    EXPECT_EQ(values.smoothing, 9);
    EXPECT_EQ(values.option, 4);
}

TEST_F(EffectDialogKindsTest, RotationHasAnAngleAnOptionAndAColour)
{
    RotateChoice choice;
    InDialog(
        "RotateDialog",
        [&] { choice = mDialogs.RotateDialog(mOwner, kHigh | kRotateFlags, 0, 0xFFFFFF); },
        [](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Rotate by Angle"));
            auto* enlarge = In<QCheckBox>(dialog, "EnlargeBox");
            EXPECT_TRUE(enlarge->isChecked());
            Retype(In<QSpinBox>(dialog, "AngleBox"), "-33.25");
            QTest::keyClick(enlarge, Qt::Key_Space);
            EXPECT_FALSE(enlarge->isChecked());
            auto* colour = static_cast<ColourButton*>(In<QPushButton>(dialog, "FillButton"));
            EXPECT_EQ(colour->Colour(), 0xFFFFFF);
            InDialog(
                "FillColorDialog", [&] { colour->click(); },
                [](QDialog& asked) {
                    EXPECT_EQ(asked.windowTitle(), QStringLiteral("Fill Color"));
                    static_cast<QColorDialog&>(asked).setCurrentColor(QColor(0x11, 0x22, 0x33));
                    asked.accept();
                });
            EXPECT_FALSE(In<QToolButton>(dialog, "FullButton")->isVisible());
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(choice.angle, -3325);
    EXPECT_EQ(choice.option, 0);
    EXPECT_EQ(choice.fill, 0x332211) << "red in the low byte";

    InDialog(
        "RotateDialog",
        [&] { choice = mDialogs.RotateDialog(mOwner, kHigh | kRotateFlags, 0, 0xFFFFFF); },
        [](QDialog& dialog) {
            Retype(In<QSpinBox>(dialog, "AngleBox"), "720");
            auto* colour = static_cast<ColourButton*>(In<QPushButton>(dialog, "FillButton"));
            InDialog(
                "FillColorDialog", [&] { colour->click(); },
                [](QDialog& asked) { asked.reject(); });
            EXPECT_EQ(colour->Colour(), 0xFFFFFF) << "as before";
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(choice.angle, 18000);
    EXPECT_EQ(choice.option, 1);
    EXPECT_EQ(choice.fill, 0xFFFFFF);
}

TEST_F(EffectDialogKindsTest, ShearHasAnAngleADirectionAndAColour)
{
    RotateChoice choice;
    InDialog(
        "ShearDialog",
        [&] { choice = mDialogs.RotateDialog(mOwner, kHigh | kShearFlags, 0, 0xFF); },
        [](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Shear"));
            EXPECT_TRUE(In<QRadioButton>(dialog, "HorizontalOption")->isChecked());
            Retype(In<QSpinBox>(dialog, "AngleBox"), "60");
            EXPECT_EQ(In<QSlider>(dialog, "AngleSlider")->value(), 4500);
            Click(dialog, "VerticalOption");
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(choice.angle, 4500);
    EXPECT_EQ(choice.option, 0);
    EXPECT_EQ(choice.fill, 0xFF);
    InDialog(
        "ShearDialog",
        [&] { choice = mDialogs.RotateDialog(mOwner, kHigh | kShearFlags, 0, 0xFF); },
        [](QDialog& dialog) {
            Click(dialog, "VerticalOption");
            Click(dialog, "ResetButton");
            Click(dialog, "OkButton");
        });
    EXPECT_EQ(choice.option, 1);
}

TEST_F(EffectDialogKindsTest, AColourDialogThatIsOpenWhenTheOwnerGoesDoesNoHarm)
{
    InDialog(
        "RotateDialog",
        [&] {
            EXPECT_EQ(NumberOf([&] { mDialogs.RotateDialog(mOwner, kHigh | kRotateFlags, 0, 0); }),
                      kFailureCancelled);
        },
        [this](QDialog& dialog) {
            auto* colour = In<QPushButton>(dialog, "FillButton");
            InDialog(
                "FillColorDialog", [&] { colour->click(); },
                [this](QDialog&) { delete mOwner.data(); });
        });
}

} // namespace quillane
