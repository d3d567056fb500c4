#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/encoders.h"
#include "imaging/codecs/fax_codes.h"
#include <algorithm>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr int kFaxLongStep = 64;
constexpr int kFaxMostLong = 1728;
constexpr int kFaxMostRun = 2560;
/// Rows coded by the one above before one that stands for itself (T.4, 4.2.1: K at fine
/// resolution).
constexpr int kFaxRowsTogether = 4;

/// Bits, the first one highest.
class FaxBits {
public:
    void Put(const char* code)
    {
        for (; *code != 0; ++code) {
            mByte = mByte << 1 | (*code == '1' ? 1 : 0);
            if (++mCount == 8) {
                Flush();
            }
        }
    }
    QByteArray Take()
    {
        while (mCount > 0) {
            Put("0");
        }
        return mBytes.Take();
    }

private:
    void Flush()
    {
        mBytes.Byte(mByte);
        mByte = mCount = 0;
    }
    ByteWriter mBytes;
    int mByte = 0;
    int mCount = 0;
};

/// Places where the colour changes, from white at the left; ended by the width thrice, so that
/// looking ahead never leaves the row.
using FaxChanges = std::vector<int>;

FaxChanges FaxFindChanges(const QImage& pixels, int y, std::vector<uchar>& row)
{
    PackBilevel(pixels, y, true, row.data());
    FaxChanges changes;
    const int width = pixels.width();
    bool black = false;
    for (int x = 0; x < width; ++x) {
        const uchar byte = row[size_t(x >> 3)];
        if ((x & 7) == 0 && byte == (black ? 0xff : 0) && x + 8 <= width) {
            x += 7; // nothing changes in this byte
            continue;
        }
        if (((byte & 0x80 >> (x & 7)) != 0) != black) {
            black = !black;
            changes.push_back(x);
        }
    }
    changes.insert(changes.end(), 3, width);
    return changes;
}

void FaxPutRun(FaxBits& to, int length, bool black)
{
    for (; length > kFaxMostRun; length -= kFaxMostRun) {
        to.Put(fax::kLongest[(kFaxMostRun - kFaxMostLong) / kFaxLongStep - 1]);
    }
    if (length > kFaxMostLong) {
        to.Put(fax::kLongest[(length - kFaxMostLong) / kFaxLongStep - 1]);
    } else if (length >= kFaxLongStep) {
        const int index = length / kFaxLongStep - 1;
        to.Put(black ? fax::kBlackLong[index] : fax::kWhiteLong[index]);
    }
    const int rest = length % kFaxLongStep;
    to.Put(black ? fax::kBlackShort[rest] : fax::kWhiteShort[rest]);
}

void FaxPutAlone(FaxBits& to, const FaxChanges& row, int width)
{
    bool black = false;
    int at = 0;
    for (size_t i = 0; at < width; ++i) {
        FaxPutRun(to, row[i] - at, black);
        at = row[i];
        black = !black;
    }
}

/// The row by what changes against the one above (T.6, 2.2).
void FaxPutAgainst(FaxBits& to, const FaxChanges& row, const FaxChanges& above, int width)
{
    int at = -1; // an imagined white pixel before the first
    bool black = false;
    size_t next = 0;
    size_t over = 0;
    while (at < width) {
        // The first change above to the right of here that goes to the other colour.
        while (over > 0 && above[over - 1] > at) {
            --over;
        }
        while (above[over] < width && (above[over] <= at || (over % 2 == 1) != black)) {
            ++over;
        }
        const int b1 = above[over];
        const int b2 = b1 < width ? above[over + 1] : width;
        const int a1 = row[next];
        if (b2 < a1) {
            to.Put(fax::kPass);
            at = b2;
            continue;
        }
        const int shift = a1 - b1;
        if (std::abs(shift) <= 3) {
            to.Put(fax::kVertical[shift + 3]);
            at = a1;
            black = !black;
            ++next;
            if (a1 >= width) {
                break;
            }
            continue;
        }
        to.Put(fax::kHorizontal);
        const int a2 = row[next + 1];
        FaxPutRun(to, a1 - std::max(at, 0), black);
        FaxPutRun(to, a2 - a1, !black);
        at = a2;
        next += 2;
        if (a2 >= width) {
            break;
        }
    }
}

} // namespace

QByteArray FaxEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const QImage& pixels = picture.Pixels();
    const int width = pixels.width();
    const bool group4 = request.format == 68;
    const bool coupled = request.format == 67;
    std::vector<uchar> row((size_t(width) + 7) / 8);
    FaxChanges above(3, width); // a white row
    FaxBits bits;
    for (int y = 0; y < pixels.height(); ++y) {
        FaxChanges changes = FaxFindChanges(pixels, y, row);
        const bool alone = !group4 && (!coupled || y % kFaxRowsTogether == 0);
        if (!group4) {
            bits.Put(fax::kEndOfLine);
            if (coupled) {
                bits.Put(alone ? "1" : "0");
            }
        }
        if (alone) {
            FaxPutAlone(bits, changes, width);
        } else {
            FaxPutAgainst(bits, changes, above, width);
        }
        above = std::move(changes);
    }
    for (int i = 0; i < (group4 ? 2 : 6); ++i) { // the end of the page
        bits.Put(fax::kEndOfLine);
        if (coupled) {
            bits.Put("1");
        }
    }
    return bits.Take();
}

} // namespace quillane::codecs
