#include "imaging/worker_main/codecs/fax_codes.h"
#include "imaging/codecs/fax_codes.h"
#include "imaging/limits.h"
#include <algorithm>
#include <array>
#include <cstring>

namespace quillane::worker {

namespace {

constexpr int kFaxLongest = 13; ///< bits of a code

struct FaxCode {
    qint16 run = -1;
    quint8 bits = 0;
};

/// What the next thirteen bits begin with.
class FaxTable {
public:
    explicit FaxTable(bool black)
    {
        int run = 0;
        for (const char* code : black ? codecs::fax::kBlackShort : codecs::fax::kWhiteShort) {
            Add(code, run++);
        }
        for (const char* code : black ? codecs::fax::kBlackLong : codecs::fax::kWhiteLong) {
            Add(code, run);
            run += 64;
        }
        for (const char* code : codecs::fax::kLongest) {
            Add(code, run);
            run += 64;
        }
    }
    const FaxCode& Of(quint32 bits) const { return mCodes[bits]; }

private:
    void Add(const char* code, int run)
    {
        const int length = int(std::strlen(code));
        quint32 value = 0;
        for (const char* p = code; *p; ++p) {
            value = value << 1 | quint32(*p == '1');
        }
        const int spare = kFaxLongest - length;
        for (quint32 i = 0; i < 1u << spare; ++i) {
            mCodes[value << spare | i] = {qint16(run), quint8(length)};
        }
    }
    std::array<FaxCode, 1 << kFaxLongest> mCodes{};
};

const FaxTable& FaxTableOf(bool black)
{
    static const FaxTable whites(false);
    static const FaxTable blacks(true);
    return black ? blacks : whites;
}

struct FaxMode {
    enum Kind : quint8 { Pass, Horizontal, Vertical, None } kind;
    int offset; ///< of Vertical
    int bits;
};

/// ITU-T T.4, table 4.
FaxMode PeekFaxMode(const FaxBits& bits)
{
    const quint32 next = bits.Peek(7);
    if (next & 0x40) {
        return {FaxMode::Vertical, 0, 1};
    }
    switch (next >> 4) {
    case 3:
        return {FaxMode::Vertical, 1, 3};
    case 2:
        return {FaxMode::Vertical, -1, 3};
    case 1:
        return {FaxMode::Horizontal, 0, 3};
    default:
        break;
    }
    if (next >> 3 == 1) {
        return {FaxMode::Pass, 0, 4};
    }
    switch (next) {
    case 6:
    case 7:
        return {FaxMode::Vertical, 2, 6};
    case 4:
    case 5:
        return {FaxMode::Vertical, -2, 6};
    case 3:
        return {FaxMode::Vertical, 3, 7};
    case 2:
        return {FaxMode::Vertical, -3, 7};
    default:
        return {FaxMode::None, 0, 0};
    }
}

} // namespace

FaxBits::FaxBits(QByteArray bytes) : mBytes(std::move(bytes))
{ }

quint32 FaxBits::Peek(int count) const
{
    quint32 value = 0;
    const qint64 first = mAt / 8;
    for (qint64 i = first; i < first + 4; ++i) {
        uchar byte = i < mBytes.size() ? uchar(mBytes[i]) : uchar(0);
        if (mLow) {
            byte = uchar((byte & 0xf0) >> 4 | (byte & 0x0f) << 4);
            byte = uchar((byte & 0xcc) >> 2 | (byte & 0x33) << 2);
            byte = uchar((byte & 0xaa) >> 1 | (byte & 0x55) << 1);
        }
        value = value << 8 | byte;
    }
    return value << mAt % 8 >> (32 - count);
}

int TakeFaxRun(FaxBits& bits, bool black)
{
    const FaxTable& table = FaxTableOf(black);
    int total = 0;
    for (;;) {
        const FaxCode& code = table.Of(bits.Peek(kFaxLongest));
        if (code.run < 0 || total > limits::kMaxSide || bits.Left() < code.bits) {
            return -1;
        }
        bits.Take(code.bits);
        total += code.run;
        if (code.run < 64) {
            return total;
        }
    }
}

bool AtFaxLineEnd(const FaxBits& bits)
{
    return bits.Peek(11) == 0 && bits.Left() >= 12;
}

bool SkipToFaxLine(FaxBits& bits, qint64 reach)
{
    int zeros = 0;
    for (; bits.Left() > 0; bits.Take(1)) {
        if (bits.Peek(1) == 0) {
            ++zeros;
        } else if (zeros >= 11) {
            bits.Take(1);
            return true;
        } else {
            zeros = 0;
        }
        if (--reach < 0 && zeros == 0) {
            return false;
        }
    }
    return false;
}

FaxLine TakeFaxLine2D(FaxBits& bits, int width, std::vector<int>& changes)
{
    const std::vector<int> before = std::move(changes);
    changes.clear();
    // Behind the last change of the line before stands its end.
    const auto changeAt = [&](size_t index) {
        return index < before.size() ? before[index] : width;
    };
    int at = -1;
    bool black = false;
    size_t next = 0; // the first change of the line before that can still lie ahead
    while (at < width) {
        // The change ahead to the colour that is not the running one.
        while (next > 0 && changeAt(next - 1) > at) {
            --next;
        }
        while (next < before.size() && (before[next] <= at || (next % 2 == 1) != black)) {
            ++next;
        }
        const int b1 = changeAt(next);
        const FaxMode mode = PeekFaxMode(bits);
        if (bits.Left() <= 0) {
            return FaxLine::OutOfBits;
        }
        if (mode.kind == FaxMode::None || bits.Left() < mode.bits) {
            return bits.Left() < 12 ? FaxLine::OutOfBits : FaxLine::Bad;
        }
        bits.Take(mode.bits);
        if (mode.kind == FaxMode::Pass) {
            at = changeAt(next + 1);
        } else if (mode.kind == FaxMode::Vertical) {
            const int to = b1 + mode.offset;
            if (to < std::max(at, 0) || to > width || (to == at && to != 0)) {
                return FaxLine::Bad;
            }
            changes.push_back(to);
            at = to;
            black = !black;
        } else {
            const int first = TakeFaxRun(bits, black);
            const int second = first < 0 ? -1 : TakeFaxRun(bits, !black);
            if (second < 0) {
                return bits.Left() < kFaxLongest ? FaxLine::OutOfBits : FaxLine::Bad;
            }
            const int from = std::max(at, 0) + first;
            if (from + second > width) {
                return FaxLine::Bad;
            }
            changes.push_back(from);
            changes.push_back(from + second);
            at = from + second;
        }
    }
    return FaxLine::Good;
}

} // namespace quillane::worker
