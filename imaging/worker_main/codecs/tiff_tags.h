#pragma once
#include "imaging/image_facts.h"
#include "imaging/worker_main/codecs/tiff_file.h"

namespace quillane::worker {

/// The tags of a page that decide how its pixels are read.
struct TiffTags {
    std::uint32_t width = 0, height = 0;
    std::uint32_t bandRows = 0; ///< rows of a strip or a tile, at most height
    std::uint16_t bits = 1;     ///< of one sample
    std::uint16_t samples = 1;
    std::uint16_t photometric = 0, compression = 1, sampleFormat = 1;
    std::uint16_t subsamplingX = 1, subsamplingY = 1;
    std::uint16_t inkSet = 1;
    std::uint16_t alpha = 0; ///< EXTRASAMPLE_... of the first extra sample
    std::uint16_t extraSamples = 0;
    bool separate = false; ///< planes of one sample each
    bool tiled = false;
};

/// Reads and checks the tags of the page the file stands at. Failure kFailureUnreadable,
/// kFailureLimit.
TiffTags ReadTiffTags(TiffFile& file);
/// Facts of the page; pages is counted over the file.
ImageFacts TiffFacts(TiffFile& file, const TiffTags& tags);

} // namespace quillane::worker
