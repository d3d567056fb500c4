// A codec of the decoding process, fed in a process of the fuzzer's. QUILLANE_FUZZED_CODEC names
// it.
#include "core/failure.h"
#include "core/native_path.h"
#include "fuzz_metadata.h"
#include "imaging/comments/slots.h"
#include "imaging/encode.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>

namespace quillane::worker {
namespace {

/// Larger pictures are given up when they announce themselves: a fuzzer wants many small runs.
constexpr qint64 kFuzzWorkerPixels = 1'000'000;

const WorkerCodec& FuzzedWorkerCodec()
{
    for (const WorkerCodec& codec : kShippedCodecs) {
        if (std::strcmp(codec.name, QUILLANE_FUZZED_CODEC) == 0) {
            static const bool prepared = codec.prepare && (codec.prepare(), true);
            static_cast<void>(prepared);
            return codec;
        }
    }
    for (const WorkerCodec& codec : kShippedClips) {
        if (std::strcmp(codec.name, QUILLANE_FUZZED_CODEC) == 0) {
            static const bool prepared = (PrepareClips(), true);
            static_cast<void>(prepared);
            return codec;
        }
    }
    std::abort();
}

/// Runs a step as the decoding process does: a Failure is an answer, and so is what the clip
/// library says when a damaged header asks it for too much. The fuzzer watches real memory itself.
void FuzzAnswered(const std::function<void()>& step)
{
    try {
        ResumeNext(step);
    } catch (const std::bad_alloc&) { }
}

/// Takes rows and holds the decoder to what it announced.
class FuzzSink : public PictureSink {
public:
    void Begin(const PictureShape& shape) override
    {
        if (!mRow.empty() || shape.width < 1 || shape.height < 1) {
            std::abort(); // announced once, with a size
        }
        if (qint64(shape.width) * shape.height > kFuzzWorkerPixels) {
            throw Failure(kFailureCancelled, QStringLiteral("Too large for a fuzzer."));
        }
        mRow.resize(size_t(RowBytes(shape.width, BitsOf(shape.layout))));
        mLeft = shape.height;
    }
    uchar* NextRow() override
    {
        if (--mLeft < 0) {
            std::abort(); // more rows than announced
        }
        return mRow.data();
    }
    bool IsFull() const { return !mRow.empty() && mLeft == 0; }

private:
    std::vector<uchar> mRow;
    qint64 mLeft = 0;
};

/// A picture of few pixels in every layout, or none.
class FuzzRows : public PictureRows {
public:
    explicit FuzzRows(const PictureShape& shape) : mShape(shape)
    {
        const auto bytes = size_t(RowBytes(shape.width, BitsOf(shape.layout)));
        for (size_t i = 0; i < bytes; ++i) {
            mRow.push_back(uchar(i * 37));
        }
    }
    const PictureShape& Shape() const override { return mShape; }
    const uchar* NextRow() override
    {
        mRow[0] = uchar(mRow[0] + 1);
        return mRow.data();
    }

private:
    PictureShape mShape;
    std::vector<uchar> mRow;
};

class FuzzFile : public FileSink {
public:
    void WriteAt(qint64 position, const void* bytes, qint64 count) override
    {
        mBytes.resize(qMax(mBytes.size(), position + count));
        std::memcpy(mBytes.data() + position, bytes, size_t(count));
    }
    qint64 Size() const override { return mBytes.size(); }
    const QByteArray& Bytes() const { return mBytes; }

private:
    QByteArray mBytes;
};

/// What the codec's own encoder makes: of every code and layout that it takes.
QList<QByteArray> EncodedSeeds()
{
    QList<QByteArray> seeds;
    for (const SaveVariant& variant : SaveVariants()) {
        if (std::strcmp(variant.codec, QUILLANE_FUZZED_CODEC) != 0 || !FuzzedWorkerCodec().encode) {
            continue;
        }
        for (const PixelLayout layout :
             {PixelLayout::Mono, PixelLayout::Grey8, PixelLayout::Rgb32, PixelLayout::Rgba64}) {
            PictureShape shape;
            shape.width = 19;
            shape.height = 17;
            shape.layout = layout;
            FuzzRows rows(shape);
            FuzzFile file;
            EncodeWish wish;
            wish.format = variant.format;
            wish.bits = variant.depths[0];
            const auto encode = [&] { FuzzedWorkerCodec().encode(rows, wish, file); };
            if (!ResumeNext(encode)) {
                continue;
            }
            seeds.append(file.Bytes());
        }
    }
    return seeds;
}

/// Three small pictures as the usual encoders of that kind of clip pack them.
QList<QByteArray> ClipSeeds(const QString& extension, const QList<QByteArray>& encoders)
{
    QList<QByteArray> seeds;
    const QTemporaryDir folder;
    for (const QByteArray& encoder : encoders) {
        const QString path = folder.filePath(QLatin1String("clip.") + extension);
        QProcess maker;
        maker.start(QStringLiteral("ffmpeg"),
                    {"-y", "-v", "error", "-f", "lavfi", "-i", "testsrc=size=48x32:rate=25",
                     "-frames:v", "3", "-c:v", QLatin1String(encoder), path});
        if (!maker.waitForFinished() || maker.exitCode() != 0) {
            std::abort(); // the tests' packages bring the program
        }
        seeds.append(ReadWholeFile(path, 1 << 20));
    }
    return seeds;
}

QByteArray FaxPixels(qint16 code)
{
    QImage pixels(64, 20, QImage::Format_Mono);
    pixels.fill(1);
    for (int i = 0; i < 20; ++i) {
        pixels.setPixel(i * 3, i, 0);
    }
    EncodeRequest request;
    request.format = code;
    return EncodePicture(Bitmap(pixels, ColourModel::BlackWhite, 1), request);
}

QByteArray CalsSeed()
{
    QByteArray head;
    for (const char* record : {"srcdocid: NONE", "rtype: 1", "rorient: 000,270",
                               "rpelcnt: 000064,000020", "rdensty: 0200"}) {
        head += QByteArray(record).leftJustified(128);
    }
    return head.leftJustified(2048) + FaxPixels(68);
}

QByteArray IocaSeed(bool wrapped)
{
    const QByteArray pixels = FaxPixels(68);
    const auto big = [](qsizetype number) {
        QByteArray bytes(2, '\0');
        qToBigEndian(quint16(number), bytes.data());
        return bytes;
    };
    const QByteArray segments = QByteArray::fromHex("7000"
                                                    "9101ff"
                                                    "9409")
        + '\0' + big(2000) + big(2000) + big(64) + big(20)
        + QByteArray::fromHex("9502"
                              "8201"
                              "960101"
                              "fe92")
        + big(pixels.size()) + pixels
        + QByteArray::fromHex("9300"
                              "7100");
    return wrapped ? QByteArray("\x5a") + big(segments.size() + 8)
            + QByteArray::fromHex("d3eefb"
                                  "000000")
            + segments
                   : segments;
}

QByteArray ItgSeed(int kind, const QByteArray& pixels)
{
    QByteArray head(512, '\0');
    const auto put = [&](int at, int number) {
        qToLittleEndian(quint16(number), head.data() + at);
    };
    put(0, 0x0908);
    put(2, 254);
    put(4, kind);
    put(184, 64);
    put(188, 20);
    put(192, -200);
    head[194] = 4;
    return head + pixels;
}

QByteArray ItgRuns()
{
    QByteArray runs;
    for (const int word : {0x5900, 4, 1, 0, 10, 20, 34, 0x5900, 4, 2, 0, 0, 64}) {
        QByteArray bytes(2, '\0');
        qToLittleEndian(quint16(word), bytes.data());
        runs += bytes;
    }
    return runs;
}

} // namespace
} // namespace quillane::worker

