#include "imaging/worker_main/service/sample_rows.h"
#include "core/failure.h"
#include <algorithm>
#include <cstring>

namespace quillane::worker {

namespace {

constexpr quint32 kWide = 65535;

quint16 WideOf(quint32 byte)
{
    return quint16(byte * 257);
}

uchar ByteOf(quint32 wide)
{
    return uchar((wide * 255 + kWide / 2) / kWide);
}

/// Luminance (ITU-R BT.601); exact for equal channels.
quint16 LuminanceOf(const quint16* rgb)
{
    return quint16((rgb[0] * 19595ull + rgb[1] * 38470ull + rgb[2] * 7471ull + 0x8000) >> 16);
}

quint16 OnWhite(quint32 value, quint32 alpha)
{
    return quint16((quint64(value) * alpha + quint64(kWide) * (kWide - alpha) + kWide / 2) / kWide);
}

/// As little coloured ink as the colour needs.
void PutInks(const quint16* rgb, uchar* to)
{
    const int red = ByteOf(rgb[0]), green = ByteOf(rgb[1]), blue = ByteOf(rgb[2]);
    const int light = std::max({red, green, blue});
    const auto ink = [light](int value) {
        return light == 0 ? uchar(0) : uchar(((light - value) * 255 + light / 2) / light);
    };
    to[0] = ink(red);
    to[1] = ink(green);
    to[2] = ink(blue);
    to[3] = uchar(255 - light);
}

} // namespace

SampleRows::SampleRows(PictureRows& picture, SampleKind kind)
    : mPicture(picture),
      mKind(kind),
      mWidth(picture.Shape().width),
      mRowBytes((qint64(mWidth) * SamplesOf(kind) * SampleBitsOf(kind) + 7) / 8),
      mColours(picture.Shape().colours),
      mRow(size_t(mRowBytes))
{
    mColours.resize(kMaxColours, 0xff000000u);
    const PixelLayout layout = picture.Shape().layout;
    if (kind == SampleKind::Index && layout != PixelLayout::Indexed8 && layout != PixelLayout::Grey8
        && layout != PixelLayout::Mono) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("This picture has too many colours for a palette."));
    }
}

const uchar* SampleRows::Next()
{
    const uchar* from = mPicture.NextRow();
    const PixelLayout layout = mPicture.Shape().layout;
    const bool same = (layout == PixelLayout::Mono && mKind == SampleKind::Bilevel)
        || (layout == PixelLayout::Indexed8 && mKind == SampleKind::Index)
        || (layout == PixelLayout::Grey8
            && (mKind == SampleKind::Grey8 || mKind == SampleKind::Index))
        || (layout == PixelLayout::Grey16 && mKind == SampleKind::Grey16)
        || (layout == PixelLayout::Rgba64 && mKind == SampleKind::Rgba16)
        || (layout == PixelLayout::Cmyk32 && mKind == SampleKind::Cmyk8);
    if (same) {
        return from;
    }
    if (!Convert(from)) {
        Widen(from);
        Narrow();
    }
    return mRow.data();
}

/// The usual ways, quicker than over wide samples.
bool SampleRows::Convert(const uchar* from)
{
    const PixelLayout layout = mPicture.Shape().layout;
    uchar* to = mRow.data();
    if (layout == PixelLayout::Rgb32 && mKind == SampleKind::Rgb8) {
        for (qint32 x = 0; x < mWidth; ++x, from += 4, to += 3) {
            quint32 pixel;
            std::memcpy(&pixel, from, sizeof(pixel));
            to[0] = uchar(pixel >> 16);
            to[1] = uchar(pixel >> 8);
            to[2] = uchar(pixel);
        }
        return true;
    }
    if (mKind == SampleKind::Rgba8
        && (layout == PixelLayout::Argb32 || layout == PixelLayout::Rgb32)) {
        for (qint32 x = 0; x < mWidth; ++x, from += 4, to += 4) {
            quint32 pixel;
            std::memcpy(&pixel, from, sizeof(pixel));
            to[0] = uchar(pixel >> 16);
            to[1] = uchar(pixel >> 8);
            to[2] = uchar(pixel);
            to[3] = uchar(pixel >> 24);
        }
        return true;
    }
    if (layout == PixelLayout::Rgbx64 && mKind == SampleKind::Rgb16) {
        for (qint32 x = 0; x < mWidth; ++x, from += 8, to += 6) {
            std::memcpy(to, from, 6);
        }
        return true;
    }
    if (layout == PixelLayout::Mono && mKind == SampleKind::Index) {
        for (qint32 x = 0; x < mWidth; ++x) {
            to[x] = from[x >> 3] >> (7 - (x & 7)) & 1 ? 0xff : 0;
        }
        return true;
    }
    return false;
}

