#include "imaging/worker_main/codecs/tiff_ycbcr.h"
#include "imaging/worker_main/service/sample_rows.h"
#include <algorithm>
#include <tiffio.h>

namespace quillane::worker {

namespace {

/// ITU-R BT.601, as integers of 16 binary places.
struct YcbcrValues {
    int light, blue, red; ///< the last two around 128, all times 65536
};

YcbcrValues YcbcrOf(const uchar* rgb)
{
    const int r = rgb[0], g = rgb[1], b = rgb[2];
    constexpr int kMiddle = 128 << 16;
    return {19595 * r + 38470 * g + 7471 * b, kMiddle - 11058 * r - 21710 * g + 32768 * b,
            kMiddle + 32768 * r - 27439 * g - 5329 * b};
}

uchar YcbcrByte(qint64 sum, int count)
{
    const qint64 unit = qint64(count) << 16;
    return uchar(std::clamp<qint64>((sum + unit / 2) / unit, 0, 255));
}

/// One row of blocks out of `down` rows of RGB.
void PackYcbcrBlocks(const std::vector<uchar>& rgb, qint32 width, int across, int down,
                     std::vector<uchar>& to)
{
    const size_t rowBytes = size_t(width) * 3;
    for (qint32 x = 0; x < width; x += across) {
        qint64 blue = 0, red = 0;
        for (int dy = 0; dy < down; ++dy) {
            for (int dx = 0; dx < across; ++dx) {
                const size_t column = size_t(std::min(x + dx, width - 1));
                const YcbcrValues value = YcbcrOf(rgb.data() + size_t(dy) * rowBytes + column * 3);
                to.push_back(YcbcrByte(value.light, 1));
                blue += value.blue;
                red += value.red;
            }
        }
        to.push_back(YcbcrByte(blue, across * down));
        to.push_back(YcbcrByte(red, across * down));
    }
}

} // namespace

void SetYcbcrRange(tiff* tiff)
{
    float range[] = {0, 255, 128, 255, 128, 255};
    float weights[] = {0.299F, 0.587F, 0.114F};
    TIFFSetField(tiff, TIFFTAG_REFERENCEBLACKWHITE, range);
    TIFFSetField(tiff, TIFFTAG_YCBCRCOEFFICIENTS, weights);
}

void WriteYcbcrStrips(TiffOutput& output, PictureRows& picture, quint32 rowsPerStrip, int across,
                      int down)
{
    const qint32 width = picture.Shape().width;
    const qint32 height = picture.Shape().height;
    SampleRows rows(picture, SampleKind::Rgb8);
    const size_t rowBytes = size_t(width) * 3;
    std::vector<uchar> block(rowBytes * size_t(down));
    std::vector<uchar> strip;
    const size_t blocks = size_t((width + across - 1) / across);
    strip.reserve(blocks * size_t(across * down + 2) * (rowsPerStrip / size_t(down)));
    for (qint32 y = 0; y < height; y += down) {
        for (int dy = 0; dy < down; ++dy) {
            uchar* to = block.data() + size_t(dy) * rowBytes;
            if (y + dy < height) {
                std::copy_n(rows.Next(), rowBytes, to);
            } else {
                std::copy_n(to - rowBytes, rowBytes, to);
            }
        }
        PackYcbcrBlocks(block, width, across, down, strip);
        const bool last = y + down >= height;
        if (last || quint32(y + down) % rowsPerStrip == 0) {
            const quint32 index = quint32(y) / rowsPerStrip;
            const auto bytes = tmsize_t(strip.size());
            output.Expect(TIFFWriteEncodedStrip(output.Handle(), index, strip.data(), bytes)
                          == bytes);
            strip.clear();
        }
    }
}

} // namespace quillane::worker
