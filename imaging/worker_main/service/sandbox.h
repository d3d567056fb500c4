#pragma once

namespace quillane::worker {

/// Gives up, for good, everything that decoding does not need: opening files, the network,
/// other processes, memory beyond a limit. False when the system cannot do that; the process
/// then must not touch a file.
bool LockProcess();

} // namespace quillane::worker
