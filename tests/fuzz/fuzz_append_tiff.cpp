// Adds a page to a damaged TIFF, and a damaged TIFF's page to a sound one.
#include "core/failure.h"
#include "fuzz_metadata.h"
#include "imaging/carry/append_tiff.h"
#include "imaging/exif/tiff_structure.h"
#include <cstdlib>

namespace quillane::fuzz {

namespace {

constexpr qint64 kMostBytes = 16 << 20;

/// A file of one grey page, in either order of bytes and width of offsets.
QByteArray SoundTiff(bool big, bool wide)
{
    const QByteArray head =
        big ? QByteArray("MM\0\x2a\0\0\0\x08", 8) : QByteArray("II\x2a\0\x08\0\0\0", 8);
    QByteArray header = head;
    if (wide) {
        header = big ? QByteArray("MM\0\x2b\0\x08\0\0\0\0\0\0\0\0\0\x10", 16)
                     : QByteArray("II\x2b\0\x08\0\0\0\x10\0\0\0\0\0\0\0", 16);
    }
    const exif::TiffStructure order = *exif::TiffStructure::Open(header);
    struct Entry {
        quint16 tag, type;
        quint64 value;
    };
    constexpr int kEntries = 8;
    const qint64 pixels = order.HeaderBytes() + order.CountBytes()
        + qint64(kEntries) * order.EntryBytes() + order.OffsetBytes();
    const Entry entries[kEntries] = {{256, 3, 4}, {257, 3, 4}, {258, 3, 8},
                                     {259, 3, 1}, {262, 3, 1}, {273, 4, quint64(pixels)},
                                     {278, 3, 4}, {279, 4, 16}};
    QByteArray file = header + order.BytesOf(kEntries, order.CountBytes());
    for (const Entry& entry : entries) {
        const int width = entry.type == 3 ? 2 : 4;
        file += order.BytesOf(entry.tag, 2) + order.BytesOf(entry.type, 2)
            + order.BytesOf(1, order.OffsetBytes())
            + order.BytesOf(entry.value, width).leftJustified(order.OffsetBytes(), '\0');
    }
    return file + QByteArray(order.OffsetBytes(), '\0') + QByteArray(16, 'g');
}

/// What must hold whenever a page was taken.
void CheckPage(const QByteArray& target, const QByteArray& page)
{
    TiffWithPage made;
    if (!ResumeNext([&] { made = AppendTiffPage(target, page, kMostBytes); })) {
        return;
    }
    const std::optional<exif::TiffStructure> before = exif::TiffStructure::Open(target);
    const std::optional<exif::TiffStructure> after = exif::TiffStructure::Open(made.file);
    if (!before || !after || made.file.size() > kMostBytes) {
        std::abort();
    }
    // The chain leads to the new page, which is the last.
    qint64 at = after->FirstDirectory();
    qint64 last = 0;
    for (int number = 1; number < made.pages; ++number) {
        last = at;
        at = after->ReadDirectory(at).next;
    }
    const exif::TiffDirectory added = after->ReadDirectory(made.directory);
    if (at != made.directory || !added.whole || added.next != 0) {
        std::abort();
    }
    // Every old byte lies where it lay, but for the one offset.
    const int width = after->OffsetBytes();
    const qint64 place = after->ReadDirectory(last).table.to - width;
    QByteArray old = made.file.left(target.size());
    old.replace(place, width, QByteArray(width, '\0'));
    if (old != target) {
        std::abort();
    }
    for (const exif::TiffField& field : added.fields) {
        if (!field.sound) {
            std::abort();
        }
    }
    // And it can be told as a file that begins with it.
    const QByteArray alone = TiffFromDirectory(made.file, made.directory);
    if (exif::TiffStructure::Open(alone)->FirstDirectory() != made.directory) {
        std::abort();
    }
}

} // namespace

} // namespace quillane::fuzz

QList<QByteArray> MetadataSeeds()
{
    QList<QByteArray> seeds;
    for (const bool big : {false, true}) {
        for (const bool wide : {false, true}) {
            seeds << quillane::fuzz::SoundTiff(big, wide);
        }
    }
    return seeds + quillane::fuzz::FuzzedCarrier("tiff").seeds();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using quillane::fuzz::CheckPage;
    using quillane::fuzz::SoundTiff;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const bool big : {false, true}) {
        for (const bool wide : {false, true}) {
            const QByteArray sound = SoundTiff(big, wide);
            CheckPage(bytes, sound);
            CheckPage(sound, bytes);
        }
    }
    CheckPage(bytes, bytes);
    return 0;
}
