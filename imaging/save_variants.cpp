#include "imaging/encode.h"

namespace quillane {

namespace {

// clang-format off
using enum StoredColour;
using enum CommentCarrier;
constexpr CommentCarrier kBare = CommentCarrier::None;
constexpr quint8 kJpegTraits = kGreyIn8 | kInkIn32 | kHoldsProfile;

/// One row for every format code that can be written, by code.
constexpr SaveVariant kSaveVariants[] = {
    // code, codec, extension, colours, depths, lossy, stamp, comments, traits
    {1,   "PCX",       ".pcx", Any,   {1, 4, 8, 24},                     false, false, kBare, 0},
    {2,   "GIF",       ".gif", Any,   {1, 2, 3, 4, 5, 6, 7, 8},           false, false, Gif,   0},
    {3,   "TIFF",      ".tif", Any,   {1, 4, 8, 16, 24, 32, 48, 64},      false, true,  Tiff,  kHoldsProfile | kInkKept},
    {4,   "TARGA",     ".tga", Any,   {8, 16, 24, 32},                   false, false, kBare, kColourIn16},
    {6,   "BMP",       ".bmp", Any,   {1, 4, 8, 16, 24, 32},              false, false, kBare, kColourIn16},
    {10,  "JPEG",      ".jpg", YCbCr, {8, 24, 32},                        true,  false, Jpeg,  kJpegTraits},
    {11,  "TIFF",      ".tif", YCbCr, {8, 24, 32},                        true,  true,  Tiff,  kJpegTraits},
    {14,  "BMP",       ".bmp", Any,   {1, 4, 8, 24},                      false, false, kBare, 0},
    {15,  "WMF",       ".wmf", Any,   {1, 4, 8, 24},                      false, false, kBare, 0},
    {16,  "EPS",       ".eps", Any,   {1, 8, 24},                        false, false, kBare, 0},
    {17,  "TIFF",      ".tif", Any,   {1, 4, 8, 16, 24, 32, 48, 64},      false, true,  Tiff,  kHoldsProfile},
    {21,  "JPEG",      ".jpg", YCbCr, {8, 24, 32},                        true,  false, Jpeg,  kJpegTraits},
    {22,  "TIFF",      ".tif", YCbCr, {24},                               true,  true,  Tiff,  kHoldsProfile},
    {23,  "JPEG",      ".jpg", YCbCr, {8, 24, 32},                        true,  false, Jpeg,  kJpegTraits},
    {24,  "TIFF",      ".tif", YCbCr, {24},                               true,  true,  Tiff,  kHoldsProfile},
    {25,  "TIFF",      ".tif", Grey,  {1},                                false, true,  Tiff,  0},
    {27,  "TIFF",      ".tif", Grey,  {1},                                false, true,  Tiff,  0},
    {28,  "TIFF",      ".tif", Grey,  {1},                                false, true,  Tiff,  0},
    {29,  "TIFF",      ".tif", Grey,  {1},                                false, true,  Tiff,  0},
    {51,  "MacPaint",  ".mac", Grey,  {1},                                false, false, kBare, 0},
    {53,  "MSP",       ".msp", Grey,  {1},                                false, false, kBare, 0},
    {54,  "WPG",       ".wpg", Any,   {1, 4, 8},                          false, false, kBare, 0},
    {55,  "Sun raster", ".ras", Any,   {1, 8, 24},                        false, false, kBare, 0},
    {56,  "PICT",      ".pct", Any,   {1, 4, 8, 24},                     false, false, kBare, 0},
    {66,  "FAX",       ".fax", Grey,  {1},                                false, false, kBare, 0},
    {67,  "FAX",       ".fax", Grey,  {1},                                false, false, kBare, 0},
    {68,  "FAX",       ".fax", Grey,  {1},                                false, false, kBare, 0},
    {74,  "BMP",       ".bmp", Any,   {1, 4, 8, 24},                      false, false, kBare, 0},
    {75,  "PNG",       ".png", Any,   {1, 2, 4, 8, 16, 24, 32, 48, 64},   false, false, Png,   kBlendedGrey | kHoldsProfile},
    {76,  "PSD",       ".psd", Any,   {1, 8, 16, 24, 32, 48},             false, false, kBare, kHoldsProfile | kInkKept},
    {84,  "BMP",       ".bmp", Any,   {4, 8},                             false, false, kBare, 0},
    {85,  "TIFF",      ".tif", Cmyk,  {32},                               false, true,  Tiff,  kHoldsProfile},
    {86,  "TIFF",      ".tif", Cmyk,  {32},                               false, true,  Tiff,  kHoldsProfile},
    {87,  "TIFF",      ".tif", Any,   {1, 4, 8, 16, 24, 32, 48, 64},      false, true,  Tiff,  kHoldsProfile},
    {88,  "TIFF",      ".tif", Cmyk,  {32},                               false, true,  Tiff,  kHoldsProfile},
    {89,  "DICOM",     ".dic", Grey,  {8, 16},                            false, false, Dicom, 0},
    {90,  "DICOM",     ".dic", Rgb,   {24},                               false, false, Dicom, 0},
    {91,  "ICO",       ".ico", Any,   {1, 4, 8, 24, 32},                  false, false, kBare, 0},
    {92,  "ICO",       ".cur", Any,   {1, 4, 8, 24, 32},                  false, false, kBare, 0},
    {93,  "TIFF",      ".tif", YCbCr, {24},                               true,  true,  Tiff,  kHoldsProfile},
    {94,  "TIFF",      ".tif", YCbCr, {24},                               true,  true,  Tiff,  kHoldsProfile},
    {95,  "TIFF",      ".tif", YCbCr, {24},                               true,  true,  Tiff,  kHoldsProfile},
    {96,  "TIFF",      ".tif", Any,   {24, 32, 48, 64},                   false, true,  Tiff,  kHoldsProfile},
    {97,  "TIFF",      ".tif", YCbCr, {24},                               true,  true,  Tiff,  kHoldsProfile},
    {98,  "JPEG",      ".jpg", YCbCr, {8, 24, 32},                        true,  true,  Jpeg,  kJpegTraits},
    {101, "JPEG",      ".jpg", YCbCr, {8, 24, 32},                        true,  true,  Jpeg,  kJpegTraits},
    {102, "PNM",       ".pbm", Grey,  {1},                                false, false, kBare, 0},
    {103, "PNM",       ".pbm", Grey,  {1},                                false, false, kBare, 0},
    {104, "PNM",       ".pgm", Grey,  {8, 16},                            false, false, kBare, 0},
    {105, "PNM",       ".pgm", Grey,  {8, 16},                            false, false, kBare, 0},
    {106, "PNM",       ".ppm", Rgb,   {24, 48},                           false, false, kBare, 0},
    {107, "PNM",       ".ppm", Rgb,   {24, 48},                           false, false, kBare, 0},
    {109, "XPM",       ".xpm", Any,   {1, 4, 8},                          false, false, kBare, 0},
    {110, "XBM",       ".xbm", Grey,  {1},                                false, false, kBare, 0},
    {111, "IFF",       ".iff", Any,   {1, 2, 3, 4, 5, 6, 7, 8, 24},       false, false, kBare, 0},
    {114, "CLP",       ".clp", Any,   {1, 4, 8, 24},                      false, false, kBare, 0},
    {125, "DICOM",     ".dic", Grey,  {8, 16},                            false, false, Dicom, 0},
    {126, "DICOM",     ".dic", Rgb,   {24},                               false, false, Dicom, 0},
    {127, "DICOM",     ".dic", Grey,  {8, 16},                            true,  false, Dicom, 0},
    {128, "DICOM",     ".dic", Rgb,   {24},                               true,  false, Dicom, 0},
    {130, "CALS",      ".cal", Grey,  {1},                               false, false, kBare, 0},
    {139, "TIFF",      ".tif", Grey,  {1},                                false, true,  Tiff,  0},
    {142, "SGI",       ".sgi", Any,   {8, 16, 24, 32, 48, 64},           false, false, kBare, kGreyIn8},
    {143, "SGI",       ".sgi", Any,   {8, 16, 24, 32, 48, 64},           false, false, kBare, kGreyIn8},
    {146, "PDF",       ".pdf", Any,   {1, 8, 24, 32},                     false, false, kBare, kInkIn32},
    {153, "RAW",       ".raw", Any,   {1, 8, 16, 24, 32, 48, 64},         false, false, kBare, kGreyIn8 | kInkKept},
    {163, "JPEG 2000", ".jp2", Any,   {8, 16, 24, 32, 48, 64},            true,  false, kBare, kGreyIn8 | kInkKept | kHoldsProfile},
    {164, "JPEG 2000", ".j2k", Any,   {8, 16, 24, 32, 48, 64},            true,  false, kBare, kGreyIn8},
    {166, "TIFF",      ".tif", Any,   {8, 16, 24, 32, 48, 64},            true,  true,  Tiff,  kGreyIn8 | kHoldsProfile},
};
// clang-format on

} // namespace

std::span<const SaveVariant> SaveVariants()
{
    return kSaveVariants;
}

} // namespace quillane
