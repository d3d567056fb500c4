#pragma once
// The compound file that a FlashPix picture lives in: storages and streams in one file, cut into
// sectors that are chained by tables.
#include "imaging/byte_source.h"
#include <QString>
#include <vector>

namespace quillane::codecs {

class CompoundFile;

/// One stream; it reads what its sectors hold, and ends where their chain does.
class CompoundStream : public ByteSource {
public:
    qint64 Size() const override { return mSize; }
    qint64 ReadAt(qint64 position, void* to, qint64 count) override;

private:
    friend class CompoundFile;
    ByteSource* mFile = nullptr;
    std::vector<qint64> mPlaces; ///< of its sectors in the file
    qint64 mSector = 512;
    qint64 mSize = 0;
};

/// An entry of the directory.
struct CompoundEntry {
    QString name;
    bool isStream = false;
    quint32 start = 0;
    qint64 size = 0;
    qint32 child = -1; ///< index of its directory's root; -1 for none
    qint32 left = -1;
    qint32 right = -1;
};

class CompoundFile {
public:
    /// Reads tables and directory; Failure in the name of `format` when they are damaged or too
    /// large for their file.
    CompoundFile(ByteSource& file, const char* format);
    /// Indexes of the entries inside a storage; 0 is the file's own.
    std::vector<qint32> Inside(qint32 storage) const;
    /// Index of an entry by its name inside a storage, or -1.
    qint32 Find(qint32 storage, QStringView name) const;
    const CompoundEntry& At(qint32 index) const { return mEntries[size_t(index)]; }
    /// A stream's content; Failure for an entry that is none.
    CompoundStream Open(qint32 index) const;

    static constexpr size_t kMaxEntries = 20'000;

private:
    std::vector<quint32> Chain(quint32 start, const std::vector<quint32>& table, size_t most) const;
    void ReadTable(const uchar* header);
    void ReadDirectory(quint32 start);
    qint64 PlaceOf(quint32 sector) const { return (qint64(sector) + 1) * mSector; }
    CompoundStream StreamOf(quint32 start, qint64 size) const;
    ByteSource& mFile;
    const char* mFormat;
    qint64 mSector = 512;
    qint64 mSmallSector = 64;
    qint64 mSmallBelow = 4096; ///< streams shorter than this live in small sectors
    std::vector<quint32> mTable;
    std::vector<quint32> mSmallTable;
    std::vector<CompoundEntry> mEntries;
    CompoundStream mSmallOnes; ///< the stream that holds the small sectors
};

/// Whether the bytes begin as a compound file.
bool IsCompoundFile(QByteArrayView head);

} // namespace quillane::codecs
