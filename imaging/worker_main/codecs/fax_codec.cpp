// Bare fax pages: nothing but CCITT codes, so that the scheme, the order of the bits and the size
// are found out from the codes themselves.
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/fax_codes.h"
#include "imaging/worker_main/codecs/fax_wrap.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <algorithm>

namespace quillane::worker {

namespace {

constexpr char kFaxName[] = "fax page";
constexpr qint64 kFaxMaxBytes = 64ll << 20;
constexpr qint64 kFaxFill = 4096;         ///< bits of fill before the first line
constexpr int kFaxLooks = 32;             ///< lines that the width is taken from
constexpr int kFaxEndMarks = 2;           ///< marks in a row that end a page
constexpr int kFaxWidest = 10'000;        ///< of a page whose width is searched for
constexpr qint64 kFaxSearch = 40'000'000; ///< lines' pixels that a search may go through

/// Widths of the standards' papers and resolutions.
constexpr int kFaxUsualWidths[] = {1728, 2048, 2432, 864,  1216, 1024, 2592, 3072, 3456, 3648,
                                   4096, 4864, 2550, 2560, 1700, 5184, 6144, 7296, 640,  800};

/// Width of most of the first lines of Group 3, and how many of them say so. With tags a bit
/// behind each mark says whether the line stands for itself.
struct FaxGuess {
    int width = 0;
    int agreeing = 0;
    bool twoDimensional = false;
    bool lowBitFirst = false;
};

/// One line of runs up to the next mark; its width, or -1.
int FaxLineWidth(FaxBits& bits)
{
    int width = 0;
    bool black = false;
    while (!AtFaxLineEnd(bits)) {
        const int run = TakeFaxRun(bits, black);
        if (run < 0 || width > limits::kMaxSide) {
            return -1;
        }
        width += run;
        black = !black;
    }
    return width;
}

FaxGuess FaxGuessGroup3(FaxBits& bits, bool low, bool tagged)
{
    FaxGuess guess;
    guess.twoDimensional = tagged;
    guess.lowBitFirst = low;
    bits.SetLowBitFirst(low);
    bits.Seek(0);
    if (!SkipToFaxLine(bits, kFaxFill)) {
        return guess;
    }
    std::vector<int> widths;
    widths.reserve(kFaxLooks);
    for (int line = 0; line < kFaxLooks && bits.Left() > 0; ++line) {
        const bool alone = !tagged || bits.Peek(1) == 1;
        bits.Take(tagged ? 1 : 0);
        const int width = alone ? FaxLineWidth(bits) : 0;
        if (width > 0) {
            widths.push_back(width);
        }
        if (!SkipToFaxLine(bits, bits.Left())) {
            break;
        }
    }
    for (const int width : widths) {
        const int agreeing = int(std::count(widths.begin(), widths.end(), width));
        if (agreeing > guess.agreeing) {
            guess.width = width;
            guess.agreeing = agreeing;
        }
    }
    return guess;
}

/// Lines of Group 3, up to the marks that end the page.
int FaxCountLines(FaxBits& bits, const FaxGuess& guess)
{
    bits.SetLowBitFirst(guess.lowBitFirst);
    bits.Seek(0);
    int lines = 0, marks = 0;
    if (!SkipToFaxLine(bits, kFaxFill)) {
        return 0;
    }
    while (bits.Left() > 0 && lines < limits::kMaxSide) {
        bits.Take(guess.twoDimensional ? 1 : 0);
        if (AtFaxLineEnd(bits)) {
            if (++marks >= kFaxEndMarks) {
                break;
            }
        } else {
            marks = 0;
            ++lines;
        }
        if (!SkipToFaxLine(bits, bits.Left())) {
            break;
        }
    }
    return lines;
}

struct FaxTrial {
    int rows = 0;
    bool whole =
        false; ///< the mark that ends a page of Group 4 was met, or the bits ended with a row
    bool broken = false; ///< a code made no sense before
};

/// Decodes the stream as Group 4 of that width.
FaxTrial FaxTryGroup4(FaxBits& bits, int width, qint64& budget)
{
    FaxTrial trial;
    bits.Seek(0);
    std::vector<int> changes;
    constexpr quint32 kEndOfBlock = 0x001001; // two end-of-line marks
    while (trial.rows < limits::kMaxSide && budget > 0) {
        if (bits.Left() >= 12 && bits.Peek(24) == kEndOfBlock) {
            trial.whole = true;
            return trial;
        }
        if (bits.Left() < 8) {
            return trial;
        }
        const FaxLine line = TakeFaxLine2D(bits, width, changes);
        if (line == FaxLine::OutOfBits) {
            return trial;
        }
        if (line == FaxLine::Bad) {
            trial.broken = true;
            return trial;
        }
        ++trial.rows;
        budget -= 8 + qint64(changes.size());
    }
    trial.broken = true;
    return trial;
}

/// The width under which the codes make sense up to the end: the usual ones are tried first.
BarePixels FaxFindGroup4(FaxBits& bits)
{
    BarePixels best;
    qint64 budget = kFaxSearch;
    const auto take = [&](int width, int rows, bool low) {
        best.width = width;
        best.height = rows;
        best.lowBitFirst = low;
    };
    for (const bool low : {false, true}) {
        bits.SetLowBitFirst(low);
        const auto ends = [&](int width) {
            const FaxTrial trial = FaxTryGroup4(bits, width, budget);
            if (trial.rows > 0 && trial.whole) {
                take(width, trial.rows, low);
                return true;
            }
            // A page that was cut off makes sense as far as it goes.
            constexpr int kConvincing = 8;
            if (!trial.broken && trial.rows >= kConvincing && best.width == 0) {
                take(width, trial.rows, low);
            }
            return false;
        };
        for (const int width : kFaxUsualWidths) {
            if (ends(width)) {
                return best;
            }
        }
        for (int width = 1; width <= kFaxWidest && budget > 0; ++width) {
            if (ends(width)) {
                return best;
            }
        }
    }
    return best;
}

BarePixels FaxFind(ByteSource& source)
{
    FaxBits bits(ReadFaxBytes(source, kFaxMaxBytes, kFaxName, true));
    FaxGuess best;
    for (const bool low : {false, true}) {
        for (const bool tagged : {false, true}) {
            const FaxGuess guess = FaxGuessGroup3(bits, low, tagged);
            if (guess.agreeing > best.agreeing) {
                best = guess;
            }
        }
    }
    BarePixels pixels;
    if (best.agreeing > 0) {
        pixels.width = best.width;
        pixels.height = FaxCountLines(bits, best);
        pixels.coding = BareCoding::Group3;
        pixels.twoDimensional = best.twoDimensional;
        pixels.lowBitFirst = best.lowBitFirst;
    } else {
        pixels = FaxFindGroup4(bits);
        if (pixels.width == 0) {
            ThrowFaxUnsupported(kFaxName,
                                QStringLiteral("does not tell its width, and its codes make no "
                                               "sense under any"));
        }
    }
    pixels.bytes = source.Size();
    CheckFaxSize(kFaxName, pixels.width, pixels.height);
    return pixels;
}

} // namespace

ImageFacts ProbeFax(ByteSource& source)
{
    const BarePixels pixels = FaxFind(source);
    ImageFacts facts;
    facts.width = pixels.width;
    facts.height = pixels.height;
    facts.bits = 1;
    const bool group3 = pixels.coding == BareCoding::Group3;
    facts.format = !group3 ? 68 : pixels.twoDimensional ? 67 : 66;
    facts.compression = group3 ? QStringLiteral("CCITT Group 3") : QStringLiteral("CCITT Group 4");
    return facts;
}

bool DecodeFax(ByteSource& source, const PictureWish&, PictureSink& sink)
{
    return DecodeBarePixels(source, FaxFind(source), kFaxName, sink);
}

} // namespace quillane::worker
