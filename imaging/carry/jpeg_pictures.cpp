#include "imaging/carry/jpeg_pictures.h"
#include "imaging/exif/tiff_structure.h"

namespace quillane::carry {

namespace {

constexpr qsizetype kTableMark = 4;        ///< bytes of "MPF\0"
constexpr quint16 kTableEntries = 0xb002;  ///< MPEntry: 16 bytes for each picture
constexpr qsizetype kTableEntryBytes = 16; ///< attribute, size, place, two dependent pictures

} // namespace

bool IsPictureTable(const JpegPart& part)
{
    return part.marker == kPartApp2 && part.content.startsWith(QByteArrayView("MPF\0", 4));
}

QByteArray MovePictureTable(const QByteArray& content, const PictureMove& move)
{
    const QByteArrayView block = QByteArrayView(content).sliced(kTableMark);
    const std::optional<exif::TiffStructure> structure = exif::TiffStructure::Open(block);
    if (!structure || structure->IsWide()) {
        return content;
    }
    const exif::TiffDirectory directory = structure->ReadDirectory(structure->FirstDirectory());
    const exif::TiffField* entries = exif::FindField(directory, kTableEntries);
    if (!entries || entries->outside.Size() < kTableEntryBytes) {
        return content;
    }
    QByteArray moved = content;
    const auto number = [&](qsizetype at) {
        return qint64(structure->NumberOf(block.sliced(at, 4)));
    };
    const auto put = [&](qsizetype at, qint64 value) {
        moved.replace(kTableMark + at, 4, structure->BytesOf(quint64(value), 4));
    };
    // Places count from the byte-order mark of the table.
    const qint64 originBefore = move.tableBefore + kTableMark;
    const qint64 originAfter = move.tableAfter + kTableMark;
    for (qint64 at = entries->outside.from; at + kTableEntryBytes <= entries->outside.to;
         at += kTableEntryBytes) {
        const qint64 place = number(at + 8);
        if (place == 0) { // the first picture itself; some writers count padding behind it in
            const qint64 size = number(at + 4) - move.endBefore + move.endAfter;
            put(at + 4, size > 0 ? size : move.endAfter);
        } else if (originBefore + place >= move.endBefore) {
            put(at + 8, originBefore + place - move.endBefore + move.endAfter - originAfter);
        }
    }
    return moved;
}

} // namespace quillane::carry
