// First frames of clips, made by another program, through the decoding process.
#include "core/temp_folder.h"
#include "encode_pictures.h"
#include "imaging/engine.h"
#include "imaging/reader.h"
#include "picture_maker.h"
#include "worker_support.h"
#include <iostream>

namespace quillane::test {

namespace {

constexpr int kClipWidth = 96, kClipHeight = 64, kClipFrames = 12;

struct ClipRow {
    const char* file;
    QStringList how; ///< what the other program is told
    const char* codec;
    int format;
    const char* compression;
};

/// What every container and packing is made with.
const ClipRow kClipRows[] = {
    {"mjpeg.avi", {"-c:v", "mjpeg", "-q:v", "2"}, "AVI", 59, "Motion JPEG"},
    {"mpeg4.avi", {"-c:v", "mpeg4", "-q:v", "2"}, "AVI", 59, "MPEG-4 part 2"},
    {"raw.avi", {"-c:v", "rawvideo", "-pix_fmt", "bgr24"}, "AVI", 59, "raw video"},
    {"huff.avi", {"-c:v", "huffyuv"}, "AVI", 59, "HuffYUV"},
    {"one.mpg", {"-c:v", "mpeg1video", "-q:v", "2"}, "MPEG", 243, "MPEG-1 video"},
    {"two.mpg", {"-c:v", "mpeg2video", "-q:v", "2", "-bf", "2"}, "MPEG", 246, "MPEG-2 video"},
    {"bare.mpg",
     {"-c:v", "mpeg1video", "-q:v", "2", "-f", "mpeg1video"},
     "MPEG",
     243,
     "MPEG-1 video"},
    {"air.mpg", {"-c:v", "mpeg2video", "-q:v", "2", "-f", "mpegts"}, "MPEG", 246, "MPEG-2 video"},
    {"mpeg4.mov", {"-c:v", "mpeg4", "-q:v", "2"}, "MOV", 0, "MPEG-4 part 2"},
    {"h264.mov",
     {"-c:v", "libx264", "-qp", "8", "-bf", "2", "-pix_fmt", "yuv420p"},
     "MOV",
     0,
     "H.264 / AVC / MPEG-4 AVC / MPEG-4 part 10"},
    {"front.mov",
     {"-c:v", "mjpeg", "-q:v", "2", "-movflags", "faststart"},
     "MOV",
     0,
     "Motion JPEG"},
    {"png.mov",
     {"-c:v", "png", "-pix_fmt", "rgba"},
     "MOV",
     0,
     "PNG (Portable Network Graphics) image"},
    {"animation.mov", {"-c:v", "qtrle"}, "MOV", 0, "QuickTime Animation (RLE) video"},
};

/// The first frame: a colour in every quarter. Those behind it are black.
QRgb ClipColour(int x, int y)
{
    const bool right = x >= kClipWidth / 2, below = y >= kClipHeight / 2;
    return right ? (below ? qRgb(230, 230, 230) : qRgb(30, 200, 40))
                 : (below ? qRgb(30, 40, 210) : qRgb(220, 30, 40));
}

class Clip : public WorkerTest {
protected:
    /// Runs the other program over the frames; the path of what it has made.
    QString Make(const QString& name, const QStringList& how)
    {
        QByteArray frames(kClipWidth * kClipHeight * 3 * kClipFrames, '\0');
        char* to = frames.data();
        for (int y = 0; y < kClipHeight; ++y) {
            for (int x = 0; x < kClipWidth; ++x) {
                const QRgb colour = ClipColour(x, y);
                *to++ = char(qRed(colour));
                *to++ = char(qGreen(colour));
                *to++ = char(qBlue(colour));
            }
        }
        const QString from = Write("frames.rgb", frames);
        const QString path = mFolder.filePath(name);
        const QStringList input{
            "-y",    "-v",       "error",
            "-f",    "rawvideo", "-pix_fmt",
            "rgb24", "-s",       QString("%1x%2").arg(kClipWidth).arg(kClipHeight),
            "-r",    "25",       "-i",
            from};
        EXPECT_TRUE(RunTool("ffmpeg", input + how + QStringList{path})) << name.toStdString();
        return path;
    }
    static void ExpectFirstFrame(const QImage& image)
    {
        for (const QPoint at : {QPoint(1, 1), QPoint(3, 1), QPoint(1, 3), QPoint(3, 3)}) {
            const QRgb pixel = image.pixel(image.width() * at.x() / 4, image.height() * at.y() / 4);
            EXPECT_LE(making::ColourDistance(
                          pixel, ClipColour(kClipWidth * at.x() / 4, kClipHeight * at.y() / 4)),
                      12)
                << at.x() << "," << at.y() << " is " << std::hex << pixel;
        }
    }
    /// Loads it; what happens is a picture of the size of its facts, or a refusal in words.
    static void ExpectOrderly(const QString& path)
    {
        const Failure failure = FailureOf([&] {
            const LoadedImage loaded = LoadFile(path);
            EXPECT_EQ(loaded.bitmap.Width(), loaded.facts.width);
            EXPECT_EQ(loaded.bitmap.Height(), loaded.facts.height);
        });
        EXPECT_TRUE(failure.Number() == 0 || failure.Number() == kFailureUnreadable
                    || failure.Number() == kFailureLimit)
            << failure.Number() << " " << failure.Description().toStdString();
        EXPECT_EQ(failure.Number() == 0, failure.Description().isEmpty());
    }
};

} // namespace

TEST_F(Clip, TheFirstFrameOfEveryKindIsRead)
{
    for (const ClipRow& row : kClipRows) {
        SCOPED_TRACE(row.file);
        const LoadedImage loaded = LoadFile(Make(row.file, row.how));
        EXPECT_STREQ(loaded.file->codec->name, row.codec);
        EXPECT_EQ(loaded.facts.width, kClipWidth);
        EXPECT_EQ(loaded.facts.height, kClipHeight);
        EXPECT_EQ(loaded.facts.bits, 24);
        EXPECT_EQ(loaded.facts.pages, 1);
        EXPECT_EQ(loaded.facts.format, row.format);
        EXPECT_EQ(loaded.facts.orientation, 1);
        EXPECT_EQ(loaded.facts.compression, QString(row.compression));
        EXPECT_EQ(loaded.bitmap.Pixels().size(), QSize(kClipWidth, kClipHeight));
        EXPECT_EQ(loaded.bitmap.Model(), ColourModel::Rgb);
        EXPECT_EQ(loaded.bitmap.FileDepth(), 24);
        EXPECT_FALSE(loaded.bitmap.IsPartial());
        EXPECT_FALSE(loaded.bitmap.IsExact());
        ExpectFirstFrame(loaded.bitmap.Pixels());
    }
}

TEST_F(Clip, ASmallWishGetsASmallPicture)
{
    DecodeRequest request;
    request.atLeast = QSize(20, 20);
    const LoadedImage loaded = LoadFile(Make("a.mov", {"-c:v", "mpeg4", "-q:v", "2"}), request);
    EXPECT_EQ(loaded.facts.width, kClipWidth);
    EXPECT_EQ(loaded.bitmap.Pixels().size(), QSize(30, 20));
    ExpectFirstFrame(loaded.bitmap.Pixels());
    request.atLeast = QSize(1000, 1000);
    EXPECT_EQ(LoadFile(mFolder.filePath("a.mov"), request).bitmap.Width(), kClipWidth);
    request.page = 1;
    EXPECT_EQ(FailureOf([&] { LoadFile(mFolder.filePath("a.mov"), request); }).Number(),
              kFailureGeneral);
}

TEST_F(Clip, AClipThatWasHeldUprightIsShownUpright)
{
    const QString plain = Make("plain.mov", {"-c:v", "mpeg4", "-q:v", "2"});
    const struct {
        const char* degrees;
        int orientation;
    } rows[] = {{"90", 8}, {"180", 3}, {"270", 6}}; // it counts against the clock
    const Bitmap lying = LoadFile(plain).bitmap;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.degrees);
        const QString turned = mFolder.filePath("turned.mov");
        ASSERT_TRUE(RunTool("ffmpeg",
                            {"-y", "-v", "error", "-i", plain, "-c", "copy", "-metadata:s:v:0",
                             QString("rotate=%1").arg(row.degrees), turned}));
        const LoadedImage loaded = LoadFile(turned);
        EXPECT_EQ(loaded.facts.orientation, row.orientation);
        EXPECT_EQ(loaded.facts.width, kClipWidth);
        EXPECT_EQ(AsRgb(loaded.bitmap), AsRgb(lying.Upright(quint8(row.orientation))));
        // The other program turns it as well.
        const QString shown = mFolder.filePath("shown.ppm");
        ASSERT_TRUE(
            RunTool("ffmpeg", {"-y", "-v", "error", "-i", turned, "-frames:v", "1", shown}));
        const Bitmap expected = LoadFile(shown).bitmap;
        ASSERT_EQ(loaded.bitmap.Pixels().size(), expected.Pixels().size());
        EXPECT_GT(Psnr(AsRgb(loaded.bitmap), AsRgb(expected)), 25);
    }
}

