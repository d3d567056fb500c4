#pragma once
// The filters that are chosen by code, as tables for the dialogs and the operations.
#include <QtGlobal>
#include <span>

namespace quillane::processing {

/// Families of filters, by the bits that name them to a dialog.
enum class FilterFamily : qint32 {
    Gradient = 1,
    Laplacian = 2,
    Sobel = 4,
    Prewitt = 8,
    ShiftAndDifference = 16,
    LineSegment = 32,
    Erosion = 64,
    Dilation = 128,
};

/// A filter that looks at a pixel and its eight neighbours. Weights from the upper left, by rows.
struct SpatialKernel {
    qint32 code;
    FilterFamily family;
    const char* name; ///< which of the family, for a list in a dialog
    int weights[9];
    bool bright; ///< only rises count; else the size of the result does, whichever way it goes
};
/// All of them; the code is the place in the table.
std::span<const SpatialKernel> SpatialKernels();
/// nullptr for an unknown code.
const SpatialKernel* FindSpatialKernel(qint32 code);

/// A filter that takes the darkest or the brightest of a pixel and some of its neighbours.
struct BinaryKernel {
    qint32 code;
    FilterFamily family;
    const char* name;
    quint8 members[9]; ///< 1 for those that count
};
/// All of them; the code is the place in the table.
std::span<const BinaryKernel> BinaryKernels();
/// nullptr for an unknown code.
const BinaryKernel* FindBinaryKernel(qint32 code);

} // namespace quillane::processing
