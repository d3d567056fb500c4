#include "imaging/processing/filters.h"
#include <iterator>

namespace quillane::processing {

namespace {

// clang-format off
constexpr SpatialKernel kSpatialKernels[] = {
    // Differences along the eight directions of the compass: brighter on the named side.
    { 0, FilterFamily::Gradient, "North",      { 1,  1,  1,   1, -2,  1,  -1, -1, -1}, false},
    { 1, FilterFamily::Gradient, "North East", { 1,  1,  1,  -1, -2,  1,  -1, -1,  1}, false},
    { 2, FilterFamily::Gradient, "East",       {-1,  1,  1,  -1, -2,  1,  -1,  1,  1}, false},
    { 3, FilterFamily::Gradient, "South East", {-1, -1,  1,  -1, -2,  1,   1,  1,  1}, false},
    { 4, FilterFamily::Gradient, "South",      {-1, -1, -1,   1, -2,  1,   1,  1,  1}, false},
    { 5, FilterFamily::Gradient, "South West", { 1, -1, -1,   1, -2, -1,   1,  1,  1}, false},
    { 6, FilterFamily::Gradient, "West",       { 1,  1, -1,   1, -2, -1,   1,  1, -1}, false},
    { 7, FilterFamily::Gradient, "North West", { 1,  1,  1,   1, -2, -1,   1, -1, -1}, false},
    // The pixel against its neighbours.
    { 8, FilterFamily::Laplacian, "All Neighbors",      {-1, -1, -1,  -1,  8, -1,  -1, -1, -1}, false},
    { 9, FilterFamily::Laplacian, "Straight Neighbors", { 0, -1,  0,  -1,  4, -1,   0, -1,  0}, false},
    {10, FilterFamily::Laplacian, "Diagonal Neighbors", {-1,  0, -1,   0,  4,  0,  -1,  0, -1}, false},
    {11, FilterFamily::Laplacian, "Smoothed",           { 1, -2,  1,  -2,  4, -2,   1, -2,  1}, false},
    {12, FilterFamily::Sobel,     "Horizontal", {-1, -2, -1,   0,  0,  0,   1,  2,  1}, false},
    {13, FilterFamily::Sobel,     "Vertical",   {-1,  0,  1,  -2,  0,  2,  -1,  0,  1}, false},
    {14, FilterFamily::Prewitt,   "Horizontal", {-1, -1, -1,   0,  0,  0,   1,  1,  1}, false},
    {15, FilterFamily::Prewitt,   "Vertical",   {-1,  0,  1,  -1,  0,  1,  -1,  0,  1}, false},
    // The picture less itself moved by a pixel.
    {16, FilterFamily::ShiftAndDifference, "Diagonal",   {-1,  0,  0,   0,  1,  0,   0,  0,  0}, false},
    {17, FilterFamily::ShiftAndDifference, "Horizontal", { 0,  0,  0,  -1,  1,  0,   0,  0,  0}, false},
    {18, FilterFamily::ShiftAndDifference, "Vertical",   { 0, -1,  0,   0,  1,  0,   0,  0,  0}, false},
    // Bright lines one pixel wide.
    {19, FilterFamily::LineSegment, "Horizontal",    {-1, -1, -1,   2,  2,  2,  -1, -1, -1}, true},
    {20, FilterFamily::LineSegment, "Vertical",      {-1,  2, -1,  -1,  2, -1,  -1,  2, -1}, true},
    {21, FilterFamily::LineSegment, "Left to Right", { 2, -1, -1,  -1,  2, -1,  -1, -1,  2}, true},
    {22, FilterFamily::LineSegment, "Right to Left", {-1, -1,  2,  -1,  2, -1,   2, -1, -1}, true},
};

constexpr BinaryKernel kBinaryKernels[] = {
    {0, FilterFamily::Erosion,  "All Directions", {1, 1, 1,  1, 1, 1,  1, 1, 1}},
    {1, FilterFamily::Erosion,  "Horizontal",     {0, 0, 0,  1, 1, 1,  0, 0, 0}},
    {2, FilterFamily::Erosion,  "Vertical",       {0, 1, 0,  0, 1, 0,  0, 1, 0}},
    {3, FilterFamily::Erosion,  "Diagonal",       {1, 0, 1,  0, 1, 0,  1, 0, 1}},
    {4, FilterFamily::Dilation, "All Directions", {1, 1, 1,  1, 1, 1,  1, 1, 1}},
    {5, FilterFamily::Dilation, "Horizontal",     {0, 0, 0,  1, 1, 1,  0, 0, 0}},
    {6, FilterFamily::Dilation, "Vertical",       {0, 1, 0,  0, 1, 0,  0, 1, 0}},
    {7, FilterFamily::Dilation, "Diagonal",       {1, 0, 1,  0, 1, 0,  1, 0, 1}},
};
// clang-format on

} // namespace

std::span<const SpatialKernel> SpatialKernels()
{
    return kSpatialKernels;
}

const SpatialKernel* FindSpatialKernel(qint32 code)
{
    return code >= 0 && code < qint32(std::size(kSpatialKernels)) ? &kSpatialKernels[code]
                                                                  : nullptr;
}

std::span<const BinaryKernel> BinaryKernels()
{
    return kBinaryKernels;
}

const BinaryKernel* FindBinaryKernel(qint32 code)
{
    return code >= 0 && code < qint32(std::size(kBinaryKernels)) ? &kBinaryKernels[code] : nullptr;
}

} // namespace quillane::processing
