#include "fuzz_metadata.h"
#include "comment_files.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/slots.h"
#include "picture_maker.h"
#include "tiff_maker.h"
#include <cstdlib>
#include <cstring>

namespace quillane::fuzz {

namespace {

using making::ExifMaker;

const QByteArray kXmp =
    "<?xpacket begin=''?><x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
    "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
    "xmlns:tiff='http://ns.adobe.com/tiff/1.0/' xmlns:dc='http://purl.org/dc/elements/1.1/' "
    "tiff:Orientation='6'><dc:description><rdf:Alt><rdf:li xml:lang='x-default'>old &amp; so"
    "</rdf:li></rdf:Alt></dc:description></rdf:Description></rdf:RDF></x:xmpmeta>   "
    "<?xpacket end='w'?>";

QByteArray SmallJpeg()
{
    making::JpegMake make;
    make.width = make.height = 16;
    return making::MakeJpeg(make);
}

QByteArray SmallTiff()
{
    test::TiffMaker maker;
    maker.Picture(6, 4, {8}, 1, 2).Chunk(QByteArray(12, 'a')).Chunk(QByteArray(12, 'b'));
    return maker.File();
}

QByteArray SmallPng()
{
    return making::MakePng({});
}

QByteArray SmallGif()
{
    return making::MakeGif({});
}

QList<QByteArray> JpegSeeds()
{
    using making::Big;
    using making::JpegSegment;
    const QByteArray xmp =
        JpegSegment(0xe1, QByteArray("http://ns.adobe.com/xap/1.0/\0", 29) + kXmp);
    const QByteArray pictures =
        JpegSegment(0xe2,
                    QByteArray("MPF\0MM\0*\0\0\0\x08\0\1\xb0\2\0\7\0\0\0\x20\0\0\0\x1a\0\0\0\0", 30)
                        + Big(0x030000, 4) + Big(700, 4) + Big(0, 8 / 2) + Big(0, 4)
                        + Big(0x020002, 4) + Big(50, 4) + Big(800, 4) + Big(0, 4));
    QList<QByteArray> seeds;
    for (const bool big : {false, true}) {
        const QByteArray exif = JpegSegment(0xe1, QByteArray("Exif\0\0", 6) + FullBlock(big));
        seeds << SmallJpeg().insert(2, exif + xmp + pictures) + SmallJpeg() + "trailer";
    }
    seeds << SmallJpeg().insert(2,
                                JpegSegment(0xfe, "one") + JpegSegment(0xfe, "two")
                                    + JpegSegment(0xed, "Photoshop 3.0"));
    making::JpegMake cmyk;
    cmyk.channels = 4;
    cmyk.icc = making::MakeWideProfile();
    seeds << making::MakeJpeg(cmyk);
    return seeds;
}

QList<QByteArray> TiffSeeds()
{
    test::TiffMaker two;
    two.Picture(6, 4, {8}, 1, 2).Chunk(QByteArray(12, 'a')).Chunk(QByteArray(12, 'b'));
    two.Bytes(700, kXmp);
    const QByteArray first = two.Page(8);
    const quint32 firstAt = two.DirectoryAt();
    test::TiffMaker second;
    second.Picture(4, 4, {8}, 1, 4).Chunk(QByteArray(16, 'c'));
    const QByteArray behind = second.Page(8 + quint32(first.size()));
    QByteArray pages = two.Head(firstAt) + first + behind;
    pages.replace(8 + first.size() - 4, 4, two.Four(second.DirectoryAt()));
    return {SmallTiff(), pages, FullBlock(false), FullBlock(true), FullBlock(false, true)};
}

QList<QByteArray> PngSeeds()
{
    using making::PngChunk;
    const auto with = [](const QByteArray& chunks) {
        QByteArray png = SmallPng();
        return png.insert(png.indexOf("IDAT") - 4, chunks);
    };
    making::PngMake palette;
    palette.colourType = 3;
    palette.transparentColour = true;
    return {with(making::PngText("Description", "old & so") + PngChunk("eXIf", FullBlock(true))),
            with(making::PngUtf8Text("XML:com.adobe.xmp", kXmp, true)
                 + making::PngUtf8Text("Title", "t", false) + PngChunk("prVt", "x")),
            with(making::PngCompressedText("Comment", "c")
                 + PngChunk("acTL", making::Big(2, 4) + making::Big(0, 4))),
            making::MakePng(palette)};
}

QList<QByteArray> GifSeeds()
{
    making::GifMake moving;
    moving.frames = 3;
    moving.transparent = 1;
    QByteArray xmp = "\x21\xff\x0bXMP DataXMP" + kXmp + '\1';
    for (int i = 255; i >= 0; --i) {
        xmp += char(i);
    }
    xmp += '\0';
    return {making::MakeGif(moving), SmallGif(),
            making::GifWith(making::GifExtension(0xfe, "old & so") + xmp,
                            making::GifExtension(0xfe, "behind"))};
}

constexpr Carrier kCarriers[] = {
    {"jpeg", ReadJpegComments, CarryIntoJpeg, nullptr, SmallJpeg, JpegSeeds},
    {"tiff", ReadTiffComments, CarryIntoTiff, ReplaceCommentsInTiff, SmallTiff, TiffSeeds},
    {"png", ReadPngComments, CarryIntoPng, ReplaceCommentsInPng, SmallPng, PngSeeds},
    {"gif", ReadGifComments, CarryIntoGif, ReplaceCommentsInGif, SmallGif, GifSeeds},
};

} // namespace

const Carrier& FuzzedCarrier(const char* name)
{
    for (const Carrier& carrier : kCarriers) {
        if (std::strcmp(carrier.name, name) == 0) {
            return carrier;
        }
    }
    std::abort();
}

QByteArray FullBlock(bool bigEndian, bool bigTiff)
{
    ExifMaker maker(bigEndian, bigTiff);
    for (const CommentSlot& slot : CommentSlots()) {
        const auto directory = slot.home == SlotHome::TiffDirectory ? ExifMaker::Tiff
            : slot.home == SlotHome::ExifDirectory                  ? ExifMaker::Exif
                                                                    : ExifMaker::Gps;
        if (slot.home == SlotHome::Dicom || slot.home == SlotHome::PngText) {
            continue;
        }
        const auto tag = quint16(slot.tag);
        switch (slot.shape) {
        case SlotShape::Text:
            maker.Ascii(directory, tag, "text of " + QByteArray::number(slot.slot));
            break;
        case SlotShape::Integer:
            maker.Short(directory, tag, {slot.slot});
            break;
        case SlotShape::Rational:
            maker.Rational(directory, tag, {slot.slot, 7});
            break;
        case SlotShape::RationalTriple:
            maker.Rational(directory, tag, {slot.slot, 1, 2, 1, 300, 100});
            break;
        case SlotShape::Bytes:
            maker.Bytes(directory, tag, "0210");
            break;
        }
    }
    maker.Short(ExifMaker::Tiff, 0x0112, {6})
        .Bytes(ExifMaker::Exif, 0x927c, QByteArray(60, 'm'))
        .Long(ExifMaker::Exif, 0xa002, {4000});
    return maker.Block() + "bytes of nobody";
}

CommentValue FuzzValue(qint16 slot, int variant)
{
    switch (FindSlot(slot)->shape) {
    case SlotShape::Text:
        return QString(1 + variant % 90, QChar(u'a' + variant % 26));
    case SlotShape::Integer:
        return qint32(variant);
    case SlotShape::Rational:
        return QVector<double>{double(variant), 3};
    case SlotShape::RationalTriple:
        return QVector<double>{1, 1, double(variant), 1, 3, 100};
    case SlotShape::Bytes:
        break;
    }
    return QByteArray("023") + char('0' + variant % 10);
}

} // namespace quillane::fuzz
