#pragma once

namespace quillane {

/// Windows, splitters and columns are measured in twips where they are stored.
inline constexpr int kTwipsPerPixel = 15;

} // namespace quillane
