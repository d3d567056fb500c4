#include "core/failure.h"
#include "gui/modal_dialog.h"
#include "viewer/effect_ranges.h"
#include "viewer/ui/colour_button.h"
#include "viewer/ui/effect_dialogs.h"
#include "viewer/ui/preview_pane.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>
#include <optional>

namespace quillane {

namespace {

constexpr quint32 kHigh = kDialogHighBit;
constexpr int kLong = 30'000; // milliseconds, until something is called missing

Bitmap Waves(QSize size)
{
    QImage pixels(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            pixels.setPixel(x, y, qRgb(x * 255 / size.width(), y * 255 / size.height(), 90));
        }
    }
    return Bitmap(pixels, ColourModel::Rgb, 24);
}

class EffectDialogsTest : public testing::Test {
protected:
    EffectDialogsTest()
    {
        mOwner = new QWidget;
        mOwner->resize(300, 200);
        mOwner->show();
        mDialogs.SetPreview(Waves({1600, 1200}), {});
    }
    ~EffectDialogsTest() override { delete mOwner.data(); }

    /// The number of the failure with which the asking ends; 0 without one.
    static qint32 NumberOf(const std::function<void()>& ask)
    {
        try {
            ask();
        } catch (const Failure& failure) {
            return failure.Number();
        }
        return 0;
    }
    /// What ValueDialog gives when it is acted in.
    std::optional<qint32> Value(quint32 flag, const std::function<void(QDialog&)>& act,
                                qint32 start = 0)
    {
        std::optional<qint32> value;
        InDialog(
            "ValueDialog",
            [&] {
                const qint32 number =
                    NumberOf([&] { value = mDialogs.ValueDialog(mOwner, kHigh | flag, start); });
                EXPECT_TRUE(number == 0 || number == kFailureCancelled) << number;
            },
            act);
        return value;
    }
    static void Click(QDialog& dialog, const char* name)
    {
        QTest::mouseClick(In<QAbstractButton>(dialog, name), Qt::LeftButton);
    }
    static PreviewCanvas& Canvas(QDialog& dialog)
    {
        return *static_cast<PreviewCanvas*>(In<QWidget>(dialog, "Preview"));
    }
    static LivePreview& Preview(QDialog& dialog)
    {
        return dialog.findChild<PreviewPane*>()->Preview();
    }
    static bool Settled(QDialog& dialog)
    {
        return QTest::qWaitFor(
            [&] { return !Preview(dialog).Busy() && !Preview(dialog).Look().after.isNull(); },
            kLong);
    }

    QPointer<QWidget> mOwner;
    EffectDialogs mDialogs;
};

} // namespace

TEST_F(EffectDialogsTest, TheTitleNamesTheEffectAsItsMenuEntryDoes)
{
    for (const ValueEffect& effect : ValueEffects()) {
        Value(effect.flag, [&](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QLatin1String(effect.title));
        });
    }
    for (const FilterGroup& group : FilterGroups()) {
        InDialog(
            "FilterDialog",
            [&] {
                EXPECT_EQ(NumberOf([&] { mDialogs.FilterDialog(mOwner, kHigh | group.flag); }),
                          kFailureCancelled);
            },
            [&](QDialog& dialog) { EXPECT_EQ(dialog.windowTitle(), QLatin1String(group.title)); });
    }
}

TEST_F(EffectDialogsTest, EveryValueDialogGivesWhatItsSliderSays)
{
    for (const ValueEffect& effect : ValueEffects()) {
        const qint32 start = IntoRange(effect.range, 0);
        const auto given = Value(effect.flag, [&](QDialog& dialog) {
            auto* slider = In<QSlider>(dialog, "ValueSlider");
            auto* box = In<QSpinBox>(dialog, "ValueBox");
            EXPECT_TRUE(slider->hasFocus() || dialog.focusWidget() == slider) << effect.title;
            EXPECT_EQ(slider->value(), start) << effect.title;
            EXPECT_EQ(box->value(), start) << effect.title;
            EXPECT_EQ(slider->minimum(), effect.range.least);
            EXPECT_EQ(slider->maximum(), effect.range.most);
            QTest::keyClick(slider, Qt::Key_Right);
            EXPECT_EQ(box->value(), start + effect.range.step);
            QTest::keyClick(slider, Qt::Key_PageUp);
            EXPECT_EQ(box->value(), start + effect.range.step + effect.range.page);
            QTest::keyClick(slider, Qt::Key_Home);
            EXPECT_EQ(box->value(), effect.range.least);
            QTest::keyClick(slider, Qt::Key_End);
            EXPECT_EQ(box->value(), effect.range.most);
            QTest::keyClick(slider, Qt::Key_PageDown);
            QTest::keyClick(slider, Qt::Key_Return);
        });
        EXPECT_EQ(given, effect.range.most - effect.range.page) << effect.title;
    }
}

