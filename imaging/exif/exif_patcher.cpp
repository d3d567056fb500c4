#include "imaging/exif/exif_patcher.h"
#include "imaging/comments/exif_lift.h"
#include "imaging/comments/exif_values.h"
#include "imaging/comments/slots.h"
#include "imaging/exif/exif_fields.h"
#include "imaging/exif/exif_slots.h"
#include "imaging/exif/tiff_editor.h"
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

using exif::TiffEditor;

/// Fields of a preview that is not a JPEG.
constexpr quint16 kPatcherRawPreview[] = {0x0100, 0x0101, 0x0102, 0x0106, 0x0115, 0x0116,
                                          0x011c, 0x0211, 0x0212, 0x0213, 0x0214};
constexpr quint64 kPatcherJpegCompression = 6;

/// A directory of no fields, lowest byte first.
QByteArray PatcherEmptyBlock()
{
    return QByteArray("II*\0\x08\0\0\0\0\0\0\0\0\0", 14);
}

void PatcherSetPreview(TiffEditor& editor, const QByteArray& jpeg)
{
    editor.RemoveContents(TiffEditor::Preview, exif::kTagStripOffsets, exif::kTagStripByteCounts);
    for (const quint16 tag : kPatcherRawPreview) {
        editor.Remove(TiffEditor::Preview, tag);
    }
    const exif::TiffStructure& structure = editor.Structure();
    const QByteArray dpi = structure.BytesOf(72, 4) + structure.BytesOf(1, 4);
    editor.Set(TiffEditor::Preview, exif::kTagCompression, exif::kTypeShort,
               structure.BytesOf(kPatcherJpegCompression, 2));
    for (const quint16 tag : {exif::kTagXResolution, exif::kTagYResolution}) {
        if (!editor.Find(TiffEditor::Preview, tag)) {
            editor.Set(TiffEditor::Preview, tag, exif::kTypeRational, dpi);
        }
    }
    if (!editor.Find(TiffEditor::Preview, exif::kTagResolutionUnit)) {
        editor.Set(TiffEditor::Preview, exif::kTagResolutionUnit, exif::kTypeShort,
                   structure.BytesOf(2, 2));
    }
    if (editor.Find(TiffEditor::Preview, exif::kTagOrientation)) {
        editor.SetNumber(TiffEditor::Preview, exif::kTagOrientation, 1);
    }
    editor.SetContents(TiffEditor::Preview, exif::kTagJpegOffset, exif::kTagJpegLength, {jpeg});
}

void PatcherSetFacts(TiffEditor& editor, const ExifFacts& facts, ExifFacts::Preview preview)
{
    const auto correct = [&editor](TiffEditor::Part part, quint16 tag, qint32 number) {
        if (number > 0 && editor.Find(part, tag)) {
            editor.SetNumber(part, tag, quint64(number));
        }
    };
    correct(TiffEditor::First, exif::kTagImageWidth, facts.width);
    correct(TiffEditor::First, exif::kTagImageLength, facts.height);
    correct(TiffEditor::Exif, exif::kTagPixelXDimension, facts.width);
    correct(TiffEditor::Exif, exif::kTagPixelYDimension, facts.height);
    const std::optional<quint64> turned = editor.Number(TiffEditor::First, exif::kTagOrientation);
    if (facts.upright) {
        correct(TiffEditor::First, exif::kTagOrientation, 1);
    }
    if (preview == ExifFacts::Preview::Remove) {
        editor.RemovePreview();
    } else if (preview == ExifFacts::Preview::Replace) {
        PatcherSetPreview(editor, facts.previewJpeg);
    } else if (facts.upright && turned && *turned >= 2 && *turned <= 8
               && editor.Has(TiffEditor::Preview)
               && !editor.Find(TiffEditor::Preview, exif::kTagOrientation)) {
        // A preview that stays lies as the camera held it: it says so itself now.
        editor.Set(TiffEditor::Preview, exif::kTagOrientation, exif::kTypeShort,
                   editor.Structure().BytesOf(*turned, 2));
    }
}

