// Runs a fuzz target without a fuzzer: over pictures made here, whole, cut off and damaged, and
// over the files and folders named on the command line. With --seeds FOLDER it writes its inputs
// there, for a fuzzer to begin with.
#include "core/native_path.h"
#include "fuzz_codec.h"
#include "imaging/codec.h"
#include "picture_maker.h"
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

/// Whether a made picture is one of the fuzzed codec's.
bool IsOfCodec(const QByteArray& bytes, const QString& name)
{
    const QString extension = name.section('.', -1);
    const quillane::Codec* codec = quillane::FindCodec(
        QByteArrayView(bytes).first(qMin<qsizetype>(bytes.size(), 512)), extension);
    return codec && std::strcmp(codec->name, kFuzzedCodec) == 0;
}

void ReplayMade(const QByteArray& bytes, std::mt19937& chance)
{
    constexpr int kCuts = 40;
    constexpr int kDamaged = 150;
    for (int part = 0; part <= kCuts; ++part) {
        Replay(bytes.left(bytes.size() * part / kCuts));
    }
    for (int round = 0; round < kDamaged; ++round) {
        QByteArray damaged = bytes;
        for (unsigned wound = 0; wound <= chance() % 6; ++wound) {
            const auto reach =
                unsigned(round % 2 ? damaged.size() : qMin<qsizetype>(damaged.size(), 80));
            damaged[qsizetype(chance() % reach)] = char(chance());
        }
        Replay(damaged);
    }
}

} // namespace

int main(int argc, char** argv)
{
    using namespace quillane;
    std::mt19937 chance(7); // the same damage at every run
    const QMap<QString, QByteArray> made = making::MadePictures();
    const bool seeds = argc == 3 && std::strcmp(argv[1], "--seeds") == 0;
    for (auto i = made.begin(); i != made.end(); ++i) {
        if (seeds && IsOfCodec(i.value(), i.key())) {
            WriteWholeFile(PathFromBytes(argv[2]) + u'/' + i.key(), i.value());
        } else if (IsOfCodec(i.value(), i.key())) {
            ReplayMade(i.value(), chance);
        }
    }
    if (seeds) {
        return 0;
    }
    for (int i = 1; i < argc; ++i) {
        const QString path = PathFromBytes(argv[i]);
        if (StatPath(path).type == FileType::Regular) {
            Replay(ReadWholeFile(path, 64 << 20));
            continue;
        }
        ListFolder(path, [&](DirEntry&& entry) {
            if (entry.type == FileType::Regular) {
                Replay(ReadWholeFile(path + u'/' + entry.name, 64 << 20));
            }
            return true;
        });
    }
    std::printf("%s: %d inputs replayed\n", kFuzzedCodec, gReplayed);
    return gReplayed > 0 ? 0 : 1;
}
