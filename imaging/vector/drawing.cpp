#include "imaging/vector/drawing.h"
#include <algorithm>
#include <cmath>

namespace quillane::drawing {

namespace {

constexpr int kMaxClipDepth = 200;

bool DrawingIsSane(const QTransform& place)
{
    const double values[] = {place.m11(), place.m12(), place.m21(),
                             place.m22(), place.dx(),  place.dy()};
    return place.isAffine() && std::all_of(std::begin(values), std::end(values), [](double value) {
               return std::abs(value) < 1e12;
           });
}

/// Index of a style in its list; the one used last is found again.
template <typename Style> quint32 DrawingStyle(std::vector<Style>& list, const Style& style)
{
    if (list.empty() || !(list.back() == style)) {
        list.push_back(style);
    }
    return quint32(list.size() - 1);
}

} // namespace

bool Fill::operator==(const Fill& other) const
{
    return style == other.style && colour == other.colour && winding == other.winding
        && backed == other.backed && back == other.back
        && pattern.cacheKey() == other.pattern.cacheKey();
}

ClipPointer AddClip(const ClipPointer& before, ClipMode mode, Path path, bool winding)
{
    if (!path.IsSane()) {
        return before;
    }
    const bool folds = before && !before->before && mode == ClipMode::Intersect
        && before->mode == ClipMode::Intersect && before->path.IsRectangle() && path.IsRectangle();
    auto clip = std::make_shared<Clip>();
    clip->mode = mode;
    clip->winding = winding;
    if (folds) {
        const QRectF common = before->path.Bounds().intersected(path.Bounds());
        clip->path.AddRectangle(common);
        return clip;
    }
    if (before && before->depth >= kMaxClipDepth) {
        return before;
    }
    clip->depth = before ? before->depth + 1 : 1;
    clip->before = before;
    clip->path = std::move(path);
    return clip;
}

bool Drawing::Reserve(qsizetype points, qsizetype letters, qsizetype bytes)
{
    mFull = mFull || qsizetype(mRecords.size()) >= kMaxRecords || mPoints + points > kMaxPoints
        || mLetters + letters > kMaxLetters;
    if (mFull || mPictureBytes + bytes > kMaxPictureBytes) {
        mCutShort = true;
        return false;
    }
    mPoints += points;
    mLetters += letters;
    mPictureBytes += bytes;
    return true;
}

void Drawing::Push(RecordKind kind, size_t index, const ClipPointer& clip, quint8 rop)
{
    Record record;
    record.kind = kind;
    record.rop = rop;
    record.index = quint32(index);
    record.clip = clip;
    mRecords.push_back(std::move(record));
}

void Drawing::AddPath(Path path, const Stroke& stroke, const Fill& fill, const ClipPointer& clip,
                      quint8 rop)
{
    const bool invisible = stroke.style == Qt::NoPen && fill.style == Qt::NoBrush;
    if (invisible || path.IsEmpty() || !path.IsSane()
        || !Reserve(qsizetype(path.Points().size()), 0, 0)) {
        return;
    }
    Shape shape;
    shape.path = std::move(path);
    shape.stroke = DrawingStyle(mStrokes, stroke);
    shape.fill = DrawingStyle(mFills, fill);
    mShapes.push_back(std::move(shape));
    Push(RecordKind::Path, mShapes.size() - 1, clip, rop);
}

void Drawing::AddText(TextRun run, const ClipPointer& clip, quint8 rop)
{
    if (run.text.isEmpty() || !(run.height > 0 && run.height < 1e9) || !DrawingIsSane(run.place)
        || !Reserve(0, run.text.size(), 0)) {
        return;
    }
    mTexts.push_back(std::move(run));
    Push(RecordKind::Text, mTexts.size() - 1, clip, rop);
}

void Drawing::AddPicture(Picture picture, const ClipPointer& clip, quint8 rop)
{
    if (!DrawingIsSane(picture.place) || !Reserve(0, 0, picture.image.sizeInBytes())) {
        return;
    }
    mPictures.push_back(std::move(picture));
    Push(RecordKind::Picture, mPictures.size() - 1, clip, rop);
}

QRectF Drawing::ExtentsOf(const Record& record, bool withText) const
{
    switch (record.kind) {
    case RecordKind::Path: {
        const Shape& shape = mShapes[record.index];
        const double half = StrokeOf(shape).style == Qt::NoPen ? 0 : StrokeOf(shape).width / 2;
        return shape.path.Bounds().adjusted(-half, -half, half, half);
    }
    case RecordKind::Text: {
        const TextRun& run = mTexts[record.index];
        if (!withText) {
            return {};
        }
        // Without its font the length of a run can only be guessed, rather too long.
        const double letter = run.heightOf == TextHeight::Capital ? 0.85 : 0.6;
        const double length =
            run.width > 0 ? run.width : letter * run.height * double(run.text.size()) * run.stretch;
        const double from = run.across == Qt::AlignLeft ? 0
            : run.across == Qt::AlignRight              ? -length
                                                        : -length / 2;
        const double top = run.down == TextPlace::Top ? 0
            : run.down == TextPlace::Middle           ? -run.height / 2
                                                      : -run.height;
        return run.place.mapRect(QRectF(from, top, length, 1.3 * run.height));
    }
    case RecordKind::Picture:
        return mPictures[record.index].place.mapRect(QRectF(0, 0, 1, 1));
    }
    return {};
}

QRectF Drawing::Extents(bool withText) const
{
    QRectF all;
    bool begun = false;
    const Clip* known = nullptr; // the clip whose first step is `first`
    const Clip* first = nullptr;
    for (const Record& record : mRecords) {
        QRectF box = ExtentsOf(record, withText).normalized();
        if (record.clip.get() != known) {
            known = first = record.clip.get();
            while (first && first->before) {
                first = first->before.get();
            }
        }
        if (first && first->mode == ClipMode::Intersect) {
            box = box.intersected(first->path.Bounds());
        }
        // A line along an axis has a box without area, which united() passes over.
        if (box.isNull()) {
            continue;
        }
        if (!begun) {
            all = box;
            begun = true;
            continue;
        }
        all = {QPointF(std::min(all.left(), box.left()), std::min(all.top(), box.top())),
               QPointF(std::max(all.right(), box.right()), std::max(all.bottom(), box.bottom()))};
    }
    return all;
}

} // namespace quillane::drawing
