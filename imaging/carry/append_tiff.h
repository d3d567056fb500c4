#pragma once
#include <QByteArray>

namespace quillane {

/// How a TIFF took a further page.
struct TiffWithPage {
    QByteArray file;
    qint32 pages = 0;     ///< that it has now
    qint64 directory = 0; ///< where the directory of the new page lies
};

/// Whether the first page of a TIFF can be moved into another file as it lies; false for the JPEG
/// of old, whose tables are found by places that tell no length, and for one that is not whole.
bool TiffPageCanMove(const QByteArray& page);

/// `target` with the first page of the TIFF `page` behind its last one: pixels, fields, Exif, GPS
/// and sub-directories (previews), in the target's byte order and width of offsets. Every byte of
/// the target stays where it is, but for the offset in its last directory, which leads to the new
/// one. A MakerNote moves byte for byte. Failure kFailureUnreadable for a target whose pages are
/// damaged, so that room that an old page claims is never filled with a new one;
/// kFailureGeneral for samples that cannot be turned into the other byte order; kFailureLimit
/// when the file would become larger than `mostBytes` or has as many pages as there may be.
TiffWithPage AppendTiffPage(const QByteArray& target, const QByteArray& page, qint64 mostBytes);

/// The same bytes as a TIFF that begins with the page whose directory lies there; for looking at
/// one page.
QByteArray TiffFromDirectory(QByteArray file, qint64 directory);

} // namespace quillane
