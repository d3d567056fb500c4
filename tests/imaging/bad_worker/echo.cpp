// Honest decoders and encoders, and those that crash, hang, end or throw on the way.
#include "core/failure.h"
#include "imaging/limits.h"
#include "send_raw.h"
#include <csignal>
#include <cstdlib>
#include <sys/socket.h>
#include <unistd.h>

namespace quillane::worker {

quint64 ticket = 0;

void Forever()
{
    for (;;) {
        ::getpid(); // something the compiler cannot leave out
    }
}

namespace {

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

} // namespace

ImageFacts ProbeEcho(ByteSource& source)
{
    ++ticket;
    return FactsOf(ShapeOf(source));
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

} // namespace quillane::worker
