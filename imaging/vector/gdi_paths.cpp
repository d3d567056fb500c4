// Path brackets, clipping, text and pictures of a device context.
#include "imaging/vector/gdi_context.h"
#include "imaging/vector/raster_op.h"
#include <algorithm>
#include <cmath>

namespace quillane::drawing {

namespace {

constexpr size_t kGdiMostClipPoints = 1'500'000; ///< in all clipping areas of one drawing

} // namespace

bool GdiContext::SpendClip(const Path& path)
{
    mClipPoints += path.Points().size();
    if (mClipPoints > kGdiMostClipPoints) {
        mDrawing.SetCutShort();
        return false;
    }
    return true;
}

void GdiContext::BeginPath()
{
    mPath.Clear();
    mInPath = true;
    mPathAtCurrent = false;
}

void GdiContext::AbortPath()
{
    mPath.Clear();
    mInPath = false;
}

void GdiContext::CloseFigure()
{
    if (mInPath) {
        mPath.Close();
        mPathAtCurrent = false;
    }
}

void GdiContext::FinishPath(bool stroke, bool fill)
{
    mInPath = false;
    mDrawing.AddPath(std::move(mPath), stroke ? DeviceStroke() : Stroke(),
                     fill ? DeviceFill() : Fill(), mState.clip, mState.rop);
    mPath.Clear();
}

void GdiContext::ClipToPath(quint32 mode)
{
    mInPath = false;
    ClipToRegion(mPath, mode);
    mPath.Clear();
}

void GdiContext::IntersectClip(const QRectF& box)
{
    Path path;
    path.AddRectangle(box);
    if (SpendClip(path)) {
        mState.clip = AddClip(mState.clip, ClipMode::Intersect, path.Mapped(ToDevice()), false);
    }
}

void GdiContext::ExcludeClip(const QRectF& box)
{
    Path path;
    path.AddRectangle(box);
    if (SpendClip(path)) {
        mState.clip = AddClip(mState.clip, ClipMode::Exclude, path.Mapped(ToDevice()), false);
    }
}

void GdiContext::OffsetClip(QPointF by)
{
    const QTransform toDevice = ToDevice();
    const QPointF move = toDevice.map(by) - toDevice.map(QPointF(0, 0));
    std::vector<const Clip*> steps;
    for (const Clip* step = mState.clip.get(); step; step = step->before.get()) {
        steps.push_back(step);
    }
    ClipPointer moved;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        if (!SpendClip((*step)->path)) {
            return;
        }
        moved = AddClip(moved, (*step)->mode,
                        (*step)->path.Mapped(QTransform::fromTranslate(move.x(), move.y())),
                        (*step)->winding);
    }
    mState.clip = moved;
}

void GdiContext::ClipToRegion(const Path& device, quint32 mode)
{
    if (mode == 5 && device.IsEmpty()) {
        mState.clip.reset();
        return;
    }
    if (!SpendClip(device)) {
        return;
    }
    const ClipMode kModes[] = {ClipMode::Intersect, ClipMode::Unite, ClipMode::Xor,
                               ClipMode::Exclude};
    if (mode >= 1 && mode <= 4) {
        // Where nothing is cut away yet, a union leaves everything.
        if (mode != 2 || mState.clip) {
            mState.clip = AddClip(mState.clip, kModes[mode - 1], device, mState.winding);
        }
    } else if (mode == 5) {
        mState.clip = AddClip({}, ClipMode::Intersect, device, mState.winding);
    }
}

