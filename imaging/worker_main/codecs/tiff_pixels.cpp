#include "imaging/worker_main/codecs/tiff_pixels.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <tiffio.h>

namespace quillane::worker {

namespace {

/// A 16-bit float; NaN and infinities stay what they are.
double HalfToDouble(std::uint16_t half)
{
    const int exponent = half >> 10 & 0x1f;
    const int fraction = half & 0x3ff;
    double value;
    if (exponent == 0x1f) {
        value = fraction ? std::nan("") : HUGE_VAL;
    } else if (exponent == 0) {
        value = std::ldexp(fraction, -24);
    } else {
        value = std::ldexp(fraction + 1024, exponent - 25);
    }
    return half & 0x8000 ? -value : value;
}

/// The palette as 8 bits a channel. Some writers store 8-bit values in its 16-bit fields.
bool TiffPalette(TIFF* tiff, const TiffTags& tags, std::vector<quint32>& colours)
{
    std::uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue)) {
        return false;
    }
    const size_t count = size_t(1) << tags.bits;
    const auto narrow = [count](const std::uint16_t* channel) {
        return std::all_of(channel, channel + count, [](std::uint16_t v) { return v < 256; });
    };
    const int shift = narrow(red) && narrow(green) && narrow(blue) ? 0 : 8;
    for (size_t i = 0; i < count; ++i) {
        colours.push_back(0xff000000u | quint32(red[i] >> shift) << 16
                          | quint32(green[i] >> shift) << 8 | quint32(blue[i] >> shift));
    }
    return true;
}

quint32 Opaque(std::uint16_t red, std::uint16_t green, std::uint16_t blue)
{
    return 0xff000000u | quint32(red >> 8) << 16 | quint32(green >> 8) << 8 | quint32(blue >> 8);
}

/// Premultiplied to plain, 16 bits.
std::uint16_t Plain(std::uint16_t value, std::uint16_t alpha)
{
    return alpha == 0 ? std::uint16_t(0)
                      : std::uint16_t(std::min(65535u, (value * 65535u + alpha / 2u) / alpha));
}

} // namespace

TiffPixels::TiffPixels(const TiffTags& tags, PixelLayout layout, int used)
    : mTags(tags),
      mLayout(layout),
      mUsed(used),
      mRowBytes(RowBytes(tags.width, BitsOf(layout))),
      mSamples(size_t(tags.width) * size_t(used))
{
    if (tags.sampleFormat == SAMPLEFORMAT_IEEEFP) {
        mSampling = Sampling::Float;
    } else if (tags.bits > 16) {
        mSampling =
            tags.sampleFormat == SAMPLEFORMAT_INT ? Sampling::WideSigned : Sampling::WideUnsigned;
    }
}

std::optional<TiffPixels> TiffPixels::For(TiffFile& file, const TiffTags& tags, PictureShape& shape)
{
    const bool isFloat = tags.sampleFormat == SAMPLEFORMAT_IEEEFP;
    const bool isWide = tags.bits > 16;
    if (isFloat ? tags.bits != 16 && tags.bits != 32 && tags.bits != 64
                : isWide && tags.bits != 32) {
        return {};
    }
    if (tags.sampleFormat == SAMPLEFORMAT_COMPLEXINT
        || tags.sampleFormat == SAMPLEFORMAT_COMPLEXIEEEFP) {
        return {};
    }
    const bool deep = tags.bits > 8;
    const bool hasAlpha = tags.extraSamples > 0
        && (tags.alpha == EXTRASAMPLE_ASSOCALPHA || tags.alpha == EXTRASAMPLE_UNASSALPHA);
    shape.exact = !isFloat && !isWide && tags.sampleFormat != SAMPLEFORMAT_INT
        && !(hasAlpha && tags.alpha == EXTRASAMPLE_ASSOCALPHA);
    const auto make = [&](PixelLayout layout, int used) {
        shape.layout = layout;
        return TiffPixels(tags, layout, used);
    };

    switch (tags.photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        if (hasAlpha && tags.samples == 2) {
            return make(deep ? PixelLayout::Rgba64 : PixelLayout::Argb32, 2);
        }
        if (tags.bits == 1 && tags.samples == 1) {
            return make(PixelLayout::Mono, 1);
        }
        return make(deep ? PixelLayout::Grey16 : PixelLayout::Grey8, 1);
    case PHOTOMETRIC_PALETTE:
        if (tags.bits > 8 || isFloat || !TiffPalette(file.Handle(), tags, shape.colours)) {
            return {};
        }
        return make(PixelLayout::Indexed8, 1);
    case PHOTOMETRIC_YCBCR:
        // libtiff's JPEG decoder hands out RGB.
        if (tags.compression != COMPRESSION_JPEG || tags.bits != 8) {
            return {};
        }
        [[fallthrough]];
    case PHOTOMETRIC_RGB:
        if (tags.samples < 3) {
            return {};
        }
        if (hasAlpha && tags.samples >= 4) {
            return make(deep ? PixelLayout::Rgba64 : PixelLayout::Argb32, 4);
        }
        return make(deep ? PixelLayout::Rgbx64 : PixelLayout::Rgb32, 3);
    case PHOTOMETRIC_SEPARATED:
        if (tags.samples < 4 || (tags.inkSet != INKSET_CMYK && tags.samples > 5)) {
            return {};
        }
        shape.exact = shape.exact && !deep;
        return make(PixelLayout::Cmyk32, 4);
    default:
        return {};
    }
}

