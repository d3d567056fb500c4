#include "core/failure.h"
#include "imaging/exif/tiff_editor.h"
#include <algorithm>
#include <limits>

namespace quillane::exif {

namespace {

constexpr size_t kCommitHoles = 2000; ///< that are looked through for room, the largest
constexpr qint64 kCommitPadding = 3;  ///< zeros that writers put behind a value to align the next
/// Directories by the field of the first one that points to them.
constexpr std::pair<TiffEditor::Part, quint16> kCommitPointers[] = {
    {TiffEditor::Exif, kTagExifPointer}, {TiffEditor::Gps, kTagGpsPointer}};

bool CommitIsZero(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == 0; });
}

bool CommitMeet(const ByteRange& a, const ByteRange& b)
{
    return a.from < b.to && b.from < a.to;
}

/// Values that may be moved without asking what is in them: a block of a maker may be found, or
/// find its own parts, by its position.
bool CommitMayMove(const TiffField& field)
{
    switch (field.tag) {
    case kTagMakerNote:
    case kTagDngPrivateData:
        return false;
    default:
        break;
    }
    if (field.type != kTypeUndefined && field.type != kTypeByte) {
        return true;
    }
    // Of the blocks of bytes, those that are known to stand for themselves: XMP, IPTC, Photoshop's
    // and colour profiles, the texts of 0x9c9b to 0x9c9f, and what the Exif tables list.
    constexpr quint16 kKnown[] = {kTagXmp, 0x83bb, 0x8649, kTagIccProfile, 0x8828, 0xc4a5};
    return std::find(std::begin(kKnown), std::end(kKnown), field.tag) != std::end(kKnown)
        || field.tag <= 0x001f || (field.tag >= 0x9000 && field.tag <= 0xa4ff);
}

} // namespace

/// One commit: where everything lies, what becomes free, and where the new things go.
class TiffEditor::Layout {
public:
    /// How far the end may be laid anew.
    enum class Reach {
        Nothing, ///< only what became free is written into
        Changed, ///< from the first thing that became free in the part that may move
        All,     ///< the whole part that may move, zeros that no directory knows with it
    };
    Layout(const TiffEditor& editor, Reach reach)
        : mEditor(editor),
          mStructure(*editor.mStructure),
          mReach(reach)
    {
        for (int part = 0; part < kParts; ++part) {
            mParts[part] = editor.mParts[part];
        }
    }

    QByteArray Run()
    {
        DropEmptyParts();
        MeasureRanges();
        ChooseTables();
        FreeHoles();
        PlaceContents();
        PlaceTables();
        for (int part = 0; part < kParts; ++part) {
            WriteTable(Part(part));
        }
        const qint64 most = mStructure.IsWide() ? std::numeric_limits<qint64>::max()
                                                : std::numeric_limits<quint32>::max();
        if (mOut.size() > most) {
            throw Failure(kFailureLimit,
                          QStringLiteral("This file would grow beyond the 4 GB that a TIFF file "
                                         "can have."));
        }
        return mOut;
    }

    /// Whether all that became free at the end was used again, and the size is as it was.
    bool IsSnug() const
    {
        return mOut.size() == mEditor.mBytes.size()
            && std::none_of(mHoles.begin(), mHoles.end(), [this](const ByteRange& hole) {
                   return hole.to > mTail && hole.Size() > 1;
               });
    }

private:
    static bool Moves(const Edited& edited) { return CommitMayMove(edited.field); }

    /// A directory must have a field; one that lost its last goes, and its pointer with it.
    void DropEmptyParts()
    {
        for (const auto& [part, tag] : kCommitPointers) {
            if (mParts[part].present && mParts[part].fields.empty()
                && !mParts[part].was.fields.empty()) {
                mParts[part].present = false;
                std::erase_if(mParts[First].fields, [pointer = tag](const Edited& edited) {
                    return edited.field.tag == pointer;
                });
            }
        }
    }

