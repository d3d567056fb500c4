// Carries what a damaged file holds into a sound picture, and changes its text in place.
// QUILLANE_FUZZED_CARRIER names the kind of file.
#include "fuzz_metadata.h"
#include "imaging/comments/slots.h"
#include <cstdlib>
#include <cstring>

namespace quillane {
namespace {

const fuzz::Carrier& Fuzzed()
{
    static const fuzz::Carrier& carrier = fuzz::FuzzedCarrier(QUILLANE_FUZZED_CARRIER);
    return carrier;
}

CommentSet Read(const QByteArray& bytes)
{
    MemorySource source(bytes);
    CommentSet set;
    ResumeNext([&] { Fuzzed().read(source, set); });
    return set;
}

/// A text that was written must be read again.
void Expect(const QByteArray& bytes, const CommentValue& text)
{
    if (Read(bytes).At(kDescriptionSlot) != text) {
        std::abort();
    }
}

void Carry(const QByteArray& original, bool exif, const CommentValue& text)
{
    static const QByteArray encoded = Fuzzed().encoded();
    MemorySource source(original);
    const CommentSet before = Read(original);
    CarryPlan plan;
    plan.original = &source;
    plan.before = &before;
    plan.wanted = before;
    plan.wanted.Set(kDescriptionSlot, text);
    plan.wanted.Set(43, fuzz::FuzzValue(43, 5));
    plan.width = 16;
    plan.height = 16;
    plan.exif = exif;
    plan.keepPreview = !exif;
    ResumeNext([&] { Expect(Fuzzed().carry(encoded, plan), text); });
}

} // namespace
} // namespace quillane

QList<QByteArray> MetadataSeeds()
{
    return quillane::Fuzzed().seeds();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const quillane::CommentValue text = QStringLiteral("City=\u00c5lborg\r\nand more");
    for (const bool exif : {true, false}) {
        quillane::Carry(bytes, exif, text);
    }
    if (quillane::Fuzzed().replace) {
        quillane::MemorySource source(bytes);
        const quillane::CommentChange change{quillane::kDescriptionSlot, text};
        quillane::ResumeNext([&] {
            quillane::Expect(quillane::Fuzzed().replace(source, {&change, 1}), text);
        });
        const quillane::CommentChange clear{quillane::kDescriptionSlot, {}};
        quillane::ResumeNext([&] {
            quillane::Expect(quillane::Fuzzed().replace(source, {&clear, 1}), {});
        });
    }
    return 0;
}
