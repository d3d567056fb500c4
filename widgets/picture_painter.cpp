#include "widgets/picture_painter.h"
#include <QElapsedTimer>
#include <QPainter>
#include <algorithm>
#include <utility>

namespace quillane {

namespace {

constexpr qint64 kPainterLeastBudget = 8ll << 20;  ///< bytes of tiles
constexpr qint64 kPainterAtOnce = 6'000'000;       ///< nanoseconds of a paint for good tiles
constexpr qint64 kPainterSmallPicture = 1'500'000; ///< pixels, for which copies do not pay
constexpr int kPainterLeastReduced = 512;          ///< longer side of the last reduced copy
constexpr size_t kPainterTilesOfAJob = 4;
constexpr double kPainterReducedAtOnce = 25e6; ///< nanoseconds for copies on the window thread
constexpr double kPainterPixel = 2;            ///< nanoseconds that a pixel may take at first guess
constexpr double kPainterConvertedPixel = 15;  ///< the same with a profile
constexpr double kPainterSquares = 2.0;        ///< from this zoom on, pixels are shown as squares

/// Nanoseconds that working on a pixel may take, at first guess.
double PainterPixelCost(const PictureSource& source)
{
    return source.bitmap.Icc().isEmpty() ? kPainterPixel : kPainterConvertedPixel;
}

int PainterFirstFactor(const PictureSource& source)
{
    return source.bitmap.Pixels().format() == QImage::Format_Mono ? 8 : 4;
}

/// From large to small; none where there is no memory, fewer when stopped.
std::vector<PictureSource> PainterReducedCopies(const PictureSource& full, const StopFlag& stop)
{
    std::vector<PictureSource> copies;
    PictureSource next = ReducedBy(PainterFirstFactor(full), full, &stop);
    while (!next.IsEmpty()) {
        copies.push_back(next);
        if (std::max(next.extent.width(), next.extent.height()) <= kPainterLeastReduced) {
            break;
        }
        next = ReducedBy(4, next, &stop);
    }
    return copies;
}

} // namespace

PicturePainter::PicturePainter(QObject* parent)
    : QObject(parent),
      mTiles(kPainterLeastBudget),
      mStop(std::make_shared<StopFlag>(false))
{ }

PicturePainter::~PicturePainter()
{
    mStop->store(true);
}

void PicturePainter::Restart()
{
    mStop->store(true);
    mStop = std::make_shared<StopFlag>(false);
    ++mPicture;
    mReduced.clear();
    mReducedState = Reduced::None;
    mTiles.Clear();
    mWishes.clear();
    mMaking = false;
    mStale = true;
}

bool PicturePainter::SetPicture(const Bitmap& picture)
{
    const Bitmap& old = mFull.bitmap;
    if (mEarly.IsEmpty() || !mFull.IsEmpty()) {
        if (old.Pixels().cacheKey() == picture.Pixels().cacheKey() && old.Model() == picture.Model()
            && old.Icc() == picture.Icc()) {
            return false;
        }
    }
    const bool follows = mFull.IsEmpty() && mEarly.picture == picture.Pixels().size();
    if (!follows) {
        mEarly = {};
    }
    mFull = picture.IsNull() ? PictureSource() : PictureSource::Whole(picture);
    Restart();
    return true;
}

void PicturePainter::SetReduced(const QImage& early, QSize fullSize)
{
    mFull = {};
    mEarly = early.isNull() || fullSize.isEmpty() ? PictureSource()
                                                  : PictureSource::StandIn(early, fullSize);
    Restart();
}

bool PicturePainter::HasAlpha() const
{
    return mFull.IsEmpty() ? mEarly.HasAlpha() : mFull.HasAlpha();
}

bool PicturePainter::IsFinished() const
{
    return !mStale && mWishes.empty() && !mMaking && mReducedState != Reduced::Making;
}

qint64 PicturePainter::Bytes() const
{
    qint64 bytes = mTiles.Bytes() + mEarly.Bytes();
    for (const PictureSource& reduced : mReduced) {
        bytes += reduced.Bytes();
    }
    return bytes;
}

QRect PicturePainter::TileRect(const TileKey& key)
{
    return QRect(key.column * kTileSide, key.row * kTileSide, kTileSide, kTileSide)
        .intersected(QRect(QPoint(), key.shown));
}

bool PicturePainter::WantsReduced(QSize shown) const
{
    if (mFull.IsEmpty()
        || qint64(mFull.picture.width()) * mFull.picture.height() < kPainterSmallPicture) {
        return false;
    }
    const int factor = PainterFirstFactor(mFull);
    return qint64(shown.width()) * factor <= mFull.picture.width();
}

PicturePainter::Choice PicturePainter::Choose(QSize shown) const
{
    if (mFull.IsEmpty()) {
        return {mEarly.IsEmpty() ? nullptr : &mEarly, true};
    }
    const PictureSource* best = &mFull;
    for (const PictureSource& reduced : mReduced) {
        if (reduced.ReachesTo(shown)) {
            best = &reduced;
        }
    }
    const bool waits = best == &mFull && mReducedState != Reduced::Ready
        && mReducedState != Reduced::Failed && WantsReduced(shown);
    return {best, !waits};
}

void PicturePainter::MakeReduced()
{
    if (mReducedState != Reduced::None) {
        return;
    }
    const double pixels = double(mFull.picture.width()) * mFull.picture.height();
    if (pixels * PainterPixelCost(mFull) <= kPainterReducedAtOnce) {
        TakeReduced(PainterReducedCopies(mFull, *mStop));
        return;
    }
    mReducedState = Reduced::Making;
    const auto made = std::make_shared<std::vector<PictureSource>>();
    mReducedJobs.Run(
        [made, full = mFull, stop = mStop] { *made = PainterReducedCopies(full, *stop); },
        [this, made, picture = mPicture] {
            if (picture == mPicture) {
                TakeReduced(std::move(*made));
                mStale = true;
                Q_EMIT better(QRect());
            }
        });
}

void PicturePainter::TakeReduced(std::vector<PictureSource> copies)
{
    mReduced = std::move(copies);
    mReducedState = mReduced.empty() ? Reduced::Failed : Reduced::Ready;
    mEarly = {};
    mTileCost = GuessedCost();
}

/// Before a tile was made at this size: by the pixels of the source that it covers.
qint64 PicturePainter::GuessedCost() const
{
    const PictureSource* const source = Choose(mShown).source;
    if (!source) {
        return 0;
    }
    const double across = std::max(1.0, source->extent.width() / mShown.width());
    const double down = std::max(1.0, source->extent.height() / mShown.height());
    return qint64(across * down * kTileSide * kTileSide * PainterPixelCost(*source));
}

QImage PicturePainter::Good(const PictureSource& source, QSize shown, const QRect& part,
                            const StopFlag* stop)
{
    const bool standsIn = source.extent.width() < source.picture.width();
    const double zoom = double(shown.width()) / source.picture.width();
    if (standsIn && !source.ReachesTo(shown)) {
        return SoftPart(source, shown, part);
    }
    return zoom >= kPainterSquares ? NearestPart(source, shown, part)
                                   : MeanPart(source, shown, part, stop);
}

QImage PicturePainter::Rough(QSize shown, const QRect& part) const
{
    const PictureSource* source = nullptr;
    for (const PictureSource& reduced : mReduced) {
        if (!source || reduced.ReachesTo(shown)) {
            source = &reduced;
        }
    }
    if (!source) {
        source = mEarly.IsEmpty() ? &mFull : &mEarly;
    }
    return source->ReachesTo(shown) ? NearestPart(*source, shown, part)
                                    : SoftPart(*source, shown, part);
}

QImage PicturePainter::PartAtOnce(QSize shown, const QRect& part) const
{
    const Choice choice = Choose(shown);
    if (!choice.source) {
        return {};
    }
    return choice.best ? Good(*choice.source, shown, part, nullptr) : Rough(shown, part);
}

bool PicturePainter::PaintDirectly(QPainter& painter, const ViewGeometry& geometry,
                                   const QRect& seen) const
{
    const QImage& pixels = mFull.bitmap.Pixels();
    const bool ready = pixels.format() == QImage::Format_RGB32
        || pixels.format() == QImage::Format_ARGB32_Premultiplied;
    if (mFull.IsEmpty() || geometry.shown != mFull.picture || !ready
        || !mFull.bitmap.Icc().isEmpty()) {
        return false;
    }
    painter.drawImage(seen.topLeft(), pixels, seen.translated(-geometry.origin));
    return true;
}

void PicturePainter::NoteCost(qint64 nanoseconds)
{
    mTileCost = (mTileCost + nanoseconds) / 2;
}

const Tile& PicturePainter::TileFor(const TileKey& key, qint64 nanosecondsLeft)
{
    const Tile* tile = mTiles.Find(key);
    if (tile && !tile->rough) {
        return *tile;
    }
    const Choice choice = Choose(key.shown);
    if (choice.best && mTileCost <= nanosecondsLeft) {
        QElapsedTimer clock;
        clock.start();
        Tile good{Good(*choice.source, key.shown, TileRect(key), nullptr), false};
        NoteCost(clock.nsecsElapsed());
        mTiles.Put(key, std::move(good));
    } else {
        if (!tile) {
            mTiles.Put(key, {Rough(key.shown, TileRect(key)), true});
        }
        if (choice.best) {
            Wish(key);
        }
    }
    return *mTiles.Find(key);
}

void PicturePainter::Paint(QPainter& painter, const ViewGeometry& geometry, QSize view,
                           const QRect& exposed)
{
    mStale = false;
    const QRect target(geometry.origin, geometry.shown);
    const QRect seen = target.intersected(exposed);
    mInSight = QRect(QPoint(), view).intersected(target).translated(-geometry.origin);
    if (mShown != geometry.shown) {
        mShown = geometry.shown;
        mTileCost = GuessedCost();
    }
    std::erase_if(mWishes, [&](const TileKey& key) {
        const Tile* const tile = mTiles.Find(key);
        return key.shown != geometry.shown || !TileRect(key).intersects(mInSight)
            || (tile && !tile->rough);
    });
    if (seen.isEmpty() || !Choose(geometry.shown).source
        || PaintDirectly(painter, geometry, seen)) {
        return;
    }
    if (WantsReduced(mShown)) {
        MakeReduced();
    }
    const qint64 tilesOfView =
        (mInSight.width() / kTileSide + 2) * qint64(mInSight.height() / kTileSide + 2);
    mTiles.SetBudget(
        std::max(kPainterLeastBudget, tilesOfView * kTileSide * kTileSide * 4 * 5 / 4));
    const QRect part = seen.translated(-geometry.origin);
    QElapsedTimer clock;
    clock.start();
    for (int row = part.top() / kTileSide; row <= part.bottom() / kTileSide; ++row) {
        for (int column = part.left() / kTileSide; column <= part.right() / kTileSide; ++column) {
            const TileKey key{geometry.shown, column, row};
            const Tile& tile = TileFor(key, kPainterAtOnce - clock.nsecsElapsed());
            const QRect from = TileRect(key).intersected(part);
            painter.drawImage(from.topLeft() + geometry.origin, tile.image,
                              from.translated(-TileRect(key).topLeft()));
        }
    }
    MakeNext();
}

void PicturePainter::Wish(const TileKey& key)
{
    if (std::find(mWishes.begin(), mWishes.end(), key) == mWishes.end()) {
        mWishes.push_back(key);
    }
}

void PicturePainter::MakeNext()
{
    if (mMaking || mWishes.empty()) {
        return;
    }
    const Choice choice = Choose(mWishes.front().shown);
    if (!choice.best) {
        return;
    }
    const size_t count = std::min(mWishes.size(), kPainterTilesOfAJob);
    using Made = std::vector<std::pair<TileKey, QImage>>;
    const auto made = std::make_shared<Made>();
    const auto spent = std::make_shared<qint64>(0);
    made->reserve(count);
    for (size_t i = 0; i < count; ++i) {
        made->emplace_back(mWishes[i], QImage());
    }
    mWishes.erase(mWishes.begin(), mWishes.begin() + qsizetype(count));
    mMaking = true;
    mTileJobs.Run(
        [made, spent, source = *choice.source, stop = mStop] {
            QElapsedTimer clock;
            clock.start();
            for (auto& [key, image] : *made) {
                image = Good(source, key.shown, TileRect(key), stop.get());
            }
            *spent = clock.nsecsElapsed() / qint64(made->size());
        },
        [this, made, spent, picture = mPicture] {
            if (picture != mPicture) {
                return;
            }
            mMaking = false;
            QRect changed;
            for (auto& [key, image] : *made) {
                if (key.shown == mShown && TileRect(key).intersects(mInSight)) {
                    changed |= TileRect(key);
                    NoteCost(*spent);
                }
                mTiles.Put(key, {std::move(image), false});
            }
            if (changed.isEmpty()) {
                MakeNext();
                return;
            }
            mStale = true;
            MakeNext();
            Q_EMIT better(changed);
        });
}

} // namespace quillane
