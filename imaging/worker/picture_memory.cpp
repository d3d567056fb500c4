#include "imaging/worker/picture_memory.h"
#include <memory>
#include <sys/mman.h>

namespace quillane::worker {

namespace {

constexpr size_t kHugePage = 2 << 20;
/// Below this the allocator's recycled memory is as good.
constexpr size_t kLargePicture = 2 * kHugePage;

struct PictureRange {
    void* from;
    size_t bytes;
};

void ReleasePicture(void* info)
{
    const std::unique_ptr<PictureRange> range(static_cast<PictureRange*>(info));
    ::munmap(range->from, range->bytes);
}

} // namespace

QImage NewPicture(int width, int height, QImage::Format format)
{
    const qint64 depth = QImage::toPixelFormat(format).bitsPerPixel();
    const qint64 rowBytes = (qint64(width) * depth + 31) / 32 * 4;
    if (width < 1 || height < 1 || rowBytes * height < qint64(kLargePicture)) {
        return QImage(width, height, format);
    }
    const size_t bytes = size_t(rowBytes) * size_t(height);
    // A huge page more, so that the pixels can begin where one does.
    const size_t room = bytes + kHugePage;
    void* from = ::mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (from == MAP_FAILED) {
        return QImage();
    }
    auto range = std::make_unique<PictureRange>(PictureRange{from, room});
    void* pixels = from;
    size_t left = room;
    std::align(kHugePage, bytes, pixels, left);
    ::madvise(pixels, bytes, MADV_HUGEPAGE); // a wish: without it everything works the same
    QImage image(static_cast<uchar*>(pixels), width, height, rowBytes, format, ReleasePicture,
                 range.get());
    PictureRange* const owned = range.release();
    if (image.isNull()) {
        ReleasePicture(owned);
    }
    return image;
}

} // namespace quillane::worker
