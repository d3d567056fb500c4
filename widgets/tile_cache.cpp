#include "widgets/tile_cache.h"
#include <QHashFunctions>

namespace quillane {

size_t TileCache::Hash::operator()(const TileKey& key) const
{
    return qHashMulti(0, key.shown.width(), key.shown.height(), key.column, key.row);
}

void TileCache::SetBudget(qint64 bytes)
{
    mBudget = bytes;
    Fit();
}

void TileCache::Fit()
{
    while (mBytes > mBudget && mTiles.size() > 1) {
        mBytes -= qint64(mTiles.back().second.image.sizeInBytes());
        mFound.erase(mTiles.back().first);
        mTiles.pop_back();
    }
}

const Tile* TileCache::Find(const TileKey& key)
{
    const auto found = mFound.find(key);
    if (found == mFound.end()) {
        return nullptr;
    }
    mTiles.splice(mTiles.begin(), mTiles, found->second);
    return &mTiles.front().second;
}

void TileCache::Put(const TileKey& key, Tile tile)
{
    const auto found = mFound.find(key);
    if (found != mFound.end()) {
        mBytes -= qint64(found->second->second.image.sizeInBytes());
        mTiles.erase(found->second);
        mFound.erase(found);
    }
    mBytes += qint64(tile.image.sizeInBytes());
    mTiles.emplace_front(key, std::move(tile));
    mFound[key] = mTiles.begin();
    Fit();
}

void TileCache::Clear()
{
    mTiles.clear();
    mFound.clear();
    mBytes = 0;
}

} // namespace quillane
