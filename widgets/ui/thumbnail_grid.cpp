#include "widgets/ui/thumbnail_grid.h"

#include "core/native_path.h"
#include "core/paths.h"
#include "widgets/file_tip.h"
#include "widgets/label_lines.h"
#include "widgets/ui/cell_paint.h"

#include <QMetaObject>
#include <QPainter>
#include <algorithm>
#include <utility>

namespace quillane {

namespace {

constexpr qint64 kThumbnailBudget = 48 * 1024 * 1024;
constexpr int kThumbnailPad = 6; // around picture and label, logical pixels
constexpr int kThumbnailLabelGap = 4;
constexpr int kThumbnailSpacing = 6; // between cells
constexpr int kSmallestThumbnail = 16;
constexpr int kLargestThumbnail = 1024;
constexpr int kDragPicture = 96;

} // namespace

ThumbnailGrid::ThumbnailGrid(QWidget* parent)
    : CellView(parent),
      mStore(kThumbnailBudget),
      mBudget(kThumbnailBudget)
{
    setAccessibleName(tr("Thumbnails"));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(this, &CellView::visibleRangeChanged, this, [this] { QueueWanted(); });
}

ThumbnailGrid::~ThumbnailGrid() = default;

void ThumbnailGrid::Clear()
{
    mCells.clear();
    mCells.shrink_to_fit();
    mStore.Clear();
    mFailures.clear();
    mStock.clear();
    mTexts.clear();
    mWanted.clear();
    CellsCleared();
}

int ThumbnailGrid::Add(const QString& path, QSize pixels)
{
    mCells.push_back({path, NewId(), pixels.width(), pixels.height()});
    CellsAppended(1);
    return Count() - 1;
}

void ThumbnailGrid::AddBatch(const QVector<QString>& paths)
{
    for (const QString& path : paths) {
        mCells.push_back({path, NewId(), 0, 0});
    }
    CellsAppended(int(paths.size()));
}

void ThumbnailGrid::InsertBefore(int index, const QString& path, const QImage& picture,
                                 QSize pixels)
{
    index = std::clamp(index, 0, Count());
    mCells.insert(mCells.begin() + index, {path, NewId(), pixels.width(), pixels.height()});
    CellsInserted(index, 1);
    if (!picture.isNull()) {
        SetThumbnail(index, picture);
    }
    QueueWanted();
}

void ThumbnailGrid::RemoveAt(int index)
{
    if (Has(index)) {
        Forget(mCells[size_t(index)]);
        mStock.remove(mCells[size_t(index)].id);
        mTexts.remove(mCells[size_t(index)].id);
        mCells.erase(mCells.begin() + index);
        CellsRemoved(index, 1);
        QueueWanted();
    }
}

void ThumbnailGrid::RemoveBatch(const QVector<int>& indexes)
{
    // The cells that go move behind the others, from where they go together.
    QVector<int> order, gone;
    order.reserve(Count());
    gone.reserve(indexes.size());
    for (int index = 0; index < Count(); ++index) {
        const bool goes = gone.size() < indexes.size() && indexes.at(gone.size()) == index;
        (goes ? gone : order).append(index);
    }
    if (gone.isEmpty()) {
        return;
    }
    for (const int index : std::as_const(gone)) {
        const Cell& cell = mCells[size_t(index)];
        Forget(cell);
        mStock.remove(cell.id);
        mTexts.remove(cell.id);
    }
    const qsizetype kept = order.size();
    Reorder(order + gone);
    mCells.resize(size_t(kept));
    CellsRemoved(int(kept), int(gone.size()));
    QueueWanted();
}

void ThumbnailGrid::SetPath(int index, const QString& path, const QString& shown)
{
    if (Has(index)) {
        Cell& cell = mCells[size_t(index)];
        cell.path = path;
        mTexts.remove(cell.id);
        if (!shown.isEmpty()) {
            mTexts.insert(cell.id, shown);
        }
        UpdateCell(index);
        QueueWanted();
    }
}

void ThumbnailGrid::Reorder(const QVector<int>& order)
{
    if (order.size() != Count()) {
        return;
    }
    std::vector<Cell> moved;
    moved.reserve(mCells.size());
    for (const int from : order) {
        moved.push_back(mCells[size_t(from)]);
    }
    mCells = std::move(moved);
    CellsPermuted(order);
}

QString ThumbnailGrid::PathAt(int index) const
{
    return Has(index) ? mCells[size_t(index)].path : QString();
}

QString ThumbnailGrid::TextAt(int index) const
{
    if (Has(index)) {
        if (const auto text = mTexts.constFind(mCells[size_t(index)].id); text != mTexts.cend()) {
            return *text;
        }
    }
    return LeafName(PathAt(index));
}

QString ThumbnailGrid::ToolTipAt(int index) const
{
    if (!Has(index)) {
        return {};
    }
    const Cell& cell = mCells[size_t(index)];
    return FileTip(cell.path, QSize(cell.width, cell.height), mFailures.value(cell.id));
}

void ThumbnailGrid::SetCellSize(int width, int height)
{
    const QSize box(std::clamp(width, kSmallestThumbnail, kLargestThumbnail),
                    std::clamp(height, kSmallestThumbnail, kLargestThumbnail));
    if (box == mBox) {
        return;
    }
    mBox = box;
    mStore.Clear();
    Invalidate();
    QueueWanted();
}

QSize ThumbnailGrid::ThumbnailBox() const
{
    return (QSizeF(mBox) * devicePixelRatioF()).toSize();
}

void ThumbnailGrid::SetThumbnail(int index, const QImage& picture)
{
    if (Has(index)) {
        const quint32 id = mCells[size_t(index)].id;
        mFailures.remove(id);
        mStore.Put(id, QPixmap::fromImage(picture));
        UpdateCell(index);
    }
}

void ThumbnailGrid::SetFailure(int index, const QString& reason)
{
    if (Has(index)) {
        const Cell& cell = mCells[size_t(index)];
        mStore.Drop(cell.id);
        mFailures.insert(cell.id,
                         reason.isEmpty() ? tr("There is no picture of this file.") : reason);
        UpdateCell(index);
    }
}

QString ThumbnailGrid::FailureAt(int index) const
{
    return Has(index) ? mFailures.value(mCells[size_t(index)].id) : QString();
}

void ThumbnailGrid::SetStockPicture(int index, const QIcon& picture)
{
    if (Has(index)) {
        mStock.insert(mCells[size_t(index)].id, picture);
        UpdateCell(index);
    }
}

void ThumbnailGrid::Forget(const Cell& cell)
{
    mStore.Drop(cell.id);
    mFailures.remove(cell.id);
    mWanted.remove(cell.path, cell.id);
}

void ThumbnailGrid::ForgetThumbnail(int index)
{
    if (Has(index)) {
        Forget(mCells[size_t(index)]);
        UpdateCell(index);
        QueueWanted();
    }
}

bool ThumbnailGrid::HasThumbnail(int index) const
{
    return Has(index) && mStore.Has(mCells[size_t(index)].id);
}

bool ThumbnailGrid::NeedsThumbnail(const Cell& cell) const
{
    return !mStore.Has(cell.id) && !mFailures.contains(cell.id) && !mStock.contains(cell.id);
}

QVector<QString> ThumbnailGrid::WantedPaths(int screensAhead)
{
    mWanted.clear();
    QVector<QString> paths;
    const GridLayout::Range seen = VisibleRange();
    if (seen.IsEmpty()) {
        return paths;
    }
    const auto want = [&](int index) {
        if (Has(index) && NeedsThumbnail(mCells[size_t(index)])) {
            const Cell& cell = mCells[size_t(index)];
            paths.append(cell.path);
            mWanted.insert(cell.path, cell.id);
        }
    };
    for (int index = seen.first; index <= seen.last; ++index) {
        want(index);
    }
    const int inSight = seen.last - seen.first + 1;
    const QSize box = ThumbnailBox();
    const qint64 bytesEach = qint64(box.width()) * box.height() * 4;
    mStore.SetBudget(std::max(mBudget, bytesEach * inSight * 2));
    int left = ThumbnailsAhead(mStore.Budget(), bytesEach, inSight, 2 * screensAhead * inSight);
    // By screens: the next one down, the one above, the one after the next, and so on.
    for (int screen = 0; screen < screensAhead && left > 0; ++screen) {
        const int below = seen.last + 1 + screen * inSight;
        for (int index = below; index < below + inSight && left > 0; ++index, --left) {
            want(index);
        }
        const int above = seen.first - 1 - screen * inSight;
        for (int index = above; index > above - inSight && left > 0; --index, --left) {
            want(index);
        }
    }
    return paths;
}

void ThumbnailGrid::ThumbnailDone(const QString& path, const QImage& picture,
                                  const QString& failure)
{
    const QList<quint32> numbers = mWanted.values(path);
    mWanted.remove(path);
    for (const quint32 id : numbers) {
        if (picture.isNull()) {
            mFailures.insert(id,
                             failure.isEmpty() ? tr("There is no picture of this file.") : failure);
        } else {
            mStore.Put(id, QPixmap::fromImage(picture));
        }
        UpdateCellOf(id);
    }
}

void ThumbnailGrid::UpdateCellOf(quint32 id)
{
    const GridLayout::Range seen = VisibleRange();
    for (int index = seen.first; index <= seen.last; ++index) {
        if (Has(index) && mCells[size_t(index)].id == id) {
            UpdateCell(index);
        }
    }
}

void ThumbnailGrid::SetThumbnailBudget(qint64 bytes)
{
    mBudget = std::max<qint64>(bytes, 0);
    mStore.SetBudget(mBudget);
    QueueWanted();
}

void ThumbnailGrid::QueueWanted()
{
    if (!std::exchange(mWantedQueued, true)) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                mWantedQueued = false;
                Q_EMIT thumbnailsWanted();
            },
            Qt::QueuedConnection);
    }
}

