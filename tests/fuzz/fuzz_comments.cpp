// Reads the comments of a damaged file. QUILLANE_FUZZED_CARRIER names the kind of file.
#include "fuzz_metadata.h"
#include "imaging/comments/slots.h"
#include <cstdlib>

QList<QByteArray> MetadataSeeds()
{
    return quillane::fuzz::FuzzedCarrier(QUILLANE_FUZZED_CARRIER).seeds();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillane;
    MemorySource source(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    CommentSet set;
    ResumeNext([&] { fuzz::FuzzedCarrier(QUILLANE_FUZZED_CARRIER).read(source, set); });
    for (const CommentSlot& slot : CommentSlots()) {
        const CommentValue& value = set.At(slot.slot);
        const bool fits = value.IsEmpty()
            || (slot.shape == SlotShape::Text          ? value.If<QString>() != nullptr
                    : slot.shape == SlotShape::Integer ? value.If<qint32>() != nullptr
                    : slot.shape == SlotShape::Bytes   ? value.If<QByteArray>() != nullptr
                                                       : value.If<QVector<double>>() != nullptr);
        if (!fits) {
            std::abort(); // a value comes in the shape of its slot or not at all
        }
    }
    return 0;
}
