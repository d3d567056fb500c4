#include "dicom_maker.h"
#include "encode_pictures.h"
#include "imaging/encode.h"
#include "worker_support.h"

namespace quillane::test {

namespace {

constexpr char kCodec[] = "DICOM";

struct VariantRow {
    qint16 format;
    int bits, quality;
    double psnr; ///< decibels that come back at least; 99 for equal pixels
    const char* syntax;
};
constexpr VariantRow kVariants[] = {
    {89, 8, 2, 99, "LittleEndianExplicit"},
    {89, 16, 2, 99, "LittleEndianExplicit"},
    {90, 24, 2, 99, "LittleEndianExplicit"},
    {125, 8, 2, 99, "RLELossless"},
    {125, 16, 2, 99, "RLELossless"},
    {126, 24, 2, 99, "RLELossless"},
    {127, 8, 2, 99, "JPEGLossless:Non-hierarchical-1stOrderPrediction"},
    {127, 16, 2, 99, "JPEGLossless:Non-hierarchical-1stOrderPrediction"},
    {128, 24, 2, 99, "JPEGLossless:Non-hierarchical-1stOrderPrediction"},
    {127, 8, 30, 40, "JPEGBaseline"},
    {127, 16, 30, 99, "JPEGLossless:Non-hierarchical-1stOrderPrediction"},
    {128, 24, 30, 38, "JPEGBaseline"},
};

class DicomEncode : public WorkerTest {
protected:
    static EncodeRequest Wish(qint16 format, qint32 bits, qint32 quality = kBestQuality)
    {
        EncodeRequest request;
        request.format = format;
        request.bits = bits;
        request.quality = quality;
        return request;
    }
    static Bitmap Picture(int bits, int width = 67, int height = 45)
    {
        return WavePicture(bits, width, height, bits == 8);
    }
    QString EncodeTo(const Bitmap& picture, const EncodeRequest& request)
    {
        return Write(QStringLiteral("out.dic"), worker::Encode(picture, request, kCodec));
    }
    QString RewriteTo(const QString& path, const Bitmap& picture, const EncodeRequest& request,
                      std::span<const CommentChange> changes)
    {
        FileSource original(path);
        return Write(QStringLiteral("new.dic"),
                     worker::Rewrite(original, picture, request, changes, kCodec));
    }
    /// Every element of the data set as another program tells it, one a line; of pixels and other
    /// long values all bytes.
    static QList<QByteArray> Dump(const QString& path)
    {
        const std::optional<QByteArray> told =
            RunTool(QStringLiteral("dcmdump"), {QStringLiteral("-q"), QStringLiteral("+L"), path});
        EXPECT_TRUE(told.has_value());
        QList<QByteArray> lines;
        for (const QByteArray& line : told.value_or(QByteArray()).split('\n')) {
            // Remarks, the file's own head, and how lengths are told are not the data.
            if (!line.isEmpty() && !line.startsWith('#') && !line.startsWith("(0002,")
                && line.mid(5, 6) != ",0000)") {
                const qsizetype remark = line.lastIndexOf('#');
                QByteArray element = line.left(remark).trimmed();
                element.replace("with explicit length", "").replace("with undefined length", "");
                lines.append(element);
            }
        }
        return lines;
    }
    static std::string Without(QList<QByteArray> lines, const QList<QByteArray>& tags)
    {
        lines.removeIf([&](const QByteArray& line) {
            return std::any_of(tags.begin(), tags.end(), [&](const QByteArray& tag) {
                return line.startsWith(tag) || line.startsWith("(fffe,e0dd)")
                    || line.startsWith("(fffe,e00d)");
            });
        });
        return lines.join('\n').toStdString();
    }
};

} // namespace

TEST_F(DicomEncode, EveryCodeAndDepthComesBackAsItWasAskedFor)
{
    for (const VariantRow& row : kVariants) {
        SCOPED_TRACE(QStringLiteral("code %1, %2 bits, quality %3")
                         .arg(row.format)
                         .arg(row.bits)
                         .arg(row.quality)
                         .toStdString());
        const Bitmap picture = Picture(row.bits);
        const QString path = EncodeTo(picture, Wish(row.format, row.bits, row.quality));
        const ImageFacts facts = Probe(path, kCodec);
        EXPECT_EQ(facts.format, row.format);
        EXPECT_EQ(facts.bits, row.bits);
        const Bitmap back = Decode(path, kCodec);
        EXPECT_TRUE(back.IsExact());
        EXPECT_EQ(back.Model(), picture.Model());
        ASSERT_EQ(back.Pixels().format(), picture.Pixels().format());
        if (row.psnr == 99) {
            EXPECT_TRUE(back.Pixels() == picture.Pixels());
        } else {
            EXPECT_GE(Psnr(back.Pixels(), picture.Pixels()), row.psnr);
        }
        const std::optional<QByteArray> told =
            RunTool(QStringLiteral("dcmdump"), {QStringLiteral("-q"), path});
        ASSERT_TRUE(told.has_value());
        EXPECT_TRUE(told->contains(QByteArray("(0002,0010) UI =") + row.syntax))
            << told->constData();
    }
}

TEST_F(DicomEncode, LossyGreyKeepsItsValuesWhereTheyAre)
{
    // Dark and of little contrast: a writer that stretches values would show.
    QImage image(64, 48, QImage::Format_Grayscale8);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            image.scanLine(y)[x] = uchar(40 + x / 8 + y / 8);
        }
    }
    const Bitmap back =
        Decode(EncodeTo(Bitmap(image, ColourModel::Grey, 8), Wish(127, 8, 20)), kCodec);
    EXPECT_LE(LargestDifference(AsRgb(back), image.convertToFormat(QImage::Format_RGB888)), 3);
}