    /// What must stay and what may go, and with that the end of what stays.
    void MeasureRanges()
    {
        std::vector<ByteRange> fixed = mEditor.mOthers;
        fixed.push_back({0, mStructure.HeaderBytes()});
        fixed.insert(fixed.end(), mEditor.mPicture.begin(), mEditor.mPicture.end());
        std::vector<ByteRange> loose = mEditor.mFreed;
        for (const PartState& part : mParts) {
            loose.push_back(part.was.table);
            for (const Edited& edited : part.fields) {
                (Moves(edited) ? loose : fixed).push_back(edited.field.outside);
            }
        }
        if (mEditor.mPreviewMoves) {
            loose.push_back(mEditor.mPreviewPicture);
        }
        mFixed = ByteRanges(std::move(fixed));
        mLoose = ByteRanges(std::move(loose)).Without(mFixed);
        mTail = TailStart();
        mCut = mReach == Reach::All    ? mTail
            : mReach == Reach::Changed ? FirstFreed()
                                       : mEditor.mBytes.size();
    }

    /// Where the first thing lies in the tail that goes; the end when there is none.
    qint64 FirstFreed() const
    {
        std::vector<ByteRange> freed = mEditor.mFreed;
        for (const PartState& part : mParts) {
            if (!part.present || part.grown || !part.was.whole) {
                freed.push_back(part.was.table);
            }
        }
        qint64 first = mEditor.mBytes.size();
        for (const ByteRange& range : freed) {
            if (range.Size() > 0 && range.to > mTail) {
                first = std::min(first, std::max(range.from, mTail));
            }
        }
        return first;
    }

    /// Where the end of the structure begins that holds nothing but what may go.
    qint64 TailStart() const
    {
        const QByteArray& bytes = mEditor.mBytes;
        const std::span<const ByteRange> loose = mLoose.All();
        qint64 cut = bytes.size();
        for (size_t left = loose.size();; --left) {
            const qint64 before = left > 0 ? loose[left - 1].to : 0;
            const qint64 zeros = cut - before;
            const bool passed = left > 0 && (zeros <= kCommitPadding || (mReach == Reach::All))
                && !mFixed.Touches({before, cut})
                && CommitIsZero(QByteArrayView(bytes).sliced(before, zeros));
            if (!passed) {
                break;
            }
            cut = loose[left - 1].from;
        }
        while ((mReach == Reach::All) && cut > mStructure.HeaderBytes() && bytes[cut - 1] == 0
               && !mFixed.Touches({cut - 1, cut}) && !mLoose.Touches({cut - 1, cut})) {
            --cut;
        }
        return cut;
    }

    /// Which directories get a new table: those that outgrew theirs, that lie in the part that is
    /// cut off, or whose table something else lies across.
    void ChooseTables()
    {
        for (int part = 0; part < kParts; ++part) {
            const PartState& state = mParts[part];
            mNewTable[part] = state.present
                && (state.was.at == 0 || state.grown || !state.was.whole
                    || state.was.table.to > mCut || IsCrossed(part));
        }
    }

    bool IsCrossed(int part) const
    {
        const ByteRange& table = mParts[part].was.table;
        if (mFixed.Touches(table)
            || (mEditor.mPreviewMoves && CommitMeet(mEditor.mPreviewPicture, table))) {
            return true;
        }
        for (int other = 0; other < kParts; ++other) {
            if (other != part && CommitMeet(mParts[other].was.table, table)) {
                return true;
            }
            for (const Edited& edited : mParts[other].fields) {
                if (CommitMeet(edited.field.outside, table)) {
                    return true;
                }
            }
        }
        return false;
    }

