#pragma once
// The arithmetic of the window that asks for a new size.
#include <QSize>
#include <QtGlobal>

namespace quillane {

inline constexpr qint32 kResizeMostWidth = 16384;
inline constexpr qint32 kResizeMostRatio = 32767;
inline constexpr qint32 kResizeUnit = 16384; ///< the ratio of a square

/// Height of a picture as a multiple of its width in 1/16384, ties to even, 1 to 32767: above the
/// double of its width a picture is not kept in shape. An empty size counts as a square.
qint32 ResizeRatio(QSize picture);
/// The height for a width, at least 1.
qint32 HeightForWidth(qint32 width, qint32 ratio);
/// The width for a height, 1 to 16384.
qint32 WidthForHeight(qint32 height, qint32 ratio);

} // namespace quillane
