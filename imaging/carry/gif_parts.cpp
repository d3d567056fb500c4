#include "imaging/carry/gif_parts.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include <algorithm>

namespace quillane::carry {

namespace {

constexpr char kGifPartExtension = 0x21, kGifPartFrame = 0x2c;
constexpr quint8 kGifPartControl = 0xf9, kGifPartComment = 0xfe;
constexpr qsizetype kGifPartHead = 13;

qsizetype GifPartPalette(char flags)
{
    return flags & 0x80 ? qsizetype(3) << ((flags & 7) + 1) : 0;
}

/// Behind the sub-blocks that begin at `at`; -1 when the file ends before.
qsizetype GifPartPast(const QByteArray& bytes, qsizetype at)
{
    while (at < bytes.size()) {
        const auto size = quint8(bytes[at]);
        if (size == 0) {
            return at + 1;
        }
        at += 1 + size;
    }
    return -1;
}

/// The block that begins at `at`; an empty one where none does.
GifPart GifPartAt(const QByteArray& bytes, qsizetype at)
{
    GifPart part;
    qsizetype content = -1;
    if (bytes.size() - at >= 2 && bytes[at] == kGifPartExtension) {
        const auto label = quint8(bytes[at + 1]);
        part.kind = label == kGifPartControl ? GifPart::Kind::Control
            : label == kGifPartComment       ? GifPart::Kind::Comment
                                             : GifPart::Kind::OtherExtension;
        content = at + 2;
    } else if (bytes.size() - at >= 10 && bytes[at] == kGifPartFrame) {
        part.kind = GifPart::Kind::Frame;
        content = at + 10 + GifPartPalette(bytes[at + 9]) + 1; // and the size of the first code
    }
    const qsizetype end = content < 0 ? -1 : GifPartPast(bytes, content);
    if (end > 0 && end <= bytes.size()) {
        part.bytes = bytes.sliced(at, end - at);
    }
    return part;
}

int GifPartNumber(const QByteArray& bytes, qsizetype at)
{
    return quint8(bytes[at]) | quint8(bytes[at + 1]) << 8;
}

} // namespace

int GifParts::Width() const
{
    return GifPartNumber(head, 6);
}

int GifParts::Height() const
{
    return GifPartNumber(head, 8);
}

QByteArray GifParts::Joined() const
{
    qsizetype size = head.size() + palette.size() + behind.size();
    for (const GifPart& part : blocks) {
        size += part.bytes.size();
    }
    QByteArray out;
    out.reserve(size);
    out += head;
    out += palette;
    for (const GifPart& part : blocks) {
        out += part.bytes;
    }
    return out + behind;
}

qsizetype GifParts::FirstFrame() const
{
    const auto found = std::find_if(blocks.begin(), blocks.end(), [](const GifPart& part) {
        return part.kind == GifPart::Kind::Frame;
    });
    return found != blocks.end() ? found - blocks.begin() : -1;
}

int GifParts::FrameCount() const
{
    return int(std::count_if(blocks.begin(), blocks.end(), [](const GifPart& part) {
        return part.kind == GifPart::Kind::Frame;
    }));
}

GifParts CutGif(const QByteArray& bytes)
{
    const qsizetype palette =
        bytes.size() >= kGifPartHead ? GifPartPalette(bytes[10]) : bytes.size();
    if (!bytes.startsWith("GIF8") || bytes.size() < kGifPartHead + palette) {
        throw Failure(kFailureUnreadable, QStringLiteral("This file does not begin as a GIF."));
    }
    GifParts parts;
    parts.head = bytes.left(kGifPartHead);
    parts.palette = bytes.sliced(kGifPartHead, palette);
    qsizetype at = kGifPartHead + palette;
    for (;;) {
        GifPart part = GifPartAt(bytes, at);
        if (part.bytes.isEmpty()) {
            break;
        }
        at += part.bytes.size();
        parts.blocks.push_back(std::move(part));
    }
    parts.behind = bytes.sliced(at);
    return parts;
}

QByteArray GifContent(const GifPart& extension)
{
    const QByteArray& bytes = extension.bytes;
    QByteArray content;
    for (qsizetype at = 2; at < bytes.size() && bytes[at] != 0; at += 1 + quint8(bytes[at])) {
        content += bytes.mid(at + 1, quint8(bytes[at]));
    }
    return content;
}

GifPart MakeGifComment(const QByteArray& text)
{
    if (text.size() >= limits::kMaxTextBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("The description is longer than the 1 MB that a GIF may "
                                     "have."));
    }
    GifPart part{GifPart::Kind::Comment, QByteArray("\x21\xfe", 2)};
    for (qsizetype at = 0; at < text.size(); at += 255) {
        const QByteArray piece = text.mid(at, 255);
        part.bytes += char(piece.size());
        part.bytes += piece;
    }
    part.bytes += '\0';
    return part;
}

} // namespace quillane::carry
