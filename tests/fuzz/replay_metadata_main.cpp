// Runs a target of metadata without a fuzzer: over its own inputs, whole, cut off and damaged,
// and over the files named on the command line. With --seeds FOLDER it writes its inputs there,
// for a fuzzer to begin with.
#include "core/native_path.h"
#include "fuzz_metadata.h"
#include <cstdio>
#include <cstring>
#include <random>

namespace {

int gReplayed = 0;

void Replay(const QByteArray& bytes)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                           std::size_t(bytes.size()));
    ++gReplayed;
}

/// Numbers that counts and offsets break at.
void Wound(QByteArray& bytes, std::mt19937& chance)
{
    constexpr quint32 kNumbers[] = {0,      1,          2,          8,      10,        0x7fff,
                                    0xffff, 0x7fffffff, 0x80000000, 0xfffe, 0xffffffff};
    const auto at = qsizetype(chance() % unsigned(bytes.size()));
    if (chance() % 2) {
        bytes[at] = char(chance());
        return;
    }
    const quint32 number =
        chance() % 3 ? kNumbers[chance() % std::size(kNumbers)] : chance() % unsigned(bytes.size());
    const int width = chance() % 2 ? 2 : 4;
    const bool big = chance() % 2;
    for (int i = 0; i < width && at + i < bytes.size(); ++i) {
        bytes[at + i] = char(number >> 8 * (big ? width - 1 - i : i));
    }
}

} // namespace

int main(int argc, char** argv)
{
    using namespace quillane;
    constexpr int kCuts = 60;
    constexpr int kDamaged = 400;
    if (argc == 3 && std::strcmp(argv[1], "--seeds") == 0) {
        int number = 0;
        for (const QByteArray& seed : MetadataSeeds()) {
            WriteWholeFile(PathFromBytes(argv[2]) + QStringLiteral("/made%1").arg(++number), seed);
        }
        return 0;
    }
    std::mt19937 chance(7); // the same damage at every run
    for (const QByteArray& seed : MetadataSeeds()) {
        for (int part = 0; part <= kCuts; ++part) {
            Replay(seed.left(seed.size() * part / kCuts));
        }
        for (int round = 0; round < kDamaged; ++round) {
            QByteArray damaged = seed;
            for (unsigned wound = 0; wound <= chance() % 6; ++wound) {
                Wound(damaged, chance);
            }
            Replay(damaged);
        }
    }
    for (int i = 1; i < argc; ++i) {
        Replay(ReadWholeFile(PathFromBytes(argv[i]), 64 << 20));
    }
    std::printf("%d inputs replayed\n", gReplayed);
    return gReplayed > 0 ? 0 : 1;
}
