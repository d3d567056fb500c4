#include "imaging/carry/carry_support.h"
#include "imaging/carry/tiff_picture.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/slots.h"
#include "imaging/comments/text_bytes.h"
#include "imaging/exif/exif_slots.h"
#include "imaging/limits.h"
#include "imaging/thumbs/exif_preview.h"
#include <algorithm>

namespace quillane::carry {

namespace {

using exif::TiffEditor;

constexpr quint64 kCarryTiffReduced = 1; ///< NewSubfileType of a smaller version
constexpr quint64 kCarryTiffJpeg = 7;    ///< compression of a preview

/// What slot 3 holds in a file that is being changed.
QString CarryTiffDescription(const TiffEditor& editor)
{
    const CommentSlot* slot = FindSlot(kDescriptionSlot);
    return TextFromFieldBytes(editor.Value(TiffEditor::First, quint16(slot->tag)));
}

void CarryTiffXmp(TiffEditor& editor, const XmpWishes& wishes)
{
    const exif::TiffField* field = editor.Find(TiffEditor::First, exif::kTagXmp);
    if (!field || exif::FieldTypeBytes(field->type) != 1) {
        return;
    }
    const QByteArray packet = editor.Value(TiffEditor::First, exif::kTagXmp);
    const QByteArray patched = PatchXmp(packet, wishes);
    if (patched != packet) {
        editor.Set(TiffEditor::First, exif::kTagXmp, field->type, patched);
    }
}

/// Commits, and once more without fields that would begin to show what now lies at the end.
QByteArray CarryTiffCommit(TiffEditor& editor, const QByteArray& before,
                           std::span<const CommentChange> changes)
{
    QByteArray after = editor.Commit();
    if (after.size() > before.size() && exif::RemoveDanglingSlots(editor)) {
        after = editor.Commit();
    }
    exif::CheckSlots(before, after, changes);
    return after;
}

/// A preview as a directory that hangs on the first one.
void CarryTiffPreview(TiffEditor& editor, const QByteArray& jpeg)
{
    const exif::TiffStructure& structure = editor.Structure();
    const std::optional<JpegFrame> frame = FrameOfJpeg(jpeg);
    if (!frame) {
        throw Failure(kFailureGeneral, QStringLiteral("The preview to embed is no JPEG."));
    }
    const auto number = [&](quint16 tag, quint64 value) {
        editor.Set(TiffEditor::Preview, tag, exif::kTypeLong, structure.BytesOf(value, 4));
    };
    const auto small = [&](quint16 tag, std::initializer_list<int> values) {
        QByteArray bytes;
        for (const int value : values) {
            bytes += structure.BytesOf(quint64(value), 2);
        }
        editor.Set(TiffEditor::Preview, tag, exif::kTypeShort, bytes);
    };
    const bool colour = frame->channels == 3;
    number(exif::kTagNewSubfileType, kCarryTiffReduced);
    number(exif::kTagImageWidth, quint64(frame->width));
    number(exif::kTagImageLength, quint64(frame->height));
    colour ? small(exif::kTagBitsPerSample, {8, 8, 8}) : small(exif::kTagBitsPerSample, {8});
    small(exif::kTagCompression, {int(kCarryTiffJpeg)});
    small(exif::kTagPhotometric, {colour ? 6 : 1});
    small(exif::kTagSamplesPerPixel, {frame->channels});
    number(exif::kTagRowsPerStrip, quint64(frame->height));
    small(exif::kTagPlanarConfiguration, {1});
    if (colour) {
        small(exif::kTagYCbCrSubSampling, {frame->across, frame->down});
    }
    editor.SetContents(TiffEditor::Preview, exif::kTagStripOffsets, exif::kTagStripByteCounts,
                       {jpeg});
}

/// Whether an Exif directory would make another kind of file of it.
bool CarryTiffIsPlain(const TiffPicture& picture)
{
    return picture.compression == 1 && (picture.photometric == 2 || picture.photometric == 6);
}

/// Puts a TIFF together: the pixels of one file in all that stands around them in another.
class TiffCarry {
public:
    TiffCarry(const QByteArray& encoded, const CarryPlan& plan)
        : mPlan(plan),
          mEncoded(encoded),
          mPicture(encoded),
          mOriginal(OriginalBytes(plan)),
          mBase(mOriginal.isEmpty() ? encoded : mOriginal),
          mEditor(mBase, TiffEditor::Kind::File),
          mBefore(SlotsBefore(plan, ReadTiffComments))
    { }