TextRun GdiContext::RunOf(const TextOut& out) const
{
    const GdiFont& font = mState.font;
    TextRun run;
    run.text = out.text;
    run.family = font.family;
    run.serif = (font.pitchAndFamily & 0xf0) == 0x10;
    run.fixed = (font.pitchAndFamily & 0xf0) == 0x30 || (font.pitchAndFamily & 3) == 1;
    run.weight = font.weight <= 0 ? 400 : font.weight;
    run.italic = font.italic;
    run.underline = font.underline;
    run.strikeOut = font.strikeOut;
    run.height = font.height == 0 ? 12 : std::abs(font.height);
    run.heightOf = font.height > 0 ? TextHeight::Cell : TextHeight::Em;
    run.averageWidth = std::abs(font.width);
    run.extra = mState.textExtra;
    run.advances = out.advances;
    const quint32 across = mState.textAlign & 6;
    run.across = across == 6 ? Qt::AlignHCenter : across == 2 ? Qt::AlignRight : Qt::AlignLeft;
    const quint32 down = mState.textAlign & 0x18;
    run.down = down == 0x18 ? TextPlace::Baseline : down == 8 ? TextPlace::Bottom : TextPlace::Top;
    run.colour = mState.textColour;
    run.backed = mState.opaque && !out.opaque;
    run.back = mState.backColour;

    const QTransform toDevice = ToDevice();
    const QPointF at = toDevice.map(mState.textAlign & 1 ? mState.current : out.at);
    // Letters stand upright on the screen whichever way the axes of the page run; only a turned
    // world turns them.
    QTransform upright(toDevice.m11(), toDevice.m12(), toDevice.m21(), toDevice.m22(), 0, 0);
    if (mState.world.type() <= QTransform::TxScale) {
        upright = QTransform::fromScale(std::abs(toDevice.m11()), std::abs(toDevice.m22()));
    } else if (upright.determinant() < 0) {
        upright = QTransform::fromScale(1, -1) * upright;
    }
    QTransform turn;
    turn.rotate(-font.escapement / 10);
    run.place = turn * upright * QTransform::fromTranslate(at.x(), at.y());
    return run;
}

void GdiContext::Text(const TextOut& out)
{
    ClipPointer clip = mState.clip;
    if (out.opaque || out.clipped) {
        Path box;
        box.AddRectangle(out.box);
        const Path device = box.Mapped(ToDevice());
        if (out.opaque) {
            mDrawing.AddPath(device, Stroke(), GdiFill(0, mState.backColour, 0), mState.clip);
        }
        if (out.clipped && SpendClip(device)) {
            clip = AddClip(clip, ClipMode::Intersect, device, false);
        }
    }
    if (out.text.isEmpty()) {
        return;
    }
    double length = 0;
    for (const float advance : out.advances) {
        length += double(advance);
    }
    mDrawing.AddText(RunOf(out), clip);
    if (mState.textAlign & 1) {
        const double way =
            length > 0 ? length : 0.5 * std::abs(mState.font.height) * double(out.text.size());
        mState.current.rx() += (mState.textAlign & 6) == 2 ? -way
            : (mState.textAlign & 6) == 6                  ? 0
                                                           : way;
    }
}

void GdiContext::Bitmap(const Blit& blit)
{
    Picture picture;
    picture.image = blit.image;
    picture.part = blit.from;
    picture.pattern = DeviceFill();
    picture.pattern.winding = false;
    picture.opacity = blit.opacity;
    const quint8 rop = quint8(blit.rop >> 16);
    picture.smooth = rop == kRopSource && mState.stretchMode != 1;
    const QTransform unit = blit.place
        ? *blit.place
        : QTransform(blit.to.width(), 0, 0, blit.to.height(), blit.to.x(), blit.to.y());
    picture.place = unit * ToDevice();
    if (rop == 0xaa || (picture.image.isNull() && RopUsesSource(rop))) {
        return;
    }
    if (picture.image.isNull() || !RopUsesSource(rop)) {
        picture.image = QImage();
        if (!RopUsesPattern(rop)) {
            // Black, white or inverted, whatever the brush.
            picture.pattern = GdiFill(0, 0xff000000, 0);
        } else if (picture.pattern.style == Qt::NoBrush) {
            return;
        }
    }
    mDrawing.AddPicture(std::move(picture), mState.clip, rop);
}

void GdiContext::Gradient(const Path& logical, QRgb colour)
{
    mDrawing.AddPath(logical.Mapped(ToDevice()), Stroke(), GdiFill(0, colour, 0), mState.clip);
}

} // namespace quillane::drawing