/// The interoperability directory repeats the picture's size, in its entries themselves; it stays
/// where it is.
void PatcherCorrectInterop(QByteArray& block, const ExifFacts& facts)
{
    constexpr quint16 kRelatedWidth = 0x1001, kRelatedHeight = 0x1002;
    const std::optional<exif::TiffStructure> structure = exif::TiffStructure::Open(block);
    if (!structure || facts.width <= 0 || facts.height <= 0) {
        return;
    }
    qint64 at = structure->FirstDirectory();
    for (const quint16 pointer : {exif::kTagExifPointer, exif::kTagInteropPointer}) {
        const exif::TiffDirectory directory = structure->ReadDirectory(at);
        const exif::TiffField* field = exif::FindField(directory, pointer);
        const quint64 to = field ? structure->Number(*field).value_or(0) : 0;
        at = to < quint64(block.size()) ? qint64(to) : 0;
    }
    const exif::TiffDirectory interop = structure->ReadDirectory(at);
    const exif::TiffField* index = exif::FindField(interop, 1);
    if (!interop.whole || !index || index->type != exif::kTypeAscii) {
        return; // there is none, or what is there is something else
    }
    QByteArray corrected = block;
    for (size_t i = 0; i < interop.fields.size(); ++i) {
        const exif::TiffField& field = interop.fields[i];
        const int width = exif::FieldTypeBytes(field.type);
        const qint32 number = field.tag == kRelatedWidth ? facts.width
            : field.tag == kRelatedHeight                ? facts.height
                                                         : 0;
        if (number > 0 && field.count == 1
            && (field.type == exif::kTypeLong
                || (field.type == exif::kTypeShort && number < 65'536))) {
            const qint64 entry = at + structure->CountBytes() + qint64(i) * structure->EntryBytes();
            corrected.replace(entry + 8, width, structure->BytesOf(quint64(number), width));
        }
    }
    block = corrected;
}

/// One way to patch a block; the caller tries the next when the result is too large.
QByteArray PatcherTry(const QByteArray& block, std::span<const CommentChange> changes,
                      const ExifFacts& facts, ExifFacts::Preview preview, bool reclaimZeros)
{
    TiffEditor editor(block, TiffEditor::Kind::ExifBlock);
    exif::SetSlots(editor, changes);
    PatcherSetFacts(editor, facts, preview);
    QByteArray patched = editor.Commit(reclaimZeros);
    if (patched.size() > block.size() && exif::RemoveDanglingSlots(editor)) {
        patched = editor.Commit(reclaimZeros);
    }
    PatcherCorrectInterop(patched, facts);
    return patched;
}

} // namespace

QByteArray PatchExifBlock(const QByteArray& block, std::span<const CommentChange> changes,
                          const ExifFacts& facts, qint64 maxBytes)
{
    struct Way {
        ExifFacts::Preview preview;
        bool reclaimZeros;
    };
    const Way ways[] = {
        {facts.preview, false}, {facts.preview, true}, {ExifFacts::Preview::Remove, true}};
    for (const Way& way : ways) {
        const QByteArray patched = PatcherTry(block, changes, facts, way.preview, way.reclaimZeros);
        if (patched.size() <= maxBytes) {
            exif::CheckSlots(block, patched, changes);
            return patched;
        }
    }
    throw Failure(kFailureLimit,
                  QStringLiteral("The metadata of this picture take more room than the %1 KB that "
                                 "its file format has for them. Shorten the description.")
                      .arg((maxBytes + 1023) >> 10));
}

QByteArray NewExifBlock(std::span<const CommentChange> changes, const ExifFacts& facts,
                        qint64 maxBytes)
{
    const QByteArray empty = PatcherEmptyBlock();
    TiffEditor editor(empty, TiffEditor::Kind::ExifBlock);
    const exif::TiffStructure& structure = editor.Structure();
    const auto ratio = [&](qint32 dpi) {
        return structure.BytesOf(dpi > 0 ? quint64(dpi) : 72, 4) + structure.BytesOf(1, 4);
    };
    using enum TiffEditor::Part;
    editor.Set(First, exif::kTagXResolution, exif::kTypeRational, ratio(facts.xResolution));
    editor.Set(First, exif::kTagYResolution, exif::kTypeRational, ratio(facts.yResolution));
    editor.Set(First, exif::kTagResolutionUnit, exif::kTypeShort, structure.BytesOf(2, 2));
    editor.Set(First, exif::kTagYCbCrPositioning, exif::kTypeShort, structure.BytesOf(1, 2));
    editor.Set(Exif, exif::kTagExifVersion, exif::kTypeUndefined, "0230");
    editor.Set(Exif, exif::kTagComponentsConfiguration, exif::kTypeUndefined,
               QByteArray("\1\2\3\0", 4));
    editor.Set(Exif, exif::kTagFlashpixVersion, exif::kTypeUndefined, "0100");
    editor.Set(Exif, exif::kTagColorSpace, exif::kTypeShort,
               structure.BytesOf(facts.otherColours ? 0xffff : 1, 2));
    if (facts.width > 0 && facts.height > 0) {
        editor.SetNumber(Exif, exif::kTagPixelXDimension, quint64(facts.width));
        editor.SetNumber(Exif, exif::kTagPixelYDimension, quint64(facts.height));
    }
    return PatchExifBlock(editor.Commit(), changes, facts, maxBytes);
}

} // namespace quillane
