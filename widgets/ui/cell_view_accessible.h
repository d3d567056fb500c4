#pragma once

namespace quillane {

/// Lets screen readers see every cell of a CellView as an item of a list. Once is enough; more
/// calls do nothing.
void InstallCellViewAccessible();

} // namespace quillane
