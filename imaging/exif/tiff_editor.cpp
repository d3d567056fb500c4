#include "imaging/exif/tiff_editor.h"
#include "core/failure.h"
#include <algorithm>

namespace quillane::exif {

TiffEditor::TiffEditor(QByteArray bytes, Kind kind) : mBytes(std::move(bytes)), mKind(kind)
{
    mStructure = TiffStructure::Open(mBytes);
    if (mStructure) {
        mClaims.emplace(*mStructure);
        Load(First, mStructure->FirstDirectory());
    }
    if (!mParts[First].present) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("The metadata of this file have no readable beginning, so "
                                     "they cannot be changed."));
    }
    Load(Exif, PointerTo(kTagExifPointer));
    Load(Gps, PointerTo(kTagGpsPointer));
    const TiffDirectory& first = mParts[First].was;
    if (kind == Kind::ExifBlock) {
        Load(Preview, first.next);
        const PartState& preview = mParts[Preview];
        mClaims->AddContents(preview.was, kTagStripOffsets, kTagStripByteCounts, mOthers);
        std::vector<ByteRange> picture;
        mClaims->AddContents(preview.was, kTagJpegOffset, kTagJpegLength, picture);
        mPreviewPicture = picture.empty() ? ByteRange() : picture.front();
        mPreviewMoves = mPreviewPicture.Size() > 0;
        mClaims->AddChain(preview.was.next, mOthers);
    } else {
        mClaims->AddContents(first, mPicture);
        mClaims->AddChain(first.next, mOthers);
    }
    mClaims->AddPointed(first, kTagSubDirectories, mOthers);
    for (const PartState& part : mParts) {
        mClaims->AddPointed(part.was, kTagInteropPointer, mOthers);
    }
}

qint64 TiffEditor::PointerTo(quint16 tag) const
{
    qint64 at = 0;
    for (const TiffField& field : mParts[First].was.fields) {
        if (field.tag == tag) { // the last one counts, as it does where fields are read
            const std::optional<quint64> number = mStructure->Number(field);
            at = number && *number < quint64(mBytes.size()) ? qint64(*number) : 0;
        }
    }
    return at;
}

void TiffEditor::Load(Part part, qint64 at)
{
    TiffDirectory directory = mStructure->ReadDirectory(at);
    if (directory.at == 0 || !mClaims->Visit(at)) {
        return;
    }
    PartState& state = mParts[part];
    state.present = true;
    state.fields.reserve(directory.fields.size());
    for (const TiffField& field : directory.fields) {
        state.fields.push_back({field, false, {}});
    }
    state.was = std::move(directory);
}

std::vector<const TiffField*> TiffEditor::Fields(Part part) const
{
    std::vector<const TiffField*> fields;
    fields.reserve(mParts[part].fields.size());
    for (const Edited& edited : mParts[part].fields) {
        fields.push_back(&edited.field);
    }
    return fields;
}

const TiffField* TiffEditor::Find(Part part, quint16 tag) const
{
    for (const Edited& edited : mParts[part].fields) {
        if (edited.field.tag == tag && edited.field.sound) {
            return &edited.field;
        }
    }
    return nullptr;
}

QByteArray TiffEditor::Value(Part part, quint16 tag) const
{
    for (const Edited& edited : mParts[part].fields) {
        if (edited.field.tag == tag && edited.field.sound) {
            return edited.changed ? edited.value : mStructure->Value(edited.field).toByteArray();
        }
    }
    return {};
}

std::optional<quint64> TiffEditor::Number(Part part, quint16 tag) const
{
    const TiffField* field = Find(part, tag);
    if (!field) {
        return {};
    }
    const QByteArray value = Value(part, tag);
    const int width = FieldTypeBytes(field->type);
    const bool whole = field->type != kTypeRational && field->type != kTypeSignedRational
        && field->type != kTypeAscii && width <= 8;
    return whole && value.size() >= width ? std::optional(mStructure->NumberOf(value.first(width)))
                                          : std::nullopt;
}

void TiffEditor::Free(const ByteRange& range)
{
    if (range.Size() > 0) {
        mFreed.push_back(range);
    }
}

void TiffEditor::HangPreview()
{
    const int width = mStructure->OffsetBytes();
    QByteArray places;
    if (const TiffField* held = Find(First, kTagSubDirectories)) {
        const QByteArray value = Value(First, kTagSubDirectories);
        const int step = FieldTypeBytes(held->type);
        for (qsizetype at = 0; at + step <= value.size(); at += step) {
            places += mStructure->BytesOf(mStructure->NumberOf(value.sliced(at, step)), width);
        }
    }
    places.append(width, '\0'); // the preview's own place follows in Commit
    Set(First, kTagSubDirectories, width == 8 ? kTypeLong8 : kTypeLong, places);
}

TiffEditor::Edited& TiffEditor::FieldFor(Part part, quint16 tag)
{
    PartState& state = mParts[part];
    if (!state.present) {
        state.present = true;
        state.grown = true;
        if (part == Exif || part == Gps) {
            Set(First, part == Exif ? kTagExifPointer : kTagGpsPointer, kTypeLong,
                mStructure->BytesOf(0, 4));
        } else if (part == Preview && mKind == Kind::File) {
            HangPreview();
        }
    }
    const auto named = [tag](const Edited& edited) { return edited.field.tag == tag; };
    auto found = std::find_if(state.fields.begin(), state.fields.end(), named);
    if (found != state.fields.end()) {
        // A tag that stands twice would come to light again with its old value.
        const qsizetype at = found - state.fields.begin();
        for (auto twin = found + 1; twin != state.fields.end(); ++twin) {
            if (named(*twin)) {
                Free(twin->field.outside);
            }
        }
        state.fields.erase(std::remove_if(found + 1, state.fields.end(), named),
                           state.fields.end());
        Free(state.fields[size_t(at)].field.outside);
        return state.fields[size_t(at)];
    }
    state.grown = state.grown || state.fields.size() >= state.was.fields.size();
    const auto behind =
        std::find_if(state.fields.begin(), state.fields.end(),
                     [tag](const Edited& edited) { return edited.field.tag > tag; });
    Edited added;
    added.field.tag = tag;
    return *state.fields.insert(behind, added);
}

