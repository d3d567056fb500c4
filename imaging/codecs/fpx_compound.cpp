#include "imaging/codecs/fpx_compound.h"
#include "imaging/codecs/codec_support.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

namespace {

constexpr uchar kCompoundMark[] = {0xd0, 0xcf, 0x11, 0xe0, 0xa1, 0xb1, 0x1a, 0xe1};
constexpr int kCompoundHeader = 512;
constexpr int kCompoundEntryBytes = 128;
constexpr int kCompoundFirstTables = 109;           ///< named in the header itself
constexpr quint32 kCompoundLastSector = 0xfffffffa; ///< numbers above it have other meanings

} // namespace

bool IsCompoundFile(QByteArrayView head)
{
    return head.size() >= qsizetype(sizeof(kCompoundMark))
        && std::memcmp(head.data(), kCompoundMark, sizeof(kCompoundMark)) == 0;
}

qint64 CompoundStream::ReadAt(qint64 position, void* to, qint64 count)
{
    if (position < 0 || position >= mSize) {
        return 0;
    }
    count = std::min(count, mSize - position);
    char* out = static_cast<char*>(to);
    qint64 got = 0;
    while (got < count) {
        const qint64 at = position + got;
        const qint64 inside = at % mSector;
        // Sectors that follow each other are read at once.
        size_t last = size_t(at / mSector);
        qint64 run = mSector - inside;
        while (run < count - got && mPlaces[last + 1] == mPlaces[last] + mSector) {
            run += mSector;
            ++last;
        }
        const qint64 wanted = std::min(run, count - got);
        const qint64 part =
            mFile->ReadAt(mPlaces[size_t(at / mSector)] + inside, out + got, wanted);
        got += std::max<qint64>(part, 0);
        if (part < wanted) {
            break;
        }
    }
    return got;
}

CompoundFile::CompoundFile(ByteSource& file, const char* format) : mFile(file), mFormat(format)
{
    uchar header[kCompoundHeader];
    if (file.ReadAt(0, header, sizeof(header)) != qint64(sizeof(header))
        || !IsCompoundFile(QByteArrayView(header, sizeof(header)))) {
        Damaged(format, QStringLiteral("its header is cut short"));
    }
    const int shift = Little16(header + 30);
    const int smallShift = Little16(header + 32);
    if ((shift != 9 && shift != 12) || smallShift < 4 || smallShift >= shift) {
        Damaged(format, QStringLiteral("its sectors have no possible size"));
    }
    mSector = qint64(1) << shift;
    mSmallSector = qint64(1) << smallShift;
    mSmallBelow = Little32(header + 56);
    ReadTable(header);
    ReadDirectory(Little32(header + 48));
    // The small sectors and their table are reached like any stream.
    const size_t most = mTable.size();
    for (const quint32 sector : Chain(Little32(header + 60), mTable, most)) {
        std::vector<uchar> bytes(size_t(mSector), 0xff);
        mFile.ReadAt(PlaceOf(sector), bytes.data(), mSector);
        for (qint64 i = 0; i + 3 < mSector; i += 4) {
            mSmallTable.push_back(Little32(bytes.data() + i));
        }
    }
    mSmallOnes = StreamOf(mEntries[0].start, mEntries[0].size);
}

/// The table that chains the sectors: its own sectors are listed in the header and in a chain of
/// lists behind it.
void CompoundFile::ReadTable(const uchar* header)
{
    const size_t sectors = size_t(std::max<qint64>(0, mFile.Size() / mSector));
    const size_t perSector = size_t(mSector) / 4;
    const size_t wanted = std::min<size_t>(Little32(header + 44), sectors / perSector + 2);
    std::vector<quint32> parts;
    for (int i = 0; i < kCompoundFirstTables && parts.size() < wanted; ++i) {
        parts.push_back(Little32(header + 76 + 4 * i));
    }
    std::vector<uchar> bytes(static_cast<size_t>(mSector));
    quint32 list = Little32(header + 68);
    // A list names at least one part, so there are no more lists than parts.
    for (size_t lists = 0; parts.size() < wanted && list < kCompoundLastSector && lists < wanted;
         ++lists) {
        if (mFile.ReadAt(PlaceOf(list), bytes.data(), mSector) != mSector) {
            break;
        }
        for (size_t i = 0; i + 1 < perSector && parts.size() < wanted; ++i) {
            parts.push_back(Little32(bytes.data() + 4 * i));
        }
        list = Little32(bytes.data() + mSector - 4);
    }
    mTable.reserve(parts.size() * perSector);
    for (const quint32 part : parts) {
        std::fill(bytes.begin(), bytes.end(), uchar(0xff));
        if (part < kCompoundLastSector) {
            mFile.ReadAt(PlaceOf(part), bytes.data(), mSector);
        }
        for (size_t i = 0; i < perSector; ++i) {
            mTable.push_back(Little32(bytes.data() + 4 * i));
        }
    }
}

