#include "viewer/effect_preview.h"
#include "core/failure.h"
#include "imaging/processing/cut_out.h"
#include "imaging/processing/geometry.h"
#include "imaging/resize.h"
#include <algorithm>
#include <cmath>
#include <cstring>

namespace quillane {

namespace {

/// Operations on single pixels are tried on so many at most.
constexpr qint64 kNearPixels = 16'000'000;
/// The same while values change from moment to moment.
constexpr qint64 kDraftPixels = 1'500'000;
/// Palettes are sought among so many at most.
constexpr qint64 kPalettePixels = 1'000'000;
/// From here on a picture of few bits is reduced strip by strip: its colours in full would need
/// many times its memory.
constexpr qint64 kStripPixels = 4'000'000;
constexpr int kOutlineDash = 4; // pixels

/// A look around that far is drafted at half the size.
constexpr qint32 kWideMargin = 8;

bool PreviewIsDeep(const Bitmap& picture)
{
    const QImage::Format format = picture.Pixels().format();
    return format == QImage::Format_Grayscale16 || format == QImage::Format_RGBX64
        || format == QImage::Format_RGBA64;
}

/// A deep picture with 8 bits a channel, as a screen shows it; any other as it is.
Bitmap PreviewShallow(const Bitmap& picture)
{
    if (!PreviewIsDeep(picture)) {
        return picture;
    }
    const QImage& pixels = picture.Pixels();
    const bool grey = pixels.format() == QImage::Format_Grayscale16;
    const bool alpha = pixels.format() == QImage::Format_RGBA64;
    Bitmap shallow(pixels.convertToFormat(grey        ? QImage::Format_Grayscale8
                                              : alpha ? QImage::Format_ARGB32
                                                      : QImage::Format_RGB32),
                   picture.Model(), picture.FileDepth());
    shallow.SetIcc(picture.Icc());
    return shallow;
}

/// What the wish makes of a piece, made at half its size.
Bitmap HalfSizedDraft(const Bitmap& piece, const Region& region, const EffectWish& wish)
{
    const QSize all = piece.Pixels().size();
    const QSize half((all.width() + 1) / 2, (all.height() + 1) / 2);
    const Bitmap small = ReducedPicture(piece, half);
    const Region inside = ReducedRegion(region, all, half);
    const Bitmap result = Resized(wish.work({small, region.IsEmpty() ? nullptr : &inside, 2}), all,
                                  ResizeWay::Resample);
    return region.IsEmpty() ? result : processing::PastedInto(piece, region, result, {});
}

qint64 PreviewPixels(QSize size)
{
    return qint64(size.width()) * size.height();
}

/// The size with at most so many pixels.
QSize PreviewCapped(QSize size, qint64 most)
{
    const double down = std::sqrt(double(most) / double(std::max<qint64>(1, PreviewPixels(size))));
    if (down >= 1) {
        return size;
    }
    return {std::max(1, int(size.width() * down)), std::max(1, int(size.height() * down))};
}

/// Strips of whole rows that each become one, so that no pixel is counted twice.
Bitmap ReducedInStrips(const Bitmap& picture, int factor)
{
    const QSize size = picture.Pixels().size();
    const int width = (size.width() + factor - 1) / factor;
    const int height = (size.height() + factor - 1) / factor;
    const int rows =
        std::max(factor, int(kStripPixels / std::max(1, size.width()) / factor * factor));
    Bitmap result;
    for (int top = 0; top < size.height(); top += rows) {
        const QRect strip(0, top, size.width(), std::min(rows, size.height() - top));
        const Bitmap part =
            Resized(processing::Trim(picture, strip),
                    {width, (strip.height() + factor - 1) / factor}, ResizeWay::Resample);
        if (result.IsNull()) {
            QImage pixels(width, height, part.Pixels().format());
            if (pixels.isNull()) {
                throw Failure(kFailureLimit,
                              QStringLiteral("There is not enough memory for a preview."));
            }
            result = Bitmap(pixels, part.Model(), part.FileDepth());
            result.SetIcc(part.Icc());
        }
        for (int y = 0; y < part.Height(); ++y) {
            std::memcpy(result.Pixels().scanLine(top / factor + y), part.Pixels().constScanLine(y),
                        size_t(part.Pixels().bytesPerLine()));
        }
    }
    return result;
}

int PreviewGridDown(int place, int origin, int grid)
{
    return origin + int(std::floor(double(place - origin) / grid)) * grid;
}

int PreviewGridUp(int place, int origin, int grid)
{
    return origin + int(std::ceil(double(place - origin) / grid)) * grid;
}

} // namespace

QSize PreviewFit(QSize picture, QSize room)
{
    if (picture.isEmpty() || room.isEmpty()) {
        return {1, 1};
    }
    const double fit = std::min(
        {1.0, double(room.width()) / picture.width(), double(room.height()) / picture.height()});
    return {std::clamp(int(std::lround(picture.width() * fit)), 1, picture.width()),
            std::clamp(int(std::lround(picture.height() * fit)), 1, picture.height())};
}

QRect PreviewPart(QSize picture, QSize room, QPointF centre)
{
    const QSize size = room.boundedTo(picture).expandedTo({1, 1});
    const auto start = [](double middle, int side, int all) {
        return std::clamp(int(std::lround(middle - side / 2.0)), 0, std::max(0, all - side));
    };
    return {QPoint(start(centre.x(), size.width(), picture.width()),
                   start(centre.y(), size.height(), picture.height())),
            size};
}

QRect PreviewWorked(const QRect& part, QSize picture, QPoint gridOrigin, const EffectWish& wish)
{
    const int grid = std::max(1, wish.grid);
    const QRect wide = part.adjusted(-wish.margin, -wish.margin, wish.margin, wish.margin);
    const QPoint from(PreviewGridDown(wide.left(), gridOrigin.x(), grid),
                      PreviewGridDown(wide.top(), gridOrigin.y(), grid));
    const QPoint end(PreviewGridUp(wide.right() + 1, gridOrigin.x(), grid),
                     PreviewGridUp(wide.bottom() + 1, gridOrigin.y(), grid));
    return QRect(from, QSize(end.x() - from.x(), end.y() - from.y())) & QRect(QPoint(), picture);
}

qint32 ReducedSize(qint32 size, double reduction)
{
    return size <= 1 ? size : std::max(1, int(std::lround(size / reduction)));
}

Bitmap ReducedPicture(const Bitmap& picture, QSize size)
{
    const QSize from = picture.Pixels().size();
    const int factor = std::min(from.width() / std::max(1, size.width()),
                                from.height() / std::max(1, size.height()));
    const bool fewBits =
        picture.Model() == ColourModel::BlackWhite || picture.Model() == ColourModel::Palette;
    if (!fewBits || factor < 2 || PreviewPixels(from) < kStripPixels) {
        return Resized(picture, size, ResizeWay::Resample);
    }
    return Resized(ReducedInStrips(picture, factor), size, ResizeWay::Resample);
}

Region ReducedRegion(const Region& region, QSize picture, QSize size)
{
    if (region.IsEmpty() || picture.isEmpty() || picture == size) {
        return region;
    }
    const double across = double(size.width()) / picture.width();
    const double down = double(size.height()) / picture.height();
    const QRect bounds = region.Bounds();
    const int left = std::min(int(std::lround(bounds.left() * across)), size.width() - 1);
    const int top = std::min(int(std::lround(bounds.top() * down)), size.height() - 1);
    const int width =
        std::max(1, int(std::lround((bounds.left() + bounds.width()) * across)) - left);
    const int height = std::max(1, int(std::lround((bounds.top() + bounds.height()) * down)) - top);
    const Region box = Region::Rectangle(size, left, top, width, height);
    if (region.IsRectangle()) {
        return box;
    }
    const Bitmap mask = ReducedPicture(Bitmap(region.Mask(), ColourModel::Grey, 8),
                                       box.Bounds().size().boundedTo(bounds.size()));
    QImage all(size, QImage::Format_Grayscale8);
    all.fill(0);
    for (int y = 0; y < mask.Height(); ++y) {
        std::memcpy(all.scanLine(box.Bounds().top() + y) + box.Bounds().left(),
                    mask.Pixels().constScanLine(y), size_t(mask.Width()));
    }
    const Region found = Region::ColourMatch(Bitmap(all, ColourModel::Grey, 8), qRgb(128, 128, 128),
                                             qRgb(255, 255, 255));
    return found.IsEmpty() ? Region::Rectangle(size, left, top, 1, 1) : found;
}

QImage RegionOutline(const Region& region, const QRect& part)
{
    QImage outline(part.size(), QImage::Format_ARGB32_Premultiplied);
    outline.fill(Qt::transparent);
    const QRect bounds = region.Bounds();
    const QRect seen = bounds & part;
    const auto edge = [&](int x, int y) {
        return region.Contains(x, y)
            && !(region.Contains(x - 1, y) && region.Contains(x + 1, y) && region.Contains(x, y - 1)
                 && region.Contains(x, y + 1));
    };
    for (int y = seen.top(); y <= seen.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(outline.scanLine(y - part.top()));
        const bool inner = region.IsRectangle() && y > bounds.top() && y < bounds.bottom();
        for (int x = seen.left(); x <= seen.right(); ++x) {
            if (inner && x > bounds.left() && x < bounds.right()) {
                x = bounds.right(); // nothing between the sides
            }
            if (x <= seen.right() && edge(x, y)) {
                row[x - part.left()] =
                    (x + y) / kOutlineDash % 2 == 0 ? qRgb(0, 0, 0) : qRgb(255, 255, 255);
            }
        }
    }
    return outline;
}

PreviewSource::PreviewSource(Bitmap picture, Region region)
    : mPicture(std::move(picture)),
      mRegion(std::move(region))
{ }

QSize PreviewSource::WorkSize(QSize fitted, EffectReach reach, bool draft) const
{
    switch (reach) {
    case EffectReach::Near:
        return PreviewCapped(PictureSize(), draft ? kDraftPixels : kNearPixels).expandedTo(fitted);
    case EffectReach::Palette:
        return draft ? fitted : PreviewCapped(PictureSize(), kPalettePixels).expandedTo(fitted);
    default:
        return fitted;
    }
}

const PreviewSource::Copy& PreviewSource::ReducedTo(std::optional<Copy>& kept, QSize size)
{
    if (!kept || kept->picture.Pixels().size() != size) {
        Copy copy;
        copy.picture = ReducedPicture(mPicture, size);
        copy.region = ReducedRegion(mRegion, PictureSize(), size);
        copy.reduction = double(mPicture.Width()) / size.width();
        kept = std::move(copy);
    }
    return *kept;
}

bool PreviewSource::HasDraft(const PreviewView& view, const EffectWish& wish) const
{
    if (!wish.work || mPicture.IsNull()) {
        return false;
    }
    if (PreviewIsDeep(mPicture) && wish.reach != EffectReach::Palette) {
        return true;
    }
    if (!view.fit && wish.reach != EffectReach::Turn) {
        return wish.margin >= kWideMargin;
    }
    const QSize fitted = PreviewFit(PictureSize(), view.room);
    return WorkSize(fitted, wish.reach, true) != WorkSize(fitted, wish.reach, false);
}

PreviewLook PreviewSource::LookFitted(QSize room, const EffectWish& wish, bool draft)
{
    const QSize fitted = PreviewFit(PictureSize(), room);
    PreviewLook look;
    const Copy& small = ReducedTo(mFitted, fitted);
    if (mFitted->shownSize != fitted) {
        mFitted->shown = small.picture.ToDisplay();
        mFitted->outline =
            mRegion.IsEmpty() ? QImage() : RegionOutline(small.region, QRect({}, fitted));
        mFitted->shownSize = fitted;
    }
    look.before = mFitted->shown;
    look.after = look.before;
    if (wish.work) {
        const QSize size = WorkSize(fitted, wish.reach, draft);
        const Copy& worked = size == fitted ? small : ReducedTo(draft ? mDraft : mFine, size);
        const Bitmap tried = draft ? PreviewShallow(worked.picture) : worked.picture;
        const Bitmap result =
            wish.work({tried, RegionOf(worked), worked.reduction, nullptr, nullptr});
        // What became larger is shown whole, what became smaller at the same reduction.
        const QSize shown =
            wish.reach == EffectReach::Turn ? PreviewFit(result.Pixels().size(), room) : fitted;
        look.after = Resized(result, shown, ResizeWay::Resample).ToDisplay();
    }
    if (look.after.size() == fitted) {
        look.outline = mFitted->outline;
    }
    return look;
}

PreviewLook PreviewSource::LookAtPart(const PreviewView& view, const EffectWish& wish, bool draft)
{
    const QSize all = PictureSize();
    const QRect part = PreviewPart(all, view.room, view.centre);
    const QPoint origin = mRegion.IsEmpty() ? QPoint() : mRegion.Bounds().topLeft();
    const QRect worked = PreviewWorked(part, all, origin, wish);
    const Bitmap piece = processing::Trim(mPicture, worked);
    const QRect inside = part.translated(-worked.topLeft());
    PreviewLook look;
    look.before = processing::Trim(piece, inside).ToDisplay();
    look.after = look.before;
    const Region region = mRegion.Moved(worked.size(), -worked.left(), -worked.top());
    if (!mRegion.IsEmpty() && mPart != part) {
        mPartOutline = RegionOutline(mRegion, part);
        mPart = part;
    }
    look.outline = mPartOutline;
    if (!wish.work || (!mRegion.IsEmpty() && region.IsEmpty())) {
        return look;
    }
    const Bitmap tried =
        draft && wish.reach != EffectReach::Palette ? PreviewShallow(piece) : piece;
    if (draft && wish.margin >= kWideMargin) {
        look.after = processing::Trim(HalfSizedDraft(tried, region, wish), inside).ToDisplay();
        return look;
    }
    EffectInput input{tried, region.IsEmpty() ? nullptr : &region, 1, nullptr, nullptr};
    if (wish.reach == EffectReach::Whole || wish.reach == EffectReach::Palette) {
        const Copy& small = ReducedTo(mFitted, PreviewFit(all, view.room));
        input.whole = &small.picture;
        input.wholeRegion = RegionOf(small);
    }
    if (wish.grid > 1 && !region.IsEmpty() && !region.IsRectangle()) {
        // Squares are counted from the bounds of the whole shape, not of what is left of it here.
        const QRect bounds = mRegion.Bounds().translated(-worked.topLeft());
        const Region box = Region::Rectangle(worked.size(), bounds.left(), bounds.top(),
                                             bounds.width(), bounds.height());
        input.region = &box;
        const Bitmap squares = wish.work(input);
        look.after = processing::Trim(processing::PastedInto(tried, region, squares, {}), inside)
                         .ToDisplay();
        return look;
    }
    look.after = processing::Trim(wish.work(input), inside).ToDisplay();
    return look;
}

PreviewLook PreviewSource::Look(const PreviewView& view, const EffectWish& wish, bool draft)
{
    if (mPicture.IsNull() || view.room.isEmpty()) {
        return {};
    }
    const auto look = [&](const EffectWish& tried) {
        return view.fit || tried.reach == EffectReach::Turn ? LookFitted(view.room, tried, draft)
                                                            : LookAtPart(view, tried, draft);
    };
    try {
        return look(wish);
    } catch (const Failure& failure) {
        PreviewLook plain;
        ResumeNext([&] { plain = look({{}, wish.reach, 0, 1}); });
        plain.failure = failure.Description();
        return plain;
    }
}

} // namespace quillane
