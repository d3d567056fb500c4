#pragma once
// Makes picture files in memory for the tests, with the libraries' own writers or byte by byte.
#include <QByteArray>
#include <QImage>
#include <QMap>
#include <QString>

namespace quillane::making {

/// A picture whose every pixel tells where it stands: red grows to the right, green downwards.
QRgb PlaceColour(int x, int y, int width, int height);
/// Largest difference of a channel between two colours.
int ColourDistance(QRgb a, QRgb b);

/// A number in so many bytes, lowest first or highest first.
QByteArray Little(quint32 value, int bytes);
QByteArray Big(quint32 value, int bytes);

/// An Exif block, from its byte-order mark on, with orientation and resolution.
QByteArray MakeExif(int orientation, bool bigEndian = false, int resolution = 0, int unit = 2);

struct JpegMake {
    int width = 64, height = 48;
    int channels = 3;         ///< 1, 3, or 4 for CMYK as Adobe writes it
    int across = 2, down = 2; ///< sampling of the first channel against the others
    bool progressive = false;
    bool arithmetic = false;
    int quality = 95;
    int densityUnit = 0, xDensity = 1, yDensity = 1; ///< JFIF
    QByteArray exif;                                 ///< block without "Exif\0\0"
    QByteArray icc;
};
QByteArray MakeJpeg(const JpegMake& make);

struct PngMake {
    int width = 32, height = 24;
    int colourType = 2; ///< 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGBA
    int depth = 8;
    bool interlaced = false;
    bool transparentColour = false; ///< tRNS: value 0, index 0
    int dotsPerMetre = 0;
    QByteArray exif;
    QByteArray icc;
    QByteArray text; ///< of a compressed text chunk
};
QByteArray MakePng(const PngMake& make);

struct GifMake {
    int width = 20, height = 10;
    int left = 0, top = 0, frameWidth = 20, frameHeight = 10;
    int colours = 4;
    int transparent = -1;
    bool interlaced = false;
    int frames = 1;
};
/// Pixel (x, y) of the frame has index (x + y) % colours; colour i is (i * 10, 255 - i, i).
QByteArray MakeGif(const GifMake& make);

/// A valid profile of a wide colour space, in which full green lies far outside sRGB.
QByteArray MakeWideProfile();

/// Small pictures of every format that is read in this process and of their main kinds, by names.
QMap<QString, QByteArray> MadePictures();

} // namespace quillane::making