TEST_F(EffectDialogsTest, NumberAndSliderFollowEachOther)
{
    const auto given = Value(kValueBrightness, [](QDialog& dialog) {
        auto* slider = In<QSlider>(dialog, "ValueSlider");
        auto* box = In<QSpinBox>(dialog, "ValueBox");
        Retype(box, "-250");
        EXPECT_EQ(slider->value(), -250);
        slider->setValue(420);
        EXPECT_EQ(box->value(), 420);
        EXPECT_EQ(box->text(), QStringLiteral("420"));
        QTest::keyClick(box, Qt::Key_Up);
        EXPECT_EQ(slider->value(), 430);
        QTest::keyClick(box, Qt::Key_PageDown);
        EXPECT_EQ(slider->value(), 330);
        Click(dialog, "OkButton");
    });
    EXPECT_EQ(given, 330);
}

TEST_F(EffectDialogsTest, TypedNumbersOutOfRangeAreBroughtIntoIt)
{
    EXPECT_EQ(Value(kValueContrast,
                    [](QDialog& dialog) {
                        auto* box = In<QSpinBox>(dialog, "ValueBox");
                        Retype(box, "99999");
                        EXPECT_EQ(In<QSlider>(dialog, "ValueSlider")->value(), 1000);
                        QTest::keyClick(box, Qt::Key_Return);
                        EXPECT_EQ(box->text(), QStringLiteral("1000"));
                    }),
              1000);
    EXPECT_EQ(Value(kValueContrast,
                    [](QDialog& dialog) {
                        Retype(In<QSpinBox>(dialog, "ValueBox"), "-1234567890123456789");
                        Click(dialog, "OkButton");
                    }),
              -1000);
    EXPECT_EQ(Value(kValuePosterize,
                    [](QDialog& dialog) {
                        Retype(In<QSpinBox>(dialog, "ValueBox"), "1");
                        QTest::keyClick(&dialog, Qt::Key_Return);
                    }),
              2);
    // No letters, and nothing at all leaves the last number.
    EXPECT_EQ(Value(kValuePosterize,
                    [](QDialog& dialog) {
                        auto* box = In<QSpinBox>(dialog, "ValueBox");
                        Retype(box, "7x,.");
                        EXPECT_EQ(In<QSlider>(dialog, "ValueSlider")->value(), 7);
                        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
                        QTest::keyClick(box, Qt::Key_Delete);
                        Click(dialog, "OkButton");
                        EXPECT_EQ(box->text(), QStringLiteral("7"));
                    }),
              7);
}

TEST_F(EffectDialogsTest, AnglesAreShownInDegrees)
{
    EXPECT_EQ(Value(kValueHue,
                    [](QDialog& dialog) {
                        auto* box = In<QSpinBox>(dialog, "ValueBox");
                        box->setLocale(QLocale::c());
                        Retype(box, "-12.5");
                        EXPECT_EQ(In<QSlider>(dialog, "ValueSlider")->value(), -1250);
                        QTest::keyClick(box, Qt::Key_Return);
                        EXPECT_EQ(box->text(), QStringLiteral("-12.50°"));
                    }),
              -1250);
    EXPECT_EQ(Value(kValueHue,
                    [](QDialog& dialog) {
                        Retype(In<QSpinBox>(dialog, "ValueBox"), "90,25");
                        Click(dialog, "OkButton");
                    }),
              9025)
        << "a comma will do";
}

