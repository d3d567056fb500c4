#pragma once
// Pixels that stand bare in a file, or in a wrapper of another kind, decoded by libtiff: a TIFF is
// put around them in memory.
#include "imaging/worker_main/service/worker_codec.h"
#include <QString>
#include <functional>

namespace quillane::worker {

/// How bare pixels are coded; values are those of TIFF's compression tag.
enum class BareCoding : quint16 { None = 1, Group3 = 3, Group4 = 4 };

/// Bare pixels and what a TIFF has to tell of them.
struct BarePixels {
    qint64 at = 0; ///< in the file
    qint64 bytes = 0;
    qint32 width = 0;
    qint32 height = 0;
    BareCoding coding = BareCoding::Group4;
    bool twoDimensional = false; ///< Group 3 with lines that refer to the one before
    bool lowBitFirst = false;    ///< the first pixel is the lowest bit of its byte
    bool zeroIsBlack = false;    ///< of pixels that are not coded
    int samples = 1;             ///< 1: bits or grey, 3: red, green and blue
    int bits = 1;                ///< of a sample
};

/// Decodes them as a picture of the named format, of that depth in the file; true when some of it
/// was missing. Failure in words that name the format.
bool DecodeBarePixels(ByteSource& source, const BarePixels& pixels, const char* format,
                      PictureSink& sink);

/// The first bytes of a source, at most `count`. Failure kFailureLimit, in words that name the
/// format, when `whole` is wanted and there are more.
QByteArray ReadFaxBytes(ByteSource& source, qint64 count, const char* format, bool whole);

/// Failure kFailureUnreadable: "This <format> is damaged: <why>."
[[noreturn]] void ThrowFaxDamaged(const char* format, const QString& why);
/// Failure kFailureUnreadable: "This <format> <what>, which is not supported."
[[noreturn]] void ThrowFaxUnsupported(const char* format, const QString& what);
/// Refuses sizes that no picture of the program may have.
void CheckFaxSize(const char* format, qint64 width, qint64 height);

} // namespace quillane::worker