TEST_F(DicomEncode, WithoutADepthThePicturesOwnIsTakenAndPaletteAndColoursBecomeWhatTheCodeSays)
{
    EXPECT_EQ(Probe(EncodeTo(Picture(16), Wish(89, 0)), kCodec).bits, 16);
    EXPECT_EQ(Probe(EncodeTo(Picture(8), Wish(89, 0)), kCodec).bits, 8);
    EXPECT_EQ(Probe(EncodeTo(Picture(24), Wish(90, 0)), kCodec).bits, 24);
    EXPECT_EQ(Probe(EncodeTo(WavePicture(1, 9, 9), Wish(89, 8)), kCodec).bits, 8);
    const Bitmap palette = WavePicture(8, 30, 20);
    EXPECT_EQ(
        LargestDifference(AsRgb(Decode(EncodeTo(palette, Wish(90, 24)), kCodec)), AsRgb(palette)),
        0);
}

TEST_F(DicomEncode, OddSizesAndOnePixelComeBack)
{
    for (const QSize size : {QSize(1, 1), QSize(3, 5), QSize(2, 1)}) {
        for (const VariantRow& row : kVariants) {
            SCOPED_TRACE(row.format * 100 + row.bits);
            const Bitmap picture = Picture(row.bits, size.width(), size.height());
            const Bitmap back =
                Decode(EncodeTo(picture, Wish(row.format, row.bits, row.quality)), kCodec);
            EXPECT_EQ(back.Pixels().size(), size);
            if (row.psnr == 99) {
                EXPECT_TRUE(back.Pixels() == picture.Pixels());
            }
        }
    }
}

TEST_F(DicomEncode, WhatCannotBeWrittenIsRefusedInWords)
{
    const auto words = [](qint16 format, int bits) {
        const Failure failure =
            FailureOf([&] { worker::Encode(Picture(24), Wish(format, bits), kCodec); });
        EXPECT_EQ(failure.Number(), kFailureGeneral);
        return failure.Description();
    };
    EXPECT_TRUE(words(90, 8).contains(QStringLiteral("8 bits")));
    EXPECT_TRUE(words(89, 24).contains(QStringLiteral("24 bits")));
    EXPECT_TRUE(words(126, 48).contains(QStringLiteral("48 bits")));
    EXPECT_TRUE(words(3, 24).contains(QStringLiteral("format 3")));
}

