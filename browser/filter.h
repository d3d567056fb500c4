#pragma once
#include <QString>

namespace quillane {

/// The mask of browsable files: 43 patterns in the order in which the grid groups them.
/// "*.FPX" is in it twice, so a FlashPix file has two cells.
inline constexpr char16_t kBrowseMask[] =
    u"*.AWD;*.BMP;*.CAL;*.CLP;*.CMP;*.CUR;*.CUT;*.DIC;*.DWF;*.DWG;*.DXF;*.EMF;*.EPS;*.FAX;"
    u"*.FPX;*.GIF;*.ICA;*.ICO;*.IFF;*.IMG;*.ITG;*.JPG;*.MAC;*.MSP;*.PBM;*.PCT;*.FPX;*.PCX;"
    u"*.PGM;*.PNG;*.PPM;*.PSD;*.RAS;*.RAW;*.MOV;*.TGA;*.TIF;*.WMF;*.WPG;*.IFL;*.LY2;*.AVI;"
    u"*.MPG";

/// Index of the last pattern that a thumbnail scan visits, reckoned from the mask's length:
/// a sixth of it less one, to the nearest whole number.
qint32 LastPatternIndex(const QString& mask);

} // namespace quillane
