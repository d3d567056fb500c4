#include "imaging/exif/byte_ranges.h"
#include <algorithm>

namespace quillane::exif {

ByteRanges::ByteRanges(std::vector<ByteRange> ranges)
{
    std::erase_if(ranges, [](const ByteRange& range) { return range.Size() <= 0; });
    std::sort(ranges.begin(), ranges.end(),
              [](const ByteRange& a, const ByteRange& b) { return a.from < b.from; });
    for (const ByteRange& range : ranges) {
        if (!mRanges.empty() && range.from <= mRanges.back().to) {
            mRanges.back().to = std::max(mRanges.back().to, range.to);
        } else {
            mRanges.push_back(range);
        }
    }
}

bool ByteRanges::Touches(const ByteRange& range) const
{
    const auto behind =
        std::upper_bound(mRanges.begin(), mRanges.end(), range.from,
                         [](qint64 position, const ByteRange& held) { return position < held.to; });
    return range.Size() > 0 && behind != mRanges.end() && behind->from < range.to;
}

ByteRanges ByteRanges::Without(const ByteRanges& other) const
{
    ByteRanges rest;
    auto cut = other.mRanges.begin();
    for (ByteRange range : mRanges) {
        while (cut != other.mRanges.end() && cut->to <= range.from) {
            ++cut;
        }
        for (auto hit = cut; hit != other.mRanges.end() && hit->from < range.to; ++hit) {
            if (hit->from > range.from) {
                rest.mRanges.push_back({range.from, hit->from});
            }
            range.from = std::max(range.from, hit->to);
        }
        if (range.Size() > 0) {
            rest.mRanges.push_back(range);
        }
    }
    return rest;
}

ByteRanges ByteRanges::Below(qint64 end) const
{
    ByteRanges below;
    for (const ByteRange& range : mRanges) {
        if (range.from < end) {
            below.mRanges.push_back({range.from, std::min(range.to, end)});
        }
    }
    return below;
}

} // namespace quillane::exif
