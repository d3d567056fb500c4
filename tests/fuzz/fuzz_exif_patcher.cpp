// Feeds blocks to the patcher; its first two bytes choose what is changed.
#include "fuzz_metadata.h"
#include "imaging/comments/slots.h"
#include "imaging/exif/exif_patcher.h"
#include "imaging/exif/tiff_structure.h"
#include <cstdlib>
#include <optional>

namespace quillane {
namespace {

struct Note {
    exif::ByteRange range;
    QByteArray bytes;
};

/// The MakerNote of a block where it can be told beyond doubt.
std::optional<Note> NoteOf(const QByteArray& block)
{
    const auto structure = exif::TiffStructure::Open(block);
    if (!structure) {
        return {};
    }
    const auto first = structure->ReadDirectory(structure->FirstDirectory());
    std::optional<quint64> at;
    for (const exif::TiffField& field : first.fields) {
        if (field.tag == exif::kTagExifPointer) {
            at = structure->Number(field);
        }
    }
    if (!at || *at > quint64(block.size())) {
        return {};
    }
    const auto directory = structure->ReadDirectory(qint64(*at));
    const exif::TiffField* note = exif::FindField(directory, exif::kTagMakerNote);
    if (!note || note->outside.Size() == 0) {
        return {};
    }
    // One that lies across the tables cannot keep every byte.
    for (const exif::ByteRange& table : {exif::ByteRange{0, 16}, first.table, directory.table}) {
        if (note->outside.from < table.to && table.from < note->outside.to) {
            return {};
        }
    }
    return Note{note->outside, structure->Value(*note).toByteArray()};
}

void Patch(const QByteArray& block, int choice)
{
    std::vector<CommentChange> changes;
    for (const CommentSlot& slot : CommentSlots()) {
        if ((slot.slot + choice) % 7 == 0) {
            changes.push_back(
                {slot.slot, choice % 3 == 0 ? CommentValue() : fuzz::FuzzValue(slot.slot, choice)});
        }
    }
    ExifFacts facts;
    facts.upright = (choice & 1) != 0;
    facts.width = choice & 2 ? 640 : 0;
    facts.height = choice & 2 ? 480 : 0;
    facts.preview = choice & 4 ? ExifFacts::Preview::Replace
        : choice & 8           ? ExifFacts::Preview::Remove
                               : ExifFacts::Preview::Keep;
    facts.previewJpeg = QByteArray("\xff\xd8\xff\xd9 preview");
    const qint64 most = choice & 16 ? block.size() + 20 : kMaxJpegExifBytes;
    QByteArray patched;
    if (!ResumeNext([&] { patched = PatchExifBlock(block, changes, facts, most); })) {
        return;
    }
    if (patched.size() > most) {
        std::abort(); // it keeps to its room
    }
    if (const std::optional<Note> note = NoteOf(block)) {
        if (patched.mid(note->range.from, note->range.Size()) != note->bytes) {
            std::abort(); // a MakerNote keeps its bytes and its place
        }
    }
    // And what was written can be written again: without a change it stays.
    QByteArray again;
    if (ResumeNext([&] { again = PatchExifBlock(patched, {}, {}, patched.size()); })
        && again != patched) {
        std::abort();
    }
}

} // namespace
} // namespace quillane

QList<QByteArray> MetadataSeeds()
{
    QList<QByteArray> seeds;
    for (const char* choice : {"\x01\x01", "\x02\x05", "\x07\x0b", "\x15\x1f", "\x00\x00"}) {
        for (const bool big : {false, true}) {
            seeds << QByteArray(choice, 2) + quillane::fuzz::FullBlock(big);
        }
    }
    return seeds;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size >= 2) {
        quillane::Patch(QByteArray(reinterpret_cast<const char*>(data) + 2, qsizetype(size) - 2),
                        data[0] << 3 ^ data[1]);
    }
    return 0;
}
