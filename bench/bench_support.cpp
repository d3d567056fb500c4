#include "bench_support.h"
#include "core/native_path.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <jpeglib.h>
#include <sys/resource.h>
#include <unistd.h>

namespace quillane::bench {

namespace {

constexpr int kMargin = 256; ///< that the part of the texture a picture shows moves by

double CoreMilliseconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto of = [](const timeval& t) {
        return double(t.tv_sec) * 1e3 + double(t.tv_usec) / 1e3;
    };
    return of(usage.ru_utime) + of(usage.ru_stime);
}

quint32 NextRandom(quint32& state)
{
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}

/// RGB texture of which every picture shows another part: slow waves with noise on them.
struct Texture {
    int width = 0, height = 0;
    std::vector<quint8> pixels;

    Texture(int w, int h) : width(w), height(h), pixels(size_t(w) * size_t(h) * 3)
    {
        quint32 random = 2463534242u;
        quint8* out = pixels.data();
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const quint32 noise = NextRandom(random);
                for (int c = 0; c < 3; ++c) {
                    const double wave =
                        std::sin((x + c * 90) * 0.011) + std::sin(y * (0.007 + c * 0.004));
                    const int value = 128 + int(wave * 50) + int((noise >> 8 * c) & 31) - 16;
                    *out++ = quint8(std::clamp(value, 0, 255));
                }
            }
        }
    }
};

QByteArray Little(quint32 value, int bytes)
{
    QByteArray out;
    for (int i = 0; i < bytes; ++i) {
        out.append(char(value >> 8 * i));
    }
    return out;
}

QByteArray Encode(const Texture& texture, const JpegShape& shape, unsigned seed,
                  const QByteArray& exif)
{
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &memory, &size);
    info.image_width = JDIMENSION(shape.width);
    info.image_height = JDIMENSION(shape.height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, shape.quality, TRUE);
    jpeg_start_compress(&info, TRUE);
    if (!exif.isEmpty()) {
        const QByteArray segment = QByteArray("Exif\0\0", 6) + exif;
        jpeg_write_marker(&info, JPEG_APP0 + 1,
                          reinterpret_cast<const JOCTET*>(segment.constData()),
                          unsigned(segment.size()));
    }
    const size_t left = seed * 7 % kMargin, top = seed / kMargin * 11 % kMargin;
    std::vector<JSAMPLE> line(size_t(shape.width) * 3);
    while (info.next_scanline < info.image_height) {
        const size_t y = top + info.next_scanline;
        const quint8* from = texture.pixels.data() + (y * size_t(texture.width) + left) * 3;
        std::copy_n(from, line.size(), line.begin());
        // The seed stands in the first pixels, so that no two pictures are the same.
        for (size_t i = 0; info.next_scanline < 8 && i < 32 && i * 24 + 24 <= line.size(); ++i) {
            std::fill_n(line.begin() + long(i * 24), 24, JSAMPLE(seed >> i & 1 ? 200 : 60));
        }
        JSAMPROW row = line.data();
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    const QByteArray bytes(reinterpret_cast<const char*>(memory), qsizetype(size));
    jpeg_destroy_compress(&info);
    std::free(memory);
    return bytes;
}

/// An Exif block: maker, model and description, and behind them a preview if there is one.
QByteArray ExifBlock(unsigned seed, const QByteArray& preview)
{
    const QByteArray maker("Made for measuring\0", 19);
    const QByteArray model("Benchmark\0", 10);
    const QByteArray words = "Picture " + QByteArray::number(seed) + QByteArray(1, '\0');
    constexpr quint32 kFirst = 8, kEntries = 3;
    const quint32 wordsAt = kFirst + 2 + 12 * kEntries + 4;
    const quint32 makerAt = wordsAt + quint32(words.size());
    const quint32 modelAt = makerAt + quint32(maker.size());
    const quint32 second = modelAt + quint32(model.size());
    const auto entry = [](quint32 tag, quint32 type, quint32 count, quint32 value) {
        return Little(tag, 2) + Little(type, 2) + Little(count, 4) + Little(value, 4);
    };
    QByteArray block("II*\0", 4);
    block += Little(kFirst, 4) + Little(kEntries, 2);
    block += entry(0x010e, 2, quint32(words.size()), wordsAt);
    block += entry(0x010f, 2, quint32(maker.size()), makerAt);
    block += entry(0x0110, 2, quint32(model.size()), modelAt);
    block += Little(preview.isEmpty() ? 0 : second, 4) + words + maker + model;
    if (!preview.isEmpty()) {
        const quint32 previewAt = second + 2 + 12 * 3 + 4;
        block += Little(3, 2) + entry(0x0103, 3, 1, 6) + entry(0x0201, 4, 1, previewAt);
        block += entry(0x0202, 4, 1, quint32(preview.size())) + Little(0, 4) + preview;
    }
    return block;
}

