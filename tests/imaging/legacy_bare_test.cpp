// Fax pages, CALS, IOCA and Intergraph rasters.
#include "codec_support_for_tests.h"
#include "imaging/reader.h"
#include "legacy_maker.h"
#include "picture_maker.h"
#include "worker_support.h"
#include <iostream>
#include <tiffio.h>

namespace quillane::test {

namespace {

using making::Big;
using making::Little;

/// A page of bits with runs of many lengths on its lines.
class BarePage {
public:
    BarePage(int width, int height) : mWidth(width), mHeight(height) { }
    bool Ink(int x, int y) const
    {
        const int across = 1 + (y * 37 + 11) % (mWidth / 2 + 3);
        return y % 7 != 0 && (x / across + x * y / 97) % 2 == 1;
    }
    /// Rows with a set bit for ink.
    QByteArray Rows() const
    {
        QByteArray rows;
        for (int y = 0; y < mHeight; ++y) {
            QByteArray row((mWidth + 7) / 8, '\0');
            for (int x = 0; x < mWidth; ++x) {
                if (Ink(x, y)) {
                    row[x / 8] = char(row[x / 8] | 0x80 >> (x & 7));
                }
            }
            rows += row;
        }
        return rows;
    }
    int WrongPixels(const Bitmap& bitmap) const
    {
        if (bitmap.Width() != mWidth || bitmap.Height() != mHeight) {
            return -1;
        }
        int wrong = 0;
        for (int y = 0; y < mHeight; ++y) {
            for (int x = 0; x < mWidth; ++x) {
                wrong += (qRed(bitmap.Pixels().pixel(x, y)) == 0) != Ink(x, y);
            }
        }
        return wrong;
    }
    int Width() const { return mWidth; }
    int Height() const { return mHeight; }

private:
    int mWidth, mHeight;
};

class BareTest : public WorkerTest {
protected:
    /// The bare codes that libtiff makes of the page, taken out of a file of one strip.
    QByteArray Coded(const BarePage& page, int compression, quint32 options = 0, int fillOrder = 1)
    {
        const QString path = mFolder.filePath("coded.tif");
        TIFF* tiff = TIFFOpen(BytesFromPath(path).constData(), "w");
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.Width());
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.Height());
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
        TIFFSetField(tiff, TIFFTAG_FILLORDER, fillOrder);
        if (compression == COMPRESSION_CCITTFAX3) {
            TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, options);
        }
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, page.Height());
        QByteArray rows = page.Rows();
        const qsizetype rowBytes = rows.size() / page.Height();
        for (int y = 0; y < page.Height(); ++y) {
            TIFFWriteScanline(tiff, rows.data() + y * rowBytes, uint32_t(y), 0);
        }
        TIFFClose(tiff);
        tiff = TIFFOpen(BytesFromPath(path).constData(), "r");
        QByteArray coded(qsizetype(TIFFRawStripSize(tiff, 0)), '\0');
        TIFFReadRawStrip(tiff, 0, coded.data(), coded.size());
        TIFFClose(tiff);
        return coded;
    }
    static QString Refusal(const QString& path)
    {
        return making::RefusalOf([&] { LoadFile(path); }).words;
    }
};

QByteArray Record(const QByteArray& text)
{
    return text.leftJustified(128, ' ');
}

QByteArray CalsHead(const BarePage& page, const QByteArray& type = "1",
                    const QByteArray& orientation = "000,270")
{
    QByteArray head = Record("srcdocid: NONE") + Record("dstdocid: NONE") + Record("txtfilid: NONE")
        + Record("figid: NONE") + Record("srcgph: NONE") + Record("doccls: NONE")
        + Record("rtype: " + type) + Record("rorient: " + orientation)
        + Record("rpelcnt: " + QByteArray::number(page.Width()).rightJustified(6, '0') + ','
                 + QByteArray::number(page.Height()).rightJustified(6, '0'))
        + Record("rdensty: 0300") + Record("notes: NONE");
    return head.leftJustified(2048, ' ');
}

QByteArray IocaField(quint32 kind, const QByteArray& body)
{
    return '\x5a' + Big(quint32(body.size() + 8), 2) + Big(kind, 3) + Big(0, 3) + body;
}

