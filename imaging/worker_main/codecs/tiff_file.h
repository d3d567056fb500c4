#pragma once
#include "imaging/byte_source.h"
#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

struct tiff;

namespace quillane::worker {

/// An open TIFF, positioned at one of its pages. libtiff reads through the source, is silent,
/// and allocates within limits.
class TiffFile {
public:
    /// Failure kFailureUnreadable when the first page cannot be read.
    explicit TiffFile(ByteSource& source);
    ~TiffFile();
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;

    /// Goes to a page. Failure when there is no such page.
    void GoToPage(qint32 page);
    tiff* Handle() const { return mTiff; }
    /// Errors that libtiff has told of since the file was opened.
    int Errors() const { return mErrors; }
    void CountError() { ++mErrors; }
    ByteSource& Source() { return mSource; }
    qint64& Position() { return mPosition; }

private:
    ByteSource& mSource;
    tiff* mTiff = nullptr;
    qint64 mPosition = 0; ///< libtiff's place in the source
    int mErrors = 0;
};

/// Offsets of the page directories, in order: read until the chain ends, leaves the file or
/// comes back to where it was, and at most limits::kMaxPages.
std::vector<std::uint64_t> TiffPageOffsets(ByteSource& source);

/// kFailureUnreadable: the file is damaged.
[[noreturn]] void ThrowTiffDamaged();

} // namespace quillane::worker