double TiffPixels::WideValue(const uchar* from, qint64 index) const
{
    const auto load = [&](auto value) {
        std::memcpy(&value, from + index * qint64(sizeof(value)), sizeof(value));
        return value;
    };
    switch (mSampling) {
    case Sampling::WideUnsigned:
        return load(std::uint32_t());
    case Sampling::WideSigned:
        return load(std::int32_t());
    default:
        return mTags.bits == 16 ? HalfToDouble(load(std::uint16_t()))
            : mTags.bits == 32  ? double(load(float()))
                                : load(double());
    }
}

void TiffPixels::Measure(const TiffRows& rows)
{
    for (int sample = 0; sample < mUsed; ++sample) {
        const uchar* from = rows.Samples(mTags.separate ? sample : 0);
        const int step = mTags.separate ? 1 : mTags.samples;
        const int first = mTags.separate ? 0 : sample;
        for (qint64 x = 0; x < qint64(mTags.width); ++x) {
            const double value = WideValue(from, x * step + first);
            if (!std::isfinite(value)) {
                continue;
            }
            mLow = mAnyValue ? std::min(mLow, value) : value;
            mHigh = mAnyValue ? std::max(mHigh, value) : value;
            mAnyValue = true;
        }
    }
}

void TiffPixels::Unpack(const TiffRows& rows, int sample, std::uint16_t* to, bool scaled) const
{
    const uchar* from = rows.Samples(mTags.separate ? sample : 0);
    const qint64 step = mTags.separate ? 1 : mTags.samples;
    const qint64 first = mTags.separate ? 0 : sample;
    const qint64 width = mTags.width;
    if (NeedsRange()) {
        // Floats between 0 and 1 are shown as they are, others from the lowest to the highest.
        const bool unit = mSampling == Sampling::Float && mLow >= 0 && mHigh <= 1;
        const double low = unit ? 0 : mLow;
        const double span = unit ? 1 : std::max(mHigh - mLow, 1e-300);
        for (qint64 x = 0; x < width; ++x) {
            const double value = (WideValue(from, x * step + first) - low) / span;
            to[x] = value > 0 ? std::uint16_t(std::lround(std::min(value, 1.0) * 65535)) : 0;
        }
        return;
    }
    const int bits = mTags.bits;
    const std::uint32_t most = std::max(1u, (1u << bits) - 1);
    const std::uint32_t flip = mTags.sampleFormat == SAMPLEFORMAT_INT ? 1u << (bits - 1) : 0;
    for (qint64 x = 0; x < width; ++x) {
        const qint64 index = x * step + first;
        std::uint32_t value;
        if (bits == 8) {
            value = from[index];
        } else if (bits == 16) {
            std::uint16_t two;
            std::memcpy(&two, from + index * 2, 2);
            value = two;
        } else {
            const qint64 bit = index * bits;
            value = 0;
            for (int i = 0; i < bits; ++i) {
                value = value << 1 | (from[(bit + i) >> 3] >> (7 - ((bit + i) & 7)) & 1u);
            }
        }
        value ^= flip;
        to[x] = std::uint16_t(scaled ? (value * 65535u + most / 2) / most : value);
    }
}