QByteArray IocaSegments(const BarePage& page, int coding, const QByteArray& data, bool toldLength)
{
    QByteArray segments = QByteArray("\x70\0\x91\1\xff\x94\x09\0", 8) + Big(2400, 2) + Big(1200, 2)
        + Big(quint32(page.Width()), 2) + Big(quint32(page.Height()), 2) + "\x95\2" + char(coding)
        + "\1\x96\1\1";
    if (toldLength) {
        // In two pieces.
        const qsizetype half = data.size() / 2;
        segments += "\xfe\x92" + Big(quint32(half), 2) + data.left(half) + "\xfe\x92"
            + Big(quint32(data.size() - half), 2) + data.mid(half);
    } else {
        segments += "\xfe\x92" + Big(0, 2) + data;
    }
    return segments + QByteArray("\x93\0\x71\0", 4);
}

QByteArray ItgFile(const BarePage& page, int kind, const QByteArray& data, int orientation = 4)
{
    QByteArray head = QByteArray("\x08\x09", 2) + Little(510, 2) + Little(quint32(kind), 2);
    head = head.leftJustified(184, '\0') + Little(quint32(page.Width()), 4)
        + Little(quint32(page.Height()), 4) + Little(quint32(-400) & 0xffff, 2) + char(orientation);
    return head.leftJustified(1024, '\0') + data;
}

QByteArray ItgRuns(const BarePage& page, bool lineHeads)
{
    QByteArray words;
    for (int y = 0; y < page.Height(); ++y) {
        QByteArray line;
        bool ink = false;
        for (int x = 0; x < page.Width();) {
            int end = x;
            while (end < page.Width() && page.Ink(end, y) == ink) {
                ++end;
            }
            line += Little(quint32(end - x), 2);
            x = end;
            ink = !ink;
        }
        if (lineHeads) {
            words += Little(0x5900, 2) + Little(quint32(line.size() / 2 + 2), 2)
                + Little(quint32(y), 2) + Little(0, 2);
        }
        words += line;
    }
    return words;
}

} // namespace

TEST_F(BareTest, FaxPagesTellTheirSchemeAndSizeByTheirCodes)
{
    struct Kind {
        int compression;
        quint32 options;
        int format;
        const char* words;
    };
    constexpr Kind kKinds[] = {
        {COMPRESSION_CCITTFAX3, 0, 66, "CCITT Group 3"},
        {COMPRESSION_CCITTFAX3, GROUP3OPT_FILLBITS, 66, "CCITT Group 3"},
        {COMPRESSION_CCITTFAX3, GROUP3OPT_2DENCODING, 67, "CCITT Group 3"},
        {COMPRESSION_CCITTFAX4, 0, 68, "CCITT Group 4"},
    };
    for (const BarePage& page : {BarePage(1728, 40), BarePage(153, 55), BarePage(2431, 30)}) {
        for (const Kind& kind : kKinds) {
            for (const int fillOrder : {1, 2}) {
                SCOPED_TRACE(QString("%1 %2 %3")
                                 .arg(page.Width())
                                 .arg(kind.format)
                                 .arg(fillOrder)
                                 .toStdString());
                const QString path =
                    Write("page.fax", Coded(page, kind.compression, kind.options, fillOrder));
                const ImageFacts facts = ProbeFile(path);
                EXPECT_EQ(facts.width, page.Width());
                EXPECT_EQ(facts.height, page.Height());
                EXPECT_EQ(facts.format, kind.format);
                EXPECT_EQ(facts.bits, 1);
                EXPECT_EQ(facts.compression, kind.words);
                EXPECT_EQ(page.WrongPixels(LoadFile(path).bitmap), 0);
            }
        }
    }
}

TEST_F(BareTest, WhatIsNoFaxPageIsRefusedInWords)
{
    const QString path = Write("noise.fax", QByteArray(4000, '\x0f') + "nothing");
    EXPECT_EQ(Refusal(path),
              "This fax page does not tell its width, and its codes make no sense under any, "
              "which is not supported.");
}