void TiffEditor::Set(Part part, quint16 tag, quint16 type, const QByteArray& value)
{
    Edited& edited = FieldFor(part, tag);
    edited.changed = true;
    edited.value = value;
    edited.field.type = type;
    edited.field.count = quint64(value.size() / FieldTypeBytes(type));
    edited.field.outside = {};
    edited.field.sound = true;
}

void TiffEditor::SetNumber(Part part, quint16 tag, quint64 number)
{
    const TiffField* held = Find(part, tag);
    quint16 type = held ? held->type : quint16(kTypeLong);
    if (type != kTypeLong && type != kTypeLong8 && (type != kTypeShort || number > 0xffff)) {
        type = kTypeLong;
    }
    if (held && held->type == type && held->count == 1 && Number(part, tag) == number) {
        return;
    }
    Set(part, tag, type, mStructure->BytesOf(number, FieldTypeBytes(type)));
}

void TiffEditor::Remove(Part part, quint16 tag)
{
    std::erase_if(mParts[part].fields, [&](const Edited& edited) {
        if (edited.field.tag == tag) {
            Free(edited.field.outside);
        }
        return edited.field.tag == tag;
    });
    std::erase_if(mContents, [&](const Content& content) {
        return content.part == part && content.offsets == tag;
    });
}

void TiffEditor::SetContents(Part part, quint16 offsets, quint16 lengths,
                             const QList<QByteArray>& contents)
{
    RemoveContents(part, offsets, lengths);
    const int width = mStructure->OffsetBytes();
    const quint16 type = width == 8 ? kTypeLong8 : kTypeLong;
    QByteArray sizes;
    sizes.reserve(contents.size() * width);
    for (const QByteArray& content : contents) {
        sizes += mStructure->BytesOf(quint64(content.size()), width);
    }
    Set(part, offsets, type, QByteArray(sizes.size(), '\0')); // the places follow in Commit
    Set(part, lengths, type, sizes);
    mContents.push_back({part, offsets, contents});
}

void TiffEditor::RemoveContents(Part part, quint16 offsets, quint16 lengths)
{
    std::vector<ByteRange> contents;
    mClaims->AddContents(mParts[part].was, offsets, lengths, contents);
    const auto gone = [&](const ByteRange& range) {
        return std::find(contents.begin(), contents.end(), range) != contents.end();
    };
    if (Find(part, offsets)) {
        if (part == First) {
            mPicture.clear();
        } else {
            std::erase_if(mOthers, gone);
        }
        mFreed.insert(mFreed.end(), contents.begin(), contents.end());
    }
    if (part == Preview && offsets == kTagJpegOffset) {
        mPreviewMoves = false;
    }
    Remove(part, offsets);
    Remove(part, lengths);
}

void TiffEditor::RemovePreview()
{
    PartState& preview = mParts[Preview];
    RemoveContents(Preview, kTagStripOffsets, kTagStripByteCounts);
    RemoveContents(Preview, kTagJpegOffset, kTagJpegLength);
    for (const Edited& edited : preview.fields) {
        Free(edited.field.outside);
    }
    preview.fields.clear();
    preview.present = false;
}

void TiffEditor::RemoveReducedDirectories()
{
    const TiffField* pointers = FindField(mParts[First].was, kTagSubDirectories);
    if (!pointers || !Find(First, kTagSubDirectories)) {
        return;
    }
    std::vector<ByteRange> others, freed;
    TiffClaims claims(*mStructure);
    for (const PartState& part : mParts) {
        claims.Visit(part.was.at);
    }
    QByteArray kept;
    const int width = FieldTypeBytes(pointers->type);
    for (quint64 i = 0; i < pointers->count; ++i) {
        const std::optional<quint64> at = mStructure->Number(*pointers, i);
        if (!at || *at >= quint64(mBytes.size())) {
            continue;
        }
        const TiffDirectory directory = mStructure->ReadDirectory(qint64(*at));
        const TiffField* kind = FindField(directory, kTagNewSubfileType);
        const std::optional<quint64> value = kind ? mStructure->Number(*kind) : std::nullopt;
        const bool reduced = value && (*value & 1) != 0 && directory.next == 0;
        claims.AddChain(qint64(*at), reduced ? freed : others);
        if (!reduced) {
            kept += mStructure->BytesOf(*at, width);
        }
    }
    // What lies in both stays, because Commit takes the others' ranges from the free ones.
    claims.AddChain(mKind == Kind::File ? mParts[First].was.next : 0, others);
    for (const PartState& part : mParts) {
        claims.AddPointed(part.was, kTagInteropPointer, others);
    }
    mOthers = std::move(others);
    mFreed.insert(mFreed.end(), freed.begin(), freed.end());
    if (kept.isEmpty()) {
        Remove(First, kTagSubDirectories);
    } else {
        Set(First, kTagSubDirectories, pointers->type, kept);
    }
}

} // namespace quillane::exif
