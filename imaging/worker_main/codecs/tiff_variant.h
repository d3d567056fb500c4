#pragma once
#include "imaging/worker_main/service/sample_rows.h"
#include <cstdint>

namespace quillane::worker {

/// What a TIFF file is to be in detail.
struct TiffVariant {
    std::uint16_t compression = 1, photometric = 2;
    std::uint16_t bits = 8; ///< of one sample in the file
    std::uint16_t subsamplingX = 1, subsamplingY = 1;
    std::uint32_t faxOptions = 0;
    SampleKind kind = SampleKind::Rgb8; ///< what the rows are brought to
    bool predicts = false;              ///< differences of neighbours are compressed
};

/// The variant for a format code and depth. Where the code is only the nearest of what the
/// original was (EncodeRequest::layout), what it was. Failure kFailureGeneral for a code or depth
/// that cannot be written.
TiffVariant ChooseTiffVariant(const PictureShape& shape, const EncodeWish& wish);

} // namespace quillane::worker
