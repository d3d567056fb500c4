#pragma once
#include <QtGlobal>
#include <span>
#include <vector>

namespace quillane::exif {

struct ByteRange {
    qint64 from = 0, to = 0; ///< the byte behind the last
    qint64 Size() const { return to - from; }
    bool operator==(const ByteRange&) const = default;
};

/// A set of byte positions, kept as ranges in ascending order that neither touch nor overlap.
class ByteRanges {
public:
    ByteRanges() = default;
    explicit ByteRanges(std::vector<ByteRange> ranges);
    /// Whether any position of `range` is in the set; an empty range never is.
    bool Touches(const ByteRange& range) const;
    /// This set without the positions of another.
    ByteRanges Without(const ByteRanges& other) const;
    /// This set's positions below `end`.
    ByteRanges Below(qint64 end) const;
    std::span<const ByteRange> All() const { return mRanges; }

private:
    std::vector<ByteRange> mRanges;
};

} // namespace quillane::exif