TEST_F(BareTest, CalsRastersTellTheirSizeResolutionAndDirection)
{
    const BarePage page(320, 50);
    const QByteArray codes = Coded(page, COMPRESSION_CCITTFAX4);
    const QString path = Write("page.cal", CalsHead(page) + codes);
    const ImageFacts facts = ProbeFile(path);
    EXPECT_EQ(facts.width, 320);
    EXPECT_EQ(facts.height, 50);
    EXPECT_EQ(facts.format, 130);
    EXPECT_EQ(facts.xResolution, 300);
    EXPECT_EQ(facts.orientation, 1);
    EXPECT_EQ(facts.compression, "CCITT Group 4");
    EXPECT_EQ(page.WrongPixels(LoadFile(path).bitmap), 0);

    const QByteArray turned[] = {"000,270", "180,270", "180,090", "000,090",
                                 "270,000", "270,180", "090,180", "090,000"};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(
            ProbeFile(Write("turned.cal", CalsHead(page, "1", turned[i]) + codes)).orientation,
            i + 1);
    }
    EXPECT_EQ(Refusal(Write("tiled.cal", CalsHead(page, "2") + codes)),
              "This CALS raster is made of tiles (type 2), which is not supported.");
    EXPECT_EQ(Refusal(Write("cut.cal", CalsHead(page).left(500))),
              "This CALS raster is damaged: its header is cut short.");
    EXPECT_EQ(Refusal(Write("bare.cal", CalsHead(page))),
              "This CALS raster is damaged: it ends before its first row.");
}

TEST_F(BareTest, CalsRastersOfAnotherWriter)
{
    if (!HasTool("gm")) {
        std::cout << "gm is not installed: nothing to compare with\n";
        return;
    }
    const BarePage page(203, 41);
    QByteArray pbm = "P4 203 41\n" + page.Rows();
    const QString from = Write("page.pbm", pbm);
    const QString to = mFolder.filePath("gm.cal");
    ASSERT_TRUE(RunTool("gm", {"convert", from, to}));
    EXPECT_EQ(page.WrongPixels(LoadFile(to).bitmap), 0);
}

TEST_F(BareTest, IocaImagesBareAndInADocument)
{
    struct Kind {
        int coding, compression;
        quint32 options;
        int format;
    };
    constexpr Kind kKinds[] = {
        {0x80, COMPRESSION_CCITTFAX3, 0, 71},
        {0x81, COMPRESSION_CCITTFAX3, GROUP3OPT_2DENCODING, 72},
        {0x82, COMPRESSION_CCITTFAX4, 0, 73},
        {0x03, 0, 0, 73},
    };
    const BarePage page(240, 33);
    for (const Kind& kind : kKinds) {
        const QByteArray data =
            kind.compression ? Coded(page, kind.compression, kind.options) : page.Rows();
        for (const bool wrapped : {false, true}) {
            for (const bool told : {false, true}) {
                SCOPED_TRACE(
                    QString("%1 %2 %3").arg(kind.coding).arg(wrapped).arg(told).toStdString());
                const QByteArray segments = IocaSegments(page, kind.coding, data, told);
                QByteArray file = segments;
                if (wrapped) {
                    file = IocaField(0xd3a8fb, QByteArray(8, '\xff'))
                        + IocaField(0xd3eefb, segments.left(60))
                        + IocaField(0xd3eefb, segments.mid(60)) + IocaField(0xd3a9fb, {});
                }
                const QString path = Write("page.ica", file);
                const ImageFacts facts = ProbeFile(path);
                EXPECT_EQ(facts.format, kind.format + (wrapped ? 0 : 6));
                EXPECT_EQ(facts.width, 240);
                EXPECT_EQ(facts.height, 33);
                EXPECT_EQ(facts.xResolution, 240);
                EXPECT_EQ(facts.yResolution, 120);
                EXPECT_EQ(page.WrongPixels(LoadFile(path).bitmap), 0);
            }
        }
    }
    EXPECT_EQ(Refusal(Write("page.ica", IocaSegments(page, 1, page.Rows(), true))),
              "This IOCA image is compressed in way 1, which is not supported.");
    EXPECT_EQ(Refusal(Write("page.ica", IocaField(0xd3a8fb, QByteArray(20, '\xff')))),
              "This IOCA image is damaged: it does not tell its size.");
}

