#pragma once
#include "widgets/background_jobs.h"
#include "widgets/picture_source.h"
#include "widgets/tile_cache.h"
#include "widgets/view_geometry.h"
#include <QObject>
#include <memory>
#include <vector>

class QPainter;

namespace quillane {

/// Paints a picture of any size at any zoom. Only what is in sight is converted, by tiles that are
/// kept within a budget of about one and a quarter of the view. Below 200 % a device pixel is the
/// mean of the area that it covers, from 200 % on pixels are squares. What cannot be had within a
/// few milliseconds is made on another thread; until then something rougher is painted. For small
/// zooms of large pictures reduced copies are kept, the largest of a sixteenth of the pixels (of a
/// black-and-white picture a sixty-fourth).
class PicturePainter : public QObject {
    Q_OBJECT
public:
    explicit PicturePainter(QObject* parent = nullptr);
    ~PicturePainter() override;

    /// The picture to paint; an empty one for none. False where it is the one that is painted.
    bool SetPicture(const Bitmap& picture);
    /// An early reduced picture in the place of one of that size. It also serves while the full
    /// one, which SetPicture brings, is being worked on.
    void SetReduced(const QImage& early, QSize fullSize);

    /// Paints what of the picture lies in `exposed`; painter, geometry and rectangles are in device
    /// pixels. `view` is the whole view, for what is worth being made next.
    void Paint(QPainter& painter, const ViewGeometry& geometry, QSize view, const QRect& exposed);
    /// A part of the picture painted at the size `shown`, as good as it can be had at once.
    QImage PartAtOnce(QSize shown, const QRect& part) const;

    /// Pixels of the picture; empty for none.
    QSize PictureSize() const { return mFull.IsEmpty() ? mEarly.picture : mFull.picture; }
    bool HasAlpha() const; ///< whether something shows through it
    /// Whether what was painted last is as good as it gets.
    bool IsFinished() const;
    /// Memory of tiles and reduced copies.
    qint64 Bytes() const;
    qint64 TileBytes() const { return mTiles.Bytes(); }
    static constexpr int kTileSide = 256; ///< device pixels

Q_SIGNALS:
    /// A part of the picture can be painted better; device pixels, counted from the picture's
    /// upper left corner.
    void better(const QRect& part);

private:
    struct Choice {
        const PictureSource* source = nullptr;
        bool best = false; ///< nothing better is being made
    };
    void Restart();
    Choice Choose(QSize shown) const;
    bool WantsReduced(QSize shown) const;
    void MakeReduced();
    void TakeReduced(std::vector<PictureSource> copies);
    bool PaintDirectly(QPainter& painter, const ViewGeometry& geometry, const QRect& seen) const;
    const Tile& TileFor(const TileKey& key, qint64 nanosecondsLeft);
    qint64 GuessedCost() const;
    void NoteCost(qint64 nanoseconds);
    QImage Rough(QSize shown, const QRect& part) const;
    static QImage Good(const PictureSource& source, QSize shown, const QRect& part,
                       const StopFlag* stop);
    static QRect TileRect(const TileKey& key);
    void Wish(const TileKey& key);
    void MakeNext();

    enum class Reduced { None, Making, Ready, Failed };

    PictureSource mFull;
    PictureSource mEarly;
    std::vector<PictureSource> mReduced; ///< from large to small
    Reduced mReducedState = Reduced::None;
    TileCache mTiles;
    std::vector<TileKey> mWishes;
    QSize mShown;         ///< size at which the picture was painted last
    QRect mInSight;       ///< what of that was in the view
    qint64 mTileCost = 0; ///< nanoseconds that a good tile takes at that size
    bool mMaking = false;
    bool mStale = false; ///< something better came that has not been painted
    quint64 mPicture = 0;
    std::shared_ptr<StopFlag> mStop;
    BackgroundJobs mTileJobs{1};
    BackgroundJobs mReducedJobs{1};
};

} // namespace quillane
