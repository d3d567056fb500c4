#include "imaging/limits.h"
#include "imaging/worker/protocol.h"
#include "worker_support.h"
#include <atomic>
#include <csignal>
#include <cstring>
#include <thread>

namespace quillane::test {

namespace {

class WorkerEncode : public WorkerTest {
protected:
    WorkerEncode() : WorkerTest(kBadWorker, 2) { }
    static Bitmap Picture(int width, int height, QImage::Format format = QImage::Format_RGB32,
                          ColourModel model = ColourModel::Rgb)
    {
        QImage image(width, height, format);
        for (int y = 0; y < height; ++y) {
            uchar* row = image.scanLine(y);
            for (qsizetype i = 0; i < image.bytesPerLine(); ++i) {
                row[i] = uchar(i * 31 + y * 7);
            }
        }
        return Bitmap(std::move(image), model, 24);
    }
    /// Encodes with the codec that gives back what it got; the first line, the rest in `rest`.
    static QByteArray Echo(const Bitmap& picture, const EncodeRequest& request, QByteArray& rest)
    {
        const QByteArray file = worker::Encode(picture, request, "ECHO");
        const qsizetype end = file.indexOf('\n');
        rest = file.mid(end + 1);
        return file.left(end);
    }
    static void ExpectRows(const QByteArray& rows, const QImage& image)
    {
        const qsizetype rowBytes = (qsizetype(image.width()) * image.depth() + 31) / 32 * 4;
        ASSERT_EQ(rows.size(), rowBytes * image.height());
        for (int y = 0; y < image.height(); ++y) {
            ASSERT_EQ(std::memcmp(rows.constData() + y * rowBytes, image.constScanLine(y),
                                  size_t(rowBytes)),
                      0)
                << "row " << y;
        }
    }
    static void ExpectGoesOn()
    {
        const Bitmap picture = Picture(33, 21);
        QByteArray rows;
        Echo(picture, {}, rows);
        ExpectRows(rows, picture.Pixels());
    }
    static Failure Fails(const char* codec, const Bitmap& picture = Picture(20, 20))
    {
        return FailureOf([&] { worker::Encode(picture, {}, codec); });
    }
};

} // namespace

TEST_F(WorkerEncode, EveryRowAndEveryWishArrives)
{
    EncodeRequest request;
    request.format = 85;
    request.bits = 32;
    request.quality = 77;
    request.xResolution = 300;
    request.yResolution = 301;
    request.layout = {2, 1, 50'000, true};
    request.icc = QByteArray(70'001, 'p');
    const Bitmap picture = Picture(31, 17);
    QByteArray rest;
    EXPECT_EQ(Echo(picture, request, rest), "31 17 5 24 0 85 32 77 300 301 2 1 50000 1 70001");
    EXPECT_EQ(rest.left(request.icc.size()), request.icc);
    ExpectRows(rest.mid(request.icc.size()), picture.Pixels());
}

TEST_F(WorkerEncode, PicturesLargerThanTheWindowArriveWhole)
{
    for (const QSize size : {QSize(1, 1), QSize(3000, 2000), QSize(65'500, 3), QSize(1, 65'500),
                             QSize(1024, 1024), QSize(1024, 1025), QSize(65'500, 131)}) {
        const Bitmap picture = Picture(size.width(), size.height());
        QByteArray rows;
        Echo(picture, {}, rows);
        ExpectRows(rows, picture.Pixels());
    }
}

TEST_F(WorkerEncode, EveryLayoutArrivesAsItIs)
{
    struct Row {
        QImage::Format format;
        ColourModel model;
        worker::PixelLayout layout;
    };
    for (const Row& row :
         {Row{QImage::Format_Grayscale8, ColourModel::Grey, worker::PixelLayout::Grey8},
          Row{QImage::Format_Grayscale16, ColourModel::Grey, worker::PixelLayout::Grey16},
          Row{QImage::Format_RGB32, ColourModel::Rgb, worker::PixelLayout::Rgb32},
          Row{QImage::Format_ARGB32, ColourModel::Rgb, worker::PixelLayout::Argb32},
          Row{QImage::Format_RGBX64, ColourModel::Rgb, worker::PixelLayout::Rgbx64},
          Row{QImage::Format_RGBA64, ColourModel::Rgb, worker::PixelLayout::Rgba64},
          Row{QImage::Format_RGBA8888, ColourModel::Cmyk, worker::PixelLayout::Cmyk32}}) {
        const Bitmap picture = Picture(13, 9, row.format, row.model);
        QByteArray rows;
        EXPECT_EQ(Echo(picture, {}, rows).split(' ')[2], QByteArray::number(int(row.layout)));
        ExpectRows(rows, picture.Pixels());
    }
}

TEST_F(WorkerEncode, BlackAndWhiteIsBroughtToZeroForBlackAndOtherPairsToAPalette)
{
    QImage image = Picture(9, 2, QImage::Format_Mono, ColourModel::BlackWhite).Pixels();
    image.setColorTable({0xff000000u, 0xffffffffu});
    QByteArray plain, inverted, coloured;
    EXPECT_EQ(Echo(Bitmap(image, ColourModel::BlackWhite, 1), {}, plain).split(' ')[2], "1");
    image.setColorTable({0xffffffffu, 0xff000000u});
    EXPECT_EQ(Echo(Bitmap(image, ColourModel::BlackWhite, 1), {}, inverted).split(' ')[2], "1");
    ASSERT_EQ(plain.size(), inverted.size());
    for (qsizetype i = 0; i < plain.size(); ++i) {
        EXPECT_EQ(uchar(plain[i]), uchar(~inverted[i]));
    }
    image.setColorTable({0xff0000ffu, 0xffffff00u});
    const QByteArray head = Echo(Bitmap(image, ColourModel::BlackWhite, 1), {}, coloured);
    EXPECT_EQ(head.split(' ')[2], "2");
    EXPECT_EQ(head.split(' ')[4], "2");
}

TEST_F(WorkerEncode, OriginalAndChangedTextsArriveWithAndWithoutNewPixels)
{
    const QString path = Write(QStringLiteral("original"), "the old file");
    const CommentChange changes[] = {{3, CommentValue(QStringLiteral("Straße 日"))}, {10, {}}};
    for (const Bitmap& picture : {Picture(5, 5), Bitmap()}) {
        FileSource original(path);
        const QByteArray file = worker::Rewrite(original, picture, {}, changes, "ECHO");
        EXPECT_TRUE(
            file.contains("\nthe old file\n3=" + QStringLiteral("Straße 日").toUtf8() + "\n10=\n"));
        EXPECT_EQ(worker::Rewrite(QByteArray("the old file"), picture, {}, changes, "ECHO"), file);
    }
}

TEST_F(WorkerEncode, OneProcessEncodesAndDecodesInTurn)
{
    const QString path = Write(QStringLiteral("picture"), "30 20");
    ExpectGoesOn();
    const std::vector<int> children = ChildProcesses();
    ASSERT_EQ(children.size(), 1u);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(Decode(path, "ECHO").Width(), 30);
        ExpectGoesOn();
    }
    EXPECT_EQ(ChildProcesses(), children);
}

TEST_F(WorkerEncode, ACrashOrAnEndNamesTheFormatAndTheNextPictureIsServed)
{
    for (int i = 0; i < 3; ++i) {
        const Failure crash = Fails("CRASH");
        EXPECT_EQ(crash.Number(), kFailureWorker);
        EXPECT_EQ(crash.Description(),
                  QStringLiteral("The CRASH encoder stopped working on this picture."));
        EXPECT_EQ(Fails("EXIT").Number(), kFailureWorker);
        ExpectGoesOn();
    }
}

TEST_F(WorkerEncode, AKilledProcessCostsOnePicture)
{
    std::atomic<bool> done = false;
    Failure failure(0, QString());
    std::thread encoding([&] {
        failure = Fails("HANG", Picture(2000, 2000));
        done = true;
    });
    while (!done) {
        for (const int pid : ChildProcesses()) {
            ::kill(pid, SIGKILL);
        }
        std::this_thread::yield();
    }
    encoding.join();
    EXPECT_EQ(failure.Number(), kFailureWorker);
    ExpectGoesOn();
}

TEST_F(WorkerEncode, AHangEndsAtTheDeadline)
{
    const Failure failure = Fails("HANG");
    EXPECT_EQ(failure.Number(), kFailureWorker);
    EXPECT_EQ(failure.Description(),
              QStringLiteral("The HANG encoder took too long over this picture."));
    ExpectGoesOn();
}

TEST_F(WorkerEncode, NoLieIsBelieved)
{
    for (const char* lie :
         {"GARBAGE", "MUCH", "LITTLE", "TICKET", "DESCRIPTOR", "NUMBER", "WORDS", "SLOTSIZE",
          "MINUS", "BEFORE", "HOLE", "BEHIND", "TOOK", "TOOKLESS", "DONE"}) {
        SCOPED_TRACE(lie);
        const Failure failure = Fails(lie);
        EXPECT_EQ(failure.Number(), kFailureWorker);
        EXPECT_EQ(failure.Description(),
                  QStringLiteral("The %1 encoder gave an answer that makes no sense for this "
                                 "picture.")
                      .arg(QLatin1String(lie)));
    }
    ExpectGoesOn();
}

TEST_F(WorkerEncode, AnEncoderThatWritesNothingIsNoSuccess)
{
    EXPECT_EQ(Fails("SHORT").Number(), kFailureWorker);
    ExpectGoesOn();
}

TEST_F(WorkerEncode, WhatAnEncoderRefusesComesBackInWordsAndKeepsTheProcess)
{
    ExpectGoesOn();
    const std::vector<int> children = ChildProcesses();
    EXPECT_EQ(Fails("THROW").Number(), kFailureLimit);
    EXPECT_EQ(Fails("GREEDY", Picture(3000, 2000)).Number(), kFailureGeneral);
    EXPECT_EQ(Fails("FAR").Number(), kFailureLimit);
    const Failure large = Fails("LARGE");
    EXPECT_EQ(large.Number(), kFailureLimit);
    EXPECT_TRUE(large.Description().contains(QStringLiteral("768 MB")));
    const Failure unknown = Fails("UNKNOWN");
    EXPECT_EQ(unknown.Number(), kFailureGeneral);
    EXPECT_TRUE(unknown.Description().contains(QStringLiteral("UNKNOWN")));
    EXPECT_EQ(Fails("COLOURS").Number(), kFailureGeneral);
    ExpectGoesOn();
    EXPECT_EQ(ChildProcesses(), children);
}

TEST_F(WorkerEncode, ARefusalBeforeTheFirstWindowLeavesTheProcessUsable)
{
    worker::Shutdown();
    EXPECT_EQ(Fails("UNKNOWN").Number(), kFailureGeneral);
    EXPECT_EQ(Decode(Write(QStringLiteral("picture"), "30 20"), "ECHO").Width(), 30);
    ExpectGoesOn();
}

TEST_F(WorkerEncode, NoPictureAndTooLongTextsAreRefusedBeforeAProcessIsAsked)
{
    worker::Shutdown();
    EXPECT_EQ(Fails("ECHO", Bitmap()).Number(), kFailureGeneral);
    EncodeRequest request;
    request.icc = QByteArray(limits::kMaxFieldBytes + 1, 'x');
    EXPECT_EQ(FailureOf([&] { worker::Encode(Picture(2, 2), request, "ECHO"); }).Number(),
              kFailureLimit);
    EXPECT_TRUE(ChildProcesses().empty());
}

TEST_F(WorkerEncode, ManyThreadsShareAFewProcesses)
{
    constexpr int kThreads = 6, kRounds = 10;
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            const Bitmap picture = Picture(400 + i, 300);
            for (int round = 0; round < kRounds; ++round) {
                if (round % 4 == 3) {
                    right += Fails("CRASH").Number() == kFailureWorker;
                    continue;
                }
                QByteArray rows;
                Echo(picture, {}, rows);
                ExpectRows(rows, picture.Pixels());
                ++right;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, kThreads * kRounds);
}

TEST_F(WorkerEncode, NoDescriptorAndNoProcessIsLeftBehind)
{
    const auto round = [&] {
        ExpectGoesOn();
        for (const char* bad : {"CRASH", "GARBAGE", "DESCRIPTOR", "BEHIND", "THROW"}) {
            Fails(bad);
        }
    };
    worker::Shutdown();
    round();
    worker::Shutdown();
    const int before = OpenDescriptors();
    for (int i = 0; i < 5; ++i) {
        round();
    }
    worker::Shutdown();
    EXPECT_LE(OpenDescriptors(), before); // what tests before this one left may close meanwhile
    EXPECT_TRUE(ChildProcesses().empty());
}

} // namespace quillane::test