bool TiffPixels::ConvertPlainly(const uchar* from, uchar* to) const
{
    if (mTags.separate || NeedsRange() || mTags.sampleFormat == SAMPLEFORMAT_INT) {
        return false;
    }
    const size_t width = mTags.width;
    const uchar flip = mTags.photometric == PHOTOMETRIC_MINISWHITE ? 0xff : 0;
    const int samples = mTags.samples;
    if (mLayout == PixelLayout::Mono) {
        std::transform(from, from + (width + 7) / 8, to, [flip](uchar v) { return v ^ flip; });
        return true;
    }
    const bool single = samples == 1
        && ((mTags.bits == 8 && mLayout != PixelLayout::Argb32)
            || (mTags.bits == 16 && mLayout == PixelLayout::Grey16));
    if (single) {
        std::transform(from, from + width * mTags.bits / 8, to,
                       [flip](uchar v) { return v ^ flip; });
        return true;
    }
    if (mTags.bits != 8) {
        return false;
    }
    if (mLayout == PixelLayout::Cmyk32 && samples == 4) {
        std::memcpy(to, from, width * 4);
        return true;
    }
    if (mLayout == PixelLayout::Rgb32) {
        auto* pixels = reinterpret_cast<quint32*>(to);
        for (size_t x = 0; x < width; ++x, from += samples) {
            pixels[x] = 0xff000000u | quint32(from[0]) << 16 | quint32(from[1]) << 8 | from[2];
        }
        return true;
    }
    return false;
}

void TiffPixels::Put(uchar* to) const
{
    const size_t width = mTags.width;
    const auto at = [&](int sample, size_t x) { return mSamples[size_t(sample) * width + x]; };
    const bool isPlain = mTags.alpha != EXTRASAMPLE_ASSOCALPHA;
    auto* words = reinterpret_cast<std::uint16_t*>(to);
    auto* pixels = reinterpret_cast<quint32*>(to);
    for (size_t x = 0; x < width; ++x) {
        switch (mLayout) {
        case PixelLayout::Mono:
            to[x >> 3] = uchar(to[x >> 3] | (at(0, x) >> 15) << (7 - (x & 7)));
            break;
        case PixelLayout::Indexed8:
            to[x] = uchar(at(0, x));
            break;
        case PixelLayout::Grey8:
            to[x] = uchar(at(0, x) >> 8);
            break;
        case PixelLayout::Grey16:
            words[x] = at(0, x);
            break;
        case PixelLayout::Rgb32:
            pixels[x] = Opaque(at(0, x), at(1, x), at(2, x));
            break;
        case PixelLayout::Rgbx64:
            for (int s = 0; s < 3; ++s) {
                words[x * 4 + size_t(s)] = at(s, x);
            }
            words[x * 4 + 3] = 0xffff;
            break;
        case PixelLayout::Argb32:
        case PixelLayout::Rgba64: {
            const std::uint16_t alpha = at(mUsed - 1, x);
            std::uint16_t colour[3];
            for (int s = 0; s < 3; ++s) {
                const std::uint16_t value = at(mUsed == 2 ? 0 : s, x);
                colour[s] = isPlain ? value : Plain(value, alpha);
            }
            if (mLayout == PixelLayout::Argb32) {
                pixels[x] = (Opaque(colour[0], colour[1], colour[2]) & 0xffffffu)
                    | quint32(alpha >> 8) << 24;
            } else {
                std::copy_n(colour, 3, words + x * 4);
                words[x * 4 + 3] = alpha;
            }
            break;
        }
        case PixelLayout::Cmyk32:
            for (int s = 0; s < 4; ++s) {
                to[x * 4 + size_t(s)] = uchar(at(s, x) >> 8);
            }
            break;
        }
    }
}

void TiffPixels::Convert(const TiffRows& rows, uchar* to)
{
    if (ConvertPlainly(rows.Samples(0), to)) {
        return;
    }
    const bool scaled = mLayout != PixelLayout::Indexed8;
    for (int sample = 0; sample < mUsed; ++sample) {
        Unpack(rows, sample, mSamples.data() + size_t(sample) * mTags.width, scaled);
    }
    if (mTags.photometric == PHOTOMETRIC_MINISWHITE) {
        std::transform(mSamples.begin(), mSamples.begin() + mTags.width, mSamples.begin(),
                       [](std::uint16_t v) { return std::uint16_t(65535 - v); });
    }
    if (mLayout == PixelLayout::Mono) {
        std::memset(to, 0, size_t(mRowBytes));
    }
    Put(to);
}

void TiffPixels::Blank(uchar* to) const
{
    const bool zero = mLayout == PixelLayout::Cmyk32 || mLayout == PixelLayout::Indexed8;
    std::memset(to, zero ? 0 : 0xff, size_t(mRowBytes));
}

} // namespace quillane::worker