TEST_F(Clip, MirroredDisplayMatricesAreOrientationsToo)
{
    const QString plain = Make("plain.mov", {"-c:v", "mpeg4", "-q:v", "2"});
    const QByteArray bytes = ReadWholeFile(plain, 1 << 20);
    // Of the track's header: behind type, version, times and the rest.
    const qsizetype matrix = bytes.indexOf("tkhd") + 4 + 40;
    ASSERT_EQ(bytes.mid(matrix, 4), QByteArray("\0\1\0\0", 4));
    const auto number = [](int value) {
        const quint32 fixed = quint32(value * 65536);
        return QByteArray{1, char(fixed >> 24)} + char(fixed >> 16) + char(fixed >> 8)
            + char(fixed);
    };
    const struct {
        int a, b, c, d, orientation;
    } rows[] = {{1, 0, 0, 1, 1}, {-1, 0, 0, 1, 2}, {-1, 0, 0, -1, 3}, {1, 0, 0, -1, 4},
                {0, 1, 1, 0, 5}, {0, 1, -1, 0, 6}, {0, -1, -1, 0, 7}, {0, -1, 1, 0, 8}};
    for (const auto& row : rows) {
        QByteArray changed = bytes;
        changed.replace(matrix, 8, number(row.a) + number(row.b));
        changed.replace(matrix + 12, 8, number(row.c) + number(row.d));
        EXPECT_EQ(Probe(Write("m.mov", changed), "MOV").orientation, row.orientation);
    }
}

