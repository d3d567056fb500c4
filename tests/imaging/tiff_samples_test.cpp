// TIFF files of the wild, and those that independent tools write.
#include "tiff_maker.h"
#include "worker_support.h"
#include <iostream>

namespace quillane::test {

namespace {

class TiffSamples : public WorkerTest {
protected:
    /// A picture of 8-bit RGB or grey or of 1 bit that compresses, but not to nothing.
    QString WriteSource(int bits, int samples)
    {
        constexpr int kWidth = 203, kHeight = 61;
        TiffMaker maker;
        maker.Picture(kWidth, kHeight, QList<quint32>(samples, quint32(bits)), samples == 3 ? 2 : 1,
                      kHeight);
        QByteArray bytes;
        const int rowBytes = (kWidth * bits * samples + 7) / 8;
        for (int y = 0; y < kHeight; ++y) {
            for (int i = 0; i < rowBytes; ++i) {
                bytes.append(char(bits == 1 ? (i / 3 + y / 5) % 2 * 0xff : i * y / 50 + i % 7));
            }
        }
        maker.Chunk(bytes);
        return Write(QStringLiteral("source-%1-%2.tif").arg(bits).arg(samples), maker.File());
    }
};

/// The first page as an independent program reads it.
QImage ReadElsewhere(const QString& path)
{
    const std::optional<QByteArray> bytes =
        RunTool(QStringLiteral("gm"),
                {QStringLiteral("convert"), path + QStringLiteral("[0]"), QStringLiteral("-depth"),
                 QStringLiteral("8"), QStringLiteral("+matte"), QStringLiteral("ppm:-")});
    return bytes ? QImage::fromData(*bytes, "PPM").convertToFormat(QImage::Format_RGB888)
                 : QImage();
}

} // namespace

TEST_F(TiffSamples, FactsEqualTheManifest)
{
    int seen = 0;
    for (const char* folder : {"formats/", "exif/"}) {
        for (const Sample& sample : Samples(QLatin1String(folder), {QStringLiteral("tif")})) {
            SCOPED_TRACE(sample.file.toStdString());
            const ImageFacts facts = Probe(sample.path, "TIFF");
            EXPECT_EQ(facts.width, sample.width);
            EXPECT_EQ(facts.height, sample.height);
            EXPECT_EQ(facts.bits, sample.bits);
            EXPECT_EQ(facts.pages, sample.frames);
            EXPECT_EQ(facts.sizeDisk, StatPath(sample.path).size);
            ++seen;
        }
    }
    std::cout << seen << " TIFF samples" << std::endl;
    EXPECT_EQ(seen > 0, HasSamples());
}

TEST_F(TiffSamples, PixelsEqualThoseOfAnotherReader)
{
    if (!HasTool(QStringLiteral("gm"))) {
        std::cout << "gm is not installed: nothing to compare with" << std::endl;
        return;
    }
    int seen = 0;
    for (const char* folder : {"formats/", "exif/"}) {
        for (const Sample& sample : Samples(QLatin1String(folder), {QStringLiteral("tif")})) {
            SCOPED_TRACE(sample.file.toStdString());
            const Bitmap bitmap = Decode(sample.path, "TIFF");
            EXPECT_FALSE(bitmap.IsPartial());
            if (bitmap.Model() == ColourModel::Cmyk) {
                continue; // how inks become RGB is not the decoder's matter
            }
            EXPECT_LE(LargestDifference(AsRgb(bitmap), ReadElsewhere(sample.path)), 2);
            ++seen;
        }
    }
    std::cout << seen << " TIFF samples" << std::endl;
    EXPECT_EQ(seen > 0, HasSamples());
}

TEST_F(TiffSamples, EveryCompressionThatAnotherProgramWritesIsRead)
{
    if (!HasTool(QStringLiteral("tiffcp"))) {
        std::cout << "tiffcp is not installed: nothing to read" << std::endl;
        return;
    }
    struct Row {
        const char* options;
        int bits, samples, code, tolerance;
    };
    const Row rows[] = {
        {"-c none", 8, 3, 3, 0},
        {"-c lzw", 8, 3, 17, 0},
        {"-c lzw:2", 8, 3, 17, 0},
        {"-c lzw:2", 8, 1, 17, 0},
        {"-c zip", 8, 3, 3, 0},
        {"-c zip:2", 8, 3, 3, 0},
        {"-c packbits", 8, 3, 87, 0},
        {"-c packbits", 1, 1, 87, 0},
        {"-c g3", 1, 1, 27, 0},
        {"-c g3:2d", 1, 1, 28, 0},
        {"-c g3:fill", 1, 1, 27, 0},
        {"-c g4", 1, 1, 29, 0},
        {"-c jbig", 1, 1, 139, 0},
        {"-c lzma", 8, 3, 3, 0},
        {"-c zstd", 8, 3, 3, 0},
        {"-c jpeg:r:100 -r 16", 8, 3, 11, 24},
        {"-c jpeg:100 -r 16", 8, 1, 11, 8},
        {"-c lzw -p separate", 8, 3, 17, 0},
        {"-c zip -t -w 64 -l 32", 8, 3, 3, 0},
        {"-c lzw -t -w 32 -l 16", 1, 1, 17, 0},
        {"-c zip -p separate -t -w 16 -l 48", 8, 3, 3, 0},
        {"-c lzw -B", 8, 3, 17, 0},
        {"-c none -L -r 7", 8, 3, 3, 0},
        {"-c zip -8", 8, 3, 3, 0},
        {"-c g4 -r 8 -f lsb2msb", 1, 1, 29, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.options);
        const QString source = WriteSource(row.bits, row.samples);
        const QString target = mFolder.filePath(QStringLiteral("target.tif"));
        const QStringList options =
            QString::fromLatin1(row.options).split(u' ', Qt::SkipEmptyParts);
        ASSERT_TRUE(RunTool(QStringLiteral("tiffcp"), options + QStringList{source, target}));
        if (row.code >= 0) {
            EXPECT_EQ(Probe(target, "TIFF").format, row.code);
        }
        Bitmap bitmap;
        ASSERT_EQ(FailureOf([&] { bitmap = Decode(target, "TIFF"); }).Number(), 0);
        EXPECT_FALSE(bitmap.IsPartial());
        EXPECT_LE(LargestDifference(AsRgb(bitmap), AsRgb(Decode(source, "TIFF"))), row.tolerance);
    }
}

TEST_F(TiffSamples, EveryTruncationIsRefusedOrPartialAndEndsNoProcess)
{
    constexpr int kPlaces = 20;
    int seen = 0, partial = 0;
    for (const char* folder : {"formats/", "exif/"}) {
        for (const Sample& sample : Samples(QLatin1String(folder), {QStringLiteral("tif")})) {
            const QByteArray whole = ReadWholeFile(sample.path, 64 << 20);
            for (int place = 0; place < kPlaces; ++place) {
                SCOPED_TRACE(sample.file.toStdString() + " " + std::to_string(place));
                const QString path =
                    Write(QStringLiteral("cut.tif"), whole.first(whole.size() * place / kPlaces));
                const qint32 probe = FailureOf([&] { Probe(path, "TIFF"); }).Number();
                const qint32 decode =
                    FailureOf([&] { partial += Decode(path, "TIFF").IsPartial(); }).Number();
                for (const qint32 number : {probe, decode}) {
                    EXPECT_TRUE(number == 0 || number == kFailureUnreadable
                                || number == kFailureLimit)
                        << number;
                }
                ++seen;
            }
        }
    }
    std::cout << seen << " truncated files, " << partial << " of them in part" << std::endl;
    EXPECT_EQ(seen > 0, HasSamples());
    EXPECT_EQ(partial > 0, HasSamples());
}

TEST_F(TiffSamples, HostileFilesAreRefusedOrReadInPart)
{
    struct Row {
        const char* file;
        qint32 number;
    };
    const Row rows[] = {{"hostile/crash-0da013a1.tif", 0},
                        {"hostile/crash-86214e58.tif", kFailureUnreadable},
                        {"hostile/oom-225817ca.tif", kFailureUnreadable},
                        {"hostile/libtiff_segfault.tif", kFailureUnreadable},
                        {"hostile/ifd_loop.tif", 0}};
    int seen = 0;
    for (const Sample& sample : Samples(QStringLiteral("hostile/"), {QStringLiteral("tif")})) {
        const auto row = std::find_if(std::begin(rows), std::end(rows), [&](const Row& one) {
            return sample.file == QLatin1String(one.file);
        });
        ASSERT_NE(row, std::end(rows)) << sample.file.toStdString();
        const Failure failure = FailureOf([&] { Decode(sample.path, "TIFF"); });
        EXPECT_EQ(failure.Number(), row->number) << row->file;
        EXPECT_EQ(failure.Description().contains(QStringLiteral("TIFF")), row->number != 0);
        ++seen;
    }
    std::cout << seen << " hostile TIFF files" << std::endl;
    EXPECT_EQ(seen > 0, HasSamples());
}

TEST_F(TiffSamples, DamagedBytesNeverEndAProcess)
{
    quint32 state = 12345;
    const auto random = [&state] { return state = state * 1664525u + 1013904223u; };
    for (const auto& [bits, samples] : {std::pair(8, 3), std::pair(1, 1)}) {
        const QString source = WriteSource(bits, samples);
        const QByteArray whole = ReadWholeFile(source, 1 << 20);
        constexpr int kRounds = 150;
        for (int round = 0; round < kRounds; ++round) {
            QByteArray damaged = whole;
            for (int i = 0; i < 4; ++i) {
                // Most of the damage goes where the directory lies: at the end.
                const qsizetype span =
                    i < 3 ? std::min<qsizetype>(200, damaged.size()) : damaged.size();
                damaged[damaged.size() - 1 - qsizetype(random() >> 8) % span] =
                    char(random() >> 24);
            }
            const QString path = Write(QStringLiteral("damaged.tif"), damaged);
            const qint32 number = FailureOf([&] { Decode(path, "TIFF"); }).Number();
            EXPECT_NE(number, kFailureWorker) << "round " << round;
        }
    }
}

} // namespace quillane::test
