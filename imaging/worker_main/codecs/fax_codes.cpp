#include "imaging/worker_main/codecs/fax_codes.h"
#include "imaging/limits.h"
#include <algorithm>
#include <array>
#include <cstring>

namespace quillane::worker {

namespace {

// ITU-T T.4, tables 2, 3a and 3b: codes in the order of the runs that they stand for.
/// Runs of 0 to 63 white pixels.
constexpr const char* kFaxWhite[] = {
    "00110101", "000111",   "0111",     "1000",     "1011",     "1100",     "1110",     "1111",
    "10011",    "10100",    "00111",    "01000",    "001000",   "000011",   "110100",   "110101",
    "101010",   "101011",   "0100111",  "0001100",  "0001000",  "0010111",  "0000011",  "0000100",
    "0101000",  "0101011",  "0010011",  "0100100",  "0011000",  "00000010", "00000011", "00011010",
    "00011011", "00010010", "00010011", "00010100", "00010101", "00010110", "00010111", "00101000",
    "00101001", "00101010", "00101011", "00101100", "00101101", "00000100", "00000101", "00001010",
    "00001011", "01010010", "01010011", "01010100", "01010101", "00100100", "00100101", "01011000",
    "01011001", "01011010", "01011011", "01001010", "01001011", "00110010", "00110011", "00110100"};
/// Runs of 0 to 63 black pixels.
constexpr const char* kFaxBlack[] = {
    "0000110111",   "010",          "11",           "10",           "011",          "0011",
    "0010",         "00011",        "000101",       "000100",       "0000100",      "0000101",
    "0000111",      "00000100",     "00000111",     "000011000",    "0000010111",   "0000011000",
    "0000001000",   "00001100111",  "00001101000",  "00001101100",  "00000110111",  "00000101000",
    "00000010111",  "00000011000",  "000011001010", "000011001011", "000011001100", "000011001101",
    "000001101000", "000001101001", "000001101010", "000001101011", "000011010010", "000011010011",
    "000011010100", "000011010101", "000011010110", "000011010111", "000001101100", "000001101101",
    "000011011010", "000011011011", "000001010100", "000001010101", "000001010110", "000001010111",
    "000001100100", "000001100101", "000001010010", "000001010011", "000000100100", "000000110111",
    "000000111000", "000000100111", "000000101000", "000001011000", "000001011001", "000000101011",
    "000000101100", "000001011010", "000001100110", "000001100111"};
/// Runs of 64, 128 .. 1728 white pixels, to be followed by a shorter one.
constexpr const char* kFaxWhiteMore[] = {
    "11011",     "10010",     "010111",    "0110111",   "00110110",  "00110111",  "01100100",
    "01100101",  "01101000",  "01100111",  "011001100", "011001101", "011010010", "011010011",
    "011010100", "011010101", "011010110", "011010111", "011011000", "011011001", "011011010",
    "011011011", "010011000", "010011001", "010011010", "011000",    "010011011"};
/// The same of black pixels.
constexpr const char* kFaxBlackMore[] = {
    "0000001111",    "000011001000",  "000011001001",  "000001011011",  "000000110011",
    "000000110100",  "000000110101",  "0000001101100", "0000001101101", "0000001001010",
    "0000001001011", "0000001001100", "0000001001101", "0000001110010", "0000001110011",
    "0000001110100", "0000001110101", "0000001110110", "0000001110111", "0000001010010",
    "0000001010011", "0000001010100", "0000001010101", "0000001011010", "0000001011011",
    "0000001100100", "0000001100101"};
/// Runs of 1792, 1856 .. 2560 pixels of either colour.
constexpr const char* kFaxMore[] = {"00000001000",  "00000001100",  "00000001101",  "000000010010",
                                    "000000010011", "000000010100", "000000010101", "000000010110",
                                    "000000010111", "000000011100", "000000011101", "000000011110",
                                    "000000011111"};

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
        for (const char* code : black ? kFaxBlack : kFaxWhite) {
            Add(code, run++);
        }
        for (const char* code : black ? kFaxBlackMore : kFaxWhiteMore) {
            Add(code, run);
            run += 64;
        }
        for (const char* code : kFaxMore) {
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
