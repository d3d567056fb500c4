#include "viewer/ui/viewer_dialogs.h"

#include "viewer/ui/Histogram.h"
#include "viewer/ui/Resize.h"
#include "viewer/ui/effect_dialogs.h"

#include <QColorDialog>

namespace quillane {

namespace {

/// "LEADDlg1" with the picture for its preview as long as the object lives.
class PreviewedDialogs {
public:
    explicit PreviewedDialogs(const EngineInstance& LEAD1)
    {
        mDialogs.SetPreview(LEAD1.Bitmap(), LEAD1.RegionShape());
    }
    ~PreviewedDialogs() { mDialogs.SetPreview({}, {}); }
    PreviewedDialogs(const PreviewedDialogs&) = delete;
    PreviewedDialogs& operator=(const PreviewedDialogs&) = delete;
    EffectDialogs* operator->() { return &mDialogs; }

private:
    EffectDialogs mDialogs;
};

[[noreturn]] void ThrowCancelled()
{
    throw Failure(kFailureCancelled, QStringLiteral("The dialog was cancelled."));
}

CommandValues AskSize(QWidget* owner, const EngineInstance& LEAD1)
{
    Resize dialog(owner);
    dialog.SetPictureSize({LEAD1.BitmapWidth(), LEAD1.BitmapHeight()});
    QString kind;
    dialog.InitTheForm(kind);
    dialog.exec();
    bool ok = false;
    float width = 0;
    float height = 0;
    qint32 method = 0;
    dialog.GetResults(ok, width, height, method);
    if (!ok) {
        ThrowCancelled();
    }
    return {qint32(width), qint32(height), method};
}

CommandValues AskColour(QWidget* owner)
{
    QColorDialog dialog(Qt::white, owner);
    dialog.setObjectName(QStringLiteral("dlgFillColor"));
    dialog.setWindowTitle(QStringLiteral("Fill Color"));
    if (dialog.exec() != QDialog::Accepted) {
        ThrowCancelled();
    }
    const QColor colour = dialog.selectedColor();
    return {colour.red() | (colour.green() << 8) | (colour.blue() << 16)};
}

} // namespace

CommandValues AskCommandValues(QWidget* owner, const EnhanceCommand& command,
                               const EngineInstance& LEAD1)
{
    if (!LEAD1.HasBitmap()) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no picture to work on."));
    }
    PreviewedDialogs dialogs(LEAD1);
    const CommandValues& start = command.start;
    switch (command.dialog) {
    case CommandDialog::Value:
        return {dialogs->ValueDialog(owner, command.flags | kDialogHighBit, start[0])};
    case CommandDialog::Filter: {
        const FilterChoice filter = dialogs->FilterDialog(owner, command.flags | kDialogHighBit);
        return {filter.spatial, filter.binary};
    }
    case CommandDialog::Noise: {
        const NoiseChoice noise = dialogs->NoiseDialog(owner, {start[0], start[1]});
        return {noise.range, noise.channel};
    }
    case CommandDialog::Emboss: {
        const EmbossChoice emboss = dialogs->EmbossDialog(owner, {start[0], start[1]});
        return {emboss.direction, emboss.depth};
    }
    case CommandDialog::Gamma:
        return {dialogs->GammaDialog(owner, start[0])};
    case CommandDialog::Intensity: {
        const IntensityChoice chosen = dialogs->IntensityDialog(owner, {start[0], start[1]});
        return {chosen.low, chosen.high};
    }
    case CommandDialog::ColorDepth: {
        const ColorDepthChoice depth = dialogs->ColorDepthDialog(owner, command.flags);
        return {depth.bits, depth.palette, depth.dither};
    }
    case CommandDialog::Contour: {
        const ContourValues contour = dialogs->ContourDialog(owner, command.flags, start[0]);
        return {contour.threshold, contour.interval, contour.smoothing, contour.option};
    }
    case CommandDialog::Rotate: {
        const RotateChoice turn =
            dialogs->RotateDialog(owner, command.flags | kDialogHighBit, start[0], start[2]);
        return {turn.angle, turn.option, turn.fill};
    }
    case CommandDialog::Resize:
        return AskSize(owner, LEAD1);
    case CommandDialog::Histogram: {
        Histogram window(LEAD1, owner);
        window.exec();
        return {};
    }
    case CommandDialog::FillColor:
        return AskColour(owner);
    case CommandDialog::None:
    case CommandDialog::MessageBox:
        break;
    }
    return start;
}

} // namespace quillane
