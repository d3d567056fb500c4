#include "imaging/format_table.h"
#include <gtest/gtest.h>
#include <set>

namespace quillane {

namespace {

struct DescribedFormat {
    int code;
    const char* text;
};

// clang-format off
constexpr DescribedFormat kDescribed[] = {
    {1, "ZSoft PCX"},
    {2, "CompuServe GIF"},
    {3, "Tagged Image File Format"},
    {4, "TARGA File"},
    {5, "LEAD Proprietary Compression Format"},
    {6, "Windows BMP"},
    {10, "JPEG File Interchange Format"},
    {11, "Tagged Image File w/ JPEG YUV 4:4:4"},
    {14, "OS/2 BMP version 1.x"},
    {15, "Windows Meta File"},
    {16, "Encapsulated PostScript"},
    {17, "Tagged Image File with LZW Compression and RGB"},
    {21, "JPEG File Interchange YUV 4:1:1"},
    {22, "Tagged Image File w/ JPEG YUV 4:1:1"},
    {23, "JPEG File Interchange YUV 4:2:2"},
    {24, "Tagged Image File w/ JPEG YUV 4:2:2"},
    {25, "TIFF, compressed using CCITT"},
    {26, "LEAD Proprietary 1-bit Compression Format"},
    {27, "TIFF, compressed using CCITT, group 3, 1 dimension"},
    {28, "TIFF, compressed using CCITT, group 3, 2 dimensions"},
    {29, "TIFF, compressed using CCITT, group 4"},
    {50, "CALS Raster file"},
    {51, "MacPaint"},
    {52, "GEM Image"},
    {53, "Microsoft Paint"},
    {54, "Word Perfect"},
    {55, "Sun Raster"},
    {56, "Macintosh QuickDraw"},
    {57, "Kodak PhotoCD"},
    {58, "AutoCad"},
    {59, "Windows AVI (video) file"},
    {61, "Flic Animation"},
    {62, "Computer Graphics Metafile"},
    {63, "Encapsulated PostScript with an embedded TIFF file"},
    {64, "Encapsulated PostScript with an embedded WMF file"},
    {66, "Raw FAX, compressed using CCITT group 3, 1 dimension"},
    {67, "Raw FAX, compressed using CCITT group 3, 2 dimensions"},
    {68, "Raw FAX, compressed using CCITT group 4"},
    {69, "Winfax, compressed using CCITT group 3, 1 dimension"},
    {70, "Winfax, compressed using CCITT group 4"},
    {71, "IOCA, compressed using CCITT group 3, 1 dimension, with the MO:DCA wrapper"},
    {72, "IOCA, compressed using CCITT group 3, 2 dimensions, with the MO:DCA wrapper"},
    {73, "IOCA, compressed using CCITT group 4, w/ the MO:DCA wrapper"},
    {74, "OS/2 BMP version 2.x"},
    {75, "Portable Network Graphics"},
    {76, "Adobe Photoshop 3.0"},
    {77, "IOCA, compressed using CCITT  group 3, 1 dimension, w/o MO:DCA wrapper"},
    {78, "IOCA, compressed using CCITT  group 3, 2 dimensions, w/o MO:DCA wrapper"},
    {79, "IOCA, compressed using CCITT group 4, w/o MO:DCA wrapper"},
    {80, "FlashPix, with no compression"},
    {81, "FlashPix, compressed with the single color method"},
    {82, "FlashPix, compressed with JPEG, using Q factor"},
    {83, "FlashPix, compressed with JPEG, specified Q factor"},
    {84, "Windows BMP, with RLE compression"},
    {85, "Tagged Image File, with no compresssion and with CMYK"},
    {86, "Tagged Image File with LZW Compression and CMYK"},
    {87, "Tagged Image File with PackBits Compression and RGB"},
    {88, "Tagged Image File with PackBits Compression and CMYK"},
    {89, "DICOM grayscale"},
    {90, "DICOM color (RGB)"},
    {91, "Windows icon file. Including multi-page"},
    {92, "Windows cursor file. Including multi-page"},
    {93, "Tagged Image File, with no compresssion and with YCbCr"},
    {94, "Tagged Image File with LZW Compression and YCbCr"},
    {95, "Tagged Image File with PackBits Compression and YCbCr"},
    {96, "TIFF Image Exif file uncompressed RGB"},
    {97, "TIFF Image Exif file uncompressed YCbCr"},
    {98, "JPEG compressed YUV 4:2:2 EXIF File"},
    {99, "Microsoft FAX format"},
    {101, "JPEG compressed YUV 4:1:1 EXIF File"},
    {102, "Portable Bitmap - ASCII File"},
    {103, "Portable Bitmap - Binary File"},
    {104, "Portable Greymap - ASCII File"},
    {105, "Portable Greymap - Binary File"},
    {106, "Portable Pixelmap - ASCII File"},
    {107, "Portable Pixelmap - Binary File"},
    {108, "Dr. Halo"},
    {109, "XPicmap File"},
    {110, "XBitmap File"},
    {111, "Interchange File"},
    {112, "Interchange File - multiple images per file"},
    {114, "Microsoft Windows Clipboard"},
    {115, "JBIG"},
    {116, "Windows Enhanced Meta File"},
    {119, "Windows Animated Cursor"},
    {121, "1-bit tiled fax images"},
    {122, "ITG, Intergraph RLE compressed file"},
    {123, "Intergraph MicroStation and Interactive Graphics Design"},
    {124, "DWG - AutoCAD"},
    {125, "DICOM grayscale – RLE compressed"},
    {126, "DICOM color – RLE compressed"},
    {127, "DICOM gray – JPEG compressed"},
    {128, "DICOM color – JPEG compressed"},
    {129, "CALS CCITT G4 Tiled"},
    {130, "CALS CCITT G4 compressed"},
    {131, "CALS Fax Group 4 compressed"},
    {132, "X Window Dump – version 10"},
    {133, "X Window Dump – version 11"},
    {134, "Flic Animation"},
    {136, "DRaWing – Micrografx Designer"},
    {137, "HPGL – Hewlett-Packard"},
    {138, "Tagged Image File with CMP Compression"},
    {139, "Tagged Image File with JBIG Compression"},
    {140, "Tagged Image File with a vector image saved as a DXF"},
    {142, "Silicon Graphics Image - Uncompressed"},
    {143, "Silicon Graphics Image - RLE Compressed"},
    {146, "Raster PDF uncompressed"},
    {153, "Raw uncompressed data"},
    {163, "JPEG 2000 Format. Format contains image data and extra information"},
    {164, "JPEG 2000 Format. Format contains only a stream of image data"},
    {166, "Tagged Image File with JPEG 2000 Compression"},
    {243, "MPEG Type 1"},
    {246, "MPEG Type 2"},
};
// clang-format on

TEST(FormatTable, HasItsRowsInOrderTheRepeatedOnesLast)
{
    const std::span<const FormatRow> rows = FormatTable();
    ASSERT_EQ(rows.size(), 118u);
    ASSERT_EQ(std::size(kDescribed), 113u);
    for (size_t i = 0; i < std::size(kDescribed); ++i) {
        EXPECT_EQ(rows[i].code, kDescribed[i].code) << i;
        EXPECT_EQ(QString::fromUtf16(rows[i].text), QString::fromUtf8(kDescribed[i].text)) << i;
    }
    const std::pair<int, const char*> repeated[] = {
        {140, "Tagged Image File with a vector DXF"},
        {15, "Windows Meta File"},
        {116, "Windows Enhanced Meta File"},
        {56, "MacPict"},
        {16, "Encapsulated PostScript"},
    };
    for (size_t i = 0; i < std::size(repeated); ++i) {
        EXPECT_EQ(rows[113 + i].code, repeated[i].first);
        EXPECT_EQ(QString::fromUtf16(rows[113 + i].text), QString(repeated[i].second));
    }
}

TEST(FormatDescription, EveryCodeHasItsWords)
{
    for (const DescribedFormat& row : kDescribed) {
        EXPECT_EQ(FormatDescription(qint16(row.code)), QString::fromUtf8(row.text)) << row.code;
    }
}

TEST(FormatDescription, EveryOtherCodeHasNone)
{
    std::set<int> known;
    for (const DescribedFormat& row : kDescribed) {
        known.insert(row.code);
    }
    EXPECT_EQ(known.size(), 113u);
    for (int code = -32768; code <= 32767; ++code) {
        ASSERT_EQ(FormatDescription(qint16(code)).isEmpty(), known.count(code) == 0) << code;
    }
    EXPECT_EQ(FormatDescription(0), QString());
}

TEST(FormatDescription, TheFirstRowOfARepeatedCodeWins)
{
    EXPECT_EQ(FormatDescription(56), "Macintosh QuickDraw");
    EXPECT_EQ(FormatDescription(140), "Tagged Image File with a vector image saved as a DXF");
}

TEST(FormatDescription, OddSpellingsAndTheLongDashStand)
{
    EXPECT_EQ(FormatDescription(85), "Tagged Image File, with no compresssion and with CMYK");
    EXPECT_EQ(FormatDescription(137), QStringLiteral(u"HPGL \u2013 Hewlett-Packard"));
    EXPECT_EQ(FormatDescription(77),
              "IOCA, compressed using CCITT  group 3, 1 dimension, w/o MO:DCA wrapper");
}

TEST(IsExifFormat, HoldsForFourCodes)
{
    std::set<int> held;
    for (int code = -300; code <= 300; ++code) {
        if (IsExifFormat(qint16(code))) {
            held.insert(code);
        }
    }
    EXPECT_EQ(held, (std::set<int>{96, 97, 98, 101}));
}

} // namespace

} // namespace quillane
