#pragma once
#include <QImage>
#include <QSize>
#include <QString>
#include <atomic>

namespace quillane {

/// What the album window shows of its current file.
struct AlbumPicture {
    bool found = false; ///< the file is there
    QImage shown;       ///< for the screen, upright; null when it cannot be read
    QSize pixels;       ///< of the whole picture, upright
    QString sizeText, formatText;
    bool hasDescription = false; ///< the file is of a kind that carries one
    QString description;         ///< comment slot 3, its line ends CR LF
    QString failure;             ///< why the picture cannot be shown, in words
};
/// Reads a file for the preview, at reduced scale as long as both sides stay as large as `box`.
/// Any thread; what is cancelled ends soon and has no picture.
AlbumPicture ReadAlbumPicture(const QString& path, QSize box, const std::atomic<bool>& cancelled);

/// "Image Size: ", width, " X ", height, " X ", bits per pixel.
QString AlbumSizeText(QSize pixels, int bits);
/// "Format: " and the words for a format code.
QString AlbumFormatText(qint16 format);

} // namespace quillane