    /// Cuts the end off, and zeroes what nobody owns any more.
    void FreeHoles()
    {
        std::vector<ByteRange> live;
        for (int part = 0; part < kParts; ++part) {
            const PartState& state = mParts[part];
            if (state.present && !mNewTable[part]) {
                live.push_back(state.was.table);
            }
            for (const Edited& edited : state.fields) {
                if (edited.field.outside.to <= mCut) {
                    live.push_back(edited.field.outside);
                }
            }
        }
        if (mEditor.mPreviewMoves && mEditor.mPreviewPicture.to <= mCut) {
            live.push_back(mEditor.mPreviewPicture);
        }
        mOut = mEditor.mBytes.left(mCut);
        const ByteRanges holes = mLoose.Below(mCut).Without(ByteRanges(std::move(live)));
        for (const ByteRange& hole : holes.All()) {
            std::fill(mOut.begin() + hole.from, mOut.begin() + hole.to, '\0');
        }
        mHoles.assign(holes.All().begin(), holes.All().end());
        if (mHoles.size() > kCommitHoles) {
            std::nth_element(
                mHoles.begin(), mHoles.begin() + kCommitHoles, mHoles.end(),
                [](const ByteRange& a, const ByteRange& b) { return a.Size() > b.Size(); });
            mHoles.resize(kCommitHoles);
        }
    }

    /// Room for so many bytes at an even position: the first hole that has it, else the end.
    qint64 Room(qint64 size)
    {
        for (ByteRange& hole : mHoles) {
            const qint64 from = hole.from + hole.from % 2;
            if (from + size <= hole.to) {
                hole.from = from + size;
                return from;
            }
        }
        const qint64 at = mOut.size() + mOut.size() % 2;
        mOut.resize(at, '\0');
        mOut.append(size, '\0');
        return at;
    }

    void Write(qint64 at, QByteArrayView bytes)
    {
        std::copy(bytes.begin(), bytes.end(), mOut.begin() + at);
    }

    qint64 Place(QByteArrayView bytes)
    {
        const qint64 at = Room(bytes.size());
        Write(at, bytes);
        return at;
    }

    Edited* FieldOf(Part part, quint16 tag)
    {
        for (Edited& edited : mParts[part].fields) {
            if (edited.field.tag == tag) {
                return &edited;
            }
        }
        return nullptr;
    }

    void PlaceContents()
    {
        for (const Content& content : mEditor.mContents) {
            Edited* offsets = FieldOf(content.part, content.offsets);
            if (!offsets || !mParts[content.part].present) {
                continue;
            }
            QByteArray places;
            places.reserve(content.pieces.size() * mStructure.OffsetBytes());
            for (const QByteArray& piece : content.pieces) {
                places += mStructure.BytesOf(quint64(Place(piece)), mStructure.OffsetBytes());
            }
            offsets->value = places;
        }
        const ByteRange& picture = mEditor.mPreviewPicture;
        if (mEditor.mPreviewMoves && picture.to > mCut) {
            const qint64 at =
                Place(QByteArrayView(mEditor.mBytes).sliced(picture.from, picture.Size()));
            Edited* offset = FieldOf(Preview, kTagJpegOffset);
            offset->changed = true;
            offset->field.type = kTypeLong;
            offset->field.count = 1;
            offset->value = mStructure.BytesOf(quint64(at), 4);
        }
    }

    void PlaceTables()
    {
        // Pointers are written with the tables; the preview of a file has a field of its own.
        for (int part = 0; part < kParts; ++part) {
            const PartState& state = mParts[part];
            mTableAt[part] = !state.present ? 0
                : mNewTable[part]           ? Room(TableBytes(state))
                                            : state.was.at;
        }
        for (const auto& [part, tag] : kCommitPointers) {
            if (!mNewTable[part]) {
                continue;
            }
            for (Edited& edited : mParts[First].fields) {
                if (edited.field.tag == tag) {
                    Point(edited, {}, mTableAt[part]);
                }
            }
        }
        if (mEditor.mKind == Kind::File && mParts[Preview].present) {
            Edited* list = FieldOf(First, kTagSubDirectories);
            const QByteArray held = list->changed ? list->value : OldValue(*list);
            Point(*list, held.chopped(mStructure.OffsetBytes()), mTableAt[Preview]);
        }
        Write(mStructure.IsWide() ? 8 : 4,
              mStructure.BytesOf(quint64(mTableAt[First]), mStructure.OffsetBytes()));
    }

