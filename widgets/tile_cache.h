#pragma once
#include <QImage>
#include <QSize>
#include <list>
#include <unordered_map>

namespace quillane {

/// Names a tile: the size at which the whole picture is painted, and the tile's column and row.
struct TileKey {
    QSize shown;
    int column = 0;
    int row = 0;
    bool operator==(const TileKey&) const = default;
};

/// A painted tile; a rough one waits for a better.
struct Tile {
    QImage image;
    bool rough = false;
};

/// The tiles used last, within a budget of bytes.
class TileCache {
public:
    explicit TileCache(qint64 budget) : mBudget(budget) { }

    /// Lets the tiles go that were not used for longest, until what is left fits.
    void SetBudget(qint64 bytes);
    qint64 Budget() const { return mBudget; }
    qint64 Bytes() const { return mBytes; }
    int Count() const { return int(mTiles.size()); }

    /// The tile, which counts as used now; null when it is not there. Good until the next change.
    const Tile* Find(const TileKey& key);
    /// Puts a tile in the place of an older one of that name. One that is larger than the budget
    /// is kept until the next comes.
    void Put(const TileKey& key, Tile tile);
    void Clear();

private:
    struct Hash {
        size_t operator()(const TileKey& key) const;
    };
    using Entry = std::pair<TileKey, Tile>;
    void Fit();

    std::list<Entry> mTiles; ///< the one used last stands first
    std::unordered_map<TileKey, std::list<Entry>::iterator, Hash> mFound;
    qint64 mBudget;
    qint64 mBytes = 0;
};

} // namespace quillane
