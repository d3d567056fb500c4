#include "imaging/limits.h"
#include "tiff_maker.h"
#include "worker_support.h"

namespace quillane::test {

namespace {

constexpr quint16 kMinIsBlack = 1, kRgb = 2, kSeparated = 5, kYcbcr = 6;

class TiffFacts : public WorkerTest {
protected:
    ImageFacts Read(TiffMaker& maker)
    {
        return Probe(Write(QStringLiteral("facts.tif"), maker.File()), "TIFF");
    }
    /// Facts of a picture of 8-bit samples with a compression.
    ImageFacts Of(quint16 compression, quint16 photometric, bool exif = false, quint32 options = 0)
    {
        const QList<quint32> bits(photometric == kSeparated ? 4
                                      : photometric < kRgb  ? 1
                                                            : 3,
                                  photometric < kRgb && compression != 1 ? 1u : 8u);
        TiffMaker maker;
        maker.Picture(4, 4, bits, photometric, 4).Compression(compression);
        if (options) {
            maker.Long(292, {options});
        }
        if (exif) {
            maker.Long(34665, {8});
        }
        maker.Chunk(QByteArray(64, '\0'));
        return Read(maker);
    }
};

struct CodeRow {
    quint16 compression, photometric;
    bool exif;
    quint32 options;
    int code;
    const char* words;
};
constexpr CodeRow kCodeRows[] = {
    {1, kRgb, false, 0, 3, "Uncompressed"},
    {1, kMinIsBlack, false, 0, 3, "Uncompressed"},
    {1, kSeparated, false, 0, 85, "Uncompressed"},
    {1, kYcbcr, false, 0, 93, "Uncompressed"},
    {1, kRgb, true, 0, 96, "Uncompressed"},
    {1, kYcbcr, true, 0, 97, "Uncompressed"},
    {1, kMinIsBlack, true, 0, 3, "Uncompressed"},
    {1, kSeparated, true, 0, 85, "Uncompressed"},
    {5, kRgb, false, 0, 17, "LZW"},
    {5, kRgb, true, 0, 17, "LZW"},
    {5, kSeparated, false, 0, 86, "LZW"},
    {5, kYcbcr, false, 0, 94, "LZW"},
    {32773, kRgb, false, 0, 87, "PackBits"},
    {32773, kSeparated, false, 0, 88, "PackBits"},
    {32773, kYcbcr, false, 0, 95, "PackBits"},
    {2, kMinIsBlack, false, 0, 25, "CCITT modified Huffman"},
    {3, kMinIsBlack, false, 0, 27, "CCITT Group 3"},
    {3, kMinIsBlack, false, 1, 28, "CCITT Group 3"},
    {4, kMinIsBlack, false, 0, 29, "CCITT Group 4"},
    {34661, kMinIsBlack, false, 0, 139, "JBIG"},
    {34712, kRgb, false, 0, 166, "JPEG 2000"},
    {8, kRgb, false, 0, 3, "Deflate"},
    {32946, kYcbcr, false, 0, 3, "Deflate"},
    {64999, kRgb, false, 0, 3, "TIFF compression 64999"},
};

} // namespace

TEST_F(TiffFacts, FormatCodesFollowCompressionColourAndExif)
{
    for (const CodeRow& row : kCodeRows) {
        const ImageFacts facts = Of(row.compression, row.photometric, row.exif, row.options);
        EXPECT_EQ(facts.format, row.code) << row.compression << ' ' << row.photometric;
        EXPECT_EQ(facts.compression, QString::fromLatin1(row.words));
    }
}

TEST_F(TiffFacts, CompressionsThatAreNotDecodedAreRefusedByName)
{
    TiffMaker maker;
    maker.Picture(4, 4, {8, 8, 8}, kRgb, 4).Compression(50002).Chunk(QByteArray(48, '\0'));
    const QString path = Write(QStringLiteral("jxl.tif"), maker.File());
    const Failure failure = FailureOf([&] { Decode(path, "TIFF"); });
    EXPECT_EQ(failure.Number(), kFailureUnreadable);
    EXPECT_TRUE(failure.Description().contains(QStringLiteral("TIFF compression 50002")));
}

TEST_F(TiffFacts, ResolutionIsInDotsPerInch)
{
    struct Row {
        QList<quint32> unit;
        quint32 numerator, denominator;
        int dots;
    };
    const Row rows[] = {{{2}, 300, 1, 300},
                        {{3}, 11811, 100, 300},
                        {{}, 72, 1, 72},
                        {{1}, 72, 1, 0},
                        {{2}, 300, 0, 0},
                        {{2}, 7201, 100, 72},
                        {{2}, 4000000000u, 1, 1'000'000}};
    for (const Row& row : rows) {
        TiffMaker maker;
        maker.Picture(1, 1, {8}, kMinIsBlack, 1).Chunk("x");
        maker.Rational(282, row.numerator, row.denominator);
        maker.Rational(283, row.numerator, row.denominator);
        if (!row.unit.isEmpty()) {
            maker.Short(296, row.unit);
        }
        const ImageFacts facts = Read(maker);
        EXPECT_EQ(facts.xResolution, row.dots);
        EXPECT_EQ(facts.yResolution, row.dots);
    }
}

TEST_F(TiffFacts, OrientationIsToldAndPixelsStayAsStored)
{
    for (const quint32 orientation : {1u, 3u, 6u, 8u, 0u, 9u}) {
        TiffMaker maker;
        maker.Picture(2, 1, {8}, kMinIsBlack, 1).Short(274, {orientation}).Chunk("ab");
        const QString path = Write(QStringLiteral("turned.tif"), maker.File());
        const bool known = orientation >= 1 && orientation <= 8;
        EXPECT_EQ(Probe(path, "TIFF").orientation, known ? orientation : 1);
        const Bitmap bitmap = Decode(path, "TIFF");
        EXPECT_EQ(bitmap.Pixels().constScanLine(0)[0], 'a');
        EXPECT_EQ(bitmap.Pixels().constScanLine(0)[1], 'b');
    }
}

TEST_F(TiffFacts, TheColourProfileComesWithThePixelsWhateverItsLength)
{
    for (const int length : {5, 3144, 200'001}) {
        QByteArray profile;
        for (int i = 0; i < length; ++i) {
            profile.append(char(i * 7));
        }
        TiffMaker maker;
        maker.Picture(1, 1, {8}, kMinIsBlack, 1).Chunk("x").Bytes(34675, profile);
        EXPECT_EQ(Decode(Write(QStringLiteral("icc.tif"), maker.File()), "TIFF").Icc(), profile);
    }
}

TEST_F(TiffFacts, APictureBeyondTheLimitsIsRefusedInWords)
{
    TiffMaker maker;
    maker.Picture(65'000, 65'000, {8}, kMinIsBlack, 1).Chunk("x");
    const QString path = Write(QStringLiteral("huge.tif"), maker.File());
    for (const Failure& failure :
         {FailureOf([&] { Probe(path, "TIFF"); }), FailureOf([&] { Decode(path, "TIFF"); })}) {
        EXPECT_EQ(failure.Number(), kFailureLimit);
        EXPECT_TRUE(failure.Description().contains(QStringLiteral("65000 by 65000")));
    }
}

TEST_F(TiffFacts, AChainOfPagesThatNeverEndsIsCountedOnce)
{
    TiffMaker maker;
    maker.Picture(1, 1, {8}, kMinIsBlack, 1).Chunk("x");
    maker.File();
    TiffMaker loop;
    loop.Picture(1, 1, {8}, kMinIsBlack, 1).Chunk("x");
    const QByteArray page = loop.Page(8, maker.DirectoryAt());
    EXPECT_EQ(Probe(Write(QStringLiteral("loop.tif"), loop.Head(loop.DirectoryAt()) + page), "TIFF")
                  .pages,
              1);
}

TEST_F(TiffFacts, VeryManyPagesAreCountedUpToTheLimit)
{
    constexpr quint32 kCount = 70'000, kPageBytes = 2 + 12 + 4;
    TiffMaker maker;
    maker.Picture(1, 1, {8}, kMinIsBlack, 1).Chunk("x");
    const quint32 chain = 4096;
    QByteArray file = maker.Page(8, chain);
    file = (maker.Head(maker.DirectoryAt()) + file).leftJustified(chain, '\0');
    for (quint32 i = 0; i < kCount; ++i) {
        const quint32 next = i + 1 < kCount ? chain + (i + 1) * kPageBytes : 0;
        file += maker.Two(1) + maker.Two(254) + maker.Two(4) + maker.Four(1) + maker.Four(0)
            + maker.Four(next);
    }
    EXPECT_EQ(Probe(Write(QStringLiteral("many.tif"), file), "TIFF").pages, limits::kMaxPages);
}

} // namespace quillane::test
