#pragma once
// What the program and its decoding processes say to each other: fixed-size messages over a
// SOCK_SEQPACKET pair, one message a packet. Both ends are built together, so the structs go
// over as they lie in memory; neither end believes a number before it has checked it.
//
// A request carries the file as a descriptor. The process answers
//   probe:    Facts, or Refused
//   comments: any number of Text, then Done; or Refused
//   decode:   any number of Profile (pieces of the colour profile), Announce; the program
//             replies Grant (with a memory file, unless both map one already); then Rows, as
//             they become ready, of a large picture, and Done; or Refused
// Pixels go through a window in shared memory that is used as a ring of rows: row r lies at
// place r modulo the number of whole rows in the window. The program copies what is ready and
// answers Taken; the process never runs further ahead than the window is long. So the memory
// of a transfer is the same for every picture, and pages are fresh only once.
//
// An encoding goes the other way round. The request carries the picture's shape and, for a file
// that is written anew, the original as a descriptor; Grant follows at once, with the colour
// profile and the changed texts at the window's beginning. The process copies those and answers
// Taken 0; from then on the window is a ring of rows in its first half, which the program fills,
// and two slots for the encoded file in its second. The program answers every Taken with Rows,
// as far as it has filled the ring; the process says Output when it has filled a slot, the
// program copies that and answers Copied. At the end Done; or Refused at any time.
//
// The program may send Cancel at any time; the process still ends the request with its last
// message. Every message repeats the ticket of its request.
#include "imaging/limits.h"
#include <QtGlobal>

