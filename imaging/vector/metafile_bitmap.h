#pragma once
#include <QByteArrayView>
#include <QImage>

namespace quillane::drawing {

/// The picture of a device-independent bitmap: its header and colours in `header`, its pixels in
/// `pixels`, or behind the colours where `pixels` is empty. A wrapped JPEG or PNG is decoded. Null
/// when there is none that can be read, and for more than kMetafileMostPixels.
QImage MetafileBitmap(QByteArrayView header, QByteArrayView pixels);
/// The picture of an old device-dependent bitmap of 1, 24 or 32 bits; of one bit in two colours.
QImage DeviceBitmap(QByteArrayView bytes, QRgb zero, QRgb one);

inline constexpr qint64 kMetafileMostPixels = 20'000'000;

} // namespace quillane::drawing