void ThumbnailGrid::UpdateMetrics()
{
    GridLayout::Metrics metrics;
    const int label = 2 * fontMetrics().lineSpacing();
    metrics.cell = QSize(mBox.width() + 2 * kThumbnailPad,
                         mBox.height() + 2 * kThumbnailPad + kThumbnailLabelGap + label);
    metrics.spacing = kThumbnailSpacing;
    Layout().SetMetrics(metrics);
}

QRect ThumbnailGrid::BoxIn(const QRect& cell) const
{
    return QRect(cell.topLeft() + QPoint(kThumbnailPad, kThumbnailPad), mBox);
}

void ThumbnailGrid::PaintBackground(QPainter&, const QRect&)
{
    // On another screen the pictures are wanted in another size.
    if (mShownRatio != devicePixelRatioF()) {
        mShownRatio = devicePixelRatioF();
        mStore.Clear();
        QueueWanted();
    }
}

void ThumbnailGrid::PaintCell(QPainter& painter, const QRect& rect, int index,
                              const CellState& state)
{
    const Cell& cell = mCells[size_t(index)];
    const CellLook look{state.selected, state.current, state.hovered, state.active};
    PaintCellBack(painter, rect, palette(), look);
    const QRect box = BoxIn(rect);
    if (const auto stock = mStock.constFind(cell.id); stock != mStock.constEnd()) {
        PaintStock(painter, box, *stock);
    } else if (const QPixmap* picture = mStore.Use(cell.id)) {
        PaintThumbnail(painter, box, *picture, devicePixelRatioF(), palette());
    } else if (mFailures.contains(cell.id)) {
        PaintBroken(painter, box, CellTextColour(palette(), look));
    } else {
        PaintPending(painter, box, QSize(cell.width, cell.height), palette());
        if (!mWanted.contains(cell.path)) {
            QueueWanted();
        }
    }
    const QRect label(rect.x() + 2, box.bottom() + 1 + kThumbnailLabelGap, rect.width() - 4,
                      rect.bottom() - box.bottom() - kThumbnailLabelGap - kThumbnailPad);
    PaintCellLabel(painter, label, LeafName(cell.path), CellTextColour(palette(), look));
}

QPixmap ThumbnailGrid::DragPicture(int index) const
{
    const double ratio = devicePixelRatioF();
    const int side = int(kDragPicture * ratio);
    QPixmap picture;
    if (Has(index)) {
        const Cell& cell = mCells[size_t(index)];
        if (const QPixmap* thumbnail = mStore.Use(cell.id)) {
            picture = thumbnail->width() > side || thumbnail->height() > side
                ? thumbnail->scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                : *thumbnail;
        } else if (mStock.contains(cell.id)) {
            picture = mStock.value(cell.id).pixmap(kDragPicture / 2);
        }
    }
    if (picture.isNull()) {
        picture = QPixmap(QSize(side, side * 3 / 4));
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.scale(ratio, ratio);
        PaintPending(painter, QRect(0, 0, kDragPicture, kDragPicture * 3 / 4), {}, palette());
    }
    picture.setDevicePixelRatio(ratio);
    return picture;
}

} // namespace quillane
