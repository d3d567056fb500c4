#pragma once
// The bare codec of JPEGs that the program is compared with.
#include <QByteArray>
#include <QImage>

namespace quillane::bench {

struct BarePicture {
    unsigned width = 0, height = 0;
    QImage pixels; ///< Format_RGB32
};
/// Decodes a JPEG as plainly as it goes, into fresh memory. A damaged one ends the process.
BarePicture DecodeBarely(const QByteArray& bytes);

} // namespace quillane::bench
