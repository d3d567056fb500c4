#include "imaging/codecs/codec_support.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/slots.h"
#include "imaging/comments/text_bytes.h"
#include "imaging/limits.h"

namespace quillane {

namespace {

// Blocks of a GIF89a (its specification, sections 18 to 27).
constexpr uchar kGifExtension = 0x21;
constexpr uchar kGifImage = 0x2c;
constexpr uchar kGifCommentLabel = 0xfe;
/// A comment behind so much of a picture is not looked for.
constexpr qint64 kGifCommentReach = 64ll << 20;

constexpr qint64 GifTableBytes(uchar flags)
{
    return flags & 0x80 ? 3ll << ((flags & 7) + 1) : 0;
}

/// Walks the sub-blocks from `position`, which moves behind them; collects them where asked for.
/// False when the file ends or the walk goes too far.
bool GifPassSubBlocks(codecs::ByteWindow& window, qint64& position, QByteArray* collected)
{
    while (const uchar* size = window.At(position, 1)) {
        const int bytes = *size;
        ++position;
        if (bytes == 0) {
            return true;
        }
        if (window.Fetched() > kGifCommentReach) {
            return false;
        }
        if (collected && collected->size() + bytes <= limits::kMaxTextBytes) {
            const uchar* content = window.At(position, bytes);
            if (!content) {
                return false;
            }
            collected->append(reinterpret_cast<const char*>(content), bytes);
        }
        position += bytes;
    }
    return false;
}

} // namespace

void ReadGifComments(ByteSource& source, CommentSet& set)
{
    codecs::ByteWindow window(source);
    const uchar* head = window.At(0, 13);
    if (!head) {
        return;
    }
    qint64 position = 13 + GifTableBytes(head[10]);
    for (;;) {
        const uchar* p = window.At(position, 1);
        const uchar kind = p ? *p : 0;
        if (kind == kGifExtension) {
            const uchar* label = window.At(position + 1, 1);
            const bool comment = label && *label == kGifCommentLabel;
            position += 2;
            QByteArray bytes;
            const bool whole =
                label && GifPassSubBlocks(window, position, comment ? &bytes : nullptr);
            const QString text = TextFromFieldBytes(bytes);
            if (!text.isEmpty()) {
                set.Set(kDescriptionSlot, text);
                return;
            }
            if (!whole) {
                return;
            }
        } else if (kind == kGifImage) {
            const uchar* frame = window.At(position, 10);
            if (!frame) {
                return;
            }
            position += 10 + GifTableBytes(frame[9]) + 1; // and the size of the first code
            if (!GifPassSubBlocks(window, position, nullptr)) {
                return;
            }
        } else {
            return; // the end, or nothing that a GIF has
        }
    }
}

} // namespace quillane