TEST_F(Clip, SoundAloneIsRefusedInWords)
{
    for (const char* kind : {"avi", "mov", "mpg"}) {
        SCOPED_TRACE(kind);
        const QString path = mFolder.filePath(QString("sound.") + kind);
        ASSERT_TRUE(
            RunTool("ffmpeg",
                    {"-y", "-v", "error", "-f", "lavfi", "-i", "sine=frequency=440:duration=1",
                     "-c:a", kind == QByteArray("mpg") ? "mp2" : "pcm_s16le", path}));
        const Failure failure = FailureOf([&] { LoadFile(path); });
        EXPECT_EQ(failure.Number(), kFailureUnreadable);
        const QString name = kind == QByteArray("mpg") ? "MPEG" : QString(kind).toUpper();
        EXPECT_EQ(failure.Description(), QString("This %1 holds no pictures.").arg(name));
    }
}

TEST_F(Clip, UnknownPackingIsRefusedByItsName)
{
    QByteArray bytes = ReadWholeFile(Make("a.avi", {"-c:v", "mjpeg", "-vtag", "MJPG"}), 1 << 20);
    ASSERT_TRUE(bytes.contains("MJPG"));
    bytes.replace("MJPG", "Qz7!");
    EXPECT_EQ(FailureOf([&] { LoadFile(Write("b.avi", bytes)); }).Description(),
              u"This AVI has pictures packed as Qz7!, which is not supported.");
    // Known, and decoded by libraries that are not trusted with it.
    QByteArray other = ReadWholeFile(Make("a.mov", {"-c:v", "mjpeg", "-vtag", "jpeg"}), 1 << 20);
    const qsizetype entry = other.indexOf("stsd");
    ASSERT_GT(entry, 0);
    ASSERT_EQ(other.mid(entry + 16, 4), "jpeg");
    other.replace(entry + 16, 4, "av01");
    const Failure failure = FailureOf([&] { LoadFile(Write("b.mov", other)); });
    EXPECT_TRUE(failure.Description().startsWith(u"This MOV has pictures packed as "))
        << failure.Description().toStdString();
    EXPECT_TRUE(failure.Description().contains(u"AV1"));
}