TEST_F(EffectDialogsTest, AStartOutOfRangeIsCutToIt)
{
    const auto accept = [](QDialog& dialog) { Click(dialog, "OkButton"); };
    EXPECT_EQ(Value(kValuePosterize, accept, 0), 2);
    EXPECT_EQ(Value(kValuePosterize, accept, 70'000), 256);
    EXPECT_EQ(Value(kValueMosaic, accept, -3), 0);
    EXPECT_EQ(Value(kValueSharpen, accept, 250), 250);
}

TEST_F(EffectDialogsTest, ResetGoesBackToTheStart)
{
    EXPECT_EQ(Value(kValueSaturation,
                    [](QDialog& dialog) {
                        Retype(In<QSpinBox>(dialog, "ValueBox"), "800");
                        Click(dialog, "ResetButton");
                        EXPECT_EQ(In<QSpinBox>(dialog, "ValueBox")->value(), 0);
                        EXPECT_EQ(In<QSlider>(dialog, "ValueSlider")->value(), 0);
                        EXPECT_TRUE(dialog.isVisible());
                        Click(dialog, "OkButton");
                    }),
              0);
}

TEST_F(EffectDialogsTest, EscapeAndCancelAndTheWindowsButtonAreACancel)
{
    EXPECT_EQ(Value(kValueHue, [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }),
              std::nullopt);
    EXPECT_EQ(Value(kValueHue, [](QDialog& dialog) { Click(dialog, "CancelButton"); }),
              std::nullopt);
    EXPECT_EQ(Value(kValueHue, [](QDialog& dialog) { dialog.close(); }), std::nullopt);
    EXPECT_TRUE(mOwner->isVisible());
    EXPECT_EQ(mOwner->findChildren<QDialog*>().size(), 0) << "nothing is left behind";
}

TEST_F(EffectDialogsTest, UnknownFlagsAreAFailureAndNoDialog)
{
    EXPECT_EQ(NumberOf([&] { mDialogs.ValueDialog(mOwner, kHigh, 0); }), kFailureGeneral);
    EXPECT_EQ(NumberOf([&] { mDialogs.FilterDialog(mOwner, kHigh | 3); }), kFailureGeneral);
}

TEST_F(EffectDialogsTest, AnOwnerThatClosesOrGoesIsACancel)
{
    EXPECT_EQ(Value(kValueHue, [this](QDialog&) { mOwner->close(); }), std::nullopt);
    mOwner->show();
    EXPECT_EQ(Value(kValueHue, [this](QDialog&) { delete mOwner.data(); }), std::nullopt);
    EXPECT_TRUE(mOwner.isNull());
    // Without an owner there is a dialog all the same.
    EXPECT_EQ(Value(kValueHue, [](QDialog& dialog) { Click(dialog, "OkButton"); }), 0);
}

TEST_F(EffectDialogsTest, AnOwnerThatGoesTakesTheDialogsAlong)
{
    auto dialogs = std::make_unique<EffectDialogs>();
    dialogs->SetPreview(Waves({400, 300}), {});
    EffectDialogs* const asked = dialogs.get();
    InDialog(
        "NoiseDialog",
        [&] { EXPECT_EQ(NumberOf([&] { asked->NoiseDialog(mOwner, {}); }), kFailureCancelled); },
        [&](QDialog&) {
            dialogs.reset();
            delete mOwner.data();
        });
}

TEST_F(EffectDialogsTest, ThePreviewFollowsTheValue)
{
    Value(kValueBrightness, [](QDialog& dialog) {
        ASSERT_TRUE(Settled(dialog));
        const PreviewLook first = Preview(dialog).Look();
        EXPECT_EQ(first.after, first.before) << "0 changes nothing";
        QTest::keyClick(In<QSlider>(dialog, "ValueSlider"), Qt::Key_End);
        ASSERT_TRUE(Settled(dialog));
        EXPECT_EQ(Preview(dialog).Look().after.pixel(5, 5), qRgb(255, 255, 255));
        EXPECT_EQ(Preview(dialog).Look().before, first.before);
        Click(dialog, "ResetButton");
        ASSERT_TRUE(Settled(dialog));
        EXPECT_EQ(Preview(dialog).Look().after, first.before);
    });
}

TEST_F(EffectDialogsTest, BeforeIsShownWhileTheButtonIsHeld)
{
    Value(kValueBrightness, [](QDialog& dialog) {
        QTest::keyClick(In<QSlider>(dialog, "ValueSlider"), Qt::Key_End);
        ASSERT_TRUE(Settled(dialog));
        PreviewCanvas& canvas = Canvas(dialog);
        const QPoint middle = canvas.ImageRect().center().toPoint();
        EXPECT_EQ(canvas.grab().toImage().pixelColor(middle), QColor(Qt::white));
        auto* before = In<QToolButton>(dialog, "BeforeButton");
        QTest::mousePress(before, Qt::LeftButton);
        EXPECT_NE(canvas.grab().toImage().pixelColor(middle), QColor(Qt::white));
        QTest::mouseRelease(before, Qt::LeftButton);
        EXPECT_EQ(canvas.grab().toImage().pixelColor(middle), QColor(Qt::white));
        QTest::keyPress(before, Qt::Key_Space);
        EXPECT_NE(canvas.grab().toImage().pixelColor(middle), QColor(Qt::white));
        QTest::keyRelease(before, Qt::Key_Space);
    });
}

TEST_F(EffectDialogsTest, APartInFullSizeIsDraggedAndMovedByKeys)
{
    Value(kValueBrightness, [](QDialog& dialog) {
        ASSERT_TRUE(Settled(dialog));
        Click(dialog, "FullButton");
        ASSERT_TRUE(Settled(dialog));
        LivePreview& preview = Preview(dialog);
        EXPECT_FALSE(preview.View().fit);
        const QPointF middle = preview.View().centre;
        EXPECT_EQ(middle, QPointF(800, 600));
        EXPECT_TRUE(In<QLabel>(dialog, "PreviewWords")->text().contains(QStringLiteral("100 %")));

        PreviewCanvas& canvas = Canvas(dialog);
        QTest::mousePress(&canvas, Qt::LeftButton, {}, {100, 100});
        QMouseEvent move(QEvent::MouseMove, QPointF(60, 130), canvas.mapToGlobal(QPointF(60, 130)),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&canvas, &move);
        QTest::mouseRelease(&canvas, Qt::LeftButton, {}, {60, 130});
        const QPointF dragged = preview.View().centre;
        EXPECT_NEAR(dragged.x(), middle.x() + 40, 1) << "the picture went along";
        EXPECT_NEAR(dragged.y(), middle.y() - 30, 1);
        QTest::keyClick(&canvas, Qt::Key_Left);
        EXPECT_EQ(preview.View().centre, dragged + QPointF(-40, 0));
        for (int i = 0; i < 100; ++i) {
            QTest::keyClick(&canvas, Qt::Key_Up);
        }
        QTest::keyClick(&canvas, Qt::Key_Down);
        ASSERT_TRUE(Settled(dialog));
        const QRect part = PreviewPart({1600, 1200}, preview.View().room, preview.View().centre);
        EXPECT_EQ(part.top(), 40) << "what went beyond the edge is forgotten";
        EXPECT_EQ(preview.Look().after, Waves({1600, 1200}).Pixels().copy(part));
        Click(dialog, "FitButton");
        ASSERT_TRUE(Settled(dialog));
        EXPECT_TRUE(preview.View().fit);
    });
}

TEST_F(EffectDialogsTest, OperationsOnSinglePixelsOpenInFullSize)
{
    const std::pair<quint32, bool> rows[] = {{kValueSharpen, false},   {kValueHalftone, false},
                                             {kValueBrightness, true}, {kValueAverage, true},
                                             {kValueMedian, true},     {kValueMosaic, true}};
    for (const auto& [flag, fit] : rows) {
        Value(flag, [fit = fit](QDialog& dialog) {
            EXPECT_EQ(Preview(dialog).View().fit, fit) << dialog.windowTitle().toStdString();
            EXPECT_EQ(In<QToolButton>(dialog, "FitButton")->isChecked(), fit);
        });
    }
}

TEST_F(EffectDialogsTest, TheRegionAloneChangesAndIsShown)
{
    mDialogs.SetPreview(Waves({800, 600}), Region::Rectangle({800, 600}, 0, 0, 400, 600));
    Value(kValueBrightness, [](QDialog& dialog) {
        QTest::keyClick(In<QSlider>(dialog, "ValueSlider"), Qt::Key_End);
        ASSERT_TRUE(Settled(dialog));
        const PreviewLook& look = Preview(dialog).Look();
        EXPECT_EQ(look.outline.size(), look.after.size());
        const int right = look.after.width() - 3;
        EXPECT_EQ(look.after.pixel(3, 3), qRgb(255, 255, 255));
        EXPECT_EQ(look.after.pixel(right, 3), look.before.pixel(right, 3));
    });
}

TEST_F(EffectDialogsTest, WithoutAPictureThereIsNoPreview)
{
    mDialogs.SetPreview({}, {});
    EXPECT_EQ(Value(kValueBrightness,
                    [](QDialog& dialog) {
                        EXPECT_FALSE(In<QWidget>(dialog, "Preview")->isVisible());
                        Retype(In<QSpinBox>(dialog, "ValueBox"), "11");
                        Click(dialog, "OkButton");
                    }),
              11);
}

TEST_F(EffectDialogsTest, FiltersAreChosenByWords)
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

TEST_F(EffectDialogsTest, NoiseHasARangeAndAChannel)
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

TEST_F(EffectDialogsTest, EmbossHasACompassAndADepth)
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

TEST_F(EffectDialogsTest, GammaBeginsWhereNothingChanges)
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

TEST_F(EffectDialogsTest, IntensitiesNeverCross)
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

TEST_F(EffectDialogsTest, ColorDepthHasBitsPaletteAndDithering)
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

TEST_F(EffectDialogsTest, ContourHasFourValues)
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

TEST_F(EffectDialogsTest, RotationHasAnAngleAnOptionAndAColour)
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

TEST_F(EffectDialogsTest, ShearHasAnAngleADirectionAndAColour)
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

TEST_F(EffectDialogsTest, AColourDialogThatIsOpenWhenTheOwnerGoesDoesNoHarm)
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

TEST_F(EffectDialogsTest, EveryControlIsReachedByTabAndHasAName)
{
    Value(kValueBrightness, [](QDialog& dialog) {
        ExpectNamedByTab(dialog,
                         {QStringLiteral("ValueSlider"), QStringLiteral("ValueBox"),
                          QStringLiteral("FitButton"), QStringLiteral("BeforeButton"),
                          QStringLiteral("OkButton"), QStringLiteral("CancelButton"),
                          QStringLiteral("ResetButton")});
    });
    InDialog(
        "RotateDialog",
        [&] { NumberOf([&] { mDialogs.RotateDialog(mOwner, kHigh | kRotateFlags, 0, 0); }); },
        [](QDialog& dialog) {
            ExpectNamedByTab(dialog,
                             {QStringLiteral("AngleSlider"), QStringLiteral("AngleBox"),
                              QStringLiteral("EnlargeBox"), QStringLiteral("FillButton"),
                              QStringLiteral("BeforeButton"), QStringLiteral("OkButton")});
        });
    InDialog(
        "ColorDepthDialog", [&] { NumberOf([&] { mDialogs.ColorDepthDialog(mOwner, 0); }); },
        [](QDialog& dialog) {
            In<QComboBox>(dialog, "BitsBox")->setCurrentIndex(1);
            ExpectNamedByTab(dialog,
                             {QStringLiteral("BitsBox"), QStringLiteral("PaletteBox"),
                              QStringLiteral("DitherBox"), QStringLiteral("OkButton")});
        });
    InDialog(
        "EmbossDialog", [&] { NumberOf([&] { mDialogs.EmbossDialog(mOwner, {}); }); },
        [](QDialog& dialog) {
            ExpectNamedByTab(dialog,
                             {QStringLiteral("DepthSlider"), QStringLiteral("Direction_0"),
                              QStringLiteral("Preview"), QStringLiteral("OkButton")});
        });
}

TEST_F(EffectDialogsTest, TheDialogIsResizedAndThePreviewWithIt)
{
    Value(kValueBrightness, [](QDialog& dialog) {
        ASSERT_TRUE(Settled(dialog));
        const QSize before = Preview(dialog).Look().after.size();
        dialog.resize(dialog.size() + QSize(200, 150));
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return Preview(dialog).Look().after.width() > before.width(); }, kLong));
        EXPECT_TRUE(Canvas(dialog).rect().contains(Canvas(dialog).ImageRect().toAlignedRect()));
    });
}

} // namespace quillane
