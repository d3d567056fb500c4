#pragma once
#include "imaging/byte_source.h"
#include "imaging/image_facts.h"
#include <vector>

namespace quillane::worker {

/// One box of the file format (ISO 15444-1, annex I).
struct Jpeg2000Box {
    quint32 type = 0;
    qint64 at = 0;      ///< of its head
    qint64 content = 0; ///< of what it holds
    qint64 end = 0;
};

/// What stands before the pixels.
struct Jpeg2000Header {
    bool boxed = false;     ///< a file with boxes; else a bare codestream
    quint32 x0 = 0, y0 = 0; ///< the picture's place on the reference grid
    quint32 width = 0, height = 0;
    quint32 tileHeight = 0, tileTop = 0;
    bool tiled = false; ///< of several tiles
    int components = 0;
    int bits = 0;     ///< of the first component
    int downMost = 1; ///< coarsest sampling from row to row
    bool palette = false;
    ImageFacts facts;
    std::vector<Jpeg2000Box> boxes; ///< of the file, in order
};

/// Reads and checks the heads. Failure kFailureUnreadable, kFailureLimit.
Jpeg2000Header ReadJpeg2000Header(ByteSource& source);
/// kFailureUnreadable: the file is damaged.
[[noreturn]] void ThrowJpeg2000Damaged();

inline constexpr quint32 kBoxSignature = 0x6a502020;  ///< "jP  "
inline constexpr quint32 kBoxFileType = 0x66747970;   ///< "ftyp"
inline constexpr quint32 kBoxHeader = 0x6a703268;     ///< "jp2h"
inline constexpr quint32 kBoxCodestream = 0x6a703263; ///< "jp2c"

} // namespace quillane::worker
