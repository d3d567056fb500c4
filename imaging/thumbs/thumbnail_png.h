#pragma once
// The small PNG files of the desktop's thumbnail cache.
#include <QByteArray>
#include <QImage>
#include <utility>
#include <vector>

namespace quillane {

/// Keyword and text, both Latin-1.
using ThumbnailText = std::pair<QByteArray, QByteArray>;

/// A PNG with plain text chunks before its pixels; empty when it cannot be made.
QByteArray EncodeThumbnailPng(const QImage& image, const std::vector<ThumbnailText>& texts);
/// Text of a plain text chunk before the pixels; empty when there is none.
QByteArray ThumbnailPngText(const QByteArray& png, const QByteArray& keyword);
/// The picture, as the screen shows it. Null when it is damaged or a side is above maxSide.
QImage DecodeThumbnailPng(const QByteArray& png, int maxSide);

} // namespace quillane