TEST_F(DicomEncode, EverySlotIsWrittenAndReadBack)
{
    const QString path = EncodeTo(Picture(24), Wish(90, 24));
    const CommentChange changes[] = {
        {3, CommentValue(QStringLiteral("Ein Bild über 日本\r\nzweite Zeile"))},
        {10, CommentValue(QStringLiteral("Müller^Jörg"))},
        {11, CommentValue(QStringLiteral("4711"))},
        {12, CommentValue(QStringLiteral("19700131"))},
        {13, CommentValue(QStringLiteral("M"))},
        {14, CommentValue(QStringLiteral("1.2.3.4"))},
        {15, CommentValue(QStringLiteral("20240229"))},
        {16, CommentValue(QStringLiteral("235959"))},
        {17, CommentValue(QStringLiteral("Doe^Jane"))},
        {18, CommentValue(QStringLiteral("CT"))},
        {19, CommentValue(QStringLiteral("1.2.3.4.5"))},
        {20, CommentValue(QStringLiteral("42"))},
        {1, CommentValue(QStringLiteral("has no element"))}};
    const CommentSet set = Comments(RewriteTo(path, Bitmap(), {}, changes), kCodec);
    for (const CommentChange& change : changes) {
        if (change.slot == 1) {
            EXPECT_TRUE(set.At(1).IsEmpty());
        } else {
            EXPECT_EQ(set.At(change.slot).Text(), change.value.Text()) << change.slot;
        }
    }
    const CommentChange away[] = {{3, {}}, {10, {}}, {20, {}}};
    const CommentSet less = Comments(
        RewriteTo(mFolder.filePath(QStringLiteral("new.dic")), Bitmap(), {}, away), kCodec);
    EXPECT_TRUE(less.At(3).IsEmpty());
    EXPECT_TRUE(less.At(10).IsEmpty());
    EXPECT_TRUE(less.At(20).IsEmpty());
    EXPECT_EQ(less.At(11).Text(), QStringLiteral("4711"));
}

