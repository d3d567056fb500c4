#include "imaging/encode.h"

namespace quillane {

namespace {

// clang-format off
using enum StoredColour;
constexpr quint8 kJpegTraits = kGreyIn8 | kInkIn32 | kHoldsProfile;

/// One row for every format code that can be written, by code.
constexpr SaveVariant kSaveVariants[] = {
    // code  codec  extension  colours  depths                            lossy  stamp  comments
    {2,   "GIF",  ".gif", Any,   {1, 2, 3, 4, 5, 6, 7, 8},            false, false, CommentCarrier::Gif},
    {6,   "BMP",  ".bmp", Any,   {1, 4, 8, 16, 24, 32},               false, false, CommentCarrier::None, kColourIn16},
    {10,  "JPEG", ".jpg", YCbCr, {8, 24, 32},                         true,  false, CommentCarrier::Jpeg, kJpegTraits},
    {14,  "BMP",  ".bmp", Any,   {1, 4, 8, 24},                       false, false, CommentCarrier::None},
    {21,  "JPEG", ".jpg", YCbCr, {8, 24, 32},                         true,  false, CommentCarrier::Jpeg, kJpegTraits},
    {23,  "JPEG", ".jpg", YCbCr, {8, 24, 32},                         true,  false, CommentCarrier::Jpeg, kJpegTraits},
    {74,  "BMP",  ".bmp", Any,   {1, 4, 8, 24},                       false, false, CommentCarrier::None},
    {75,  "PNG",  ".png", Any,   {1, 2, 4, 8, 16, 24, 32, 48, 64},    false, false, CommentCarrier::Png,  kBlendedGrey | kHoldsProfile},
    {84,  "BMP",  ".bmp", Any,   {4, 8},                              false, false, CommentCarrier::None},
    {98,  "JPEG", ".jpg", YCbCr, {8, 24, 32},                         true,  true,  CommentCarrier::Jpeg, kJpegTraits},
    {101, "JPEG", ".jpg", YCbCr, {8, 24, 32},                         true,  true,  CommentCarrier::Jpeg, kJpegTraits},
};
// clang-format on

} // namespace

std::span<const SaveVariant> SaveVariants()
{
    return kSaveVariants;
}

} // namespace quillane
