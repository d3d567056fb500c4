// A decoding process for tests: locked as the real one, but its decoders crash, hang, lie or
// try to break out. What is tried is the codec's name; the file's content is "width height".
#include "bad_codecs.h"

namespace quillane::worker {

namespace {

constexpr WorkerCodec kBadCodecs[] = {
    {"ECHO", nullptr, ProbeEcho, DecodeEcho, TellText, EncodeEcho},
    {"CRASH", nullptr, ProbeCrash, DecodeCrash, nullptr, EncodeCrash},
    {"HANG", nullptr, ProbeHang, DecodeHang, nullptr, EncodeHang},
    {"EXIT", nullptr, ProbeExit, DecodeSlow, nullptr, EncodeExit},
    {"SHORT", nullptr, ProbeEcho, DecodeShort, nullptr, EncodeNothing},
    {"THROW", nullptr, ProbeEcho, DecodeThrows, nullptr, EncodeThrows},
    {"GREEDY", nullptr, ProbeEcho, DecodeEcho, nullptr, EncodeGreedily},
    {"LARGE", nullptr, ProbeEcho, DecodeEcho, nullptr, EncodeEndlessly},
    {"FAR", nullptr, ProbeEcho, DecodeEcho, nullptr, EncodeFarAway},
    {"SLOTSIZE", nullptr, ProbeEcho, DecodeEcho, nullptr, LyingEncode<OutputBeyondSlot>},
    {"MINUS", nullptr, ProbeEcho, DecodeEcho, nullptr, LyingEncode<OutputNegative>},
    {"BEFORE", nullptr, ProbeEcho, DecodeEcho, nullptr, LyingEncode<OutputBeforeFile>},
    {"HOLE", nullptr, ProbeEcho, DecodeEcho, nullptr, LyingEncode<OutputBehindHole>},
    {"BEHIND", nullptr, ProbeEcho, DecodeEcho, nullptr, LyingEncode<OutputFarBehind>},
    {"TOOK", nullptr, ProbeEcho, DecodeEcho, nullptr, LyingEncode<TakeTooMuch>},
    {"TOOKLESS", nullptr, ProbeEcho, DecodeEcho, nullptr, LyingEncode<TakeLess>},
    {"DONE", nullptr, ProbeEcho, DecodeEcho, nullptr, LyingEncode<SayDoneAtOnce>},
    {"CONNECT", nullptr, ProbeEcho, DecodeEcho, TryOut<TryConnect>, TryOutEncoding<TryConnect>},
    {"WRITE", nullptr, ProbeEcho, DecodeEcho, TryOut<TryWriting>, TryOutEncoding<TryWriting>},
    {"PWRITE", nullptr, ProbeEcho, DecodeEcho, TryOut<TryPwrite>, TryOutEncoding<TryPwrite>},
    {"GARBAGE", nullptr, LyingProbe<SayGarbage>, LyingDecode<SayGarbage>, nullptr,
     LyingEncode<SayGarbage>},
    {"MUCH", nullptr, LyingProbe<SayTooMuch>, LyingDecode<SayTooMuch>, nullptr,
     LyingEncode<SayTooMuch>},
    {"LITTLE", nullptr, LyingProbe<SayLittle>, LyingDecode<SayLittle>, nullptr,
     LyingEncode<SayLittle>},
    {"TICKET", nullptr, LyingProbe<SayOldTicket>, LyingDecode<SayOldTicket>, nullptr,
     LyingEncode<SayOldTicket>},
    {"KIND", nullptr, LyingProbe<SayWrongKind>, LyingDecode<SayNegativeFacts>, nullptr},
    {"DESCRIPTOR", nullptr, LyingProbe<SendDescriptor>, LyingDecode<SendDescriptor>, nullptr,
     LyingEncode<SendDescriptor>},
    {"NEGATIVE", nullptr, LyingProbe<SayNegativeFacts>, LyingDecode<AnnounceNegative>, nullptr},
    {"ENDLESS", nullptr, LyingProbe<SayEndlessText>, LyingDecode<SendEndlessProfile>, nullptr},
    {"NUMBER", nullptr, LyingProbe<RefuseStrangely>, LyingDecode<RefuseStrangely>, nullptr,
     LyingEncode<RefuseStrangely>},
    {"WORDS", nullptr, LyingProbe<RefuseEndlessly>, LyingDecode<RefuseEndlessly>, nullptr,
     LyingEncode<RefuseEndlessly>},
    {"HUGE", nullptr, ProbeEcho, LyingDecode<AnnounceHuge>, nullptr},
    {"LAYOUT", nullptr, ProbeEcho, LyingDecode<AnnounceLayout>, nullptr},
    {"COLOURS", nullptr, ProbeEcho, LyingDecode<AnnounceColours>, nullptr},
    {"MOREROWS", nullptr, ProbeEcho, LyingDecode<ClaimTooManyRows>, nullptr},
    {"FEWERROWS", nullptr, ProbeEcho, LyingDecode<ClaimFewerRows>, nullptr},
    {"WINDOW", nullptr, ProbeEcho, LyingDecode<ClaimBeyondWindow>, nullptr},
    {"OFTEN", nullptr, ProbeEcho, DecodeEcho, TellTooOften},
    {"SLOT", nullptr, ProbeEcho, DecodeEcho, TellWrongSlot},
    {"OPEN", nullptr, ProbeEcho, DecodeEcho, TryOut<TryOpen>, TryOutEncoding<TryOpen>},
    {"CREATE", nullptr, ProbeEcho, DecodeEcho, TryOut<TryCreate>, TryOutEncoding<TryCreate>},
    {"STAT", nullptr, ProbeEcho, DecodeEcho, TryOut<TryStat>, TryOutEncoding<TryStat>},
    {"SOCKET", nullptr, ProbeEcho, DecodeEcho, TryOut<TrySocket>, TryOutEncoding<TrySocket>},
    {"EXECVE", nullptr, ProbeEcho, DecodeEcho, TryOut<TryExecve>, TryOutEncoding<TryExecve>},
    {"FORK", nullptr, ProbeEcho, DecodeEcho, TryOut<TryFork>, TryOutEncoding<TryFork>},
    {"TRACE", nullptr, ProbeEcho, DecodeEcho, TryOut<TryTrace>, TryOutEncoding<TryTrace>},
    {"KILL", nullptr, ProbeEcho, DecodeEcho, TryOut<TryKill>, TryOutEncoding<TryKill>},
    {"EXECMEMORY", nullptr, ProbeEcho, DecodeEcho, TryOut<TryExecutableMemory>,
     TryOutEncoding<TryExecutableMemory>},
    {"MEMORY", nullptr, ProbeEcho, DecodeEcho, TryOut<TryMuchMemory>,
     TryOutEncoding<TryMuchMemory>},
    {"TRUNCATE", nullptr, ProbeEcho, DecodeEcho, TryOut<TryTruncatingTheWindow>,
     TryOutEncoding<TryTruncatingTheWindow>},
};

} // namespace

} // namespace quillane::worker

int main()
{
    return quillane::worker::Serve(quillane::worker::kBadCodecs);
}
