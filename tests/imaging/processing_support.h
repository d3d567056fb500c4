#pragma once
// Pictures of every layout for the tests of processing.
#include "imaging/bitmap.h"
#include <gtest/gtest.h>
#include <ostream>

namespace quillane::processing {

struct Layout {
    const char* name;
    QImage::Format format;
    ColourModel model;
};
inline void PrintTo(const Layout& layout, std::ostream* out)
{
    *out << layout.name;
}
inline constexpr Layout kLayouts[] = {
    {"BlackWhite", QImage::Format_Mono, ColourModel::BlackWhite},
    {"Palette", QImage::Format_Indexed8, ColourModel::Palette},
    {"Grey8", QImage::Format_Grayscale8, ColourModel::Grey},
    {"Grey16", QImage::Format_Grayscale16, ColourModel::Grey},
    {"Rgb24", QImage::Format_RGB32, ColourModel::Rgb},
    {"Rgb32", QImage::Format_ARGB32, ColourModel::Rgb},
    {"Cmyk", QImage::Format_RGBA8888, ColourModel::Cmyk},
    {"Rgb48", QImage::Format_RGBX64, ColourModel::Rgb},
    {"Rgb64", QImage::Format_RGBA64, ColourModel::Rgb},
};

/// A picture of that layout whose pixels differ from place to place, alpha too.
Bitmap MakePicture(const Layout& layout, int width, int height);
/// A picture of that layout all of whose pixels have one value; 0..255 of each channel, alpha full.
Bitmap MakeConstant(const Layout& layout, int width, int height, int value);
/// RGB32 all of one colour.
Bitmap MakeColour(QRgb colour, int width, int height);
/// Whether two pictures have the same layout, table and pixels (bytes between rows aside).
testing::AssertionResult SamePixels(const QImage& a, const QImage& b);
/// Greatest difference of a channel of 0..255 between two pictures as they are shown.
int LargestDifference(const Bitmap& a, const Bitmap& b);
/// The picture in the layout that operations bring it to: palette and CMYK as RGB, one bit as grey.
Bitmap InEffect(const Bitmap& picture);
/// The colour of a pixel at 8 bits a channel, alpha included, whatever the layout but CMYK.
QRgb ColourAt(const Bitmap& picture, int x, int y);

} // namespace quillane::processing
