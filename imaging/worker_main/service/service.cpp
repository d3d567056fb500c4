#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/socket_message.h"
#include "imaging/worker_main/service/descriptor_source.h"
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

void Answer(const WorkerCodec& codec, const RequestMessage& request, DescriptorSource& source,
            Window& window)
{
    const quint64 ticket = request.head.ticket;
    const int seconds = request.head.kind == MessageKind::Decode ? limits::kWorkerDecodeSeconds
                                                                 : limits::kWorkerSeconds;
    ::alarm(unsigned(seconds) + kSpareSeconds);
    try {
        Work(codec, request, source, window);
    } catch (const Failure& failure) {
        ReplyRefused(ticket, failure.Number(), failure.Description());
    } catch (const std::bad_alloc&) {
        ReplyRefused(ticket, kFailureLimit,
                     QStringLiteral("This %1 file needs more memory than a picture may take.")
                         .arg(codec.name));
    } catch (const std::exception&) {
        ReplyRefused(ticket, kFailureUnreadable,
                     QStringLiteral("This %1 file is damaged.").arg(codec.name));
    }
    ::alarm(0);
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
        RequestMessage request{};
        Packet packet = ReceivePacket(kSocketDescriptor, &request, sizeof(request));
        if (packet.bytes <= 0) {
            ::_exit(0); // nothing to tidy up, and the tools that would look after it are locked out
        }
        const MessageKind kind = request.head.kind;
        if (kind != MessageKind::Probe && kind != MessageKind::Decode
            && kind != MessageKind::Comments) {
            continue; // what was said about a request that has ended
        }
        request.codec[sizeof(request.codec) - 1] = '\0';
        const auto codec = std::find_if(codecs.begin(), codecs.end(), [&](const WorkerCodec& one) {
            return qstricmp(one.name, request.codec) == 0;
        });
        if (codec == codecs.end() || !packet.descriptor.IsOpen()) {
            ReplyRefused(request.head.ticket, kFailureUnreadable,
                         QStringLiteral("This file is of a kind that this program does not "
                                        "decode."));
            continue;
        }
        DescriptorSource source(std::move(packet.descriptor), request.fileBytes);
        Answer(*codec, request, source, window);
    }
}

} // namespace quillane::worker