namespace quillane::worker {

/// Names of the codecs that a process serves which was started with kClipArgument, and no other.
inline constexpr const char* kClipCodecs[] = {"MOV", "AVI", "MPEG"};
inline constexpr char kClipArgument[] = "clips";
inline constexpr int kSocketDescriptor = 3; ///< the process's end of the pair
inline constexpr quint32 kProtocolMark = 0x51574b31;
inline constexpr int kMaxMessageBytes = 64 * 1024;
inline constexpr int kMaxColours = 256;
inline constexpr int kMaxTextBytes = 48 * 1024; ///< UTF-8 of one comment text
inline constexpr int kMaxTexts = 64;            ///< comment texts of one file
/// Bytes of the window.
inline constexpr qint64 kWindowBytes = 8ll << 20;
/// Rows of a picture that is larger than the window are announced whenever so many bytes are
/// ready; the others at once at the end. Every announcement changes from one process to the
/// other and back, which on a busy machine costs more than the copying.
inline constexpr qint64 kRowsStepBytes = kWindowBytes / 2;
/// A process looks for a Cancel whenever it has written so many bytes.
inline constexpr qint64 kListenStepBytes = 1ll << 20;

/// Bytes of the window that hold rows while a picture is encoded; the rest are the slots.
inline constexpr qint64 kEncodeRowsBytes = kWindowBytes / 2;
inline constexpr int kOutputSlots = 2;
inline constexpr qint64 kOutputSlotBytes = (kWindowBytes - kEncodeRowsBytes) / kOutputSlots;
/// Bytes that an encoder may leave out behind the end of what it has written so far.
inline constexpr qint64 kMaxOutputGap = 4096;

enum class MessageKind : quint32 {
    Probe = 1,
    Decode,
    Comments,
    Grant,
    Taken, ///< from the process while it encodes
    Cancel,
    Encode,
    Copied,
    Ready = 100,
    Facts,
    Profile,
    Announce,
    Rows, ///< from the program while the process encodes
    Text,
    Done,
    Refused,
    Output
};

struct MessageHead {
    quint32 mark; ///< kProtocolMark
    MessageKind kind;
    quint64 ticket;
};

/// How pixels lie in memory: rows from the top, each padded to 4 bytes.
enum class PixelLayout : quint32 {
    Mono = 1, ///< 1 bit, highest bit first, 0 black
    Indexed8, ///< one byte into the colours of the announcement
    Grey8,    ///< one byte
    Grey16,   ///< 16 bits, the machine's order
    Rgb32,    ///< 0xffRRGGBB
    Argb32,   ///< 0xAARRGGBB, not premultiplied
    Rgbx64,   ///< R, G, B and 0xffff, 16 bits each, the machine's order
    Rgba64,   ///< R, G, B, A, not premultiplied
    Cmyk32,   ///< C, M, Y, K bytes, 255 full ink
};

/// Bits of one pixel in the shared memory; 0 for a layout that does not exist.
constexpr int BitsOf(PixelLayout layout)
{
    switch (layout) {
    case PixelLayout::Mono:
        return 1;
    case PixelLayout::Indexed8:
    case PixelLayout::Grey8:
        return 8;
    case PixelLayout::Grey16:
        return 16;
    case PixelLayout::Rgb32:
    case PixelLayout::Argb32:
    case PixelLayout::Cmyk32:
        return 32;
    case PixelLayout::Rgbx64:
    case PixelLayout::Rgba64:
        return 64;
    }
    return 0;
}

/// Bytes from one row to the next.
constexpr qint64 RowBytes(qint64 width, int bitsPerPixel)
{
    return (width * bitsPerPixel + 31) / 32 * 4;
}

/// Whole rows that the window holds.
constexpr qint64 RowsInWindow(qint64 rowBytes)
{
    return kWindowBytes / rowBytes;
}
/// Whole rows that the window holds while a picture is encoded.
constexpr qint64 RowsWhileEncoding(qint64 rowBytes)
{
    return kEncodeRowsBytes / rowBytes;
}

/// Seconds that an encoding may take. Numbers below 0 count as 0.
constexpr int EncodeSeconds(qint64 width, qint64 height, qint64 originalBytes)
{
    const auto between = [](qint64 value, qint64 most) {
        return value < 0 ? 0 : value < most ? value : most;
    };
    const qint64 pixels = between(width, limits::kMaxSide) * between(height, limits::kMaxSide);
    return limits::kWorkerEncodeSeconds
        + int(between(pixels, limits::kMaxPixels) / limits::kWorkerEncodePixelsPerSecond)
        + int(between(originalBytes, limits::kMaxFileBytes) / limits::kWorkerRewriteBytesPerSecond);
}

struct RequestMessage {
    MessageHead head;
    qint64 fileBytes;
    qint32 page;
    qint32 atLeastWidth, atLeastHeight;
    char codec[20]; ///< Codec::name, ends with a zero
};

/// A picture to encode, or changes of a file whose pixels stay.
struct EncodeMessage {
    MessageHead head;
    qint64 originalBytes; ///< of the file that comes with this message; -1 for none
    qint32 width, height; ///< 0 for no picture
    PixelLayout layout;
    qint32 fileDepth;
    qint32 colourCount;
    quint32 colours[kMaxColours]; ///< 0xAARRGGBB
    qint32 format, bits, quality;
    qint32 xResolution, yResolution;
    quint32 horizontal, vertical, compression, progressive; ///< SourceLayout
    qint32 profileBytes;                                    ///< at the beginning of the window
    qint32 textBytes; ///< behind them: TextChangeHead and UTF-8, any number of times
    char codec[20];   ///< Codec::name, ends with a zero
};

struct TextChangeHead {
    qint32 slot;
    qint32 bytes; ///< of UTF-8 that follow; 0: the field goes
};

/// Bytes of the encoded file are ready in the next slot.
struct OutputMessage {
    MessageHead head;
    qint64 position; ///< in the file
    qint32 count;
};

/// The slot said least recently has been copied.
struct CopiedMessage {
    MessageHead head;
};

struct GrantMessage {
    MessageHead head;
    quint32 fresh; ///< 1: its descriptor comes with this message; 0: the one from before
};

/// So many rows from the top have been copied; said after every Rows of a picture with more
/// rows than the window.
struct TakenMessage {
    MessageHead head;
    qint32 rows;
};

struct CancelMessage {
    MessageHead head;
};

/// Said once, when the process has locked itself and waits for requests.
struct ReadyMessage {
    MessageHead head;
};

struct FactsMessage {
    MessageHead head;
    qint32 width, height;
    qint32 bits, format, pages;
    qint32 xResolution, yResolution;
    qint32 orientation;
    quint32 horizontal, vertical, compressionTag, progressive; ///< SourceLayout
    char compression[64];                                      ///< UTF-8, ends with a zero
};

struct AnnounceMessage {
    MessageHead head;
    qint32 width, height;
    PixelLayout layout;
    qint32 fileDepth;
    quint32 exact; ///< 0 or 1
    qint32 colourCount;
    quint32 colours[kMaxColours]; ///< 0xAARRGGBB
};

struct RowsMessage {
    MessageHead head;
    qint32 rows; ///< so many from the top are ready
};

/// Bytes of varying number; the message ends behind the last one.
struct PieceMessage {
    MessageHead head;
    qint32 slot; ///< of a Text; 0 for a Profile
    qint32 count;
    char bytes[kMaxTextBytes]; ///< UTF-8 for a Text
};

struct DoneMessage {
    MessageHead head;
    quint32 partial; ///< 1: some of the picture was missing
};

struct RefusedMessage {
    MessageHead head;
    qint32 number; ///< FailureNumber
    qint32 bytes;
    char words[1024]; ///< UTF-8
};

} // namespace quillane::worker
