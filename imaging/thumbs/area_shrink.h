#pragma once
#include <QImage>
#include <QSize>

namespace quillane {

/// The picture at another size, every new pixel the mean of the area it covers in the old one.
/// For layouts of four channels of 8 bits, each mixed for itself: transparency must be in the
/// colours already. Works in the calling thread alone. A null image when there is no memory.
QImage ShrinkByArea(const QImage& pixels, QSize size);

} // namespace quillane
