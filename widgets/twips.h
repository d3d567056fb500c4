#pragma once

namespace quillane {

/// Places and sizes of windows are stored in twips.
inline constexpr int kTwipsPerPixel = 15;

} // namespace quillane
