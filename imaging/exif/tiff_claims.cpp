#include "imaging/exif/tiff_claims.h"
#include "core/failure.h"
#include "imaging/limits.h"

namespace quillane::exif {

namespace {

constexpr int kClaimsDepth = 6;            ///< directories within directories
constexpr size_t kClaimsInAll = 4'000'000; ///< fields, strips and tiles
constexpr quint16 kClaimsPointers[] = {kTagSubDirectories, kTagExifPointer, kTagGpsPointer,
                                       kTagInteropPointer};

/// Whether there is a directory at all: a pointer gone astray finds other bytes, and what they
/// seem to own must not hold anything in place.
bool ClaimsAreCredible(const TiffDirectory& directory)
{
    size_t known = 0;
    for (const TiffField& field : directory.fields) {
        known += FieldTypeBytes(field.type) > 0 ? 1 : 0;
    }
    return directory.at != 0 && directory.whole && known * 2 >= directory.fields.size();
}

} // namespace

bool TiffClaims::Visit(qint64 at)
{
    return at >= mStructure.HeaderBytes() && mVisited.insert(at).second;
}

void TiffClaims::Count(size_t more)
{
    mCounted += more;
    if (mCounted > kClaimsInAll) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This file has more fields and strips than can be kept in "
                                     "order, so its metadata cannot be changed."));
    }
}

void TiffClaims::AddChain(qint64 at, std::vector<ByteRange>& ranges, int depth)
{
    for (int page = 0; page < limits::kMaxPages && Visit(at); ++page) {
        const TiffDirectory directory = mStructure.ReadDirectory(at);
        if (!ClaimsAreCredible(directory)) {
            return;
        }
        Count(directory.fields.size() + 1);
        ranges.push_back(directory.table);
        for (const TiffField& field : directory.fields) {
            ranges.push_back(field.outside);
        }
        AddContents(directory, ranges);
        for (const quint16 tag : kClaimsPointers) {
            AddPointed(directory, tag, ranges, depth);
        }
        at = directory.next;
    }
}

void TiffClaims::AddPointed(const TiffDirectory& directory, quint16 tag,
                            std::vector<ByteRange>& ranges, int depth)
{
    if (depth >= kClaimsDepth) {
        return;
    }
    for (const TiffField& field : directory.fields) {
        if (field.tag != tag) {
            continue;
        }
        for (quint64 i = 0; i < field.count; ++i) {
            const std::optional<quint64> at = mStructure.Number(field, i);
            if (!at) {
                break;
            }
            Count(1);
            if (*at < quint64(mStructure.Bytes().size())) {
                AddChain(qint64(*at), ranges, depth + 1);
            }
        }
    }
}

void TiffClaims::AddContents(const TiffDirectory& directory, std::vector<ByteRange>& ranges)
{
    AddContents(directory, kTagStripOffsets, kTagStripByteCounts, ranges);
    AddContents(directory, kTagTileOffsets, kTagTileByteCounts, ranges);
    AddContents(directory, kTagJpegOffset, kTagJpegLength, ranges);
}

void TiffClaims::AddContents(const TiffDirectory& directory, quint16 offsets, quint16 lengths,
                             std::vector<ByteRange>& ranges)
{
    const TiffField* starts = FindField(directory, offsets);
    const TiffField* sizes = FindField(directory, lengths);
    if (!starts || !sizes) {
        return;
    }
    const auto end = quint64(mStructure.Bytes().size());
    for (quint64 i = 0; i < starts->count; ++i) {
        const std::optional<quint64> from = mStructure.Number(*starts, i);
        const std::optional<quint64> size = mStructure.Number(*sizes, i);
        if (!from || !size) {
            break;
        }
        Count(1);
        if (*from <= end && *size <= end - *from) {
            ranges.push_back({qint64(*from), qint64(*from + *size)});
        }
    }
}

} // namespace quillane::exif
