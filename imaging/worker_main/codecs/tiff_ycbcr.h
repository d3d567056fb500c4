#pragma once
#include "imaging/worker_main/codecs/tiff_output.h"

namespace quillane::worker {

/// The tags of luminance and colour that use all of 0 to 255.
void SetYcbcrRange(tiff* tiff);
/// Writes the picture as strips of luminance and colour: of every block of `across` by `down`
/// pixels first the luminances, then one sample of each colour, the mean of the block. At the
/// right and lower edge the last pixels stand for those that the block lacks.
void WriteYcbcrStrips(TiffOutput& output, PictureRows& picture, quint32 rowsPerStrip, int across,
                      int down);

} // namespace quillane::worker
