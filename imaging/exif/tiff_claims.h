#pragma once
#include "imaging/exif/tiff_structure.h"
#include <set>

namespace quillane::exif {

/// Walks the directories of a structure and notes which bytes they own: tables, values, and the
/// strips, tiles and previews that they point to. Every directory is walked once, whatever points
/// to it. Failure kFailureLimit for more than any picture has.
class TiffClaims {
public:
    explicit TiffClaims(const TiffStructure& structure) : mStructure(structure) { }

    /// Marks a directory as walked; false when it was walked before or none can be there.
    bool Visit(qint64 at);
    /// Adds the ranges of a directory, of those it points to, and of those that follow it.
    void AddChain(qint64 at, std::vector<ByteRange>& ranges) { AddChain(at, ranges, 0); }
    /// Adds the ranges of the directories that a directory's fields of this tag point to.
    void AddPointed(const TiffDirectory& directory, quint16 tag, std::vector<ByteRange>& ranges)
    {
        AddPointed(directory, tag, ranges, 0);
    }
    /// Adds the strips, tiles and JPEG preview of a directory.
    void AddContents(const TiffDirectory& directory, std::vector<ByteRange>& ranges);
    /// Adds what two fields of offsets and lengths tell; whatever lies beyond the end is left out.
    void AddContents(const TiffDirectory& directory, quint16 offsets, quint16 lengths,
                     std::vector<ByteRange>& ranges);

private:
    void AddChain(qint64 at, std::vector<ByteRange>& ranges, int depth);
    void AddPointed(const TiffDirectory& directory, quint16 tag, std::vector<ByteRange>& ranges,
                    int depth);
    void Count(size_t more);
    const TiffStructure& mStructure;
    std::set<qint64> mVisited;
    size_t mCounted = 0;
};

} // namespace quillane::exif
