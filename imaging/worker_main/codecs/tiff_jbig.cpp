#include "imaging/worker_main/codecs/tiff_jbig.h"
#include <QtEndian>
#include <array>
#include <tiffio.h>

namespace quillane::worker {

namespace {

constexpr tmsize_t kJbigHeaderBytes = 20; ///< of a bi-level image entity

} // namespace

void CheckTiffJbig(TiffFile& file, const TiffTags& tags)
{
    if (tags.compression != COMPRESSION_JBIG) {
        return;
    }
    std::uint16_t order = FILLORDER_MSB2LSB;
    TIFFGetFieldDefaulted(file.Handle(), TIFFTAG_FILLORDER, &order);
    const std::uint32_t strips =
        tags.tiled ? TIFFNumberOfTiles(file.Handle()) : TIFFNumberOfStrips(file.Handle());
    for (std::uint32_t strip = 0; strip < strips; ++strip) {
        std::array<uchar, kJbigHeaderBytes> head{};
        const auto at = qint64(TIFFGetStrileOffset(file.Handle(), strip));
        if (file.Source().ReadAt(at, head.data(), kJbigHeaderBytes) != kJbigHeaderBytes) {
            continue; // missing: the library reads nothing there either
        }
        // The library turns these bits the other way than those of all other compressions: what
        // stands highest bit first has its lowest one first.
        if (order == FILLORDER_MSB2LSB) {
            TIFFReverseBits(head.data(), kJbigHeaderBytes);
        }
        const auto layers = head[1], planes = head[2];
        const auto width = qFromBigEndian<quint32>(&head[4]);
        const auto height = qFromBigEndian<quint32>(&head[8]);
        if (layers != 0 || planes != 1 || width != tags.width || height > tags.height) {
            ThrowTiffDamaged();
        }
    }
}

} // namespace quillane::worker
