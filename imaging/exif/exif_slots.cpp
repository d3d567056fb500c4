#include "imaging/exif/exif_slots.h"
#include "imaging/comments/exif_lift.h"
#include "imaging/comments/exif_values.h"
#include "imaging/exif/exif_fields.h"
#include <algorithm>
#include <cmath>

namespace quillane::exif {

namespace {

/// Fields that a directory which is made needs, also where no slot asks for them.
constexpr qint16 kSlotsExifVersion = 21;
constexpr qint16 kSlotsGpsVersion = 41;
constexpr qint16 kSlotsFlashpixVersion = 158;

std::optional<TiffEditor::Part> SlotsPart(SlotHome home)
{
    switch (home) {
    case SlotHome::TiffDirectory:
        return TiffEditor::First;
    case SlotHome::ExifDirectory:
        return TiffEditor::Exif;
    case SlotHome::GpsDirectory:
        return TiffEditor::Gps;
    default:
        return {};
    }
}

CommentSet SlotsOf(const QByteArray& block)
{
    CommentSet set;
    MemorySource source(block);
    const QByteArray lifted = LiftExif(source);
    if (!lifted.isEmpty()) {
        ResumeNext([&] { AddExifValues(lifted, set); });
    }
    return set;
}

/// Whether what was read is what was to be written: a rational may have come as near as its
/// field can, a text is what its bytes can say.
bool SlotsAgree(const CommentValue& read, const CommentValue& written, SlotShape shape)
{
    if (read == written || read.IsEmpty() || written.IsEmpty()) {
        return read == written;
    }
    if (shape == SlotShape::Text) {
        return read.Text() == QString::fromUtf8(written.Text().toUtf8());
    }
    if (shape != SlotShape::Rational && shape != SlotShape::RationalTriple) {
        return false;
    }
    const QVector<double>& a = read.Rationals();
    const QVector<double>& b = written.Rationals();
    const qsizetype most = shape == SlotShape::Rational ? 2 : 6;
    if (a.size() != std::min(b.size(), most)) {
        return false;
    }
    for (qsizetype i = 0; i < a.size(); i += 2) {
        if (!(std::abs(a[i] * b[i + 1] - b[i] * a[i + 1])
              <= 1e-6 * std::max(1.0, std::abs(a[i] * b[i + 1])))) {
            return false;
        }
    }
    return true;
}

} // namespace

bool IsExifSlot(qint16 slot)
{
    const CommentSlot* row = FindSlot(slot);
    return row && SlotsPart(row->home);
}

void SetSlots(TiffEditor& editor, std::span<const CommentChange> changes)
{
    const TiffStructure& structure = editor.Structure();
    for (const CommentChange& change : changes) {
        const CommentSlot* slot = FindSlot(change.slot);
        const std::optional<TiffEditor::Part> part =
            slot ? SlotsPart(slot->home) : std::optional<TiffEditor::Part>();
        if (!part) {
            continue;
        }
        const CommentValue value = HeldValue(change.value);
        if (value.IsEmpty()) {
            editor.Remove(*part, quint16(slot->tag));
            continue;
        }
        const StoredField field = StoredForm(*slot, value, structure);
        if (*part == TiffEditor::Exif && !editor.Has(*part)) {
            editor.Set(*part, kTagExifVersion, kTypeUndefined, "0230");
        } else if (*part == TiffEditor::Gps && !editor.Has(*part)) {
            editor.Set(*part, 0, kTypeByte, QByteArray("\2\3\0\0", 4));
        }
        editor.Set(*part, quint16(slot->tag), field.type, field.value);
    }
}

bool RemoveDanglingSlots(TiffEditor& editor)
{
    bool removed = false;
    for (const CommentSlot& slot : CommentSlots()) {
        const std::optional<TiffEditor::Part> part = SlotsPart(slot.home);
        if (!part) {
            continue;
        }
        const std::vector<const TiffField*> fields = editor.Fields(*part);
        const bool dangling = std::any_of(fields.begin(), fields.end(), [&](const auto* field) {
            return field->tag == slot.tag && !field->sound && FieldTypeBytes(field->type) > 0;
        });
        if (dangling) {
            editor.Remove(*part, quint16(slot.tag));
            removed = true;
        }
    }
    return removed;
}

void CheckSlots(const QByteArray& before, const QByteArray& after,
                std::span<const CommentChange> changes)
{
    CommentSet wanted = SlotsOf(before);
    for (const CommentChange& change : changes) {
        wanted.Set(change.slot, HeldValue(change.value));
    }
    const CommentSet read = SlotsOf(after);
    for (const CommentSlot& slot : CommentSlots()) {
        const bool added = wanted.At(slot.slot).IsEmpty()
            && (slot.slot == kSlotsExifVersion || slot.slot == kSlotsGpsVersion
                || slot.slot == kSlotsFlashpixVersion);
        if (!SlotsPart(slot.home) || added
            || SlotsAgree(read.At(slot.slot), wanted.At(slot.slot), slot.shape)) {
            continue;
        }
        throw Failure(kFailureUnreadable,
                      QStringLiteral("The metadata of this file are damaged so that they cannot be "
                                     "changed: the field %1 would not hold what it should.")
                          .arg(QString::fromLatin1(slot.field)));
    }
}

} // namespace quillane::exif
