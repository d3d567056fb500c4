#pragma once
#include <QByteArray>
#include <QImage>

namespace quillane {

enum class ColourModel : quint8 { None, BlackWhite, Grey, Palette, Rgb, Cmyk };

/// One picture in memory; a value whose copies share their pixels until one is written.
/// Store by model and depth: BlackWhite Format_Mono (index 0 black, 1 white unless the colour
/// table says otherwise); Palette Format_Indexed8; Grey Format_Grayscale8 or 16; Rgb
/// Format_RGB32 (24 bits), Format_ARGB32 (32 bits, not premultiplied), Format_RGBX64/RGBA64
/// (16 bits a channel); Cmyk Format_RGBA8888 whose four bytes are C, M, Y, K, 255 full ink.
class Bitmap {
public:
    Bitmap() = default;
    Bitmap(QImage pixels, ColourModel model, qint32 fileDepth)
        : mPixels(std::move(pixels)),
          mModel(model),
          mFileDepth(fileDepth)
    { }

    bool IsNull() const { return mPixels.isNull(); }
    qint32 Width() const { return mPixels.width(); }
    qint32 Height() const { return mPixels.height(); }
    /// Bits per pixel of the picture in memory: 1, 8, 16, 24, 32, 48 or 64.
    qint32 Bits() const;
    qint32 FileDepth() const { return mFileDepth; } ///< bits per pixel in the file
    ColourModel Model() const { return mModel; }
    const QImage& Pixels() const { return mPixels; }
    QImage& Pixels() { return mPixels; }

    const QByteArray& Icc() const { return mIcc; } ///< embedded profile, empty for sRGB
    void SetIcc(QByteArray icc) { mIcc = std::move(icc); }
    /// Whether the pixels hold exactly what the file holds (a float image is a view of it).
    bool IsExact() const { return mExact; }
    void SetExact(bool exact) { mExact = exact; }
    /// Part of the picture was missing; the rest is blank.
    bool IsPartial() const { return mPartial; }
    void SetPartial(bool partial) { mPartial = partial; }

    /// The picture as the screen shows it: RGB32 or ARGB32_Premultiplied, CMYK converted, the
    /// embedded profile (if there is one and it is usable) brought to sRGB.
    QImage ToDisplay() const;
    /// Turned and mirrored so that a picture stored with Exif orientation 1..8 stands upright;
    /// anything else changes nothing.
    Bitmap Upright(int orientation) const;

private:
    QImage mPixels;
    ColourModel mModel = ColourModel::None;
    qint32 mFileDepth = 0;
    QByteArray mIcc;
    bool mExact = true;
    bool mPartial = false;
};

} // namespace quillane
