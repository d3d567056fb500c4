#pragma once
// What the targets share that read or change metadata.
#include "imaging/carry/carry.h"
#include <QByteArray>
#include <QList>
#include <cstddef>
#include <cstdint>

/// The entry that the fuzzer and the replay call; always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
/// Inputs to begin with, made by the target.
QList<QByteArray> MetadataSeeds();

namespace quillane::fuzz {

/// One kind of file that carries comments.
struct Carrier {
    const char* name;
    void (*read)(ByteSource& source, CommentSet& set);
    QByteArray (*carry)(const QByteArray& encoded, const CarryPlan& plan);
    /// nullptr where pixels are always coded anew.
    QByteArray (*replace)(ByteSource& original, std::span<const CommentChange> changes);
    QByteArray (*encoded)(); ///< a small picture as an encoder leaves it
    QList<QByteArray> (*seeds)();
};
/// By name: "jpeg", "tiff", "png", "gif".
const Carrier& FuzzedCarrier(const char* name);

/// An Exif block that holds every slot, a MakerNote and bytes that no field names.
QByteArray FullBlock(bool bigEndian, bool bigTiff = false);
/// A value for a slot, another one for every `variant`.
CommentValue FuzzValue(qint16 slot, int variant);

} // namespace quillane::fuzz
