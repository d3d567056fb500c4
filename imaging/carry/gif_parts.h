#pragma once
#include <QByteArray>
#include <vector>

namespace quillane::carry {

/// One block of a GIF (GIF89a, sections 20 to 26): an extension or a frame.
struct GifPart {
    enum class Kind { Comment, Control, OtherExtension, Frame };
    Kind kind = Kind::OtherExtension;
    QByteArray bytes; ///< whole
};

struct GifParts {
    QByteArray head; ///< signature and screen, 13 bytes
    QByteArray palette;
    std::vector<GifPart> blocks;
    QByteArray behind; ///< from the mark of the end on, or from what is no block
    int Width() const;
    int Height() const;
    QByteArray Joined() const;
    /// Index of the first frame; -1 for none.
    qsizetype FirstFrame() const;
    int FrameCount() const;
};

/// Failure kFailureUnreadable for what does not begin as a GIF does.
GifParts CutGif(const QByteArray& bytes);
/// The bytes of an extension's sub-blocks, put together.
QByteArray GifContent(const GifPart& extension);
/// A comment extension. Failure kFailureLimit for a text that no reader takes.
GifPart MakeGifComment(const QByteArray& text);

} // namespace quillane::carry