TEST_F(Clip, CutShortAnywhereItIsRefusedOrShowsWhatThereIs)
{
    for (const char* name : {"mjpeg.avi", "two.mpg", "front.mov", "h264.mov"}) {
        const auto row = std::find_if(std::begin(kClipRows), std::end(kClipRows),
                                      [&](const ClipRow& one) { return !qstrcmp(one.file, name); });
        const QByteArray whole = ReadWholeFile(Make(name, row->how), 4 << 20);
        const QString extension = QString(name).section('.', 1);
        int pictures = 0;
        for (int i = 0; i < 20; ++i) {
            SCOPED_TRACE(std::string(name) + " cut at " + std::to_string(i));
            const QString path = Write("cut." + extension, whole.first(whole.size() * i / 20));
            ExpectOrderly(path);
            pictures += FailureOf([&] { LoadFile(path); }).Number() == 0 ? 1 : 0;
        }
        // With its tables at the end, nothing is found before they are there.
        EXPECT_EQ(pictures > 0, QByteArray(name) != "h264.mov") << name;
    }
}

TEST_F(Clip, TheFirstFrameCutInTheMiddleIsPartial)
{
    QByteArray bytes =
        ReadWholeFile(Make("a.avi", {"-c:v", "mjpeg", "-q:v", "2", "-frames:v", "1"}), 1 << 20);
    const qsizetype frame = bytes.indexOf("\xff\xd8");
    const qsizetype end = bytes.lastIndexOf("\xff\xd9");
    ASSERT_GT(end, frame);
    const LoadedImage loaded = LoadFile(Write("b.avi", bytes.first(frame + (end - frame) * 3 / 4)));
    EXPECT_TRUE(loaded.bitmap.IsPartial());
    EXPECT_LE(making::ColourDistance(loaded.bitmap.Pixels().pixel(10, 4), ClipColour(10, 4)), 12);
}

TEST_F(Clip, DamageAnywhereStaysOrderly)
{
    quint32 random = 4711;
    const auto next = [&random] { return random = random * 1664525 + 1013904223, random >> 8; };
    for (const ClipRow& row : kClipRows) {
        const QByteArray whole = ReadWholeFile(Make(row.file, row.how), 4 << 20);
        for (int i = 0; i < 25; ++i) {
            SCOPED_TRACE(std::string(row.file) + " damaged " + std::to_string(i));
            QByteArray damaged = whole;
            // Behind the mark, or it would be another kind of file; half of it in the header.
            const quint32 reach =
                quint32(i % 2 ? damaged.size() : qMin<qsizetype>(damaged.size(), 700)) - 12;
            for (int k = 0; k < 1 + i % 7; ++k) {
                damaged[12 + qsizetype(next() % reach)] = i % 3 ? char(next()) : char(0xff);
            }
            ExpectOrderly(Write(QString("damaged.") + QString(row.file).section('.', 1), damaged));
        }
    }
}

