#pragma once
#include <QByteArray>
#include <QImage>

namespace quillane {

/// Brings pixels from an embedded ICC profile to sRGB. `pixels` is Grayscale8/16, RGB32, ARGB32,
/// RGBX64, RGBA64, Indexed8, or, when `cmyk`, RGBA8888 holding C, M, Y, K with 255 for full ink.
/// The answer is RGB32 or ARGB32, for Indexed8 the same indexes with other colours. A null image
/// when the profile is unusable: damaged, or of another colour space. Any thread.
QImage ProfileToSrgb(const QImage& pixels, const QByteArray& icc, bool cmyk);

/// CMYK without a profile: R = 255 (1 - C)(1 - K), and so on. The answer is RGB32.
QImage PlainCmykToSrgb(const QImage& pixels);

} // namespace quillane
