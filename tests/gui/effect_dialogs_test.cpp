#include "gui/effect_dialogs_fixture.h"
#include "viewer/effect_ranges.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>

namespace quillane {

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
