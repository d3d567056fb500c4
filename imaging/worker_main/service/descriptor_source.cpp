#include "imaging/worker_main/service/descriptor_source.h"
#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace quillane::worker {

qint64 DescriptorSource::ReadAt(qint64 position, void* to, qint64 count)
{
    if (position < 0 || position >= mSize) {
        return 0;
    }
    const qint64 wanted = std::min(count, mSize - position);
    qint64 done = 0;
    while (done < wanted) {
        const ssize_t got = ::pread(mFile.Fd(), static_cast<char*>(to) + done,
                                    size_t(wanted - done), position + done);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        done += got;
    }
    return done;
}

} // namespace quillane::worker