/// Finds the frame marker in the first bytes of a JPEG; whether it is there.
bool FindFrame(const unsigned char* bytes, ssize_t size)
{
    for (ssize_t at = 2; at + 9 < size;) {
        if (bytes[at] != 0xff) {
            return false;
        }
        const unsigned char marker = bytes[at + 1];
        if (marker == 0xc0 || marker == 0xc1 || marker == 0xc2) {
            return true;
        }
        at += 2 + (bytes[at + 2] << 8 | bytes[at + 3]);
    }
    return false;
}

} // namespace

bool PrintFigure(const char* name, double value, double reference, const char* unit, double ratio,
                 Wanted wanted, double required)
{
    const bool good = wanted == Wanted::AtLeast ? ratio >= required : ratio <= required;
    std::printf("%s: %.3f %s, reference %.3f %s, ratio %.2f, required %s %.2f: %s\n", name, value,
                unit, reference, unit, ratio, wanted == Wanted::AtLeast ? "at least" : "at most",
                required, good ? "good" : "MISSED");
    std::fflush(stdout);
    return good;
}

Spent Measure(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    const double cores = CoreMilliseconds();
    work();
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    return {wall.count(), CoreMilliseconds() - cores};
}

Pair MeasureInTurn(int rounds, const std::function<void()>& first,
                   const std::function<void()>& second)
{
    Pair least{Measure(first), Measure(second)};
    const auto take = [](Spent& best, const Spent& spent) {
        best.wall = std::min(best.wall, spent.wall);
        best.cores = std::min(best.cores, spent.cores);
    };
    for (int round = 1; round < rounds; ++round) {
        take(least.first, Measure(first));
        take(least.second, Measure(second));
    }
    return least;
}

qint64 ResidentBytes()
{
    const QByteArray fields = ReadWholeFile(QStringLiteral("/proc/self/statm"), 1 << 16);
    return fields.split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

qint64 PeakResidentBytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return qint64(usage.ru_maxrss) * 1024;
}

QByteArray MakeNoisyJpeg(const JpegShape& shape, unsigned seed)
{
    static Texture texture(0, 0);
    if (texture.width < shape.width + kMargin || texture.height < shape.height + kMargin) {
        texture = Texture(shape.width + kMargin, shape.height + kMargin);
    }
    QByteArray exif;
    if (shape.preview) {
        JpegShape small;
        small.width = 160;
        small.height = 160 * shape.height / shape.width;
        small.quality = 80;
        exif = ExifBlock(seed, Encode(texture, small, seed, {}));
    } else if (shape.exif) {
        exif = ExifBlock(seed, {});
    }
    return Encode(texture, shape, seed, exif);
}

std::vector<QString> FolderOfJpegs(const QString& folder, int count, const JpegShape& shape)
{
    MakeFolder(folder);
    WriteOptions quick;
    quick.sync = false;
    std::vector<QString> paths;
    for (int i = 0; i < count; ++i) {
        paths.push_back(folder + QStringLiteral("/IMG_%1.jpg").arg(i, 6, 10, QLatin1Char('0')));
        if (StatPath(paths.back()).type == FileType::Missing) {
            WriteWholeFile(paths.back(), MakeNoisyJpeg(shape, unsigned(i)), quick);
        }
    }
    return paths;
}

QString PicturesFolder(int argc, char** argv)
{
    if (argc > 1) {
        return PathFromBytes(argv[1]);
    }
    const char* temporary = std::getenv("TMPDIR");
    return PathFromBytes(temporary ? temporary : "/tmp") + QStringLiteral("/quillane-bench");
}

std::vector<QByteArray> NamesOf(const std::vector<QString>& paths)
{
    std::vector<QByteArray> names;
    names.reserve(paths.size());
    for (const QString& path : paths) {
        names.push_back(BytesFromPath(path));
    }
    return names;
}

void ReadHeadersBarely(const std::vector<QByteArray>& names)
{
    unsigned char head[4096];
    for (const QByteArray& name : names) {
        const int file = open(name.constData(), O_RDONLY | O_CLOEXEC);
        const ssize_t size = read(file, head, sizeof head);
        close(file);
        if (!FindFrame(head, size)) {
            std::fprintf(stderr, "the reference found no frame\n");
            std::exit(2);
        }
    }
}

void ForgetContent(const std::vector<QString>& paths)
{
    sync();
    for (const QString& path : paths) {
        const FileHandle file = OpenForReading(path);
        posix_fadvise(file.Fd(), 0, 0, POSIX_FADV_DONTNEED);
    }
}

} // namespace quillane::bench