QList<QByteArray> MetadataSeeds()
{
    using quillane::worker::FaxPixels;
    using quillane::worker::ItgSeed;
    const QByteArray name = QUILLANE_FUZZED_CODEC;
    if (name == "FAX") {
        return {FaxPixels(66), FaxPixels(67), FaxPixels(68)};
    }
    if (name == "CALS") {
        return {quillane::worker::CalsSeed()};
    }
    if (name == "IOCA") {
        return {quillane::worker::IocaSeed(false), quillane::worker::IocaSeed(true)};
    }
    if (name == "Intergraph") {
        return {ItgSeed(9, quillane::worker::ItgRuns()), ItgSeed(24, FaxPixels(68)),
                ItgSeed(2, QByteArray(64 * 20, 'g'))};
    }
    if (name == "MOV") {
        return quillane::worker::ClipSeeds(QStringLiteral("mov"), {"mpeg4", "mjpeg", "qtrle"});
    }
    if (name == "AVI") {
        return quillane::worker::ClipSeeds(QStringLiteral("avi"), {"rawvideo", "mjpeg", "mpeg4"});
    }
    if (name == "MPEG") {
        return quillane::worker::ClipSeeds(QStringLiteral("mpg"), {"mpeg1video", "mpeg2video"});
    }
    return quillane::worker::EncodedSeeds();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const quillane::worker::WorkerCodec& codec = quillane::worker::FuzzedWorkerCodec();
    quillane::MemorySource source(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    quillane::worker::FuzzAnswered([&] {
        const quillane::ImageFacts facts = codec.probe(source);
        if (facts.width < 1 || facts.height < 1) {
            std::abort(); // a probe that succeeds tells a size
        }
    });
    quillane::worker::FuzzAnswered([&] {
        quillane::worker::FuzzSink sink;
        codec.decode(source, {}, sink);
        if (!sink.IsFull()) {
            std::abort(); // a decode that succeeds gives every row
        }
    });
    if (codec.comments) {
        quillane::worker::FuzzAnswered(
            [&] { codec.comments(source, [](qint16, const QByteArray&) {}); });
        quillane::worker::FuzzAnswered([&] { // the file written anew with another text
            quillane::worker::FuzzRows none({});
            quillane::worker::FuzzFile file;
            quillane::worker::EncodeWish wish;
            wish.format = 89;
            wish.original = &source;
            wish.texts = {{quillane::kDescriptionSlot, "text"}};
            codec.encode(none, wish, file);
        });
    }
    return 0;
}
