#include "imaging/carry/append_tiff.h"
#include "core/failure.h"
#include "imaging/carry/tiff_pages.h"
#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <utility>

namespace quillane::carry {

namespace {

using exif::ByteRange;
using exif::TiffDirectory;
using exif::TiffField;
using exif::TiffStructure;

constexpr quint16 kAppendOldSubfileType = 0x00ff, kAppendFreeOffsets = 0x0120,
                  kAppendFreeLengths = 0x0121, kAppendPageNumber = 0x0129;
/// What tells a page's place among others, or room without content.
constexpr quint16 kAppendLeftOut[] = {exif::kTagNewSubfileType, kAppendOldSubfileType,
                                      kAppendFreeOffsets, kAppendFreeLengths, kAppendPageNumber};
constexpr quint64 kAppendOnePage = 2;    ///< NewSubfileType of a page of several
constexpr quint64 kAppendOldJpeg = 6;    ///< compression of TIFF 6.0, section 22
constexpr quint16 kAppendSigned8 = 17;   ///< a BigTIFF's signed number of eight bytes
constexpr int kAppendDepth = 4;          ///< directories within directories
constexpr qint64 kAppendAddition = 1024; ///< what a page gets besides its own
/// Compressions of which the order of bytes is no matter (JPEG, T.85, JBIG, JPEG 2000, WebP, JPEG
/// XL).
constexpr quint64 kAppendOrderless[] = {7, 9, 34661, 34712, 50001, 50002};

TiffStructure AppendStructure(const QByteArray& bytes)
{
    const std::optional<TiffStructure> structure = TiffStructure::Open(bytes);
    if (!structure) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This is no TIFF file, so no page can be added to it."));
    }
    return *structure;
}

quint64 AppendNumber(const TiffStructure& structure, const TiffDirectory& directory, quint16 tag,
                     quint64 otherwise)
{
    const TiffField* field = exif::FindField(directory, tag);
    return field ? structure.Number(*field).value_or(otherwise) : otherwise;
}

bool AppendIsAmong(std::span<const quint16> tags, quint16 tag)
{
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

/// Moves a directory and all it leads to from one structure to the end of another.
class TiffPageMove {
public:
    TiffPageMove(const TiffStructure& from, const TiffStructure& to, QByteArray& out,
                 qint64 mostBytes)
        : mFrom(from),
          mTo(to),
          mOut(out),
          // A page grows by wider offsets alone: more is one place that is told many times.
          mMost(std::min({mostBytes, to.IsWide() ? mostBytes : qint64(0xffff'ffff),
                          out.size() + 2 * from.Bytes().size() + kAppendAddition})),
          mTurn(from.IsBig() != to.IsBig())
    { }

    /// Returns where the directory lies now.
    qint64 Page(qint64 at, qint32 number)
    {
        const TiffDirectory directory = Whole(at);
        std::vector<Entry> entries = Entries(directory, 0, kAppendLeftOut);
        entries.push_back(
            {exif::kTagNewSubfileType, exif::kTypeLong, 1, mTo.BytesOf(kAppendOnePage, 4)});
        if (number <= 0xffff) {
            entries.push_back({kAppendPageNumber, exif::kTypeShort, 2,
                               mTo.BytesOf(quint64(number), 2) + mTo.BytesOf(0, 2)});
        }
        return Table(std::move(entries));
    }

private:
    struct Entry {
        quint16 tag = 0;
        quint16 type = 0;
        quint64 count = 0;
        QByteArray value; ///< in the target's order
    };

    TiffDirectory Whole(qint64 at)
    {
        TiffDirectory directory = mFrom.ReadDirectory(at);
        if (directory.at == 0 || !directory.whole || !mVisited.insert(at).second) {
            throw Failure(kFailureUnreadable,
                          QStringLiteral("The fields of the page to add are damaged."));
        }
        return directory;
    }

    std::vector<Entry> Entries(const TiffDirectory& directory, int depth,
                               std::span<const quint16> leftOut)
    {
        std::vector<Entry> entries;
        entries.reserve(directory.fields.size() + 2);
        for (const TiffField& field : directory.fields) {
            if (!field.sound || AppendIsAmong(leftOut, field.tag)) {
                continue;
            }
            const auto pair =
                std::find_if(std::begin(kTiffContentFields), std::end(kTiffContentFields),
                             [&](const auto& tags) { return tags.first == field.tag; });
            if (AppendIsAmong(kTiffPointerFields, field.tag)) {
                AddPlaces(entries, field, MovedDirectories(field, depth));
            } else if (pair != std::end(kTiffContentFields)) {
                AddPlaces(entries, field, MovedContents(directory, field, pair->second));
            } else {
                entries.push_back(Moved(field));
            }
        }
        return entries;
    }

    void AddPlaces(std::vector<Entry>& entries, const TiffField& field,
                   const std::vector<quint64>& places) const
    {
        if (places.empty()) {
            return;
        }
        const int width = mTo.OffsetBytes();
        Entry entry{
            field.tag, quint16(width == 8 ? exif::kTypeLong8 : exif::kTypeLong), places.size(), {}};
        entry.value.reserve(qsizetype(places.size()) * width);
        for (const quint64 place : places) {
            entry.value += mTo.BytesOf(place, width);
        }
        entries.push_back(std::move(entry));
    }

    std::vector<quint64> MovedDirectories(const TiffField& field, int depth)
    {
        std::vector<quint64> places;
        for (quint64 i = 0; i < field.count && depth < kAppendDepth; ++i) {
            const quint64 at = mFrom.Number(field, i).value_or(0);
            if (at == 0 || at >= quint64(mFrom.Bytes().size()) || mVisited.count(qint64(at)) != 0) {
                continue;
            }
            const TiffDirectory directory = mFrom.ReadDirectory(qint64(at));
            const bool oldJpeg =
                AppendNumber(mFrom, directory, exif::kTagCompression, 1) == kAppendOldJpeg
                && exif::FindField(directory, exif::kTagStripOffsets);
            if (directory.at == 0 || !directory.whole || oldJpeg) {
                continue;
            }
            mVisited.insert(qint64(at));
            places.push_back(quint64(Table(Entries(directory, depth + 1, {}))));
        }
        return places;
    }

    std::vector<quint64> MovedContents(const TiffDirectory& directory, const TiffField& offsets,
                                       quint16 lengths)
    {
        const TiffField* sizes = exif::FindField(directory, lengths);
        const int unit = SampleUnit(directory);
        std::vector<quint64> places;
        places.reserve(offsets.count);
        for (quint64 i = 0; i < offsets.count; ++i) {
            const std::optional<ByteRange> range = TiffPiece(mFrom, offsets, sizes, i);
            if (!range) {
                throw Failure(kFailureUnreadable,
                              QStringLiteral("The picture of the page to add is cut off."));
            }
            places.push_back(range->Size() == 0 ? 0 : Piece(*range, unit));
        }
        return places;
    }

    /// Bytes of a sample that have to be turned; 1 when none have.
    int SampleUnit(const TiffDirectory& directory) const
    {
        const quint64 bits = AppendNumber(mFrom, directory, exif::kTagBitsPerSample, 1);
        const quint64 compression = AppendNumber(mFrom, directory, exif::kTagCompression, 1);
        const bool orderless =
            std::find(std::begin(kAppendOrderless), std::end(kAppendOrderless), compression)
            != std::end(kAppendOrderless);
        if (!mTurn || bits % 8 != 0 || bits <= 8 || bits > 64 || orderless) {
            return 1;
        }
        if (compression != 1) {
            throw Failure(
                kFailureGeneral,
                QStringLiteral("This TIFF file stores numbers in another order of bytes, and "
                               "compressed samples of %1 bits cannot be added to it. Choose a "
                               "format without compression, or save under another name.")
                    .arg(bits));
        }
        return int(bits / 8);
    }

    QByteArray Turned(QByteArray bytes, int unit) const
    {
        if (mTurn && unit > 1) {
            for (qsizetype at = 0; at + unit <= bytes.size(); at += unit) {
                std::reverse(bytes.begin() + at, bytes.begin() + at + unit);
            }
        }
        return bytes;
    }

    /// Pieces that lie in one place are moved once.
    quint64 Piece(const ByteRange& range, int unit)
    {
        const auto key = std::pair(range.from, range.to);
        if (const auto found = mPieces.find(key); found != mPieces.end()) {
            return found->second;
        }
        const quint64 at =
            Put(Turned(mFrom.Bytes().sliced(range.from, range.Size()).toByteArray(), unit));
        mPieces.emplace(key, at);
        return at;
    }

    quint64 Put(const QByteArray& bytes)
    {
        const qint64 at = mOut.size() + mOut.size() % 2;
        if (bytes.size() > mMost - at) {
            throw Failure(kFailureLimit,
                          QStringLiteral("With another page this TIFF file would become too "
                                         "large. Save under another name."));
        }
        mOut.append(at - mOut.size(), '\0');
        mOut += bytes;
        return quint64(at);
    }

    Entry Moved(const TiffField& field) const
    {
        const int width = exif::FieldTypeBytes(field.type);
        const bool wide = field.type == exif::kTypeLong8 || field.type == exif::kTypeIfd8
            || field.type == kAppendSigned8;
        if (wide && !mTo.IsWide()) {
            return Narrowed(field);
        }
        const bool pair =
            field.type == exif::kTypeRational || field.type == exif::kTypeSignedRational;
        return {field.tag, field.type, field.count,
                Turned(mFrom.Value(field).toByteArray(), pair ? 4 : width)};
    }

    /// Numbers of eight bytes in four.
    Entry Narrowed(const TiffField& field) const
    {
        Entry entry{field.tag, exif::kTypeLong, field.count, {}};
        for (quint64 i = 0; i < field.count; ++i) {
            const std::optional<quint64> number = mFrom.Number(field, i);
            if (!number || *number > 0xffff'ffff) {
                throw Failure(kFailureGeneral,
                              QStringLiteral("The page has numbers that this TIFF file cannot "
                                             "hold. Save under another name."));
            }
            entry.value += mTo.BytesOf(*number, 4);
        }
        return entry;
    }

    /// Writes a directory behind the values that do not fit into it.
    qint64 Table(std::vector<Entry> entries)
    {
        std::stable_sort(entries.begin(), entries.end(),
                         [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
        const int width = mTo.OffsetBytes();
        QByteArray table = mTo.BytesOf(entries.size(), mTo.CountBytes());
        for (const Entry& entry : entries) {
            table += mTo.BytesOf(entry.tag, 2) + mTo.BytesOf(entry.type, 2)
                + mTo.BytesOf(entry.count, width);
            table += entry.value.size() <= width ? entry.value.leftJustified(width, '\0')
                                                 : mTo.BytesOf(Put(entry.value), width);
        }
        table += QByteArray(width, '\0');
        return qint64(Put(table));
    }

    const TiffStructure& mFrom;
    const TiffStructure& mTo;
    QByteArray& mOut;
    const qint64 mMost;
    const bool mTurn;
    std::set<qint64> mVisited;
    std::map<std::pair<qint64, qint64>, quint64> mPieces;
};

} // namespace

} // namespace quillane::carry

namespace quillane {

bool TiffPageCanMove(const QByteArray& page)
{
    const exif::TiffStructure structure = carry::AppendStructure(page);
    const exif::TiffDirectory first = structure.ReadDirectory(structure.FirstDirectory());
    if (carry::AppendNumber(structure, first, exif::kTagCompression, 1) == carry::kAppendOldJpeg) {
        return false;
    }
    for (const auto& [offsets, lengths] : carry::kTiffContentFields) {
        const exif::TiffField* places = exif::FindField(first, offsets);
        const exif::TiffField* sizes = exif::FindField(first, lengths);
        for (quint64 i = 0; places && i < places->count; ++i) {
            if (!carry::TiffPiece(structure, *places, sizes, i)) {
                return false;
            }
        }
    }
    return true;
}

TiffWithPage AppendTiffPage(const QByteArray& target, const QByteArray& page, qint64 mostBytes)
{
    const exif::TiffStructure to = carry::AppendStructure(target);
    const exif::TiffStructure from = carry::AppendStructure(page);
    const carry::TiffPageChain chain = carry::WalkTiffPages(to);
    TiffWithPage result;
    result.file = target;
    carry::TiffPageMove move(from, to, result.file, mostBytes);
    result.directory = move.Page(from.FirstDirectory(), chain.pages);
    result.pages = chain.pages + 1;
    const QByteArray place = to.BytesOf(quint64(result.directory), to.OffsetBytes());
    std::copy(place.begin(), place.end(), result.file.begin() + chain.nextAt);
    return result;
}

QByteArray TiffFromDirectory(QByteArray file, qint64 directory)
{
    const exif::TiffStructure structure = carry::AppendStructure(file);
    const QByteArray place = structure.BytesOf(quint64(directory), structure.OffsetBytes());
    const int at = structure.IsWide() ? 8 : 4;
    std::copy(place.begin(), place.end(), file.begin() + at);
    return file;
}

} // namespace quillane