    QByteArray Run()
    {
        if (!mOriginal.isEmpty()) {
            mPicture.PutInto(mEditor);
            TakeProfile();
            Correct();
            if (!mPlan.keepPreview) {
                mEditor.RemoveReducedDirectories();
            }
        }
        if (!mPlan.preview.isEmpty()) {
            CarryTiffPreview(mEditor, mPlan.preview);
        }
        std::vector<CommentChange> changes = CommentChanges(mBefore, mPlan.wanted);
        if (!mPlan.exif && CarryTiffIsPlain(mPicture)) {
            DropExif(changes);
        } else if (mPlan.exif && !mEditor.Has(TiffEditor::Exif)) {
            mEditor.Set(TiffEditor::Exif, exif::kTagExifVersion, exif::kTypeUndefined, "0230");
        }
        exif::SetSlots(mEditor, changes);
        CarryTiffXmp(mEditor, XmpWishesOf(mBefore, mPlan.wanted, true));
        return CarryTiffCommit(mEditor, mBase, changes);
    }

private:
    /// The encoder's profile, or the original's own where it still fits.
    void TakeProfile()
    {
        const QByteArray held = mEditor.Value(TiffEditor::First, exif::kTagIccProfile);
        if (mPicture.profile.isEmpty() ? !ProfileFits(held, mPicture.channels) : false) {
            mEditor.Remove(TiffEditor::First, exif::kTagIccProfile);
        } else if (!mPicture.profile.isEmpty() && mPicture.profile != held) {
            mEditor.Set(TiffEditor::First, exif::kTagIccProfile, exif::kTypeUndefined,
                        mPicture.profile);
        }
    }

    void Correct()
    {
        const auto correct = [this](TiffEditor::Part part, quint16 tag, qint32 number) {
            if (number > 0 && mEditor.Find(part, tag)) {
                mEditor.SetNumber(part, tag, quint64(number));
            }
        };
        correct(TiffEditor::First, exif::kTagOrientation, 1);
        correct(TiffEditor::Exif, exif::kTagPixelXDimension, mPlan.width);
        correct(TiffEditor::Exif, exif::kTagPixelYDimension, mPlan.height);
    }

    /// The kind of file that is wanted has no Exif directory.
    void DropExif(std::vector<CommentChange>& changes)
    {
        std::erase_if(changes, [](const CommentChange& change) {
            const CommentSlot* slot = FindSlot(change.slot);
            return slot && slot->home == SlotHome::ExifDirectory;
        });
        std::vector<quint16> tags;
        for (const exif::TiffField* field : mEditor.Fields(TiffEditor::Exif)) {
            tags.push_back(field->tag);
        }
        for (const quint16 tag : tags) {
            mEditor.Remove(TiffEditor::Exif, tag);
        }
        for (const CommentSlot& slot : CommentSlots()) {
            if (!tags.empty() && slot.home == SlotHome::ExifDirectory) {
                changes.push_back({slot.slot, {}});
            }
        }
    }

    const CarryPlan& mPlan;
    const QByteArray mEncoded;
    const TiffPicture mPicture;
    const QByteArray mOriginal;
    const QByteArray mBase;
    TiffEditor mEditor;
    const CommentSet mBefore;
};

} // namespace

} // namespace quillane::carry

namespace quillane {

bool HoldsPreview(ByteSource& original)
{
    const QByteArray bytes = original.All(limits::kMaxFileBytes);
    const std::optional<exif::TiffStructure> structure = exif::TiffStructure::Open(bytes);
    if (!structure) {
        return !ReadEmbeddedPreview(original).isEmpty();
    }
    const exif::TiffDirectory first = structure->ReadDirectory(structure->FirstDirectory());
    const exif::TiffField* list = exif::FindField(first, exif::kTagSubDirectories);
    for (quint64 i = 0; list && i < std::min(list->count, exif::TiffStructure::kMaxFields); ++i) {
        const quint64 at = structure->Number(*list, i).value_or(0);
        const exif::TiffDirectory directory =
            structure->ReadDirectory(at < quint64(bytes.size()) ? qint64(at) : 0);
        const exif::TiffField* kind = exif::FindField(directory, exif::kTagNewSubfileType);
        if (kind && (structure->Number(*kind).value_or(0) & carry::kCarryTiffReduced) != 0) {
            return true;
        }
    }
    return false;
}

QByteArray CarryIntoTiff(const QByteArray& encoded, const CarryPlan& plan)
{
    return carry::TiffCarry(encoded, plan).Run();
}

QByteArray ReplaceCommentsInTiff(ByteSource& original, std::span<const CommentChange> changes)
{
    const QByteArray before = original.All(limits::kMaxFileBytes);
    exif::TiffEditor editor(before, exif::TiffEditor::Kind::File);
    XmpWishes wishes;
    for (const CommentChange& change : changes) {
        if (change.slot == kDescriptionSlot) {
            CommentSet wanted;
            wanted.Set(kDescriptionSlot, change.value);
            wishes.description = {carry::CarryTiffDescription(editor),
                                  carry::SlotText(wanted, kDescriptionSlot)};
        }
    }
    exif::SetSlots(editor, changes);
    carry::CarryTiffXmp(editor, wishes);
    return carry::CarryTiffCommit(editor, before, changes);
}

} // namespace quillane
