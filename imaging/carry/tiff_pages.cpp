#include "imaging/carry/tiff_pages.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include <set>

namespace quillane::carry {

namespace {

constexpr quint64 kPagesPiecesInAll = 4'000'000; ///< strips and tiles of all pages

[[noreturn]] void RefuseTiffPages()
{
    throw Failure(kFailureUnreadable,
                  QStringLiteral("The pages of this TIFF file are damaged, so none can be added. "
                                 "Save under another name."));
}

class TiffPageWalk {
public:
    explicit TiffPageWalk(const exif::TiffStructure& structure) : mStructure(structure) { }

    TiffPageChain Run()
    {
        TiffPageChain chain;
        std::set<qint64> seen;
        for (qint64 at = mStructure.FirstDirectory(); at != 0;) {
            if (chain.pages == limits::kMaxPages) {
                throw Failure(kFailureLimit,
                              QStringLiteral("This TIFF file has as many pages as there may be."));
            }
            const exif::TiffDirectory directory = mStructure.ReadDirectory(at);
            if (!seen.insert(at).second || directory.at == 0 || !directory.whole
                || directory.fields.empty()) {
                RefuseTiffPages();
            }
            CheckFields(directory);
            ++chain.pages;
            const int width = mStructure.OffsetBytes();
            chain.nextAt = directory.table.to - width;
            // Asked once more, because a place beyond the end reads as none.
            const quint64 next =
                mStructure.NumberOf(mStructure.Bytes().sliced(chain.nextAt, width));
            if (next != 0 && directory.next == 0) {
                RefuseTiffPages();
            }
            at = directory.next;
        }
        return chain;
    }

private:
    void CheckFields(const exif::TiffDirectory& directory)
    {
        for (const exif::TiffField& field : directory.fields) {
            if (!field.sound && exif::FieldTypeBytes(field.type) != 0) {
                RefuseTiffPages();
            }
        }
        const auto end = quint64(mStructure.Bytes().size());
        for (const quint16 tag : kTiffPointerFields) {
            const exif::TiffField* field = exif::FindField(directory, tag);
            for (quint64 i = 0; field && i < field->count; ++i) {
                Count();
                if (mStructure.Number(*field, i).value_or(end) >= end) {
                    RefuseTiffPages();
                }
            }
        }
        for (const auto& [offsets, lengths] : kTiffContentFields) {
            CheckContents(exif::FindField(directory, offsets), exif::FindField(directory, lengths));
        }
    }

    /// Sizes may be left out, and then the places may not lie beyond the end either.
    void CheckContents(const exif::TiffField* offsets, const exif::TiffField* lengths)
    {
        const auto end = quint64(mStructure.Bytes().size());
        for (quint64 i = 0; offsets && i < offsets->count; ++i) {
            Count();
            if (lengths ? !TiffPiece(mStructure, *offsets, lengths, i)
                        : mStructure.Number(*offsets, i).value_or(end) >= end) {
                RefuseTiffPages();
            }
        }
    }

    void Count()
    {
        if (++mCounted > kPagesPiecesInAll) {
            RefuseTiffPages();
        }
    }

    const exif::TiffStructure& mStructure;
    quint64 mCounted = 0;
};

} // namespace

std::optional<exif::ByteRange> TiffPiece(const exif::TiffStructure& structure,
                                         const exif::TiffField& offsets,
                                         const exif::TiffField* lengths, quint64 index)
{
    if (!lengths) {
        return {};
    }
    const auto end = quint64(structure.Bytes().size());
    const std::optional<quint64> from = structure.Number(offsets, index);
    const std::optional<quint64> size = structure.Number(*lengths, index);
    if (!from || !size || *from > end || *size > end - *from) {
        return {};
    }
    return exif::ByteRange{qint64(*from), qint64(*from + *size)};
}

TiffPageChain WalkTiffPages(const exif::TiffStructure& structure)
{
    return TiffPageWalk(structure).Run();
}

} // namespace quillane::carry
