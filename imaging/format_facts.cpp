#include "imaging/format_facts.h"
#include <algorithm>
#include <iterator>

namespace quillane {

namespace {

// clang-format off
constexpr PagesRead kFactsOne = PagesRead::One;
constexpr PagesRead kFactsFirst = PagesRead::FirstOnly;
constexpr PagesRead kFactsCounted = PagesRead::FirstCounted;
constexpr PagesRead kFactsAny = PagesRead::Any;
constexpr char kFactsOwnReader[] = "own reader";
constexpr char kFactsOwnPlayer[] = "own player, drawn by Qt's painter";
constexpr char kFactsThroughTiff[] = "libtiff, in a TIFF made around the codes";
constexpr char kFactsAsDrawn[] = "Drawn at its own size, or at the one that is asked for.";
constexpr char kFactsClips[] = "FFmpeg's libraries, loaded when they are needed";
constexpr char kFactsFirstFrame[] = "The first frame. Shown, and never written over.";
constexpr char kFactsNoDescription[] = "the format is not publicly described";

constexpr ReadFacts kReadFacts[] = {
    // codec, reader, bits per pixel, pages, note, why refused
    {"JPEG",       "libjpeg-turbo", "8, 24, 32", kFactsOne,
     "CMYK and progressive files too. Decoded at 1/2, 1/4 or 1/8 where that is enough. Files of 12 bits a sample are refused."},
    {"PNG",        "libpng", "1, 2, 4, 8, 16, 24, 32, 48, 64", kFactsFirst,
     "Of a moving picture the one that stands for all."},
    {"GIF",        "giflib", "1, 2, 3, 4, 5, 6, 7, 8", kFactsCounted, nullptr},
    {"JPEG 2000",  "OpenJPEG", "1 to 16 a sample", kFactsOne, "Files with boxes and bare streams."},
    {"DICOM",      "DCMTK", "8, 16, 24", kFactsAny,
     "RLE and JPEG compression too; grey by its window."},
    {"TIFF",       "libtiff", "1 to 64 a sample", kFactsAny,
     "Every colour space and compression of the library; BigTIFF. Samples in floating point are shown, not rewritten."},
    {"WMF",        kFactsOwnPlayer, "24", kFactsOne, kFactsAsDrawn},
    {"EMF",        kFactsOwnPlayer, "24", kFactsOne, kFactsAsDrawn},
    {"DXF",        kFactsOwnPlayer, "24", kFactsOne, "Written as text. Drawn at its own size, or at the one that is asked for."},
    {"BMP",        kFactsOwnReader, "1, 2, 4, 8, 16, 24, 32", kFactsOne, "Of Windows and OS/2, packed in runs too; with a JPEG or PNG inside it is refused."},
    {"ICO",        kFactsOwnReader, "1, 4, 8, 16, 24, 32", kFactsCounted, "Icons and cursors; a PNG inside too."},
    {"PNM",        kFactsOwnReader, "1, 8, 16, 24, 48", kFactsFirst, "Written as text and binary."},
    {"PSD",        kFactsOwnReader, "1, 8, 16, 24, 32, 48, 64, 96, 128", kFactsOne,
     "The merged picture behind the layers; large documents (PSB) too."},
    {"IFF",        kFactsOwnReader, "1, 2, 3, 4, 5, 6, 7, 8, 24, 32", kFactsAny,
     "Planes and bytes, half-bright colours, pixels that hold and modify."},
    {"Sun raster", kFactsOwnReader, "1, 4, 8, 24, 32", kFactsOne, nullptr},
    {"SGI",        kFactsOwnReader, "8, 16, 24, 32, 48, 64", kFactsOne, nullptr},
    {"CALS",       kFactsThroughTiff, "1", kFactsOne, "Type 1, CCITT Group 4."},
    {"IOCA",       kFactsThroughTiff, "1, 8", kFactsOne, "Bare, or in the fields of a document."},
    {"Intergraph", kFactsThroughTiff, "1, 8, 24", kFactsOne, "Runs, CCITT Group 4 and plain samples."},
    {"CLP",        kFactsOwnReader, "1, 2, 4, 8, 16, 24, 32", kFactsOne, "The bitmap among what was on the clipboard."},
    {"MSP",        kFactsOwnReader, "1", kFactsOne, "Versions 1 and 2."},
    {"PCX",        kFactsOwnReader, "1, 2, 3, 4, 8, 24, 32", kFactsOne, nullptr},
    {"MacPaint",   kFactsOwnReader, "1", kFactsOne, "With and without the wrapper of other systems."},
    {"GEM image",  kFactsOwnReader, "1, 2, 3, 4, 5, 6, 7, 8", kFactsOne, nullptr},
    {"TARGA",      kFactsOwnReader, "8, 16, 24, 32", kFactsOne, nullptr},
    {"Dr. Halo",   kFactsOwnReader, "8", kFactsOne, "Its colours stand in a .PAL file beside it; without that it is grey."},
    {"CMP",        nullptr, nullptr, kFactsOne, nullptr, kFactsNoDescription},
    {"AWD",        nullptr, nullptr, kFactsOne, nullptr, kFactsNoDescription},
    {"DWG",        nullptr, nullptr, kFactsOne, nullptr, kFactsNoDescription},
    {"DWF",        nullptr, nullptr, kFactsOne, nullptr,
     "the format is not publicly described as a whole; the program that makes it writes DXF too"},
    {"WPG",        kFactsOwnReader, "1, 2, 4, 8, 24", kFactsAny, "The bitmaps of both versions."},
    {"PICT",       kFactsOwnPlayer, "1, 2, 4, 8, 16, 24, 32", kFactsOne, "A picture that is one bitmap keeps its depth; drawings are drawn in 24 bits."},
    {"XBM",        nullptr, nullptr, kFactsOne, nullptr, "it is only written"},
    {"XPM",        nullptr, nullptr, kFactsOne, nullptr, "it is only written"},
    {"PDF",        nullptr, nullptr, kFactsOne, nullptr, "it is only written"},
    {"FAX",        kFactsThroughTiff, "1", kFactsOne, "Pages of CCITT Group 3 or 4 without any header; told by their name."},
    {"RAW",        kFactsOwnReader, "8, 24, 32", kFactsOne,
     "Samples without any header; the size stands in the name (photo_640x480.raw), or the picture is a square."},
    {"FlashPix",   kFactsOwnReader, "8, 24, 32", kFactsOne, "Of its resolutions the smallest that is large enough."},
    {"EPS",        "Ghostscript, in a process of its own", "24", kFactsFirst, "Without Ghostscript the preview in the file, where it has one."},
    {"MOV",        kFactsClips, "24", kFactsFirst, kFactsFirstFrame},
    {"AVI",        kFactsClips, "24", kFactsFirst, kFactsFirstFrame},
    {"MPEG",       kFactsClips, "24", kFactsFirst, kFactsFirstFrame},
};

constexpr WriteFacts kWriteFacts[] = {
    {1,   "runs"},
    {2,   "LZW"},
    {3,   "uncompressed; of a file with Deflate, LZMA, Zstandard or WebP its own"},
    {4,   "uncompressed"},
    {6,   "uncompressed"},
    {10,  "JPEG, 4:4:4"},
    {11,  "JPEG, 4:4:4"},
    {14,  "uncompressed"},
    {15,  "one bitmap, uncompressed"},
    {16,  "one image; runs, in letters"},
    {17,  "LZW"},
    {21,  "JPEG, 4:1:1 (4 x 1)"},
    {22,  "JPEG, 4:1:1 (4 x 1)"},
    {23,  "JPEG, 4:2:2"},
    {24,  "JPEG, 4:2:2"},
    {25,  "CCITT modified Huffman"},
    {27,  "CCITT Group 3, one dimension"},
    {28,  "CCITT Group 3, two dimensions"},
    {29,  "CCITT Group 4"},
    {51,  "PackBits"},
    {53,  "version 2, runs"},
    {54,  "version 1, runs"},
    {55,  "uncompressed"},
    {56,  "PackBits"},
    {66,  "CCITT Group 3, one dimension"},
    {67,  "CCITT Group 3, two dimensions"},
    {68,  "CCITT Group 4"},
    {74,  "uncompressed"},
    {75,  "Deflate"},
    {76,  "PackBits"},
    {84,  "RLE4 or RLE8"},
    {85,  "uncompressed"},
    {86,  "LZW"},
    {87,  "PackBits"},
    {88,  "PackBits"},
    {89,  "uncompressed"},
    {90,  "uncompressed"},
    {91,  "uncompressed"},
    {92,  "uncompressed"},
    {93,  "uncompressed, 4:2:2"},
    {94,  "LZW, 4:2:2"},
    {95,  "PackBits, 4:2:2"},
    {96,  "uncompressed"},
    {97,  "uncompressed, 4:2:2"},
    {98,  "JPEG, 4:2:2"},
    {101, "JPEG, 4:1:1 (4 x 1)"},
    {102, "text"},
    {103, "uncompressed"},
    {104, "text"},
    {105, "uncompressed"},
    {106, "text"},
    {107, "uncompressed"},
    {109, "text"},
    {110, "text"},
    {111, "PackBits (ByteRun1)"},
    {114, "uncompressed"},
    {125, "RLE"},
    {126, "RLE"},
    {127, "JPEG; with quality 2 lossless"},
    {128, "JPEG; with quality 2 lossless"},
    {130, "CCITT Group 4"},
    {139, "JBIG"},
    {142, "uncompressed"},
    {143, "runs"},
    {146, "uncompressed"},
    {153, "uncompressed"},
    {163, "JPEG 2000, in boxes; with quality 2 lossless"},
    {164, "JPEG 2000, the bare stream; with quality 2 lossless"},
    {166, "JPEG 2000; with quality 2 lossless"},
};

constexpr char kFactsOnlyRead[] = "it is only read";
constexpr char kFactsNoLines[] = "it is a drawing, and a picture has no lines to store";
constexpr char kFactsClip[] = "it is a clip, and a picture is not one";
constexpr char kFactsDocument[] = "only printing systems take it; the same codes can be had in a TIFF or a FAX file";

constexpr WriteRefusal kWriteRefusals[] = {
    {5,   kFactsNoDescription},
    {26,  kFactsNoDescription},
    {50,  "the number does not tell which of the CALS formats is meant"},
    {52,  kFactsOnlyRead},
    {57,  "the way in which it is coded is not publicly described"},
    {58,  kFactsNoLines},
    {59,  kFactsClip},
    {61,  kFactsClip},
    {62,  kFactsNoLines},
    {63,  "it is only read, for the sake of the preview in it"},
    {64,  "it is only read, for the sake of the preview in it"},
    {69,  kFactsNoDescription},
    {70,  kFactsNoDescription},
    {71,  kFactsDocument},
    {72,  kFactsDocument},
    {73,  kFactsDocument},
    {77,  kFactsDocument},
    {78,  kFactsDocument},
    {79,  kFactsDocument},
    {80,  kFactsOnlyRead},
    {81,  kFactsOnlyRead},
    {82,  kFactsOnlyRead},
    {83,  kFactsOnlyRead},
    {99,  kFactsNoDescription},
    {108, "its colours would stand in a second file, and a save writes one"},
    {112, "a save writes one picture; \"Interchange File\" holds one"},
    {115, "its codes can be had in a TIFF"},
    {116, "it is a drawing, of which only the older kind (Windows Meta File) is written"},
    {119, kFactsClip},
    {121, kFactsNoDescription},
    {122, kFactsOnlyRead},
    {123, kFactsNoLines},
    {124, kFactsNoDescription},
    {129, "tiles of a CALS file are neither read nor written"},
    {131, "the number does not tell which of the CALS formats is meant"},
    {132, "it is a dump of a screen"},
    {133, "it is a dump of a screen"},
    {134, kFactsClip},
    {136, kFactsNoDescription},
    {137, kFactsNoLines},
    {138, "the compression is not publicly described"},
    {140, kFactsNoLines},
    {243, kFactsClip},
    {246, kFactsClip},
};

// clang-format on

} // namespace

std::span<const ReadFacts> AllReadFacts()
{
    return kReadFacts;
}

std::span<const WriteFacts> AllWriteFacts()
{
    return kWriteFacts;
}

std::span<const WriteRefusal> AllWriteRefusals()
{
    return kWriteRefusals;
}

const ReadFacts* FindReadFacts(QByteArrayView codec)
{
    const auto* found =
        std::find_if(std::begin(kReadFacts), std::end(kReadFacts),
                     [codec](const ReadFacts& row) { return codec == QByteArrayView(row.codec); });
    return found == std::end(kReadFacts) ? nullptr : found;
}

const WriteFacts* FindWriteFacts(qint16 format)
{
    const auto* found =
        std::find_if(std::begin(kWriteFacts), std::end(kWriteFacts),
                     [format](const WriteFacts& row) { return row.format == format; });
    return found == std::end(kWriteFacts) ? nullptr : found;
}

QString WhyNotWritten(qint16 format)
{
    const auto* found =
        std::find_if(std::begin(kWriteRefusals), std::end(kWriteRefusals),
                     [format](const WriteRefusal& row) { return row.format == format; });
    return found == std::end(kWriteRefusals) ? QString() : QString::fromUtf8(found->why);
}

} // namespace quillane