    /// Lets a field hold the directories before and this one.
    void Point(Edited& edited, const QByteArray& before, qint64 at) const
    {
        const int width = mStructure.OffsetBytes();
        edited.changed = true;
        edited.field.type = width == 8 ? kTypeLong8 : kTypeLong;
        edited.field.outside = {};
        edited.field.sound = true;
        edited.value = before + mStructure.BytesOf(quint64(at), width);
        edited.field.count = quint64(edited.value.size() / width);
    }

    QByteArray OldValue(const Edited& edited) const
    {
        return mStructure.Value(edited.field).toByteArray();
    }

    qint64 TableBytes(const PartState& state) const
    {
        return mStructure.CountBytes() + qint64(state.fields.size()) * mStructure.EntryBytes()
            + mStructure.OffsetBytes();
    }

    qint64 NextOf(Part part) const
    {
        if (part == First && mEditor.mKind == Kind::ExifBlock
            && (mParts[Preview].present || mParts[Preview].was.at != 0)) {
            return mTableAt[Preview];
        }
        return mParts[part].was.next;
    }

    void WriteTable(Part part)
    {
        PartState& state = mParts[part];
        if (!state.present) {
            return;
        }
        const int width = mStructure.OffsetBytes();
        QByteArray table = mStructure.BytesOf(state.fields.size(), mStructure.CountBytes());
        table.reserve(TableBytes(state));
        for (Edited& edited : state.fields) {
            const TiffField& field = edited.field;
            table += mStructure.BytesOf(field.tag, 2) + mStructure.BytesOf(field.type, 2);
            table += mStructure.BytesOf(field.count, width);
            if (!edited.changed && field.outside.to <= mCut) {
                table += field.entry;
                continue;
            }
            const QByteArray value = edited.changed ? edited.value : OldValue(edited);
            table += value.size() <= width ? value.leftJustified(width, '\0')
                                           : mStructure.BytesOf(quint64(Place(value)), width);
        }
        table += mStructure.BytesOf(quint64(NextOf(part)), width);
        Write(mTableAt[part], table);
        const qint64 end = mTableAt[part] + table.size();
        if (!mNewTable[part] && end < state.was.table.to) {
            std::fill(mOut.begin() + end, mOut.begin() + state.was.table.to, '\0');
        }
    }

    const TiffEditor& mEditor;
    const TiffStructure& mStructure;
    const Reach mReach;
    PartState mParts[kParts];
    ByteRanges mFixed, mLoose;
    qint64 mTail = 0; ///< from here on nothing lies that must stay
    qint64 mCut = 0;  ///< what lies from here on is laid anew
    bool mNewTable[kParts] = {};
    qint64 mTableAt[kParts] = {};
    std::vector<ByteRange> mHoles;
    QByteArray mOut;
};

bool TiffEditor::IsUntouched() const
{
    return mContents.empty() && mFreed.empty()
        && std::all_of(std::begin(mParts), std::end(mParts), [](const PartState& part) {
               return !part.grown && part.present == (part.was.at != 0)
                   && part.fields.size() == part.was.fields.size()
                   && std::none_of(part.fields.begin(), part.fields.end(),
                                   [](const Edited& edited) { return edited.changed; });
           });
}

QByteArray TiffEditor::Commit(bool reclaimZeros) const
{
    if (IsUntouched()) {
        return mBytes; // however badly it is built
    }
    if (!reclaimZeros) {
        Layout inPlace(*this, Layout::Reach::Nothing);
        QByteArray patched = inPlace.Run();
        if (inPlace.IsSnug()) {
            return patched;
        }
    }
    return Layout(*this, reclaimZeros ? Layout::Reach::All : Layout::Reach::Changed).Run();
}

} // namespace quillane::exif
