// What it costs to decode a TIFF in the decoding process instead of here: the same decoder on
// the same files, both ways in turn, from the second file on.
#include "core/failure.h"
#include "imaging/worker/picture_memory.h"
#include "imaging/worker/worker_host.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <QCoreApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

using quillane::Bitmap;
using quillane::FileSource;

namespace {

constexpr double kAllowedPerFile = 0.2;     ///< milliseconds
constexpr double kAllowedPerMegabyte = 0.1; ///< milliseconds, of decoded pixels

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

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    quillane::worker::Configure(
        QCoreApplication::applicationDirPath() + QStringLiteral("/quillane-codec"), 2);
    const QTemporaryDir folder;
    struct Size {
        quint32 width, height;
        int rounds;
    };
    double worst = 0;
    for (const Size& size : {Size{64, 64, 400}, Size{512, 512, 200}, Size{1024, 1024, 100},
                             Size{3000, 2000, 40}, Size{4288, 2848, 25}}) {
        const QString path = folder.filePath(QStringLiteral("%1.tif").arg(size.width));
        quillane::WriteWholeFile(path, MakeTiff(size.width, size.height));
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
                std::fprintf(stderr, "the two pictures differ\n");
                return 1;
            }
            if (round > 0) {
                here.push_back(h);
                there.push_back(t);
            }
        }
        const double megabytes = double(size.width) * size.height * 4 / 1e6;
        const double allowed = kAllowedPerFile + kAllowedPerMegabyte * megabytes;
        const double cost = LowerDecile(there) - LowerDecile(here);
        worst = std::max(worst, cost / allowed);
        std::printf("worker %ux%u: here %.3f ms, in the process %.3f ms, cost %.3f ms of %.3f ms "
                    "allowed, ratio %.2f\n",
                    size.width, size.height, LowerDecile(here), LowerDecile(there), cost, allowed,
                    cost / allowed);
    }
    std::printf("worker: worst cost over decoding here, to what is allowed: ratio %.2f\n", worst);
    quillane::worker::Shutdown();
    return worst <= 1 ? 0 : 1;
}
