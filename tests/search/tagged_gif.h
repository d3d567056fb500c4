#pragma once
// The smallest file that carries a description.
#include <QByteArray>

namespace quillane {

/// A GIF of one pixel with that comment, which is left out when it is empty. At most 255 bytes.
inline QByteArray TaggedGif(const QByteArray& comment)
{
    QByteArray gif("GIF89a\x01\x00\x01\x00\x80\x00\x00\x00\x00\x00\xff\xff\xff", 19);
    if (!comment.isEmpty()) {
        gif += QByteArray("\x21\xfe", 2) + char(comment.size()) + comment + char(0);
    }
    return gif + QByteArray("\x2c\x00\x00\x00\x00\x01\x00\x01\x00\x00\x02\x02\x44\x01\x00\x3b", 16);
}

} // namespace quillane
