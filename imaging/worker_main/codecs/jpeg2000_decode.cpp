#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/jpeg2000_header.h"
#include "imaging/worker_main/codecs/jpeg2000_stream.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <algorithm>
#include <cstring>

namespace quillane::worker {

namespace {

/// Samples, 4 bytes each, that are decoded at once; larger pictures come band by band.
constexpr qint64 kJpeg2000Samples = 40'000'000;
constexpr int kMostReduction = 5;

/// How samples of one decoded band become pixels.
struct Jpeg2000Channels {
    int colours = 1;        ///< components that are colours: 1, 3 or 4
    int alpha = -1;         ///< component of the alpha channel
    bool luminance = false; ///< the colours are luminance and two differences
    bool deep = false;
    PixelLayout layout = PixelLayout::Grey8;
};

Jpeg2000Channels ChannelsOf(const opj_image_t& image)
{
    Jpeg2000Channels channels;
    const int count = int(image.numcomps);
    for (int i = 0; i < count; ++i) {
        channels.deep = channels.deep || image.comps[i].prec > 8;
        if (image.comps[i].alpha != 0 && channels.alpha < 0) {
            channels.alpha = i;
        }
    }
    const int colours = channels.alpha >= 0 ? channels.alpha : count;
    if (image.color_space == OPJ_CLRSPC_CMYK && colours >= 4) {
        channels.colours = 4;
        channels.alpha = -1;
        channels.layout = PixelLayout::Cmyk32;
        return channels;
    }
    channels.colours = colours >= 3 ? 3 : 1;
    if (channels.alpha < 0 && (count == 2 || count == 4) && image.color_space != OPJ_CLRSPC_SYCC) {
        channels.alpha = count - 1; // a bare codestream does not tell
    }
    channels.luminance = channels.colours == 3
        && (image.color_space == OPJ_CLRSPC_SYCC || image.color_space == OPJ_CLRSPC_EYCC
            || image.comps[1].dx != image.comps[0].dx || image.comps[1].dy != image.comps[0].dy);
    const bool deep = channels.deep;
    if (channels.alpha >= 0) {
        channels.layout = deep ? PixelLayout::Rgba64 : PixelLayout::Argb32;
    } else if (channels.colours == 3) {
        channels.layout = deep ? PixelLayout::Rgbx64 : PixelLayout::Rgb32;
    } else {
        channels.layout = deep ? PixelLayout::Grey16 : PixelLayout::Grey8;
    }
    return channels;
}

/// Row y of the picture as samples of 16 bits; of a component that is sampled more coarsely the
/// nearest.
void UnpackJpeg2000Row(const opj_image_comp_t& component, const opj_image_comp_t& first, quint32 y,
                       quint32 width, quint16* to)
{
    const quint32 row = component.h == first.h
        ? y
        : std::min(component.h - 1, quint32(quint64(y) * component.h / std::max(1u, first.h)));
    const OPJ_INT32* from = component.data + size_t(row) * component.w;
    const qint64 most = (qint64(1) << component.prec) - 1;
    const qint64 zero = component.sgnd ? qint64(1) << (component.prec - 1) : 0;
    for (quint32 x = 0; x < width; ++x) {
        const quint32 column = component.w == width
            ? x
            : std::min(component.w - 1, quint32(quint64(x) * component.w / width));
        const qint64 value = std::clamp<qint64>(from[column] + zero, 0, most);
        to[x] = quint16(most == 65535 ? value : (value * 65535 + most / 2) / most);
    }
}

uchar HighByte(quint16 wide)
{
    return uchar((wide * 255u + 32767) / 65535);
}

/// ITU-R BT.601 luminance and differences to RGB, in place.
void FromLuminance(quint16* light, quint16* blue, quint16* red, quint32 width)
{
    constexpr double kMiddle = 32768;
    const auto inside = [](double value) { return quint16(std::clamp(value + 0.5, 0.0, 65535.0)); };
    for (quint32 x = 0; x < width; ++x) {
        const double y = light[x], cb = blue[x] - kMiddle, cr = red[x] - kMiddle;
        light[x] = inside(y + 1.402 * cr);
        blue[x] = inside(y - 0.344136 * cb - 0.714136 * cr);
        red[x] = inside(y + 1.772 * cb);
    }
}

class Jpeg2000Rows {
public:
    Jpeg2000Rows(const Jpeg2000Channels& channels, quint32 width)
        : mChannels(channels),
          mWidth(width),
          mSamples(size_t(width) * 5)
    { }
    /// Row y of a decoded band as the layout has it.
    void Convert(const opj_image_t& image, quint32 y, uchar* to)
    {
        for (int i = 0; i < mChannels.colours; ++i) {
            UnpackJpeg2000Row(image.comps[i], image.comps[0], y, mWidth, Samples(i));
        }
        if (mChannels.luminance) {
            FromLuminance(Samples(0), Samples(1), Samples(2), mWidth);
        }
        if (mChannels.alpha >= 0) {
            UnpackJpeg2000Row(image.comps[mChannels.alpha], image.comps[0], y, mWidth, Samples(4));
        }
        Put(to);
    }

private:
    quint16* Samples(int channel) { return mSamples.data() + size_t(channel) * mWidth; }
    void Put(uchar* to)
    {
        const quint16* red = Samples(0);
        const quint16* green = mChannels.colours >= 3 ? Samples(1) : red;
        const quint16* blue = mChannels.colours >= 3 ? Samples(2) : red;
        const quint16* alpha = mChannels.alpha >= 0 ? Samples(4) : nullptr;
        auto* words = reinterpret_cast<quint16*>(to);
        auto* pixels = reinterpret_cast<quint32*>(to);
        for (quint32 x = 0; x < mWidth; ++x) {
            switch (mChannels.layout) {
            case PixelLayout::Grey8:
                to[x] = HighByte(red[x]);
                break;
            case PixelLayout::Grey16:
                words[x] = red[x];
                break;
            case PixelLayout::Rgb32:
            case PixelLayout::Argb32:
                pixels[x] = quint32(alpha ? HighByte(alpha[x]) : 255) << 24
                    | quint32(HighByte(red[x])) << 16 | quint32(HighByte(green[x])) << 8
                    | HighByte(blue[x]);
                break;
            case PixelLayout::Cmyk32:
                for (int i = 0; i < 4; ++i) {
                    to[x * 4 + quint32(i)] = HighByte(Samples(i)[x]);
                }
                break;
            default:
                words[x * 4] = red[x];
                words[x * 4 + 1] = green[x];
                words[x * 4 + 2] = blue[x];
                words[x * 4 + 3] = alpha ? alpha[x] : quint16(65535);
                break;
            }
        }
    }
    Jpeg2000Channels mChannels;
    quint32 mWidth;
    std::vector<quint16> mSamples; ///< channel after channel; the fifth is alpha
};

/// How often the picture can be halved and still be as large as it is wanted.
int ReductionFor(const Jpeg2000Header& header, const PictureWish& wish)
{
    int reduction = 0;
    while (wish.atLeastWidth > 0 && wish.atLeastHeight > 0 && reduction < kMostReduction
           && header.width >> (reduction + 1) >= quint32(wish.atLeastWidth)
           && header.height >> (reduction + 1) >= quint32(wish.atLeastHeight)) {
        ++reduction;
    }
    return reduction;
}

/// Rows of a band: all of the picture when it is small enough, else whole tiles.
quint32 BandRows(const Jpeg2000Header& header, int reduction)
{
    const qint64 inRow =
        std::max<qint64>(1, (qint64(header.width) * header.components) >> reduction);
    const qint64 most = std::max<qint64>(1, (kJpeg2000Samples / inRow) << reduction);
    if (most >= header.height) {
        return header.height;
    }
    const qint64 step = header.tiled
        ? qint64(header.tileHeight)
        : qint64(header.downMost) << std::max(reduction, kMostReduction);
    return quint32(std::clamp<qint64>(most / step * step, step, header.height));
}

} // namespace

ImageFacts ProbeJpeg2000(ByteSource& source)
{
    return ReadJpeg2000Header(source).facts;
}

bool DecodeJpeg2000(ByteSource& source, const PictureWish& wish, PictureSink& sink)
{
    const Jpeg2000Header header = ReadJpeg2000Header(source);
    if (wish.page != 0) {
        throw Failure(kFailureGeneral, QStringLiteral("This JPEG 2000 file has one page."));
    }
    int reduction = ReductionFor(header, wish);
    const quint32 end = header.y0 + header.height;
    std::unique_ptr<Jpeg2000Rows> rows;
    PictureShape shape;
    qint32 given = 0;
    bool partial = false;
    for (quint32 top = header.y0; top < end;) {
        const quint32 step = BandRows(header, reduction);
        // Bands end where tiles do.
        const quint32 from = header.tiled && step < header.height ? header.tileTop : header.y0;
        const quint32 bottom =
            std::min<quint64>(end, quint64(top - from) / step * step + step + from);
        std::unique_ptr<Jpeg2000Band> band;
        try {
            band = std::make_unique<Jpeg2000Band>(source, header, reduction, top, bottom);
        } catch (const Failure&) {
            // Fewer resolutions than were hoped for, or a band that is damaged.
            if (reduction > 0 && !rows) {
                reduction = 0;
                continue;
            }
            if (!rows) {
                throw;
            }
        }
        if (!rows) {
            const Jpeg2000Channels channels = ChannelsOf(*band->image);
            const auto shrunk = [reduction](quint32 low, quint32 high) {
                const quint64 round = (1u << reduction) - 1;
                return qint32(((high + round) >> reduction) - ((low + round) >> reduction));
            };
            shape.width = shrunk(header.x0, header.x0 + header.width);
            shape.height = shrunk(header.y0, end);
            shape.layout = channels.layout;
            shape.fileDepth = header.facts.bits;
            shape.exact =
                header.bits <= 16 && !(channels.layout == PixelLayout::Cmyk32 && channels.deep);
            if (band->image->icc_profile_buf
                && band->image->icc_profile_len <= quint32(limits::kMaxFieldBytes)) {
                shape.profile =
                    QByteArray(reinterpret_cast<const char*>(band->image->icc_profile_buf),
                               qsizetype(band->image->icc_profile_len));
            }
            rows = std::make_unique<Jpeg2000Rows>(channels, quint32(shape.width));
            sink.Begin(shape);
        }
        const qint32 wanted = bottom == end
            ? shape.height - given
            : qint32(((quint64(bottom) + (1u << reduction) - 1) >> reduction)
                     - ((quint64(header.y0) + (1u << reduction) - 1) >> reduction))
                - given;
        partial = partial || !band || !band->whole;
        for (qint32 y = 0; y < wanted; ++y, ++given) {
            uchar* to = sink.NextRow();
            const bool there = band && band->image->numcomps >= 1
                && quint32(y) < band->image->comps[0].h && band->image->comps[0].w >= 1;
            if (there) {
                rows->Convert(*band->image, quint32(y), to);
            } else {
                partial = true;
                std::memset(to, 0xff, size_t(RowBytes(shape.width, BitsOf(shape.layout))));
            }
        }
        top = bottom;
    }
    return partial;
}

} // namespace quillane::worker
