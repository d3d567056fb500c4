// DICOM files of the wild, against an independent reader.
#include "worker_support.h"
#include <iostream>

namespace quillane::test {

namespace {

class DicomSamples : public WorkerTest { };

/// The first frame as another program shows it: with the file's window, else from its darkest
/// to its brightest.
QImage ShownElsewhere(const QString& path, bool jpeg)
{
    const QString program = jpeg ? QStringLiteral("dcmj2pnm") : QStringLiteral("dcm2pnm");
    std::optional<QByteArray> bytes =
        RunTool(program, {QStringLiteral("-q"), QStringLiteral("+Wi"), QStringLiteral("1"), path});
    if (!bytes || bytes->isEmpty()) {
        bytes = RunTool(program, {QStringLiteral("-q"), QStringLiteral("+Wm"), path});
    }
    return bytes ? QImage::fromData(*bytes, "PPM").convertToFormat(QImage::Format_RGB888)
                 : QImage();
}

struct CodeRow {
    const char* file;
    int code;
    const char* words;
};
constexpr CodeRow kCodeRows[] = {
    {"dicom/CT_small.dic", 89, "Uncompressed"},
    {"dicom/MR_small_RLE.dic", 125, "RLE"},
    {"dicom/MR_small_implicit.dic", 89, "Uncompressed"},
    {"dicom/colour_30_frames.dic", 128, "JPEG"},
    {"dicom/colour_jpeg_baseline.dic", 128, "JPEG"},
    {"dicom/colour_jpeg_lossless.dic", 128, "JPEG lossless"},
    {"dicom/grey_jpeg_12bit.dic", 127, "JPEG extended"},
    {"dicom/rgb_big_endian.dic", 90, "Uncompressed"},
    {"dicom/rgb_rle.dic", 126, "RLE"},
};

} // namespace

TEST_F(DicomSamples, FactsEqualTheManifest)
{
    int seen = 0;
    for (const Sample& sample : Samples(QStringLiteral("dicom/"), {QStringLiteral("dic")})) {
        SCOPED_TRACE(sample.file.toStdString());
        const ImageFacts facts = Probe(sample.path, "DICOM");
        EXPECT_EQ(facts.width, sample.width);
        EXPECT_EQ(facts.height, sample.height);
        EXPECT_EQ(facts.bits, sample.bits);
        EXPECT_EQ(facts.pages, sample.frames);
        for (const CodeRow& row : kCodeRows) {
            if (sample.file == QLatin1String(row.file)) {
                EXPECT_EQ(facts.format, row.code);
                EXPECT_EQ(facts.compression, QString::fromLatin1(row.words));
                ++seen;
            }
        }
    }
    std::cout << seen << " DICOM samples" << std::endl;
    EXPECT_EQ(seen, HasSamples() ? 9 : 0);
}

TEST_F(DicomSamples, PixelsEqualThoseOfAnotherReader)
{
    if (!HasTool(QStringLiteral("dcm2pnm"))) {
        std::cout << "dcm2pnm is not installed: nothing to compare with" << std::endl;
        return;
    }
    int seen = 0;
    for (const Sample& sample : Samples(QStringLiteral("dicom/"), {QStringLiteral("dic")})) {
        SCOPED_TRACE(sample.file.toStdString());
        const bool jpeg = sample.file.contains(QStringLiteral("jpeg"))
            || sample.file.contains(QStringLiteral("frames"));
        const Bitmap bitmap = Decode(sample.path, "DICOM");
        EXPECT_FALSE(bitmap.IsPartial());
        EXPECT_LE(LargestDifference(AsRgb(bitmap), ShownElsewhere(sample.path, jpeg)), 1);
        ++seen;
    }
    std::cout << seen << " DICOM samples" << std::endl;
    EXPECT_EQ(seen > 0, HasSamples());
}

TEST_F(DicomSamples, EveryTruncationIsRefusedOrPartialAndEndsNoProcess)
{
    constexpr int kPlaces = 20;
    int seen = 0, partial = 0;
    for (const Sample& sample : Samples(QStringLiteral("dicom/"), {QStringLiteral("dic")})) {
        const QByteArray whole = ReadWholeFile(sample.path, 64 << 20);
        for (int place = 0; place < kPlaces; ++place) {
            SCOPED_TRACE(sample.file.toStdString() + " " + std::to_string(place));
            const QString path =
                Write(QStringLiteral("cut.dic"), whole.first(whole.size() * place / kPlaces));
            const qint32 probe = FailureOf([&] { Probe(path, "DICOM"); }).Number();
            const qint32 decode =
                FailureOf([&] { partial += Decode(path, "DICOM").IsPartial(); }).Number();
            const qint32 comments = FailureOf([&] { Comments(path, "DICOM"); }).Number();
            for (const qint32 number : {probe, decode, comments}) {
                EXPECT_TRUE(number == 0 || number == kFailureUnreadable || number == kFailureLimit)
                    << number;
            }
            ++seen;
        }
    }
    std::cout << seen << " truncated files, " << partial << " of them in part" << std::endl;
    EXPECT_EQ(seen > 0, HasSamples());
    EXPECT_EQ(partial > 0, HasSamples());
}

TEST_F(DicomSamples, TheHostileFileIsReadInPart)
{
    for (const Sample& sample : Samples(QStringLiteral("hostile/"), {QStringLiteral("dic")})) {
        EXPECT_TRUE(Decode(sample.path, "DICOM").IsPartial());
        EXPECT_EQ(Comments(sample.path, "DICOM").At(11).Text(), QStringLiteral("4MR1"));
    }
}

TEST_F(DicomSamples, DamagedBytesNeverEndAProcess)
{
    quint32 state = 54321;
    const auto random = [&state] { return state = state * 1664525u + 1013904223u; };
    constexpr int kRounds = 25;
    for (const Sample& sample : Samples(QStringLiteral("dicom/"), {QStringLiteral("dic")})) {
        const QByteArray whole = ReadWholeFile(sample.path, 64 << 20);
        for (int round = 0; round < kRounds; ++round) {
            SCOPED_TRACE(sample.file.toStdString() + " " + std::to_string(round));
            QByteArray damaged = whole;
            for (int i = 0; i < 6; ++i) {
                const qsizetype span = std::min<qsizetype>(i < 3 ? 2500 : 1 << 20, damaged.size());
                damaged[qsizetype(random() >> 8) % span] = char(random() >> 24);
            }
            const QString path = Write(QStringLiteral("damaged.dic"), damaged);
            EXPECT_NE(FailureOf([&] { Decode(path, "DICOM"); }).Number(), kFailureWorker);
            EXPECT_NE(FailureOf([&] { Comments(path, "DICOM"); }).Number(), kFailureWorker);
        }
    }
}

} // namespace quillane::test
