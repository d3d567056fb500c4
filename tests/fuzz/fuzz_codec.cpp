#include "fuzz_codec.h"
#include "core/failure.h"
#include "imaging/codec.h"
#include <cstdlib>
#include <cstring>

namespace quillane::fuzz {

namespace {

/// Larger pictures are decoded reduced, where the format can: a fuzzer wants many small runs.
constexpr qint64 kFuzzPixels = 4'000'000;

const Codec& FuzzedCodec(const char* name)
{
    for (const Codec& codec : AllCodecs()) {
        if (std::strcmp(codec.name, name) == 0 && !codec.inWorker) {
            return codec;
        }
    }
    std::abort();
}

} // namespace

int RunCodec(const char* name, const std::uint8_t* data, std::size_t size)
{
    const Codec& codec = FuzzedCodec(name);
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    codec.matches(QByteArrayView(bytes).first(qMin<qsizetype>(bytes.size(), 512)), u"");
    MemorySource source(bytes);
    DecodeRequest request;
    ResumeNext([&] {
        const ImageFacts facts = codec.probe(source);
        if (facts.width < 1 || facts.height < 1) {
            std::abort(); // a probe that succeeds tells a size
        }
        if (qint64(facts.width) * facts.height > kFuzzPixels) {
            request.atLeast = QSize(16, 16);
        }
    });
    ResumeNext([&] {
        const Bitmap bitmap = codec.decode(source, request);
        if (bitmap.IsNull()) {
            std::abort(); // a decode that succeeds gives a picture
        }
        if (qint64(bitmap.Width()) * bitmap.Height() <= kFuzzPixels
            && bitmap.ToDisplay().size() != bitmap.Pixels().size()) {
            std::abort(); // and one that can be shown
        }
    });
    return 0;
}

} // namespace quillane::fuzz