/// The sectors of a chain, at most so many; one that comes back to itself ends there.
std::vector<quint32> CompoundFile::Chain(quint32 start, const std::vector<quint32>& table,
                                         size_t most) const
{
    std::vector<quint32> chain;
    quint32 sector = start;
    while (sector < kCompoundLastSector && sector < table.size() && chain.size() < most) {
        chain.push_back(sector);
        sector = table[sector];
    }
    return chain;
}

CompoundStream CompoundFile::StreamOf(quint32 start, qint64 size) const
{
    CompoundStream stream;
    stream.mFile = &mFile;
    stream.mSector = mSector;
    const size_t needed =
        size_t((std::clamp<qint64>(size, 0, mFile.Size()) + mSector - 1) / mSector);
    const std::vector<quint32> chain = Chain(start, mTable, needed);
    stream.mPlaces.reserve(chain.size());
    for (const quint32 sector : chain) {
        stream.mPlaces.push_back(PlaceOf(sector));
    }
    stream.mSize = std::min(size, qint64(chain.size()) * mSector);
    return stream;
}

void CompoundFile::ReadDirectory(quint32 start)
{
    const size_t perSector = size_t(mSector) / kCompoundEntryBytes;
    std::vector<uchar> bytes(static_cast<size_t>(mSector));
    for (const quint32 sector : Chain(start, mTable, kMaxEntries / perSector)) {
        if (mFile.ReadAt(PlaceOf(sector), bytes.data(), mSector) != mSector) {
            break;
        }
        for (size_t i = 0; i < perSector; ++i) {
            const uchar* p = bytes.data() + i * kCompoundEntryBytes;
            CompoundEntry entry;
            const int letters = std::clamp(Little16(p + 64) / 2 - 1, 0, 31);
            for (int k = 0; k < letters; ++k) {
                entry.name += QChar(Little16(p + 2 * k));
            }
            entry.isStream = p[66] == 2;
            entry.left = qint32(Little32(p + 68));
            entry.right = qint32(Little32(p + 72));
            entry.child = p[66] == 1 || p[66] == 5 ? qint32(Little32(p + 76)) : -1;
            entry.start = Little32(p + 116);
            entry.size = Little32(p + 120);
            mEntries.push_back(entry);
        }
    }
    if (mEntries.empty()) {
        Damaged(mFormat, QStringLiteral("its directory is missing"));
    }
}

std::vector<qint32> CompoundFile::Inside(qint32 storage) const
{
    std::vector<qint32> found;
    std::vector<bool> seen(mEntries.size());
    std::vector<qint32> waiting{At(storage).child};
    while (!waiting.empty()) {
        const qint32 index = waiting.back();
        waiting.pop_back();
        if (index < 0 || size_t(index) >= mEntries.size() || seen[size_t(index)]) {
            continue;
        }
        seen[size_t(index)] = true;
        found.push_back(index);
        waiting.push_back(At(index).left);
        waiting.push_back(At(index).right);
    }
    return found;
}

qint32 CompoundFile::Find(qint32 storage, QStringView name) const
{
    for (const qint32 index : Inside(storage)) {
        if (name.compare(At(index).name, Qt::CaseInsensitive) == 0) {
            return index;
        }
    }
    return -1;
}

CompoundStream CompoundFile::Open(qint32 index) const
{
    const CompoundEntry& entry = At(index);
    if (!entry.isStream) {
        Damaged(mFormat, QStringLiteral("a stream of it is none"));
    }
    if (entry.size >= mSmallBelow) {
        return StreamOf(entry.start, entry.size);
    }
    CompoundStream stream;
    stream.mFile = &mFile;
    stream.mSector = mSmallSector;
    const size_t needed = size_t((entry.size + mSmallSector - 1) / mSmallSector);
    for (const quint32 sector : Chain(entry.start, mSmallTable, needed)) {
        const qint64 at = qint64(sector) * mSmallSector;
        if (at + mSmallSector > mSmallOnes.mSize + mSector) {
            break;
        }
        const size_t holder = size_t(at / mSector);
        if (holder >= mSmallOnes.mPlaces.size()) {
            break;
        }
        stream.mPlaces.push_back(mSmallOnes.mPlaces[holder] + at % mSector);
    }
    stream.mSize = std::min(entry.size, qint64(stream.mPlaces.size()) * mSmallSector);
    return stream;
}

} // namespace quillane::codecs
