#pragma once
#include "imaging/vector/drawn_page.h"

namespace quillane::codecs {

/// What stands before a metafile's records.
struct WmfHeader {
    bool placeable = false;
    QRectF box; ///< of a placeable file, logical units
    int unitsPerInch = 0;
    qint64 recordsAt = 0;
};

/// Whether the bytes begin as a metafile, plain or placeable.
bool WmfIsHeader(QByteArrayView head);
/// The header; Failure when it is damaged.
WmfHeader ReadWmfHeader(QByteArrayView bytes);
/// The metafile played into a list of records.
drawing::DrawnPage PlayWmf(const QByteArray& bytes, const std::atomic<bool>* cancelled);

} // namespace quillane::codecs
