// A decoding process for tests: locked as the real one, but its decoders crash, hang, lie or
// try to break out. What is tried is the codec's name; the file's content is "width height".
#include "core/failure.h"
#include "imaging/worker/socket_message.h"
#include "imaging/worker_main/service/worker_codec.h"
#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillane::worker {

namespace {

/// Requests of a process are numbered from 1.
quint64 ticket = 0;

template <typename Message> void SendRaw(Message message, MessageKind kind, quint64 of = ticket)
{
    message.head = {kProtocolMark, kind, of};
    SendPacket(kSocketDescriptor, &message, sizeof(message));
}

[[noreturn]] void Forever()
{
    for (;;) {
        ::getpid(); // something the compiler cannot leave out
    }
}

PictureShape ShapeOf(ByteSource& source)
{
    char text[64] = {};
    source.ReadAt(0, text, sizeof(text) - 1);
    char* rest = nullptr;
    PictureShape shape;
    shape.width = qint32(std::strtol(text, &rest, 10));
    shape.height = qint32(std::strtol(rest, &rest, 10));
    shape.fileDepth = 24;
    return shape;
}

ImageFacts FactsOf(const PictureShape& shape)
{
    ImageFacts facts;
    facts.width = shape.width;
    facts.height = shape.height;
    facts.bits = 24;
    facts.format = 3;
    facts.compression = QStringLiteral("None");
    return facts;
}

ImageFacts ProbeEcho(ByteSource& source)
{
    ++ticket;
    return FactsOf(ShapeOf(source));
}

/// Pixel (x, y) of every picture is a function of its place and the picture's width.
bool GiveEcho(ByteSource& source, PictureSink& sink, qint32 crashAt = -1, qint32 hangAt = -1)
{
    const PictureShape shape = ShapeOf(source);
    sink.Begin(shape);
    for (qint32 y = 0; y < shape.height; ++y) {
        if (y == crashAt) {
            ::raise(SIGKILL);
        }
        if (y == hangAt) {
            Forever();
        }
        auto* row = reinterpret_cast<quint32*>(sink.NextRow());
        for (qint32 x = 0; x < shape.width; ++x) {
            row[x] = 0xff000000u | quint32(x * 31 + y * 7 + shape.width);
        }
    }
    return false;
}

bool DecodeEcho(ByteSource& source, const PictureWish&, PictureSink& sink)
{
    ++ticket;
    return GiveEcho(source, sink);
}
bool DecodeCrash(ByteSource& source, const PictureWish&, PictureSink& sink)
{
    ++ticket;
    return GiveEcho(source, sink, 5);
}
bool DecodeHang(ByteSource& source, const PictureWish&, PictureSink& sink)
{
    ++ticket;
    return GiveEcho(source, sink, -1, 5);
}
/// A picture that never ends while somebody listens.
bool DecodeSlow(ByteSource&, const PictureWish&, PictureSink& sink)
{
    ++ticket;
    PictureShape shape;
    shape.width = 4;
    shape.height = 4;
    shape.fileDepth = 24;
    sink.Begin(shape);
    for (;;) {
        SendRaw(RowsMessage{{}, 0}, MessageKind::Rows);
        MessageHead head{};
        const Packet packet = ReceivePacket(kSocketDescriptor, &head, sizeof(head), MSG_DONTWAIT);
        if (packet.bytes == 0) {
            ::_exit(0);
        }
        if (packet.bytes > 0 && head.kind == MessageKind::Cancel) {
            throw Failure(kFailureCancelled, QStringLiteral("Cancelled."));
        }
    }
}
bool DecodeShort(ByteSource& source, const PictureWish&, PictureSink& sink)
{
    ++ticket;
    sink.Begin(ShapeOf(source));
    sink.NextRow();
    return false;
}
bool DecodeThrows(ByteSource&, const PictureWish&, PictureSink&)
{
    ++ticket;
    throw std::bad_alloc();
}

ImageFacts ProbeCrash(ByteSource&)
{
    ::raise(SIGKILL);
    return {};
}
ImageFacts ProbeHang(ByteSource&)
{
    Forever();
}
ImageFacts ProbeExit(ByteSource&)
{
    ::_exit(0);
}

// Lies. Each says one thing that no honest process says.
using Lie = void (*)();
template <Lie lie> ImageFacts LyingProbe(ByteSource&)
{
    ++ticket;
    lie();
    Forever();
}
template <Lie lie> bool LyingDecode(ByteSource&, const PictureWish&, PictureSink&)
{
    ++ticket;
    lie();
    Forever();
}

FactsMessage GoodFacts()
{
    FactsMessage facts{};
    facts.width = facts.height = 10;
    facts.bits = 24;
    facts.format = 3;
    facts.pages = 1;
    facts.orientation = 1;
    return facts;
}
AnnounceMessage GoodAnnounce()
{
    AnnounceMessage announce{};
    announce.width = announce.height = 10;
    announce.layout = PixelLayout::Rgb32;
    announce.fileDepth = 24;
    return announce;
}
void AwaitGrant()
{
    GrantMessage grant{};
    ReceivePacket(kSocketDescriptor, &grant, sizeof(grant));
}

void SayGarbage()
{
    char noise[200];
    for (size_t i = 0; i < sizeof(noise); ++i) {
        noise[i] = char(i * 37);
    }
    SendPacket(kSocketDescriptor, noise, sizeof(noise));
}
void SayTooMuch()
{
    static char noise[kMaxMessageBytes + 100];
    const MessageHead head{kProtocolMark, MessageKind::Facts, ticket};
    std::memcpy(noise, &head, sizeof(head));
    SendPacket(kSocketDescriptor, noise, sizeof(noise));
}
void SayLittle()
{
    SendPacket(kSocketDescriptor, "hello", 5);
}
void SayOldTicket()
{
    SendRaw(GoodFacts(), MessageKind::Facts, ticket - 1);
}
void SayWrongKind()
{
    SendRaw(GoodFacts(), MessageKind::Announce);
}
void SendDescriptor()
{
    FactsMessage facts = GoodFacts();
    facts.head = {kProtocolMark, MessageKind::Facts, ticket};
    SendPacket(kSocketDescriptor, &facts, sizeof(facts), kSocketDescriptor);
}
void SayNegativeFacts()
{
    FactsMessage facts = GoodFacts();
    facts.width = -5;
    SendRaw(facts, MessageKind::Facts);
}
void SayEndlessText()
{
    FactsMessage facts = GoodFacts();
    std::memset(facts.compression, 'x', sizeof(facts.compression));
    SendRaw(facts, MessageKind::Facts);
}
void RefuseStrangely()
{
    RefusedMessage refused{};
    refused.number = 424242;
    refused.bytes = 1;
    refused.words[0] = 'x';
    SendRaw(refused, MessageKind::Refused);
}
void RefuseEndlessly()
{
    RefusedMessage refused{};
    refused.number = kFailureUnreadable;
    refused.bytes = 1'000'000;
    SendRaw(refused, MessageKind::Refused);
}
void AnnounceHuge()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.width = announce.height = 0x7fffffff;
    SendRaw(announce, MessageKind::Announce);
}
void AnnounceNegative()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.height = -10;
    SendRaw(announce, MessageKind::Announce);
}
void AnnounceLayout()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.layout = PixelLayout(77);
    SendRaw(announce, MessageKind::Announce);
}
void AnnounceColours()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.colourCount = 100'000;
    SendRaw(announce, MessageKind::Announce);
}
void ClaimTooManyRows()
{
    SendRaw(GoodAnnounce(), MessageKind::Announce);
    AwaitGrant();
    SendRaw(RowsMessage{{}, 11}, MessageKind::Rows);
}
void ClaimFewerRows()
{
    SendRaw(GoodAnnounce(), MessageKind::Announce);
    AwaitGrant();
    SendRaw(RowsMessage{{}, 5}, MessageKind::Rows);
    SendRaw(RowsMessage{{}, 4}, MessageKind::Rows);
}
void ClaimBeyondWindow()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.width = 10'000;
    announce.height = 5'000;
    SendRaw(announce, MessageKind::Announce);
    AwaitGrant();
    SendRaw(RowsMessage{{}, 5'000}, MessageKind::Rows);
}
void SendEndlessProfile()
{
    PieceMessage piece{};
    piece.head = {kProtocolMark, MessageKind::Profile, ticket};
    piece.count = kMaxTextBytes;
    while (SendPacket(kSocketDescriptor, &piece, sizeof(piece))) { }
    ::_exit(0);
}

// Attempts to break out. Each tells in slot 0 what came of it.
void Tell(const TextVisitor& visit, bool refused)
{
    visit(0, refused ? "refused" : "allowed");
}
template <int (*attempt)()> void TryOut(ByteSource&, const TextVisitor& visit)
{
    ++ticket;
    Tell(visit, attempt() < 0);
}
int TryOpen()
{
    return ::open("/etc/passwd", O_RDONLY);
}
int TryCreate()
{
    return ::open("/tmp/quillane-escape", O_CREAT | O_WRONLY, 0600);
}
int TryStat()
{
    struct stat about;
    return int(::syscall(SYS_newfstatat, AT_FDCWD, "/etc/passwd", &about, 0));
}
int TrySocket()
{
    return ::socket(AF_INET, SOCK_STREAM, 0);
}
int TryExecve()
{
    char name[] = "/bin/true";
    char* const arguments[] = {name, nullptr};
    return ::execve(name, arguments, nullptr);
}
int TryFork()
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    return child;
}
int TryTrace()
{
    return int(::ptrace(PTRACE_ATTACH, ::getppid(), nullptr, nullptr));
}
int TryKill()
{
    return ::kill(::getppid(), SIGURG);
}
int TryExecutableMemory()
{
    return ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS,
                  -1, 0)
            == MAP_FAILED
        ? -1
        : 0;
}
int TryMuchMemory()
{
    void* const much = std::malloc(size_t(3) << 30);
    const int got = much ? 0 : -1;
    std::free(much);
    return got;
}
int TryTruncatingTheWindow()
{
    // The window is the descriptor behind standard streams, socket and file, when it is open.
    int cut = -1;
    for (int fd = kSocketDescriptor + 1; fd < 16; ++fd) {
        cut = std::max(cut, ::ftruncate(fd, 0));
    }
    return cut;
}
void TellText(ByteSource&, const TextVisitor& visit)
{
    ++ticket;
    visit(3,
          "Ein Bild \xc3\xbc"
          "ber \xe6\x97\xa5\xe6\x9c\xac");
    visit(10, QByteArray(100'000, 'a') + "\xc3\xbc");
}
void TellTooOften(ByteSource&, const TextVisitor& visit)
{
    ++ticket;
    for (int i = 0; i < 1000; ++i) {
        visit(3, "again");
    }
}
void TellWrongSlot(ByteSource&, const TextVisitor& visit)
{
    ++ticket;
    visit(1000, "nowhere");
}

// Encoders. An honest one first: what it got, as text and bytes.
void EncodeEcho(PictureRows& picture, const EncodeWish& wish, FileSink& file)
{
    ++ticket;
    const PictureShape& shape = picture.Shape();
    QByteArray head = QByteArray::number(shape.width) + ' ' + QByteArray::number(shape.height) + ' '
        + QByteArray::number(int(shape.layout)) + ' ' + QByteArray::number(shape.fileDepth) + ' '
        + QByteArray::number(int(shape.colours.size())) + ' ' + QByteArray::number(wish.format)
        + ' ' + QByteArray::number(wish.bits) + ' ' + QByteArray::number(wish.quality) + ' '
        + QByteArray::number(wish.xResolution) + ' ' + QByteArray::number(wish.yResolution) + ' '
        + QByteArray::number(wish.layout.horizontal) + ' '
        + QByteArray::number(wish.layout.vertical) + ' '
        + QByteArray::number(wish.layout.compression) + ' '
        + QByteArray::number(int(wish.layout.progressive)) + ' '
        + QByteArray::number(shape.profile.size()) + '\n';
    if (wish.original) {
        QByteArray original(wish.original->Size(), '\0');
        wish.original->ReadAt(0, original.data(), original.size());
        head += original + '\n';
    }
    for (const TextChange& change : wish.texts) {
        head += QByteArray::number(change.slot) + '=' + change.utf8 + '\n';
    }
    head += shape.profile;
    // The beginning comes last, as encoders that patch their head do it.
    constexpr qint64 kLate = 4;
    file.Append("....", kLate);
    file.Append(head.constData() + kLate, head.size() - kLate);
    const qint64 rowBytes = RowBytes(shape.width, BitsOf(shape.layout));
    for (qint32 y = 0; y < shape.height; ++y) {
        file.Append(picture.NextRow(), rowBytes);
    }
    file.WriteAt(0, head.constData(), kLate);
}
void EncodeCrash(PictureRows& picture, const EncodeWish&, FileSink&)
{
    ++ticket;
    picture.NextRow();
    ::raise(SIGKILL);
}
void EncodeHang(PictureRows& picture, const EncodeWish&, FileSink&)
{
    ++ticket;
    picture.NextRow();
    Forever();
}
void EncodeExit(PictureRows&, const EncodeWish&, FileSink&)
{
    ::_exit(0);
}
void EncodeNothing(PictureRows&, const EncodeWish&, FileSink&)
{
    ++ticket;
}
void EncodeThrows(PictureRows&, const EncodeWish&, FileSink&)
{
    ++ticket;
    throw std::bad_alloc();
}
void EncodeGreedily(PictureRows& picture, const EncodeWish&, FileSink&)
{
    ++ticket;
    for (;;) {
        picture.NextRow();
    }
}
void EncodeEndlessly(PictureRows&, const EncodeWish&, FileSink& file)
{
    ++ticket;
    static char zeros[1 << 20];
    for (;;) {
        file.Append(zeros, sizeof(zeros));
    }
}
void EncodeFarAway(PictureRows&, const EncodeWish&, FileSink& file)
{
    ++ticket;
    file.WriteAt(kMaxOutputGap + 1, "x", 1);
}
template <Lie lie> void LyingEncode(PictureRows&, const EncodeWish&, FileSink&)
{
    ++ticket;
    lie();
    Forever();
}
void SayOutput(qint64 position, qint32 count)
{
    SendRaw(OutputMessage{{}, position, count}, MessageKind::Output);
}
void OutputBeyondSlot()
{
    SayOutput(0, qint32(kOutputSlotBytes + 1));
}
void OutputNegative()
{
    SayOutput(0, -1);
}
void OutputBeforeFile()
{
    SayOutput(-1, 1);
}
void OutputBehindHole()
{
    SayOutput(1 << 20, 1);
}
void OutputFarBehind()
{
    SayOutput(0x7fffffffffffffff, 16);
}
void TakeTooMuch()
{
    SendRaw(TakenMessage{{}, 1'000'000}, MessageKind::Taken);
}
void TakeLess()
{
    SendRaw(TakenMessage{{}, -1}, MessageKind::Taken);
}
void SayDoneAtOnce()
{
    SendRaw(DoneMessage{{}, 0}, MessageKind::Done);
}
/// What came of an attempt to break out while encoding, as the file's content.
template <int (*attempt)()> void TryOutEncoding(PictureRows&, const EncodeWish&, FileSink& file)
{
    ++ticket;
    const QByteArray outcome = attempt() < 0 ? "refused" : "allowed";
    file.Append(outcome.constData(), outcome.size());
}
int TryConnect()
{
    // Its own end of the socket is the only one it has.
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(80);
    return ::connect(kSocketDescriptor, reinterpret_cast<const sockaddr*>(&address),
                     sizeof(address));
}
int TryWriting()
{
    int most = -1;
    for (int fd = 0; fd < 16; ++fd) {
        if (fd != STDERR_FILENO) {
            most = std::max(most, int(::write(fd, "x", 1)));
        }
    }
    return most;
}
int TryPwrite()
{
    return int(::pwrite(kSocketDescriptor + 1, "x", 1, 0));
}

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
