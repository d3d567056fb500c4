#pragma once
#include <QtGlobal>

// Bounds on what a file from outside may ask for. Beyond one: a Failure with words, never an
// allocation.
namespace quillane::limits {

inline constexpr qint32 kMaxSide = 65'500;              ///< pixels, width or height
inline constexpr qint64 kMaxPixels = 500'000'000;       ///< of one picture; large sheets in 1 bit
inline constexpr qint64 kMaxPictureBytes = 640ll << 20; ///< decoded; 160 megapixels in colour
inline constexpr qint64 kMaxFileBytes = 2048ll << 20;   ///< file that is read into memory
inline constexpr qint64 kMaxHeaderBytes = 8ll << 20;    ///< read while looking for facts
inline constexpr qint64 kMaxTextBytes = 1ll << 20;      ///< one text field
inline constexpr qint64 kMaxFieldBytes = 4ll << 20;     ///< one field of another shape
inline constexpr int kMaxFolderDepth = 64;              ///< sub-folders below a scanned folder
inline constexpr int kMaxPages = 65'535;
inline constexpr int kWorkerSeconds = 2;        ///< probe or comments of one file
inline constexpr int kWorkerDecodeSeconds = 10; ///< pixels of one file
inline constexpr int kWorkerEncodeSeconds = 10; ///< one file that is written, and more by its size:
inline constexpr int kWorkerEncodePixelsPerSecond = 250'000;
inline constexpr qint64 kWorkerRewriteBytesPerSecond = 10ll << 20; ///< of the original
inline constexpr qint64 kMaxEncodedBytes = 768ll << 20;            ///< file that is written
inline constexpr qint64 kWorkerMemoryBytes = 448ll << 20;

} // namespace quillane::limits
