#include "imaging/worker/picture_memory.h"
#include <memory>
#include <mutex>
#include <sys/mman.h>
#include <vector>

namespace quillane::worker {

namespace {

constexpr size_t kHugePage = 2 << 20;
/// Below this the allocator's recycled memory is as good.
constexpr size_t kLargePicture = 2 * kHugePage;

/// What RecycledPicture keeps at most, in number and in bytes: the step before and a second one.
constexpr size_t kRangesKept = 2;
constexpr size_t kBytesKept = size_t(256) << 20;

struct PictureRange {
    void* from;
    size_t bytes;
};

void UnmapPicture(const PictureRange& range)
{
    ::munmap(range.from, range.bytes);
}

/// Ranges that no image uses at the moment.
class PictureRanges {
public:
    /// The last used that holds so much and not half as much again; nothing where there is none.
    PictureRange Take(size_t bytes)
    {
        const std::lock_guard lock(mMutex);
        for (size_t i = mFree.size(); i-- > 0;) {
            const PictureRange range = mFree[i];
            if (range.bytes >= bytes && range.bytes / 3 <= bytes / 2) {
                mFree.erase(mFree.begin() + qptrdiff(i));
                mBytes -= range.bytes;
                return range;
            }
        }
        return {nullptr, 0};
    }

    void Give(const PictureRange& range)
    {
        if (range.bytes > kBytesKept) {
            UnmapPicture(range);
            return;
        }
#ifdef MADV_FREE
        ::madvise(range.from, range.bytes, MADV_FREE);
#endif
        const std::lock_guard lock(mMutex);
        mFree.push_back(range);
        mBytes += range.bytes;
        while (mFree.size() > kRangesKept || mBytes > kBytesKept) {
            mBytes -= mFree.front().bytes;
            UnmapPicture(mFree.front());
            mFree.erase(mFree.begin());
        }
    }

private:
    std::mutex mMutex;
    std::vector<PictureRange> mFree; // the longest unused first
    size_t mBytes = 0;
};

PictureRanges& RecycledRanges()
{
    // Never destroyed: images that outlive the statics still give their memory back.
    static PictureRanges* const ranges = new PictureRanges;
    return *ranges;
}

void ReleasePicture(void* info)
{
    const std::unique_ptr<PictureRange> range(static_cast<PictureRange*>(info));
    UnmapPicture(*range);
}

void RecyclePicture(void* info)
{
    const std::unique_ptr<PictureRange> range(static_cast<PictureRange*>(info));
    RecycledRanges().Give(*range);
}

QImage MakePicture(int width, int height, QImage::Format format, bool recycled)
{
    const qint64 depth = QImage::toPixelFormat(format).bitsPerPixel();
    const qint64 rowBytes = (qint64(width) * depth + 31) / 32 * 4;
    if (width < 1 || height < 1 || rowBytes * height < qint64(kLargePicture)) {
        return QImage(width, height, format);
    }
    const size_t bytes = size_t(rowBytes) * size_t(height);
    // A huge page more, so that the pixels can begin where one does.
    const size_t room = bytes + kHugePage;
    PictureRange range = recycled ? RecycledRanges().Take(room) : PictureRange{nullptr, 0};
    const bool fresh = !range.from;
    if (fresh) {
        range = {::mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0),
                 room};
        if (range.from == MAP_FAILED) {
            return QImage();
        }
    }
    auto info = std::make_unique<PictureRange>(range);
    void* pixels = range.from;
    size_t left = range.bytes;
    std::align(kHugePage, bytes, pixels, left);
    if (fresh) {
        // A wish: without it everything works the same.
        ::madvise(pixels, bytes, MADV_HUGEPAGE);
    }
    QImage image(static_cast<uchar*>(pixels), width, height, rowBytes, format,
                 recycled ? RecyclePicture : ReleasePicture, info.get());
    PictureRange* const owned = info.release();
    if (image.isNull()) {
        ReleasePicture(owned);
    }
    return image;
}

} // namespace

QImage NewPicture(int width, int height, QImage::Format format)
{
    return MakePicture(width, height, format, false);
}

QImage RecycledPicture(int width, int height, QImage::Format format)
{
    return MakePicture(width, height, format, true);
}

} // namespace quillane::worker
