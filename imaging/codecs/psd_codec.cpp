// Photoshop files: the merged picture that stands behind the layers.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/psd_file.h"
#include "imaging/codecs/raster_support.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace quillane::codecs {

namespace {

double PsdClamp(double value)
{
    return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0.0;
}

/// Light as the screen encodes it (sRGB, IEC 61966-2-1); both 0 to 1.
double PsdEncodeLight(double light)
{
    light = PsdClamp(light);
    return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

/// CIE L*a*b* under D50 in sRGB.
QRgb PsdLabColour(double lightness, double a, double b)
{
    const double fy = (lightness + 16) / 116;
    const auto open = [](double f) {
        return f > 6.0 / 29 ? f * f * f : 3 * (6.0 / 29) * (6.0 / 29) * (f - 4.0 / 29);
    };
    const double x = 0.9642 * open(fy + a / 500);
    const double y = open(fy);
    const double z = 0.8249 * open(fy - b / 200);
    // XYZ under D50 to linear sRGB, adapted after Bradford.
    const double red = 3.1338561 * x - 1.6168667 * y - 0.4906146 * z;
    const double green = -0.9787684 * x + 1.9161415 * y + 0.0334540 * z;
    const double blue = 0.0719453 * x - 0.2289914 * y + 1.4052427 * z;
    const auto level = [](double light) { return int(PsdEncodeLight(light) * 255 + 0.5); };
    return qRgb(level(red), level(green), level(blue));
}

/// The rows of any channel. Samples come as 16 bits, or as 8 where the file has no more.
class PsdRows {
public:
    PsdRows(ByteSource& source, const PsdHeader& header)
        : mSource(source),
          mHeader(header),
          mStored(size_t(header.RowBytes()))
    {
        if (!header.packed) {
            return;
        }
        // The packed lengths of all rows stand first, those of channels that are not shown too.
        const int width = header.big ? 4 : 2;
        const qint64 entries = qint64(header.channels) * header.height;
        const qint64 needed = qint64(header.Shown()) * header.height;
        qint64 at = header.dataAt + entries * width;
        ByteStream lengths(source, header.dataAt, needed * width);
        mStarts.reserve(size_t(needed) + 1);
        for (qint64 i = 0; i < needed; ++i) {
            uchar p[4];
            if (lengths.Read(p, width) != width) {
                break;
            }
            mStarts.push_back(at);
            at += header.big ? Big32(p) : Big16(p);
        }
        mStarts.push_back(at);
    }

    /// The bytes of a row, highest first; nullptr when the file lacks it or a part of it.
    const uchar* Read(int channel, qint64 row)
    {
        const qint64 bytes = qint64(mStored.size());
        const qint64 index = channel * mHeader.height + row;
        if (!mHeader.packed) {
            const qint64 at = mHeader.dataAt + index * bytes;
            return mSource.ReadAt(at, mStored.data(), bytes) == bytes ? mStored.data() : nullptr;
        }
        if (index + 1 >= qint64(mStarts.size())) {
            return nullptr;
        }
        const qint64 at = mStarts[size_t(index)];
        ByteStream stream(mSource, at, mStarts[size_t(index) + 1] - at);
        return UnpackPackBits(stream, mStored.data(), bytes) == UnpackEnd::Whole ? mStored.data()
                                                                                 : nullptr;
    }

private:
    ByteSource& mSource;
    const PsdHeader& mHeader;
    std::vector<uchar> mStored;
    std::vector<qint64> mStarts;
};

/// Turns the channels of a row into pixels.
class PsdPixels {
public:
    PsdPixels(const PsdHeader& header, QImage& image)
        : mHeader(header),
          mImage(image),
          mWide(header.depth > 8)
    {
        for (std::vector<quint16>& channel : mChannels) {
            channel.resize(size_t(header.width));
        }
    }
    /// Takes one channel's row; nullptr for one that is missing.
    void Take(int channel, const uchar* stored)
    {
        std::vector<quint16>& to = mChannels[channel];
        if (!stored) {
            std::fill(to.begin(), to.end(), quint16(mWide ? 0xffff : 0xff));
            return;
        }
        for (size_t x = 0; x < to.size(); ++x) {
            to[x] = mHeader.depth == 8 ? stored[x]
                : mHeader.depth == 16  ? Big16(stored + 2 * x)
                                       : Float(stored + 4 * x, channel);
        }
    }
    void Put(int y)
    {
        uchar* to = mImage.scanLine(y);
        const int width = mImage.width();
        for (int x = 0; x < width; ++x) {
            PutPixel(size_t(x), to);
        }
    }

private:
    /// Light in floating point, as the screen encodes it.
    quint16 Float(const uchar* p, int channel) const
    {
        const double light = double(std::bit_cast<float>(Big32(p)));
        const bool opacity = channel >= mHeader.colours;
        return quint16((opacity ? PsdClamp(light) : PsdEncodeLight(light)) * 65535 + 0.5);
    }
    /// A merged colour lies over white paper; the colour itself.
    quint16 Unpaper(quint16 value, quint16 alpha) const
    {
        const int full = mWide ? 0xffff : 0xff;
        if (alpha == 0 || alpha == full) {
            return value;
        }
        const qint64 ink = (qint64(value) - (full - alpha)) * full / alpha;
        return quint16(std::clamp<qint64>(ink, 0, full));
    }
    void PutPixel(size_t x, uchar* row)
    {
        const auto at = [&](int channel) { return mChannels[channel][x]; };
        const auto narrow = [&](int channel) { return mWide ? at(channel) >> 8 : at(channel); };
        switch (mImage.format()) {
        case QImage::Format_Indexed8:
        case QImage::Format_Grayscale8:
            row[x] = uchar(narrow(0));
            return;
        case QImage::Format_Grayscale16:
            reinterpret_cast<quint16*>(row)[x] = at(0);
            return;
        case QImage::Format_RGBA8888: // the file holds how much of the paper is left
            for (int channel = 0; channel < 4; ++channel) {
                row[4 * x + size_t(channel)] = uchar(255 - narrow(channel));
            }
            return;
        default:
            break;
        }
        const int green = mHeader.colours == 3 ? 1 : 0;
        const int blue = mHeader.colours == 3 ? 2 : 0;
        const quint16 full = mWide ? 0xffff : 0xff;
        const quint16 alpha = mHeader.alpha ? at(mHeader.colours) : full;
        if (mHeader.mode == PsdMode::Lab) {
            const double scale = full;
            const double half = mWide ? 32768 : 128;
            const double unit = mWide ? 256 : 1;
            reinterpret_cast<QRgb*>(row)[x] =
                PsdLabColour(at(0) * 100 / scale, (at(1) - half) / unit, (at(2) - half) / unit);
        } else if (mWide) {
            quint16* to = reinterpret_cast<quint16*>(row) + 4 * x;
            to[0] = Unpaper(at(0), alpha);
            to[1] = Unpaper(at(green), alpha);
            to[2] = Unpaper(at(blue), alpha);
            to[3] = alpha;
        } else {
            reinterpret_cast<QRgb*>(row)[x] = qRgba(
                Unpaper(at(0), alpha), Unpaper(at(green), alpha), Unpaper(at(blue), alpha), alpha);
        }
    }
    const PsdHeader& mHeader;
    QImage& mImage;
    bool mWide;
    std::vector<quint16> mChannels[4];
};

QImage PsdNewImage(const PsdHeader& header)
{
    const auto make = [&](QImage::Format layout) {
        return NewImage(kPsdName, header.width, header.height, layout);
    };
    const bool wide = header.depth > 8;
    if (header.mode == PsdMode::Bilevel) {
        return NewIndexedImage(kPsdName, header.width, header.height, 1, GreySteps(2));
    }
    if (header.mode == PsdMode::Indexed) {
        return NewIndexedImage(kPsdName, header.width, header.height, 8, header.palette);
    }
    if (header.mode == PsdMode::Lab) {
        return make(QImage::Format_RGB32);
    }
    if (header.colours == 4) {
        return make(QImage::Format_RGBA8888);
    }
    if (header.Shown() == 1) {
        return make(wide ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
    }
    return make(wide ? (header.alpha ? QImage::Format_RGBA64 : QImage::Format_RGBX64)
                     : (header.alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32));
}

/// Whether a profile describes the channels that are shown.
bool PsdProfileFits(const PsdHeader& header)
{
    return header.mode == PsdMode::Rgb || header.mode == PsdMode::Cmyk
        || (header.mode == PsdMode::Grey && !header.alpha);
}

} // namespace

bool PsdMatches(QByteArrayView head, QStringView)
{
    return head.size() >= 6 && std::memcmp(head.data(), "8BPS\0", 5) == 0
        && (head[5] == 1 || head[5] == 2);
}

ImageFacts PsdProbe(ByteSource& source)
{
    const PsdHeader header = ReadPsdHeader(source);
    ImageFacts facts;
    facts.width = qint32(header.width);
    facts.height = qint32(header.height);
    facts.bits = qint16(header.Bits());
    facts.format = 76;
    facts.xResolution = header.xResolution;
    facts.yResolution = header.yResolution;
    facts.compression = header.packed ? QStringLiteral("PackBits") : QStringLiteral("Uncompressed");
    return facts;
}

Bitmap PsdDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const PsdHeader header = ReadPsdHeader(source);
    QImage image = PsdNewImage(header);
    PsdRows reader(source, header);
    PsdPixels pixels(header, image);
    bool missing = false;
    int found = 0;
    for (int y = 0; y < image.height(); ++y) {
        CheckCancelled(request);
        if (header.mode == PsdMode::Bilevel) {
            const uchar* stored = reader.Read(0, y);
            uchar* to = image.scanLine(y);
            std::fill_n(to, header.RowBytes(), uchar(0xff));
            if (stored) { // a set bit is ink
                std::transform(stored, stored + header.RowBytes(), to,
                               [](uchar ink) { return uchar(~ink); });
            }
            found += stored ? 1 : 0;
            missing = missing || !stored;
            continue;
        }
        for (int channel = 0; channel < header.Shown(); ++channel) {
            const uchar* stored = reader.Read(channel, y);
            pixels.Take(channel, stored);
            found += stored ? 1 : 0;
            missing = missing || !stored;
        }
        pixels.Put(y);
    }
    Bitmap bitmap = FinishPicture(kPsdName, std::move(image), header.Bits(),
                                  found > 0 ? int(header.height) : 0);
    bitmap.SetPartial(missing);
    bitmap.SetExact(header.depth <= (header.colours == 4 ? 8 : 16) && header.mode != PsdMode::Lab
                    && !header.alpha);
    if (PsdProfileFits(header)) {
        bitmap.SetIcc(header.profile);
    }
    return bitmap;
}

} // namespace quillane::codecs
