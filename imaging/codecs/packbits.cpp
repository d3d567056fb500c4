#include "imaging/codecs/packbits.h"
#include <algorithm>

namespace quillane::codecs {

namespace {

constexpr qint64 kPackMost = 128; ///< bytes that one code stands for

qint64 PackRun(const uchar* from, qint64 left)
{
    const qint64 most = std::min(left, kPackMost);
    qint64 run = 1;
    while (run < most && from[run] == from[0]) {
        ++run;
    }
    return run;
}

} // namespace

void PutPackBits(ByteWriter& to, const uchar* from, qint64 count)
{
    constexpr qint64 kWorthRun = 3; // a run of two inside literal bytes saves nothing
    for (qint64 at = 0; at < count;) {
        const qint64 run = PackRun(from + at, count - at);
        if (run >= kWorthRun) {
            to.Byte(int(257 - run));
            to.Byte(from[at]);
            at += run;
            continue;
        }
        qint64 end = at;
        while (end < count && end - at < kPackMost
               && PackRun(from + end, count - end) < kWorthRun) {
            ++end;
        }
        to.Byte(int(end - at - 1));
        to.Bytes(from + at, end - at);
        at = end;
    }
}

} // namespace quillane::codecs
