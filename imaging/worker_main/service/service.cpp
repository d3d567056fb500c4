#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/request_time.h"
#include "imaging/worker/socket_message.h"
#include "imaging/worker_main/service/descriptor_source.h"
#include "imaging/worker_main/service/encode_link.h"
#include "imaging/worker_main/service/ring_sink.h"
#include "imaging/worker_main/service/sandbox.h"
#include "imaging/worker_main/service/worker_codec.h"
#include <algorithm>
#include <cstddef>
#include <new>
#include <unistd.h>

namespace quillane::worker {

namespace {

/// Room for an honest program to end the request first.
constexpr unsigned kSpareSeconds = 2;

void Reply(const void* message, size_t bytes)
{
    if (!SendPacket(kSocketDescriptor, message, bytes)) {
        ::_exit(0);
    }
}

void ReplyRefused(quint64 ticket, qint32 number, const QString& words)
{
    RefusedMessage refused{};
    refused.head = {kProtocolMark, MessageKind::Refused, ticket};
    refused.number = number;
    constexpr int kMaxUnits = sizeof(refused.words) / 4; // at most three bytes a unit
    QByteArray utf8 = words.left(kMaxUnits).toUtf8();
    if (utf8.isEmpty()) {
        utf8 = "This file cannot be read.";
    }
    refused.bytes = qint32(utf8.size());
    std::copy_n(utf8.constData(), utf8.size(), refused.words);
    Reply(&refused, sizeof(refused));
}

void ReplyFacts(quint64 ticket, const ImageFacts& facts)
{
    FactsMessage said{};
    said.head = {kProtocolMark, MessageKind::Facts, ticket};
    said.width = facts.width;
    said.height = facts.height;
    said.bits = facts.bits;
    said.format = facts.format;
    said.pages = std::clamp(facts.pages, 1, limits::kMaxPages);
    constexpr qint32 kMaxDotsPerInch = 1'000'000;
    said.xResolution = std::clamp(facts.xResolution, 0, kMaxDotsPerInch);
    said.yResolution = std::clamp(facts.yResolution, 0, kMaxDotsPerInch);
    said.orientation = std::clamp<qint32>(facts.orientation, 1, 8);
    said.horizontal = facts.layout.horizontal;
    said.vertical = facts.layout.vertical;
    said.compressionTag = facts.layout.compression;
    said.progressive = facts.layout.progressive ? 1 : 0;
    const QByteArray compression = facts.compression.toUtf8();
    std::copy_n(compression.constData(),
                std::min<qsizetype>(compression.size(), sizeof(said.compression) - 1),
                said.compression);
    Reply(&said, sizeof(said));
}

void ReplyDone(quint64 ticket, bool partial)
{
    const DoneMessage done{{kProtocolMark, MessageKind::Done, ticket}, partial ? 1u : 0u};
    Reply(&done, sizeof(done));
}

void ReplyText(quint64 ticket, qint16 slot, const QByteArray& utf8)
{
    PieceMessage piece;
    piece.head = {kProtocolMark, MessageKind::Text, ticket};
    piece.slot = slot;
    // A text that is too long ends before the character that does not fit.
    qsizetype count = std::min<qsizetype>(utf8.size(), kMaxTextBytes);
    while (count < utf8.size() && count > 0 && (uchar(utf8[count]) & 0xc0) == 0x80) {
        --count;
    }
    piece.count = qint32(count);
    std::copy_n(utf8.constData(), count, piece.bytes);
    Reply(&piece, offsetof(PieceMessage, bytes) + size_t(count));
}

void Work(const WorkerCodec& codec, const RequestMessage& request, DescriptorSource& source,
          Window& window)
{
    const quint64 ticket = request.head.ticket;
    switch (request.head.kind) {
    case MessageKind::Probe:
        ReplyFacts(ticket, codec.probe(source));
        return;
    case MessageKind::Decode: {
        RingSink sink(window, ticket, codec.name);
        const bool partial =
            codec.decode(source, {request.page, request.atLeastWidth, request.atLeastHeight}, sink);
        if (!sink.IsFull()) {
            throw Failure(kFailureUnreadable,
                          QStringLiteral("This %1 file is damaged.").arg(codec.name));
        }
        ReplyDone(ticket, partial);
        return;
    }
    default:
        if (codec.comments) {
            codec.comments(source, [&](qint16 slot, const QByteArray& utf8) {
                ReplyText(ticket, slot, utf8);
            });
        }
        ReplyDone(ticket, false);
        return;
    }
}

/// Runs one request under its time limit; what it throws becomes a refusal in words.
template <typename Run>
void Answer(const char* codec, quint64 ticket, int seconds, const char* thing, Run&& run)
{
    // The program ends a slow process by itself; this is for one whose program cannot.
    ::alarm(unsigned(seconds) * RequestTime::kMostPatience + kSpareSeconds);
    try {
        run();
    } catch (const Failure& failure) {
        ReplyRefused(ticket, failure.Number(), failure.Description());
    } catch (const std::bad_alloc&) {
        ReplyRefused(ticket, kFailureLimit,
                     QStringLiteral("This %1 %2 needs more memory than a picture may take.")
                         .arg(codec, thing));
    } catch (const std::exception&) {
        ReplyRefused(ticket, kFailureUnreadable,
                     QStringLiteral("This %1 %2 is damaged.").arg(codec, thing));
    }
    ::alarm(0);
}

const WorkerCodec* CodecOf(std::span<const WorkerCodec> codecs, char* name, size_t room)
{
    name[room - 1] = '\0';
    const auto codec = std::find_if(codecs.begin(), codecs.end(), [&](const WorkerCodec& one) {
        return qstricmp(one.name, name) == 0;
    });
    return codec == codecs.end() ? nullptr : &*codec;
}

void AnswerReading(std::span<const WorkerCodec> codecs, RequestMessage& request, FileHandle file,
                   Window& window)
{
    const WorkerCodec* codec = CodecOf(codecs, request.codec, sizeof(request.codec));
    const quint64 ticket = request.head.ticket;
    if (!codec || !codec->probe || !codec->decode || !file.IsOpen()) {
        ReplyRefused(ticket, kFailureUnreadable,
                     QStringLiteral("This file is of a kind that this program does not "
                                    "decode."));
        return;
    }
    DescriptorSource source(std::move(file), request.fileBytes);
    const int seconds = request.head.kind == MessageKind::Decode ? limits::kWorkerDecodeSeconds
                                                                 : limits::kWorkerSeconds;
    Answer(codec->name, ticket, seconds, "file", [&] { Work(*codec, request, source, window); });
}

void AnswerEncoding(std::span<const WorkerCodec> codecs, EncodeMessage& request, FileHandle file,
                    Window& window)
{
    const WorkerCodec* codec = CodecOf(codecs, request.codec, sizeof(request.codec));
    const quint64 ticket = request.head.ticket;
    EncodeLink link(window, request);
    if (!codec || !codec->encode) {
        ReplyRefused(ticket, kFailureGeneral,
                     QStringLiteral("Pictures of the kind %1 cannot be written.")
                         .arg(QString::fromLatin1(request.codec)));
        return;
    }
    const int seconds = EncodeSeconds(request.width, request.height, request.originalBytes);
    Answer(codec->name, ticket, seconds, "picture", [&] {
        DescriptorSource original(std::move(file), std::max<qint64>(0, request.originalBytes));
        EncodeWish wish;
        wish.original = request.originalBytes >= 0 ? &original : nullptr;
        link.Begin(wish);
        codec->encode(link, wish, link);
        link.Finish();
        ReplyDone(ticket, false);
    });
}

} // namespace

int Serve(std::span<const WorkerCodec> codecs)
{
    for (const WorkerCodec& codec : codecs) {
        if (codec.prepare) {
            codec.prepare();
        }
    }
    if (!LockProcess()) {
        return 1;
    }
    const ReadyMessage ready{{kProtocolMark, MessageKind::Ready, 0}};
    Reply(&ready, sizeof(ready));

    Window window;
    for (;;) {
        union {
            MessageHead head;
            RequestMessage reading;
            EncodeMessage encoding;
        } said{};
        Packet packet = ReceivePacket(kSocketDescriptor, &said, sizeof(said));
        if (packet.bytes <= 0) {
            ::_exit(0); // nothing to tidy up, and the tools that would look after it are locked out
        }
        switch (said.head.kind) {
        case MessageKind::Probe:
        case MessageKind::Decode:
        case MessageKind::Comments:
            AnswerReading(codecs, said.reading, std::move(packet.descriptor), window);
            break;
        case MessageKind::Encode:
            AnswerEncoding(codecs, said.encoding, std::move(packet.descriptor), window);
            break;
        default:
            break; // what was said about a request that has ended
        }
    }
}

} // namespace quillane::worker
