// What it costs to decode and to encode a TIFF in the decoding process instead of here: the same
// code on the same pictures, both ways in turn, from the second time on.
#include "core/failure.h"
#include "imaging/worker/picture_memory.h"
#include "imaging/worker/worker_host.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <QCoreApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

using quillane::Bitmap;
using quillane::FileSource;

namespace {

constexpr double kDiffer = 1e9;             ///< of two ways that should be one
constexpr double kAllowedPerFile = 0.2;     ///< milliseconds
constexpr double kAllowedPerMegabyte = 0.1; ///< milliseconds, of pixels and file that go over

/// Takes rows into a picture of this process.
class HereSink : public quillane::worker::PictureSink {
public:
    void Begin(const quillane::worker::PictureShape& shape) override
    {
        const bool rgb = shape.layout == quillane::worker::PixelLayout::Rgb32;
        mImage = quillane::worker::NewPicture(
            shape.width, shape.height, rgb ? QImage::Format_RGB32 : QImage::Format_Grayscale8);
        mBits = mImage.bits();
        mRow = 0;
    }
    uchar* NextRow() override { return mBits + mImage.bytesPerLine() * mRow++; }
    const QImage& Image() const { return mImage; }

private:
    QImage mImage;
    uchar* mBits = nullptr;
    qint64 mRow = 0;
};

/// Gives the rows of a picture of this process.
class HereRows : public quillane::worker::PictureRows {
public:
    explicit HereRows(const QImage& image) : mImage(image)
    {
        mShape.width = image.width();
        mShape.height = image.height();
        mShape.layout = quillane::worker::PixelLayout::Rgb32;
        mShape.fileDepth = 24;
    }
    const quillane::worker::PictureShape& Shape() const override { return mShape; }
    const uchar* NextRow() override { return mImage.constScanLine(mRow++); }

private:
    const QImage& mImage;
    quillane::worker::PictureShape mShape;
    int mRow = 0;
};

/// Takes a file into memory of this process, which grows as the program's own does.
class HereFile : public quillane::worker::FileSink {
public:
    void WriteAt(qint64 position, const void* bytes, qint64 count) override
    {
        const qint64 end = std::max(Size(), position + count);
        if (end > mBytes.capacity()) {
            mBytes.reserve(std::max(end, Size() * 3 / 2));
        }
        mBytes.resize(end);
        std::memcpy(mBytes.data() + position, bytes, size_t(count));
    }
    qint64 Size() const override { return mBytes.size(); }
    const QByteArray& Bytes() const { return mBytes; }

private:
    QByteArray mBytes;
};

/// An uncompressed RGB TIFF in strips of 16 rows.
QByteArray MakeTiff(quint32 width, quint32 height)
{
    QByteArray file("II*\0\0\0\0\0", 8);
    const auto number = [](quint32 value, int bytes) {
        QByteArray result;
        for (int i = 0; i < bytes; ++i) {
            result.append(char(value >> 8 * i));
        }
        return result;
    };
    constexpr quint32 kStripRows = 16;
    QByteArray offsets, counts;
    for (quint32 y = 0; y < height; y += kStripRows) {
        const quint32 bytes = std::min(kStripRows, height - y) * width * 3;
        offsets += number(quint32(file.size()), 4);
        counts += number(bytes, 4);
        QByteArray strip(bytes, Qt::Uninitialized);
        for (quint32 i = 0; i < bytes; ++i) {
            strip[i] = char(i * 7 + y);
        }
        file += strip;
    }
    const quint32 strips = quint32(counts.size() / 4);
    const quint32 bitsAt = quint32(file.size());
    file += number(8, 2) + number(8, 2) + number(8, 2) + number(0, 2);
    const quint32 offsetsAt = quint32(file.size());
    file += offsets;
    const quint32 countsAt = quint32(file.size());
    file += counts;
    const quint32 directoryAt = quint32(file.size());
    const auto entry = [&](quint32 tag, quint32 type, quint32 count, quint32 value) {
        file += number(tag, 2) + number(type, 2) + number(count, 4) + number(value, 4);
    };
    const bool one = strips == 1;
    file += number(9, 2);
    entry(256, 4, 1, width);
    entry(257, 4, 1, height);
    entry(258, 3, 3, bitsAt);
    entry(259, 3, 1, 1);
    entry(262, 3, 1, 2);
    entry(273, 4, strips, one ? 8 : offsetsAt);
    entry(277, 3, 1, 3);
    entry(278, 4, 1, kStripRows);
    entry(279, 4, strips, one ? width * height * 3 : countsAt);
    file += number(0, 4);
    file.replace(4, 4, number(directoryAt, 4));
    return file;
}

template <typename Work> double Milliseconds(Work&& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

/// The tenth that is quickest ends here: what else runs on the machine only adds, and adds more
/// to work that two processes do in turn.
double LowerDecile(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 10];
}

struct Size {
    quint32 width, height;
    int rounds;
};
constexpr Size kSizes[] = {
    {64, 64, 400}, {512, 512, 200}, {1024, 1024, 100}, {3000, 2000, 40}, {4288, 2848, 25}};

/// Prints one line; the cost over what is allowed.
double Tell(const char* what, const Size& size, const std::vector<double>& here,
            const std::vector<double>& there, double megabytes)
{
    const double allowed = kAllowedPerFile + kAllowedPerMegabyte * megabytes;
    const double cost = LowerDecile(there) - LowerDecile(here);
    std::printf("worker %s %ux%u: here %.3f ms, in the process %.3f ms, cost %.3f ms of %.3f ms "
                "allowed, ratio %.2f\n",
                what, size.width, size.height, LowerDecile(here), LowerDecile(there), cost, allowed,
                cost / allowed);
    return cost / allowed;
}

/// Both ways in turn on one size. kDiffer when they do not give the same.
double DecodeBothWays(const Size& size, const QString& path)
{
    std::vector<double> here, there;
    for (int round = 0; round <= size.rounds; ++round) {
        Bitmap bitmap;
        HereSink sink;
        const double t = Milliseconds([&] {
            FileSource source(path);
            bitmap = quillane::worker::Decode(source, "TIFF", {});
        });
        const double h = Milliseconds([&] {
            FileSource source(path);
            quillane::worker::DecodeTiff(source, {}, sink);
        });
        if (bitmap.Pixels() != sink.Image()) {
            return kDiffer;
        }
        if (round > 0) {
            here.push_back(h);
            there.push_back(t);
        }
    }
    return Tell("decode", size, here, there, double(size.width) * size.height * 4 / 1e6);
}

/// The same for writing.
double EncodeBothWays(const Size& size, const QString& path)
{
    FileSource source(path);
    const Bitmap picture = quillane::worker::Decode(source, "TIFF", {});
    quillane::EncodeRequest request;
    request.format = 3;
    quillane::worker::EncodeWish wish;
    wish.format = 3;
    std::vector<double> here, there;
    for (int round = 0; round <= size.rounds; ++round) {
        QByteArray made;
        HereFile file;
        const double t =
            Milliseconds([&] { made = quillane::worker::Encode(picture, request, "TIFF"); });
        const double h = Milliseconds([&] {
            HereRows rows(picture.Pixels());
            quillane::worker::EncodeTiff(rows, wish, file);
        });
        if (made != file.Bytes()) {
            return kDiffer;
        }
        if (round > 0) {
            here.push_back(h);
            there.push_back(t);
        }
    }
    return Tell("encode", size, here, there, double(size.width) * size.height * 7 / 1e6);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    quillane::worker::Configure(
        QCoreApplication::applicationDirPath() + QStringLiteral("/quillane-codec"), 2);
    const QTemporaryDir folder;
    double worst = 0;
    for (const Size& size : kSizes) {
        const QString path = folder.filePath(QStringLiteral("%1.tif").arg(size.width));
        quillane::WriteWholeFile(path, MakeTiff(size.width, size.height));
        for (const double ratio : {DecodeBothWays(size, path), EncodeBothWays(size, path)}) {
            if (ratio == kDiffer) {
                std::fprintf(stderr, "the two ways differ\n");
                return 1;
            }
            worst = std::max(worst, ratio);
        }
    }
    std::printf("worker: worst cost over working here, to what is allowed: ratio %.2f\n", worst);
    quillane::worker::Shutdown();
    return worst <= 1 ? 0 : 1;
}
