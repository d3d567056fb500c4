#include "widgets/thumbnail_store.h"

#include <algorithm>
#include <memory>

namespace quillane {

bool ThumbnailStore::Put(quint32 number, const QPixmap& picture)
{
    const qint64 bytes = std::max<qint64>(1, qint64(picture.width()) * picture.height() * 4);
    return mCache.insert(number, new QPixmap(picture), bytes);
}

int ThumbnailsAhead(qint64 budget, qint64 bytesEach, int inSight, int wished)
{
    const qint64 room = budget / std::max<qint64>(1, bytesEach) - inSight;
    return int(std::clamp<qint64>(room, 0, std::max(wished, 0)));
}

} // namespace quillane
