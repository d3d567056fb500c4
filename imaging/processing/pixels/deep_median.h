#pragma once
#include <opencv2/core.hpp>

namespace quillane::processing {

/// The middle value of a square around each pixel for channels of 16 bits, which the library does
/// for small squares only. `size` is odd; beyond the sides the outermost pixels are taken again.
void DeepMedian(const cv::Mat& in, cv::Mat& out, int size);

} // namespace quillane::processing
