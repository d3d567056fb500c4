#pragma once
// What a dialog shows of an operation while its values are chosen: the operation runs on a small
// copy of the picture, or on the part of it in sight, and gives what the whole would look like.
#include "imaging/bitmap.h"
#include "imaging/region.h"
#include <QImage>
#include <QPointF>
#include <QSize>
#include <functional>
#include <optional>

namespace quillane {

/// What an operation is tried on.
struct EffectInput {
    const Bitmap& picture;
    const Region* region = nullptr; ///< on that picture; null for all of it
    double reduction = 1;           ///< pixels of the whole picture for one of this, 1 or more
    /// Where the picture is a part of a larger one: a reduced copy of that. Else null.
    const Bitmap* whole = nullptr;
    const Region* wholeRegion = nullptr;
};
/// The operation with the values that are chosen now.
using EffectWork = std::function<Bitmap(const EffectInput&)>;

/// What an operation looks at to make a pixel, which says on which copy it can be tried.
enum class EffectReach : quint8 {
    Own,     ///< the pixel, or pixels at a distance that can be scaled along
    Whole,   ///< figures of the whole picture too; a reduced copy has the same
    Near,    ///< single pixels around it: a reduced copy would show something else
    Palette, ///< colours of the whole picture, mixed by single pixels
    Turn,    ///< moves pixels, so that no part can be told from the same part before
};

/// An operation to be tried.
struct EffectWish {
    EffectWork work; ///< none: the picture as it is
    EffectReach reach = EffectReach::Own;
    qint32 margin = 0; ///< how many pixels around a part it looks at
    qint32 grid = 1;   ///< parts begin and end at multiples of it, counted as the operation does
};

/// What is to be seen of the picture.
struct PreviewView {
    bool fit = true; ///< all of it; else a part, pixel for pixel
    QSize room;      ///< pixels of the screen there are
    QPointF centre;  ///< pixel of the picture in the middle, when not `fit`
};

/// What there is to be seen, all of one size but where the operation changes the picture's.
struct PreviewLook {
    QImage before, after; ///< ready for the screen
    QImage outline;       ///< the edge of the region over `after`; null without one
    QString failure;      ///< words where the operation failed; `after` is as before then
};

/// The largest size of a picture's shape that fits, at least a pixel and never larger than it.
QSize PreviewFit(QSize picture, QSize room);
/// The part in sight around a centre, moved to lie on the picture.
QRect PreviewPart(QSize picture, QSize room, QPointF centre);
/// The part that an operation must be given to be right in `part`.
QRect PreviewWorked(const QRect& part, QSize picture, QPoint gridOrigin, const EffectWish& wish);
/// A distance of so many pixels on a reduced copy; what is 1 or less stays.
qint32 ReducedSize(qint32 size, double reduction);
/// The picture at a smaller size, each pixel the mean of what it stands for, in memory of a few
/// megabytes more than the result.
Bitmap ReducedPicture(const Bitmap& picture, QSize size);
/// The region on a copy of that size; one of no pixels any more becomes a single pixel, so that
/// it is still a region.
Region ReducedRegion(const Region& region, QSize picture, QSize size);
/// The edge of a region in dashes of black and white on nothing: what of it lies in a part of its
/// picture, of that part's size.
QImage RegionOutline(const Region& region, const QRect& part);

/// A picture and its reduced copies. Not for two threads at a time.
class PreviewSource {
public:
    PreviewSource(Bitmap picture, Region region);
    QSize PictureSize() const { return mPicture.Pixels().size(); }
    /// What the wish looks like; a Failure of it is told in words. A draft is quick, and rougher
    /// where HasDraft says so.
    PreviewLook Look(const PreviewView& view, const EffectWish& wish, bool draft = false);
    /// Whether a draft would be another than the look itself. For any thread.
    bool HasDraft(const PreviewView& view, const EffectWish& wish) const;

private:
    struct Copy {
        Bitmap picture;
        Region region;
        double reduction = 1;
        QImage shown;   ///< the picture at the size of the room
        QImage outline; ///< of the region on it
        QSize shownSize;
    };
    const Copy& ReducedTo(std::optional<Copy>& kept, QSize size);
    PreviewLook LookFitted(QSize room, const EffectWish& wish, bool draft);
    PreviewLook LookAtPart(const PreviewView& view, const EffectWish& wish, bool draft);
    QSize WorkSize(QSize fitted, EffectReach reach, bool draft) const;
    const Region* RegionOf(const Copy& copy) const
    {
        return mRegion.IsEmpty() ? nullptr : &copy.region;
    }

    Bitmap mPicture;
    Region mRegion;
    QRect mPart;                 ///< that was looked at last in full size
    QImage mPartOutline;         ///< of the region on it
    std::optional<Copy> mFitted; ///< of the room's size
    std::optional<Copy> mDraft;  ///< of more pixels, for a draft
    std::optional<Copy> mFine;   ///< of as many as are worked on
};

} // namespace quillane
