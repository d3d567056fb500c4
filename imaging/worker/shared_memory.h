#pragma once
#include "core/native_path.h"
#include <QtGlobal>

namespace quillane::worker {

/// The window through which pixels come and go: a memory file that the decoding process and
/// the program both write and read, its size sealed so that neither can cut it short under the
/// other. Kept from picture to picture, because fresh pages cost more than small decodes.
class SharedMemory {
public:
    SharedMemory() = default;
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    /// Makes the memory at the first call. Failure kFailureLimit when the system has no more.
    void Make();
    bool IsMade() const { return mData != nullptr; }
    const uchar* Data() const { return mData; } ///< kWindowBytes of them
    uchar* WritableData() { return mData; }
    int Descriptor() const { return mFile.Fd(); }

private:
    FileHandle mFile;
    uchar* mData = nullptr;
};

} // namespace quillane::worker
