#pragma once
#include <QByteArrayView>
#include <QImage>

namespace quillane::drawing {

/// Makes the pictures that stand in a metafile's records, as many as one drawing may have.
class MetafileBitmaps {
public:
    /// The picture of a device-independent bitmap: its header and colours in `header`, its pixels
    /// in `pixels`, or behind the colours where `pixels` is empty. A wrapped JPEG or PNG is
    /// decoded. Null when there is none that can be read, or too many pixels.
    QImage Independent(QByteArrayView header, QByteArrayView pixels = {});
    /// The same of 32 bits, whose highest byte is how much of it is seen and whose colours are
    /// already multiplied by that; other pictures as they are.
    QImage Premultiplied(QByteArrayView header, QByteArrayView pixels);
    /// The picture of an old device-dependent bitmap of 1, 24 or 32 bits; of one bit in two
    /// colours.
    QImage Device(QByteArrayView bytes, QRgb zero, QRgb one);
    /// A picture was left out because there were too many pixels.
    bool IsCutShort() const { return mCutShort; }

    static constexpr qint64 kMostPixels = 20'000'000; ///< of one picture
    static constexpr qint64 kMostOfAll = 40'000'000;  ///< of all together

private:
    bool Spend(qint64 width, qint64 height);
    QImage Wrapped(const QByteArray& bytes);
    QImage Unpacked(const QByteArray& header, const QByteArray& pixels, bool premultiplied);
    qint64 mLeft = kMostOfAll;
    bool mCutShort = false;
};

} // namespace quillane::drawing
