#pragma once
#include <QtGlobal>
#include <functional>

namespace quillane::codecs {

/// What a picture's facts need of an Exif block: its first directory's few numbers.
struct ExifHeader {
    bool directory = false; ///< a first directory with at least one entry is there
    quint8 orientation = 1; ///< 1..8
    qint32 xResolution = 0; ///< dots per inch, 0 unknown
    qint32 yResolution = 0;
};

/// Reads the first directory of an Exif block of `size` bytes that begins with its byte-order
/// mark. `at(offset, count)` gives `count` (at most 4096) bytes of the block or nullptr. Damage is
/// no failure: what can be read counts.
ExifHeader ReadExifHeader(qint64 size,
                          const std::function<const uchar*(qint64 offset, qint64 count)>& at);

} // namespace quillane::codecs
