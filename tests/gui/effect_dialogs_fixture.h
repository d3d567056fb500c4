#pragma once
// Shows the dialogs of effects over a window of their own and acts in them.
#include "core/failure.h"
#include "gui/modal_dialog.h"
#include "viewer/ui/effect_dialogs.h"
#include "viewer/ui/preview_pane.h"

#include <QAbstractButton>
#include <QPointer>
#include <optional>

namespace quillane {

inline constexpr quint32 kHigh = kDialogHighBit;
inline constexpr int kLong = 30'000; // milliseconds, until something is called missing

inline Bitmap Waves(QSize size)
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

} // namespace quillane