TEST_F(DicomEncode, TextsThatAnElementCannotHoldAreRefusedByName)
{
    const QString path = EncodeTo(Picture(8), Wish(89, 8));
    const auto words = [&](qint16 slot, const QString& text) {
        const CommentChange change[] = {{slot, CommentValue(text)}};
        const Failure failure = FailureOf([&] { RewriteTo(path, Bitmap(), {}, change); });
        EXPECT_EQ(failure.Number(), kFailureGeneral);
        return failure.Description();
    };
    EXPECT_TRUE(words(3, QString(10'241, u'x')).contains(QStringLiteral("ImageComments")));
    EXPECT_TRUE(words(11, QString(65, u'x')).contains(QStringLiteral("PatientID")));
    EXPECT_TRUE(words(12, QStringLiteral("1970-01-31")).contains(QStringLiteral("8")));
    EXPECT_TRUE(words(13, QStringLiteral("ü")).contains(QStringLiteral("PatientSex")));
}

TEST_F(DicomEncode, OtherCharacterSetsGoOnWhereTheyCanAndBecomeUtf8WhereTheyMust)
{
    DicomMaker maker;
    maker.Text(0x00080005, "CS", "ISO_IR 100")
        .Text(0x00100010, "PN", "M\xfcller")
        .Text(0x00100020, "LO", "plain")
        .Picture(2, 2, 1, "MONOCHROME2", 8, 8, "abcd");
    const QString path = Write(QStringLiteral("latin.dic"), maker.File());
    const CommentChange latin[] = {{3, CommentValue(QStringLiteral("Größe"))}};
    const QString kept = RewriteTo(path, Bitmap(), {}, latin);
    EXPECT_TRUE(ReadWholeFile(kept, 100'000)
                    .contains("Gr\xf6\xdf"
                              "e"));
    EXPECT_EQ(Comments(kept, kCodec).At(10).Text(), QStringLiteral("Müller"));

    const CommentChange wide[] = {{3, CommentValue(QStringLiteral("日本"))}};
    const QString changed = RewriteTo(path, Bitmap(), {}, wide);
    const QByteArray bytes = ReadWholeFile(changed, 100'000);
    EXPECT_TRUE(bytes.contains("ISO_IR 192"));
    EXPECT_TRUE(bytes.contains("M\xc3\xbcller"));
    const CommentSet set = Comments(changed, kCodec);
    EXPECT_EQ(set.At(3).Text(), QStringLiteral("日本"));
    EXPECT_EQ(set.At(10).Text(), QStringLiteral("Müller"));
    EXPECT_EQ(set.At(11).Text(), QStringLiteral("plain"));
}

TEST_F(DicomEncode, APictureOfSeveralFramesIsNotReplacedInPart)
{
    DicomMaker maker;
    maker.Text(0x00280008, "IS", "2").Picture(2, 2, 1, "MONOCHROME2", 8, 8, "abcdefgh");
    const QString path = Write(QStringLiteral("frames.dic"), maker.File());
    const Failure failure = FailureOf([&] { RewriteTo(path, Picture(8), Wish(89, 8), {}); });
    EXPECT_EQ(failure.Number(), kFailureGeneral);
    EXPECT_TRUE(failure.Description().contains(QStringLiteral("2 pictures")));
    const CommentChange change[] = {{3, CommentValue(QStringLiteral("both stay"))}};
    const QString now = RewriteTo(path, Bitmap(), {}, change);
    EXPECT_EQ(Probe(now, kCodec).pages, 2);
    DecodeRequest second;
    second.page = 1;
    EXPECT_EQ(Decode(now, kCodec, second).Pixels().constScanLine(0)[0], 'e');
}

TEST_F(DicomEncode, AnotherCommentLeavesEverythingElseOfRealFilesAsItIs)
{
    const std::vector<Sample> samples = Samples(QStringLiteral("dicom/"), {QStringLiteral("dic")});
    std::printf("%zu DICOM samples\n", samples.size());
    EXPECT_EQ(samples.empty(), !HasSamples());
    for (const Sample& sample : samples) {
        SCOPED_TRACE(sample.file.toStdString());
        const CommentChange change[] = {{3, CommentValue(QStringLiteral("another comment"))}};
        const QString now = RewriteTo(sample.path, Bitmap(), {}, change);
        const QList<QByteArray> changed = {"(0020,4000)"};
        EXPECT_EQ(Without(Dump(now), changed), Without(Dump(sample.path), changed));
        EXPECT_EQ(Comments(now, kCodec).At(3).Text(), QStringLiteral("another comment"));
        const Bitmap before = Decode(sample.path, kCodec), after = Decode(now, kCodec);
        EXPECT_TRUE(before.Pixels() == after.Pixels());
        EXPECT_EQ(Probe(now, kCodec).format, Probe(sample.path, kCodec).format);
    }
}

TEST_F(DicomEncode, NewPixelsLeaveEveryElementOfRealFilesThatDoesNotDescribeThem)
{
    const std::vector<Sample> samples = Samples(QStringLiteral("dicom/"), {QStringLiteral("dic")});
    std::printf("%zu DICOM samples\n", samples.size());
    EXPECT_EQ(samples.empty(), !HasSamples());
    for (const Sample& sample : samples) {
        SCOPED_TRACE(sample.file.toStdString());
        const ImageFacts facts = Probe(sample.path, kCodec);
        if (facts.pages > 1) {
            continue;
        }
        const Bitmap picture = Decode(sample.path, kCodec);
        const QString now = RewriteTo(sample.path, picture, Wish(facts.format, 0), {});
        const QList<QByteArray> describing = {"(0028,", "(7fe0,", "(0088,0200)", "(2050,",
                                              "(fffe,e000) pi"};
        EXPECT_EQ(Without(Dump(now), describing), Without(Dump(sample.path), describing));
        const Bitmap after = Decode(now, kCodec);
        EXPECT_TRUE(after.Pixels() == picture.Pixels());
        EXPECT_TRUE(after.IsExact());
        EXPECT_EQ(Probe(now, kCodec).format, facts.format);
    }
}

TEST_F(DicomEncode, FiftyCommentsInARowDoNotLetAFileGrow)
{
    QString path = EncodeTo(Picture(24), Wish(126, 24));
    qint64 first = 0;
    for (int i = 0; i < 50; ++i) {
        const CommentChange change[] = {
            {3, CommentValue(QStringLiteral("comment number %1").arg(i, 2, 10, QLatin1Char('0')))}};
        path = RewriteTo(path, Bitmap(), {}, change);
        const qint64 size = StatPath(path).size;
        first = i == 0 ? size : first;
        ASSERT_EQ(size, first) << i;
    }
    EXPECT_TRUE(Decode(path, kCodec).Pixels() == Picture(24).Pixels());
}

TEST_F(DicomEncode, TwelveMegapixelsStayUnderTheMemoryLimit)
{
    for (const qint16 format : {qint16(90), qint16(126), qint16(128)}) {
        const Bitmap picture = Picture(24, 4000, 3000);
        EXPECT_EQ(Probe(EncodeTo(picture, Wish(format, 24)), kCodec).width, 4000);
    }
    EXPECT_EQ(Probe(EncodeTo(Picture(16, 4000, 3000), Wish(127, 16)), kCodec).width, 4000);
}

} // namespace quillane::test
