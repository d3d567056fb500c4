#pragma once
// Pages of TIFF files as tests look at them.
#include "imaging/carry/append_tiff.h"
#include "imaging/comments/carriers.h"
#include "imaging/exif/tiff_claims.h"
#include "tiff_maker.h"

namespace quillane::test {

/// The directories of pages, in order.
inline std::vector<exif::TiffDirectory> Directories(const QByteArray& file)
{
    const auto structure = exif::TiffStructure::Open(file);
    std::vector<exif::TiffDirectory> all;
    for (qint64 at = structure->FirstDirectory(); at != 0 && all.size() < 100;) {
        all.push_back(structure->ReadDirectory(at));
        at = all.back().next;
    }
    return all;
}

/// Places and sizes of a page's strips and tiles.
inline std::vector<exif::ByteRange> Strips(const QByteArray& file, const exif::TiffDirectory& page)
{
    const auto structure = exif::TiffStructure::Open(file);
    std::vector<exif::ByteRange> ranges;
    exif::TiffClaims(*structure).AddContents(page, ranges);
    return ranges;
}

/// The slots of one page.
inline CommentSet SlotsOfPage(const QByteArray& file, int page)
{
    MemorySource source(TiffFromDirectory(file, Directories(file).at(size_t(page)).at));
    CommentSet set;
    ReadTiffComments(source, set);
    return set;
}

/// A file of one page of one grey.
inline QByteArray GreyTiff(quint32 width, quint32 height, char value, bool big = false)
{
    TiffMaker maker(big);
    maker.Picture(width, height, {8}, 1, height)
        .Chunk(QByteArray(qsizetype(width * height), value));
    return maker.File();
}

} // namespace quillane::test
