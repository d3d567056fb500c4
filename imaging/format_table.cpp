#include "imaging/format_table.h"

namespace quillane {

namespace {

// clang-format off
/// Codes and words as they are known to people and to stored files: odd spellings and the long
/// dash are part of them. The last five rows repeat a code and are never reached.
constexpr FormatRow kFormatRows[] = {
    {1, u"ZSoft PCX"},
    {2, u"CompuServe GIF"},
    {3, u"Tagged Image File Format"},
    {4, u"TARGA File"},
    {5, u"LEAD Proprietary Compression Format"},
    {6, u"Windows BMP"},
    {10, u"JPEG File Interchange Format"},
    {11, u"Tagged Image File w/ JPEG YUV 4:4:4"},
    {14, u"OS/2 BMP version 1.x"},
    {15, u"Windows Meta File"},
    {16, u"Encapsulated PostScript"},
    {17, u"Tagged Image File with LZW Compression and RGB"},
    {21, u"JPEG File Interchange YUV 4:1:1"},
    {22, u"Tagged Image File w/ JPEG YUV 4:1:1"},
    {23, u"JPEG File Interchange YUV 4:2:2"},
    {24, u"Tagged Image File w/ JPEG YUV 4:2:2"},
    {25, u"TIFF, compressed using CCITT"},
    {26, u"LEAD Proprietary 1-bit Compression Format"},
    {27, u"TIFF, compressed using CCITT, group 3, 1 dimension"},
    {28, u"TIFF, compressed using CCITT, group 3, 2 dimensions"},
    {29, u"TIFF, compressed using CCITT, group 4"},
    {50, u"CALS Raster file"},
    {51, u"MacPaint"},
    {52, u"GEM Image"},
    {53, u"Microsoft Paint"},
    {54, u"Word Perfect"},
    {55, u"Sun Raster"},
    {56, u"Macintosh QuickDraw"},
    {57, u"Kodak PhotoCD"},
    {58, u"AutoCad"},
    {59, u"Windows AVI (video) file"},
    {61, u"Flic Animation"},
    {62, u"Computer Graphics Metafile"},
    {63, u"Encapsulated PostScript with an embedded TIFF file"},
    {64, u"Encapsulated PostScript with an embedded WMF file"},
    {66, u"Raw FAX, compressed using CCITT group 3, 1 dimension"},
    {67, u"Raw FAX, compressed using CCITT group 3, 2 dimensions"},
    {68, u"Raw FAX, compressed using CCITT group 4"},
    {69, u"Winfax, compressed using CCITT group 3, 1 dimension"},
    {70, u"Winfax, compressed using CCITT group 4"},
    {71, u"IOCA, compressed using CCITT group 3, 1 dimension, with the MO:DCA wrapper"},
    {72, u"IOCA, compressed using CCITT group 3, 2 dimensions, with the MO:DCA wrapper"},
    {73, u"IOCA, compressed using CCITT group 4, w/ the MO:DCA wrapper"},
    {74, u"OS/2 BMP version 2.x"},
    {75, u"Portable Network Graphics"},
    {76, u"Adobe Photoshop 3.0"},
    {77, u"IOCA, compressed using CCITT  group 3, 1 dimension, w/o MO:DCA wrapper"},
    {78, u"IOCA, compressed using CCITT  group 3, 2 dimensions, w/o MO:DCA wrapper"},
    {79, u"IOCA, compressed using CCITT group 4, w/o MO:DCA wrapper"},
    {80, u"FlashPix, with no compression"},
    {81, u"FlashPix, compressed with the single color method"},
    {82, u"FlashPix, compressed with JPEG, using Q factor"},
    {83, u"FlashPix, compressed with JPEG, specified Q factor"},
    {84, u"Windows BMP, with RLE compression"},
    {85, u"Tagged Image File, with no compresssion and with CMYK"},
    {86, u"Tagged Image File with LZW Compression and CMYK"},
    {87, u"Tagged Image File with PackBits Compression and RGB"},
    {88, u"Tagged Image File with PackBits Compression and CMYK"},
    {89, u"DICOM grayscale"},
    {90, u"DICOM color (RGB)"},
    {91, u"Windows icon file. Including multi-page"},
    {92, u"Windows cursor file. Including multi-page"},
    {93, u"Tagged Image File, with no compresssion and with YCbCr"},
    {94, u"Tagged Image File with LZW Compression and YCbCr"},
    {95, u"Tagged Image File with PackBits Compression and YCbCr"},
    {96, u"TIFF Image Exif file uncompressed RGB"},
    {97, u"TIFF Image Exif file uncompressed YCbCr"},
    {98, u"JPEG compressed YUV 4:2:2 EXIF File"},
    {99, u"Microsoft FAX format"},
    {101, u"JPEG compressed YUV 4:1:1 EXIF File"},
    {102, u"Portable Bitmap - ASCII File"},
    {103, u"Portable Bitmap - Binary File"},
    {104, u"Portable Greymap - ASCII File"},
    {105, u"Portable Greymap - Binary File"},
    {106, u"Portable Pixelmap - ASCII File"},
    {107, u"Portable Pixelmap - Binary File"},
    {108, u"Dr. Halo"},
    {109, u"XPicmap File"},
    {110, u"XBitmap File"},
    {111, u"Interchange File"},
    {112, u"Interchange File - multiple images per file"},
    {114, u"Microsoft Windows Clipboard"},
    {115, u"JBIG"},
    {116, u"Windows Enhanced Meta File"},
    {119, u"Windows Animated Cursor"},
    {121, u"1-bit tiled fax images"},
    {122, u"ITG, Intergraph RLE compressed file"},
    {123, u"Intergraph MicroStation and Interactive Graphics Design"},
    {124, u"DWG - AutoCAD"},
    {125, u"DICOM grayscale – RLE compressed"},
    {126, u"DICOM color – RLE compressed"},
    {127, u"DICOM gray – JPEG compressed"},
    {128, u"DICOM color – JPEG compressed"},
    {129, u"CALS CCITT G4 Tiled"},
    {130, u"CALS CCITT G4 compressed"},
    {131, u"CALS Fax Group 4 compressed"},
    {132, u"X Window Dump – version 10"},
    {133, u"X Window Dump – version 11"},
    {134, u"Flic Animation"},
    {136, u"DRaWing – Micrografx Designer"},
    {137, u"HPGL – Hewlett-Packard"},
    {138, u"Tagged Image File with CMP Compression"},
    {139, u"Tagged Image File with JBIG Compression"},
    {140, u"Tagged Image File with a vector image saved as a DXF"},
    {142, u"Silicon Graphics Image - Uncompressed"},
    {143, u"Silicon Graphics Image - RLE Compressed"},
    {146, u"Raster PDF uncompressed"},
    {153, u"Raw uncompressed data"},
    {163, u"JPEG 2000 Format. Format contains image data and extra information"},
    {164, u"JPEG 2000 Format. Format contains only a stream of image data"},
    {166, u"Tagged Image File with JPEG 2000 Compression"},
    {243, u"MPEG Type 1"},
    {246, u"MPEG Type 2"},
    {140, u"Tagged Image File with a vector DXF"},
    {15, u"Windows Meta File"},
    {116, u"Windows Enhanced Meta File"},
    {56, u"MacPict"},
    {16, u"Encapsulated PostScript"},
};
// clang-format on

} // namespace

std::span<const FormatRow> FormatTable()
{
    return kFormatRows;
}

QString FormatDescription(const qint16& code)
{
    for (const FormatRow& row : kFormatRows) {
        if (row.code == code) {
            return QString::fromUtf16(row.text);
        }
    }
    return {};
}

bool IsExifFormat(qint16 code)
{
    return code == 96 || code == 97 || code == 98 || code == 101;
}

} // namespace quillane