TEST_F(Clip, HeadersWithoutAnythingBehindThemAreRefused)
{
    const struct {
        QByteArray bytes;
        const char* name;
    } rows[] = {
        {"RIFF\xff\xff\xff\xff"
         "AVI ",
         "a.avi"},
        {QByteArray("\0\0\1\xba", 4) + QByteArray(3'000'000, '\0'), "a.mpg"},
        {QByteArray("\0\0\1\xb3", 4) + QByteArray(3'000'000, '\xff'), "b.mpg"},
        {QByteArray(3'000'000, 'G'), "c.mpg"},
        {QByteArray("\0\0\0\x08"
                    "wide\0\0\0\0mdat",
                    16)
             + QByteArray(3'000'000, 'x'),
         "a.mov"},
        {QByteArray("\0\0\0\x14"
                    "ftypqt  \0\0\0\0qt  ",
                    20),
         "b.mov"},
        // Atoms that hold themselves.
        {QByteArray("\0\0\0\x14"
                    "ftypqt  \0\0\0\0qt  ",
                    20)
             + QByteArray("\0\0\0\x10"
                          "moov\0\0\0\x08"
                          "trak",
                          16)
                   .repeated(1000),
         "c.mov"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Failure failure = FailureOf([&] { LoadFile(Write(row.name, row.bytes)); });
        EXPECT_EQ(failure.Number(), kFailureUnreadable) << failure.Description().toStdString();
    }
}

TEST_F(Clip, SizesBeyondAnyPictureAreRefused)
{
    QByteArray bytes = ReadWholeFile(Make("a.avi", {"-c:v", "mjpeg", "-q:v", "2"}), 1 << 20);
    const qsizetype format = bytes.indexOf("strf");
    ASSERT_GT(format, 0);
    ASSERT_EQ(bytes.mid(format + 12, 4), making::Little(kClipWidth, 4));
    for (const int side : {70'000, 60'000}) {
        bytes.replace(format + 12, 8, making::Little(quint32(side), 4) + making::Little(60'000, 4));
        EXPECT_EQ(FailureOf([&] { LoadFile(Write("b.avi", bytes)); }).Number(), kFailureLimit);
    }
}

TEST_F(Clip, WithoutFfmpegItIsRefusedInWords)
{
    const QString path = Make("a.avi", {"-c:v", "mjpeg"});
    const TempFolder folder;
    for (int version = 50; version < 80; ++version) {
        folder.Write("libavutil.so." + QByteArray::number(version), "");
    }
    const QByteArray before = qgetenv("LD_LIBRARY_PATH");
    qputenv("LD_LIBRARY_PATH", folder.Bytes());
    worker::Configure(kShippedWorker, 2);
    const Failure failure = FailureOf([&] { LoadFile(path); });
    qputenv("LD_LIBRARY_PATH", before);
    EXPECT_EQ(failure.Number(), kFailureUnreadable);
    EXPECT_EQ(failure.Description(),
              u"This AVI can be shown only with the libraries of FFmpeg, "
              "which are not installed.");
    worker::Configure(kShippedWorker, 2);
    EXPECT_EQ(LoadFile(path).bitmap.Width(), kClipWidth);
}

TEST_F(Clip, AClipIsNeverReplacedByItsFirstFrame)
{
    const QString path = Make("a.avi", {"-c:v", "mjpeg"});
    const QByteArray before = ReadWholeFile(path, 1 << 20);
    EngineInstance engine;
    engine.Load(path, 0, 0);
    for (const qint16 format : {qint16(10), qint16(59), qint16(0)}) {
        const Failure failure =
            FailureOf([&] { engine.Save(path, format, 24, kBestQuality, kSaveReplace); });
        EXPECT_NE(failure.Number(), 0) << format;
    }
    EXPECT_EQ(ReadWholeFile(path, 1 << 20), before);
    const QString beside = mFolder.filePath("frame.bmp");
    engine.Save(beside, 6, 24, kBestQuality, kSaveReplace);
    ExpectFirstFrame(LoadFile(beside).bitmap.Pixels());
}

TEST_F(Clip, SamplesShowTheirFirstFrame)
{
    const std::vector<Sample> samples = Samples("media/", {"avi", "mov", "mpg"});
    if (!HasSamples()) {
        std::cout << "no folder of samples here: nothing to see\n";
        return;
    }
    int seen = 0;
    for (const Sample& sample : samples) {
        SCOPED_TRACE(sample.file.toStdString());
        if (sample.file.endsWith("tiny.avi")) {
            ++seen;
            EXPECT_EQ(FailureOf([&] { LoadFile(sample.path); }).Description(),
                      u"This AVI holds no pictures."); // only headers
            continue;
        }
        const LoadedImage loaded = LoadFile(sample.path);
        ++seen;
        EXPECT_FALSE(loaded.bitmap.IsPartial());
        EXPECT_EQ(loaded.bitmap.Width(), loaded.facts.width);
        // The same as the other program makes of it.
        const QString other = mFolder.filePath("other.ppm");
        ASSERT_TRUE(RunTool("ffmpeg",
                            {"-y", "-v", "error", "-i", sample.path, "-frames:v", "1", "-sws_flags",
                             "accurate_rnd+full_chroma_int", other}));
        const Bitmap expected = LoadFile(other).bitmap;
        EXPECT_EQ(loaded.bitmap.Pixels().size(), expected.Pixels().size());
        EXPECT_GT(Psnr(AsRgb(loaded.bitmap), AsRgb(expected)), 30);
    }
    std::cout << seen << " samples seen\n";
    EXPECT_GT(seen, 0);
}

} // namespace quillane::test