void SampleRows::Widen(const uchar* from)
{
    mWide.resize(size_t(mWidth) * 4);
    const PixelLayout layout = mPicture.Shape().layout;
    const auto* words = reinterpret_cast<const quint16*>(from);
    const auto* pixels = reinterpret_cast<const quint32*>(from);
    for (qint32 x = 0; x < mWidth; ++x) {
        quint16* to = mWide.data() + size_t(x) * 4;
        const auto grey = [to](quint16 value) {
            to[0] = to[1] = to[2] = value;
            to[3] = quint16(kWide);
        };
        const auto colour = [to](quint32 pixel) {
            to[0] = WideOf(pixel >> 16 & 0xff);
            to[1] = WideOf(pixel >> 8 & 0xff);
            to[2] = WideOf(pixel & 0xff);
            to[3] = WideOf(pixel >> 24);
        };
        switch (layout) {
        case PixelLayout::Mono:
            grey(from[x >> 3] >> (7 - (x & 7)) & 1 ? quint16(kWide) : quint16(0));
            break;
        case PixelLayout::Indexed8:
            colour(mColours[from[x]]);
            break;
        case PixelLayout::Grey8:
            grey(WideOf(from[x]));
            break;
        case PixelLayout::Grey16:
            grey(words[x]);
            break;
        case PixelLayout::Rgb32:
        case PixelLayout::Argb32:
            colour(pixels[x]);
            break;
        case PixelLayout::Rgbx64:
        case PixelLayout::Rgba64:
            std::copy_n(words + size_t(x) * 4, 4, to);
            break;
        case PixelLayout::Cmyk32: {
            const uchar* ink = from + size_t(x) * 4;
            for (int i = 0; i < 3; ++i) {
                to[i] = WideOf(((255u - ink[i]) * (255u - ink[3]) + 127) / 255);
            }
            to[3] = quint16(kWide);
            break;
        }
        }
    }
}

void SampleRows::Narrow()
{
    const bool keepsAlpha = mKind == SampleKind::Rgba8 || mKind == SampleKind::Rgba16;
    uchar* to = mRow.data();
    auto* words = reinterpret_cast<quint16*>(mRow.data());
    if (mKind == SampleKind::Bilevel) {
        std::fill(mRow.begin(), mRow.end(), uchar(0));
    }
    for (size_t x = 0; x < size_t(mWidth); ++x) {
        quint16* pixel = mWide.data() + x * 4;
        if (!keepsAlpha && pixel[3] != kWide) {
            for (int i = 0; i < 3; ++i) {
                pixel[i] = OnWhite(pixel[i], pixel[3]);
            }
        }
        switch (mKind) {
        case SampleKind::Bilevel:
            to[x >> 3] = uchar(to[x >> 3] | (LuminanceOf(pixel) >> 15) << (7 - (x & 7)));
            break;
        case SampleKind::Index:
        case SampleKind::Grey8:
            to[x] = ByteOf(LuminanceOf(pixel));
            break;
        case SampleKind::Grey16:
            words[x] = LuminanceOf(pixel);
            break;
        case SampleKind::Rgb8:
            std::transform(pixel, pixel + 3, to + x * 3, ByteOf);
            break;
        case SampleKind::Rgba8:
            std::transform(pixel, pixel + 4, to + x * 4, ByteOf);
            break;
        case SampleKind::Rgb16:
            std::copy_n(pixel, 3, words + x * 3);
            break;
        case SampleKind::Rgba16:
            std::copy_n(pixel, 4, words + x * 4);
            break;
        case SampleKind::Cmyk8:
            PutInks(pixel, to + x * 4);
            break;
        }
    }
}

bool ProfileFits(const QByteArray& profile, int channels)
{
    constexpr qsizetype kSpaceAt = 16, kSpaceBytes = 4; // ICC.1, 7.2
    const QByteArray space = profile.mid(kSpaceAt, kSpaceBytes);
    return space == (channels == 1 ? "GRAY" : channels == 4 ? "CMYK" : "RGB ");
}

} // namespace quillane::worker
