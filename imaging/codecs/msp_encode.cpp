#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/encoders.h"
#include <algorithm>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr int kMspMostSide = 65535; ///< two bytes of the header
constexpr int kMspWords = 16;       ///< of the header
constexpr int kMspChecked = 12;     ///< that the check sum covers

/// Runs as 0, count, value; other bytes behind their count.
void MspPutRow(ByteWriter& to, const std::vector<uchar>& row)
{
    constexpr size_t kMost = 255;
    constexpr size_t kWorthRun = 4;
    const auto run = [&](size_t at) {
        size_t end = at + 1;
        while (end < row.size() && end - at < kMost && row[end] == row[at]) {
            ++end;
        }
        return end - at;
    };
    for (size_t at = 0; at < row.size();) {
        const size_t count = run(at);
        if (count >= kWorthRun) {
            to.Byte(0);
            to.Byte(int(count));
            to.Byte(row[at]);
            at += count;
            continue;
        }
        size_t end = at;
        while (end < row.size() && end - at < kMost && run(end) < kWorthRun) {
            ++end;
        }
        to.Byte(int(end - at));
        to.Bytes(&row[at], qint64(end - at));
        at = end;
    }
}

} // namespace

QByteArray MspEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits("Microsoft Paint picture", picture, kMspMostSide, kMspMostSide);
    const quint32 width = quint32(picture.Width());
    const quint32 height = quint32(picture.Height());
    // Mark, sides, shape of a pixel on screen and printer, sides of the page, two unused.
    const quint32 across = request.xResolution > 0 && request.yResolution > 0
        ? quint32(std::min(request.xResolution, 0xffff))
        : 1;
    const quint32 down = request.xResolution > 0 && request.yResolution > 0
        ? quint32(std::min(request.yResolution, 0xffff))
        : 1;
    const quint32 head[kMspChecked] = {0x694c, 0x536e, width, height, across, down,
                                       across, down,   width, height, 0,      0};
    ByteWriter file;
    quint32 sum = 0;
    for (const quint32 word : head) {
        file.Little16(word);
        sum ^= word;
    }
    file.Little16(sum);
    file.Fill(2 * (kMspWords - kMspChecked - 1));

    ByteWriter data;
    std::vector<uchar> row((size_t(width) + 7) / 8);
    for (int y = 0; y < picture.Height(); ++y) {
        const qint64 before = data.Size();
        PackBilevel(picture.Pixels(), y, false, row.data());
        MspPutRow(data, row);
        file.Little16(quint32(data.Size() - before));
    }
    file.Text(data.Take());
    return file.Take();
}

} // namespace quillane::codecs
