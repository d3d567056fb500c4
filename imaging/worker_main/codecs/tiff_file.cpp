#include "imaging/worker_main/codecs/tiff_file.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include <tiffio.h>
#include <unordered_set>

namespace quillane::worker {

namespace {

/// One allocation of libtiff; the whole process has a limit of its own besides.
constexpr tmsize_t kMaxTiffAllocation = 256ll << 20;

tmsize_t ReadTiff(thandle_t handle, void* to, tmsize_t count)
{
    auto* file = static_cast<TiffFile*>(handle);
    const qint64 got = file->Source().ReadAt(file->Position(), to, count);
    file->Position() += got;
    return got;
}

tmsize_t WriteTiff(thandle_t, void*, tmsize_t)
{
    return 0;
}

toff_t SeekTiff(thandle_t handle, toff_t offset, int whence)
{
    auto* file = static_cast<TiffFile*>(handle);
    const qint64 base = whence == SEEK_SET ? 0
        : whence == SEEK_CUR               ? file->Position()
                                           : file->Source().Size();
    file->Position() = base + qint64(offset);
    return toff_t(file->Position());
}

int CloseTiff(thandle_t)
{
    return 0;
}

toff_t SizeTiff(thandle_t handle)
{
    return toff_t(static_cast<TiffFile*>(handle)->Source().Size());
}

int CountTiffError(TIFF*, void* user, const char*, const char*, va_list)
{
    static_cast<TiffFile*>(user)->CountError();
    return 1;
}

int IgnoreTiffWarning(TIFF*, void*, const char*, const char*, va_list)
{
    return 1;
}

std::uint64_t Number(const uchar* bytes, int count, bool bigEndian)
{
    std::uint64_t value = 0;
    for (int i = 0; i < count; ++i) {
        value = value << 8 | bytes[bigEndian ? i : count - 1 - i];
    }
    return value;
}

} // namespace

void ThrowTiffDamaged()
{
    throw Failure(kFailureUnreadable, QStringLiteral("This TIFF file is damaged."));
}

TiffFile::TiffFile(ByteSource& source) : mSource(source)
{
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMaxTiffAllocation);
    TIFFOpenOptionsSetErrorHandlerExtR(options, CountTiffError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options, IgnoreTiffWarning, this);
    mTiff = TIFFClientOpenExt("picture", "rm", this, ReadTiff, WriteTiff, SeekTiff, CloseTiff,
                              SizeTiff, nullptr, nullptr, options);
    TIFFOpenOptionsFree(options);
    if (!mTiff) {
        ThrowTiffDamaged();
    }
}

TiffFile::~TiffFile()
{
    TIFFClose(mTiff);
}

void TiffFile::GoToPage(qint32 page)
{
    if (page == 0) {
        return;
    }
    const std::vector<std::uint64_t> pages = TiffPageOffsets(mSource);
    if (page < 0 || size_t(page) >= pages.size()) {
        throw Failure(kFailureGeneral, QStringLiteral("This TIFF file has no such page."));
    }
    if (!TIFFSetSubDirectory(mTiff, pages[size_t(page)])) {
        ThrowTiffDamaged();
    }
}

std::vector<std::uint64_t> TiffPageOffsets(ByteSource& source)
{
    std::vector<std::uint64_t> pages;
    uchar head[16] = {};
    source.ReadAt(0, head, sizeof(head));
    const bool bigEndian = head[0] == 'M';
    const bool bigTiff = Number(head + 2, 2, bigEndian) == 43;
    const int countBytes = bigTiff ? 8 : 2;
    const int offsetBytes = bigTiff ? 8 : 4;
    const int entryBytes = bigTiff ? 20 : 12;
    std::uint64_t offset = Number(head + (bigTiff ? 8 : 4), offsetBytes, bigEndian);
    std::unordered_set<std::uint64_t> seen;
    while (offset != 0 && pages.size() < size_t(limits::kMaxPages) && seen.insert(offset).second) {
        uchar bytes[8];
        if (offset > std::uint64_t(source.Size())
            || source.ReadAt(qint64(offset), bytes, countBytes) != countBytes) {
            break;
        }
        const std::uint64_t entries = Number(bytes, countBytes, bigEndian);
        pages.push_back(offset);
        constexpr std::uint64_t kMaxEntries = 65'535;
        const std::uint64_t next = offset + std::uint64_t(countBytes) + entries * entryBytes;
        if (entries == 0 || entries > kMaxEntries || next > std::uint64_t(source.Size())
            || source.ReadAt(qint64(next), bytes, offsetBytes) != offsetBytes) {
            break;
        }
        offset = Number(bytes, offsetBytes, bigEndian);
    }
    return pages;
}

} // namespace quillane::worker
