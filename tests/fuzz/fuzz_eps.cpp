// What an encapsulated PostScript file tells of itself. The script is run by a process of its own,
// which is not fuzzed here.
#include "core/failure.h"
#include "fuzz_metadata.h"
#include "imaging/byte_source.h"
#include "imaging/eps/eps_file.h"
#include <QtEndian>
#include <cmath>
#include <cstdlib>

namespace quillane {
namespace {

constexpr double kFuzzWidestBox = 400'000; // points; more than what a box may have

QByteArray EpsSeedWithPreview(int kind)
{
    const QByteArray script = "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 36 18\n%%EndComments\n";
    const QByteArray preview(24, 'p');
    QByteArray head = QByteArray::fromHex("c5d0d3c6") + QByteArray(26, '\0');
    const auto put = [&](int at, qsizetype number) {
        qToLittleEndian(quint32(number), head.data() + at);
    };
    put(4, head.size());
    put(8, script.size());
    put(kind ? 20 : 12, head.size() + script.size());
    put(kind ? 24 : 16, preview.size());
    qToLittleEndian(quint16(0xffff), head.data() + 28);
    return head + script + preview;
}

bool LiesInside(qint64 at, qint64 size, const QByteArray& bytes)
{
    return at >= 0 && size >= 0 && at <= bytes.size() && size <= bytes.size() - at;
}

} // namespace
} // namespace quillane

QList<QByteArray> MetadataSeeds()
{
    return {"%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 36 18\n"
            "%%HiResBoundingBox: 0.5 0.25 35.5 17.75\n%%EndComments\nshowpage\n",
            "%!PS-Adobe-3.0 EPSF-3.0\r%%BoundingBox: (atend)\rx\r%%Trailer\r"
            "%%BoundingBox: -5 -6 5 6\r%%EOF\r",
            quillane::EpsSeedWithPreview(0), quillane::EpsSeedWithPreview(1)};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    quillane::MemorySource source(bytes);
    quillane::ResumeNext([&] {
        const quillane::eps::EpsFile file = quillane::eps::ReadEps(source);
        const bool inside = quillane::LiesInside(file.scriptAt, file.scriptSize, bytes)
            && quillane::LiesInside(file.previewAt, file.previewSize, bytes);
        const auto sane = [](double length) {
            return std::isfinite(length) && length > 0 && length <= quillane::kFuzzWidestBox;
        };
        if (!inside || !sane(file.box.width()) || !sane(file.box.height())) {
            std::abort();
        }
    });
    return 0;
}
