#pragma once
#include <QCache>
#include <QPixmap>

namespace quillane {

/// Pictures by number within a budget of bytes: the one not used for longest goes first.
class ThumbnailStore {
public:
    explicit ThumbnailStore(qint64 budget) : mCache(budget) { }

    void SetBudget(qint64 bytes) { mCache.setMaxCost(bytes); }
    qint64 Budget() const { return mCache.maxCost(); }
    qint64 Bytes() const { return mCache.totalCost(); }
    int Count() const { return int(mCache.size()); }
    /// Keeps a picture; one that is larger than the whole budget is not kept and false returned.
    bool Put(quint32 number, const QPixmap& picture);
    /// The picture, which counts as used now; null when it is not there.
    const QPixmap* Use(quint32 number) const { return mCache.object(number); }
    bool Has(quint32 number) const { return mCache.contains(number); }
    void Drop(quint32 number) { mCache.remove(number); }
    void Clear() { mCache.clear(); }

private:
    QCache<quint32, QPixmap> mCache;
};

/// How many pictures around those in sight may be asked for, in all, so that they fit the budget
/// with them and do not push one another out: at most `wished`.
int ThumbnailsAhead(qint64 budget, qint64 bytesEach, int inSight, int wished);

} // namespace quillane
