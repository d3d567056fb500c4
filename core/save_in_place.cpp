#include "core/save_in_place.h"
#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

namespace quillane {

namespace {

constexpr qint64 kCompareStep = 64 * 1024;

qint64 SizeOfOpen(int fd)
{
    struct stat now { };
    return fstat(fd, &now) == 0 ? qint64(now.st_size) : -1;
}

} // namespace

InPlaceResult ExchangeContent(const SaveCalls& calls, int target, int fresh, int backup)
{
    // A full disk shows here, while nothing is touched.
    const qint64 size = SizeOfOpen(fresh);
    int error = size < 0 ? EIO : calls.Reserve(target, size);
    if (error == 0)
        error = calls.CopyContent(fresh, target);
    if (error == 0)
        error = calls.Sync(target);
    if (error == 0)
        return {};
    const bool restored = calls.CopyContent(backup, target) == 0 && calls.Sync(target) == 0;
    return {error, restored};
}

bool IsHalfExchanged(int target, int backup, int fresh)
{
    const qint64 oldSize = SizeOfOpen(backup);
    const qint64 newSize = SizeOfOpen(fresh);
    const qint64 size = SizeOfOpen(target);
    if (oldSize < 0 || newSize < 0 || size < std::min(oldSize, newSize)
        || size > std::max(oldSize, newSize))
        return false;
    QByteArray found(kCompareStep, Qt::Uninitialized);
    QByteArray was(kCompareStep, Qt::Uninitialized);
    QByteArray wanted(kCompareStep, Qt::Uninitialized);
    for (qint64 at = 0; at < size; at += kCompareStep) {
        const qint64 count = std::min(kCompareStep, size - at);
        const qint64 wasCount = ReadAt(backup, was.data(), count, at);
        const qint64 wantedCount = ReadAt(fresh, wanted.data(), count, at);
        if (ReadAt(target, found.data(), count, at) != count || wasCount < 0 || wantedCount < 0)
            return false;
        for (qint64 i = 0; i < count; ++i) {
            const bool old = i < wasCount && found[i] == was[i];
            const bool renewed = i < wantedCount && found[i] == wanted[i];
            // Room that a crash of the system left unwritten.
            const bool blank = i >= wasCount && found[i] == 0;
            if (!old && !renewed && !blank)
                return false;
        }
    }
    return true;
}

bool SameContent(int one, int other)
{
    const qint64 size = SizeOfOpen(one);
    if (size < 0 || size != SizeOfOpen(other))
        return false;
    QByteArray left(kCompareStep, Qt::Uninitialized);
    QByteArray right(kCompareStep, Qt::Uninitialized);
    for (qint64 at = 0; at < size; at += kCompareStep) {
        const qint64 count = std::min(kCompareStep, size - at);
        if (ReadAt(one, left.data(), count, at) != count
            || ReadAt(other, right.data(), count, at) != count
            || !std::equal(left.cbegin(), left.cbegin() + count, right.cbegin()))
            return false;
    }
    return true;
}

} // namespace quillane
