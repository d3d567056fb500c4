// The preview of each dialog over a picture of twelve megapixels, while its first slider is
// dragged to and fro over the lower third of its range, where people use it, or the choices of its
// list are walked through: looks a second in the view that the dialog opens with and in the other
// one, the time to the first look, and the longest time that the window could not answer.
//
//   bench_preview [word]   measures what has that word in its name
#include "bench_support.h"
#include "core/failure.h"
#include "viewer/effect_ranges.h"
#include "viewer/ui/effect_dialogs.h"
#include "viewer/ui/preview_pane.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QListWidget>
#include <QSlider>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace quillane;

namespace {

constexpr double kWantedLooks = 20; // a second
constexpr double kWantedWait = 50;  // milliseconds
constexpr int kDragMilliseconds = 2000;
constexpr int kDragSteps = 90; // from one end to the other

/// Slow waves with noise on them.
Bitmap MakePicture()
{
    QImage pixels(4000, 3000, QImage::Format_RGB32);
    quint32 random = 2463534242u;
    for (int y = 0; y < pixels.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(pixels.scanLine(y));
        for (int x = 0; x < pixels.width(); ++x) {
            random = random * 1664525u + 1013904223u;
            const auto value = [&](int wave, int shift) {
                return 20 + (wave & 127) + int((random >> shift) & 31);
            };
            row[x] = qRgb(value(x / 9, 8), value(y / 7, 14), value((x + y) / 13, 20));
        }
    }
    return Bitmap(pixels, ColourModel::Rgb, 24);
}

struct DragResult {
    double looks = 0; ///< a second
    double wait = 0;  ///< milliseconds, the longest
};

/// Moves the dialog's control one step of the drag.
void Step(QDialog& dialog, int step)
{
    const int at = step % (2 * kDragSteps);
    const int way = at < kDragSteps ? at : 2 * kDragSteps - at;
    if (auto* slider = dialog.findChild<QSlider*>()) {
        const int third = (slider->maximum() - slider->minimum()) / 3;
        const int from = slider->minimum() < 0 ? 0 : slider->minimum();
        slider->setValue(from + third * way / kDragSteps);
    } else if (auto* list = dialog.findChild<QListWidget*>()) {
        list->setCurrentRow(step % list->count());
    } else if (auto* box = dialog.findChild<QComboBox*>(QStringLiteral("BitsBox"))) {
        box->setCurrentIndex(step % box->count());
    }
}

DragResult Drag(QDialog& dialog)
{
    LivePreview& preview = dialog.findChild<PreviewPane*>()->Preview();
    while (preview.Busy()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    }
    const int before = preview.Computed();
    DragResult result;
    QElapsedTimer clock;
    QElapsedTimer gap;
    clock.start();
    gap.start();
    for (int step = 0; clock.elapsed() < kDragMilliseconds; ++step) {
        Step(dialog, step);
        // A mouse tells of a move every eight milliseconds.
        QElapsedTimer move;
        move.start();
        while (move.elapsed() < 8) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 2);
            result.wait = std::max(result.wait, double(gap.nsecsElapsed()) / 1e6);
            gap.restart();
        }
    }
    result.looks = (preview.Computed() - before) * 1000.0 / double(clock.elapsed());
    return result;
}

/// Runs `ask` and measures in the dialog that it shows.
void Measure(const QString& name, const std::function<void()>& ask)
{
    bool came = false;
    QElapsedTimer opened;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || came) {
            return;
        }
        came = true;
        LivePreview& preview = dialog->findChild<PreviewPane*>()->Preview();
        while (preview.Look().after.isNull()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        }
        const double first = double(opened.nsecsElapsed()) / 1e6;
        const bool fit = preview.View().fit;
        const DragResult opening = Drag(*dialog);
        if (!dialog->findChild<QSlider*>()) {
            // Nothing is dragged here: a choice is made, and its look follows.
            std::printf("%s: %.1f looks a second, longest wait %.1f ms\n", qPrintable(name),
                        opening.looks, opening.wait);
            dialog->reject();
            return;
        }
        bench::PrintFigure(
            qPrintable(name + (fit ? QStringLiteral(", fitted") : QStringLiteral(", full size"))),
            opening.looks, kWantedLooks, "looks a second", opening.looks / kWantedLooks,
            bench::Wanted::AtLeast, 1);
        bench::PrintFigure(qPrintable(name + QStringLiteral(", longest wait")), opening.wait,
                           kWantedWait, "ms", opening.wait / kWantedWait, bench::Wanted::AtMost, 1);
        auto* other = dialog->findChild<QToolButton*>(fit ? QStringLiteral("FullButton")
                                                          : QStringLiteral("FitButton"));
        if (other->isVisible()) {
            other->click();
            const DragResult second = Drag(*dialog);
            std::printf("    the other view: %.1f looks a second, longest wait %.1f ms\n",
                        second.looks, second.wait);
        }
        std::printf("    first look after %.0f ms\n", first);
        std::fflush(stdout);
        dialog->reject();
    });
    timer.start(1);
    opened.start();
    try {
        ask();
    } catch (const Failure&) {
        // cancelled, as it should be
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QString word = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    QWidget owner;
    owner.show();
    EffectDialogs dialogs;
    const Bitmap picture = MakePicture();
    dialogs.SetPreview(picture, {});
    const auto measure = [&](const QString& name, const std::function<void()>& ask) {
        if (name.contains(word, Qt::CaseInsensitive)) {
            Measure(name, ask);
        }
    };
    for (const ValueEffect& effect : ValueEffects()) {
        measure(QLatin1String(effect.title),
                [&] { dialogs.ValueDialog(&owner, kDialogHighBit | effect.flag, 0); });
    }
    for (const FilterGroup& group : FilterGroups()) {
        measure(QLatin1String(group.title),
                [&] { dialogs.FilterDialog(&owner, kDialogHighBit | group.flag); });
    }
    measure(QStringLiteral("Add Noise"), [&] { dialogs.NoiseDialog(&owner, {}); });
    measure(QStringLiteral("Emboss"), [&] { dialogs.EmbossDialog(&owner, {}); });
    measure(QStringLiteral("Gamma Correction"), [&] { dialogs.GammaDialog(&owner, 0); });
    measure(QStringLiteral("Intensity Detect"), [&] { dialogs.IntensityDialog(&owner, {}); });
    measure(QStringLiteral("Contour Fill"),
            [&] { dialogs.ContourDialog(&owner, kContourFlags, 31); });
    measure(QStringLiteral("Rotate by Angle"),
            [&] { dialogs.RotateDialog(&owner, kDialogHighBit | kRotateFlags, 0, 0xFFFFFF); });
    measure(QStringLiteral("Shear"),
            [&] { dialogs.RotateDialog(&owner, kDialogHighBit | kShearFlags, 0, 0xFFFFFF); });
    measure(QStringLiteral("Change Color Depth"),
            [&] { dialogs.ColorDepthDialog(&owner, kColorDepthFlags); });
    dialogs.SetPreview(picture, Region::Ellipse({4000, 3000}, 800, 600, 2400, 1800));
    measure(QStringLiteral("Brightness in a region"),
            [&] { dialogs.ValueDialog(&owner, kDialogHighBit | kValueBrightness, 0); });
    measure(QStringLiteral("Median in a region"),
            [&] { dialogs.ValueDialog(&owner, kDialogHighBit | kValueMedian, 0); });
    return 0;
}
