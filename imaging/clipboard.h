#pragma once
// Pictures on the system's clipboard, of this program and of others.
#include "imaging/bitmap.h"
#include <QString>

namespace quillane {

/// What was on the clipboard when it was looked at.
struct ClipboardContent {
    Bitmap own;       ///< copied by this program: as it was, with its depth and colours
    QImage held;      ///< an image that this process holds as such
    QByteArray bytes; ///< a picture file's content, from another program
    QString file;     ///< or a file that it named
};

/// Puts a picture on the clipboard: itself for this program's pastes, what the screen shows of it
/// for others. Window thread.
void PutOnClipboard(const Bitmap& picture);
/// Takes what there is, unread. Failure where there is no picture, and for more bytes than a
/// picture may have. Window thread.
ClipboardContent TakeClipboard();
/// The picture in it, upright, read by the program's own codecs within their limits. Failure in
/// words where it is none. Any thread.
Bitmap PictureFromClipboard(const ClipboardContent& content);

} // namespace quillane
