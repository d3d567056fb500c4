#include "imaging/worker/shared_memory.h"
#include "core/failure.h"
#include "imaging/worker/protocol.h"
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace quillane::worker {

SharedMemory::~SharedMemory()
{
    if (mData) {
        ::munmap(mData, size_t(kWindowBytes));
    }
}

void SharedMemory::Make()
{
    if (mData) {
        return;
    }
    FileHandle file(::memfd_create("quillane-picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    // The pages are taken now: a lack of memory is an answer here and a signal later.
    const bool made = file.IsOpen() && ::ftruncate(file.Fd(), kWindowBytes) == 0
        && ::fallocate(file.Fd(), 0, 0, kWindowBytes) == 0
        && ::fcntl(file.Fd(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) == 0;
    void* data = made
        ? ::mmap(nullptr, size_t(kWindowBytes), PROT_READ | PROT_WRITE, MAP_SHARED, file.Fd(), 0)
        : MAP_FAILED;
    if (data == MAP_FAILED) {
        throw Failure(kFailureLimit,
                      QStringLiteral("There is not enough memory for this picture."));
    }
    mFile = std::move(file);
    mData = static_cast<uchar*>(data);
}

} // namespace quillane::worker