TEST_F(BareTest, IntergraphRunsAndCodes)
{
    const BarePage page(301, 37);
    for (const bool heads : {false, true}) {
        const QString path = Write("page.itg", ItgFile(page, 9, ItgRuns(page, heads)));
        const ImageFacts facts = ProbeFile(path);
        EXPECT_EQ(facts.width, 301);
        EXPECT_EQ(facts.height, 37);
        EXPECT_EQ(facts.bits, 1);
        EXPECT_EQ(facts.format, 122);
        EXPECT_EQ(facts.xResolution, 400);
        EXPECT_EQ(facts.orientation, 1);
        EXPECT_EQ(facts.compression, "RLE");
        EXPECT_EQ(page.WrongPixels(LoadFile(path).bitmap), 0);
    }
    const QString coded = Write("page.itg", ItgFile(page, 24, Coded(page, COMPRESSION_CCITTFAX4)));
    EXPECT_EQ(ProbeFile(coded).compression, "CCITT Group 4");
    EXPECT_EQ(page.WrongPixels(LoadFile(coded).bitmap), 0);
    const QString plain = Write("page.itg", ItgFile(page, 1, page.Rows()));
    EXPECT_EQ(page.WrongPixels(LoadFile(plain).bitmap), 0);
    EXPECT_EQ(ProbeFile(Write("page.itg", ItgFile(page, 9, ItgRuns(page, false), 6))).orientation,
              4);
    EXPECT_EQ(Refusal(Write("page.itg", ItgFile(page, 65, page.Rows()))),
              "This Intergraph raster holds data of type 65, which is not supported.");
}

TEST_F(BareTest, IntergraphSamplesOfEightBits)
{
    const BarePage page(7, 5);
    QByteArray grey, colours;
    for (int i = 0; i < 35; ++i) {
        grey += char(i * 7);
        colours += QByteArray(1, char(i)) + char(i * 2) + char(i * 3);
    }
    const Bitmap levels = LoadFile(Write("grey.itg", ItgFile(page, 2, grey))).bitmap;
    EXPECT_EQ(qRed(levels.Pixels().pixel(3, 2)), 17 * 7);
    const Bitmap rgb = LoadFile(Write("rgb.itg", ItgFile(page, 28, colours))).bitmap;
    EXPECT_EQ(rgb.Pixels().pixel(3, 2), qRgb(17, 34, 51));
    EXPECT_EQ(ProbeFile(Write("rgb.itg", ItgFile(page, 28, colours))).bits, 24);
}

TEST_F(BareTest, SamplesAreAsTheListTells)
{
    int seen = 0;
    for (const Sample& sample : Samples("formats/", {"fax", "ica", "raw"})) {
        SCOPED_TRACE(sample.file.toStdString());
        const LoadedImage loaded = LoadFile(sample.path);
        EXPECT_EQ(loaded.facts.width, sample.width);
        EXPECT_EQ(loaded.facts.height, sample.height);
        EXPECT_EQ(loaded.facts.pages, sample.frames);
        EXPECT_FALSE(loaded.bitmap.IsPartial());
        ++seen;
    }
    std::cout << seen << " samples\n";
    EXPECT_EQ(seen > 0, HasSamples());
}

TEST_F(BareTest, BothCodingsOfTheSampleShowTheSamePage)
{
    QImage pages[2];
    int seen = 0;
    for (const Sample& sample : Samples("formats/", {"fax"})) {
        pages[seen++ % 2] = LoadFile(sample.path).bitmap.ToDisplay();
    }
    if (HasSamples()) {
        ASSERT_EQ(seen, 2);
        EXPECT_EQ(pages[0], pages[1]);
    }
}

TEST_F(BareTest, TruncatedAnywhereTheyAreShownInPartOrRefused)
{
    const BarePage page(153, 55);
    QMap<QString, QByteArray> files;
    files.insert("g3.fax", Coded(page, COMPRESSION_CCITTFAX3));
    files.insert("g32d.fax", Coded(page, COMPRESSION_CCITTFAX3, GROUP3OPT_2DENCODING));
    files.insert("g4.fax", Coded(page, COMPRESSION_CCITTFAX4));
    files.insert("page.cal", CalsHead(page) + Coded(page, COMPRESSION_CCITTFAX4));
    files.insert("page.ica", IocaSegments(page, 0x82, Coded(page, COMPRESSION_CCITTFAX4), true));
    files.insert("runs.itg", ItgFile(page, 9, ItgRuns(page, true)));
    int shown = 0, refused = 0;
    for (auto i = files.begin(); i != files.end(); ++i) {
        for (int part = 1; part < 20; ++part) {
            const QString path =
                Write("cut " + i.key(), i.value().left(i.value().size() * part / 20));
            const making::Refusal refusal = making::RefusalOf([&] {
                const LoadedImage loaded = LoadFile(path);
                EXPECT_GT(loaded.bitmap.Width(), 0);
            });
            ++(refusal.number == 0 ? shown : refused);
            EXPECT_NE(refusal.number, kFailureWorker) << refusal.words.toStdString();
        }
    }
    EXPECT_GT(shown, 0);
    EXPECT_GT(refused, 0);
}

} // namespace quillane::test
