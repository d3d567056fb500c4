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
// The program may send Cancel at any time; the process still ends the request with its last
// message. Every message repeats the ticket of its request.
#include <QtGlobal>

namespace quillane::worker {

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

enum class MessageKind : quint32 {
    Probe = 1,
    Decode,
    Comments,
    Grant,
    Taken,
    Cancel,
    Ready = 100,
    Facts,
    Profile,
    Announce,
    Rows,
    Text,
    Done,
    Refused
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

struct RequestMessage {
    MessageHead head;
    qint64 fileBytes;
    qint32 page;
    qint32 atLeastWidth, atLeastHeight;
    char codec[20]; ///< Codec::name, ends with a zero
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
    char compression[64]; ///< UTF-8, ends with a zero
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
