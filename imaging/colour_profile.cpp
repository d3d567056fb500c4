#include "imaging/colour_profile.h"
#include <QMutex>
#include <cstdlib>
#include <lcms2.h>
#include <list>
#include <memory>

namespace quillane {

namespace {

/// A ready transform; `same` when the profile is sRGB in all but name and nothing is to be done.
struct ProfileTransform {
    QByteArray icc;
    cmsUInt32Number format = 0;
    cmsHTRANSFORM handle = nullptr;
    bool same = false;

    ProfileTransform() = default;
    ProfileTransform(const ProfileTransform&) = delete;
    ProfileTransform& operator=(const ProfileTransform&) = delete;
    ~ProfileTransform()
    {
        if (handle) {
            cmsDeleteTransform(handle);
        }
    }
};
using ProfileTransformPtr = std::shared_ptr<const ProfileTransform>;

/// How many different profiles are kept ready: a folder rarely holds more.
constexpr size_t kProfilesKept = 8;

/// Whether a transform leaves a coarse raster of colours where they are, to one step of 255.
bool ProfileIsSrgb(cmsHTRANSFORM transform)
{
    for (int red = 0; red <= 255; red += 51) {
        for (int green = 0; green <= 255; green += 51) {
            for (int blue = 0; blue <= 255; blue += 51) {
                const quint32 in = qRgb(red, green, blue);
                quint32 out = in;
                cmsDoTransform(transform, &in, &out, 1);
                if (std::abs(qRed(out) - red) > 1 || std::abs(qGreen(out) - green) > 1
                    || std::abs(qBlue(out) - blue) > 1) {
                    return false;
                }
            }
        }
    }
    return true;
}

ProfileTransformPtr ProfileMake(const QByteArray& icc, cmsUInt32Number format)
{
    auto made = std::make_shared<ProfileTransform>();
    made->icc = icc;
    made->format = format;
    const cmsHPROFILE from = cmsOpenProfileFromMem(icc.constData(), cmsUInt32Number(icc.size()));
    if (!from) {
        return made;
    }
    const cmsHPROFILE to = cmsCreate_sRGBProfile();
    // A number, because a profile may claim one that the enumeration does not have.
    const cmsUInt32Number space = cmsUInt32Number(cmsGetColorSpace(from));
    const bool fits = (T_COLORSPACE(format) == PT_RGB && space == cmsUInt32Number(cmsSigRgbData))
        || (T_COLORSPACE(format) == PT_GRAY && space == cmsUInt32Number(cmsSigGrayData))
        || (T_COLORSPACE(format) == PT_CMYK && space == cmsUInt32Number(cmsSigCmykData));
    if (to && fits) {
        // Without its one-pixel cache a transform may serve several threads at once.
        made->handle = cmsCreateTransform(from, format, to, TYPE_BGRA_8, INTENT_PERCEPTUAL,
                                          cmsFLAGS_NOCACHE | cmsFLAGS_COPY_ALPHA);
        if (made->handle && format == TYPE_BGRA_8) {
            made->same = ProfileIsSrgb(made->handle);
        }
    }
    if (to) {
        cmsCloseProfile(to);
    }
    cmsCloseProfile(from);
    return made;
}

ProfileTransformPtr ProfileFind(const QByteArray& icc, cmsUInt32Number format)
{
    static QMutex mutex;
    static std::list<ProfileTransformPtr> kept; // the one used last stands first
    {
        const QMutexLocker lock(&mutex);
        for (auto i = kept.begin(); i != kept.end(); ++i) {
            if ((*i)->format == format && (*i)->icc == icc) {
                kept.splice(kept.begin(), kept, i);
                return kept.front();
            }
        }
    }
    const ProfileTransformPtr made = ProfileMake(icc, format);
    const QMutexLocker lock(&mutex);
    kept.push_front(made);
    if (kept.size() > kProfilesKept) {
        kept.pop_back();
    }
    return made;
}

/// The library's name for the layout of these pixels; 0 for one that has none.
cmsUInt32Number ProfileFormat(const QImage& pixels, bool cmyk)
{
    switch (pixels.format()) {
    case QImage::Format_RGBA8888:
        return cmyk ? TYPE_CMYK_8 : 0;
    case QImage::Format_Grayscale8:
        return TYPE_GRAY_8;
    case QImage::Format_Grayscale16:
        return TYPE_GRAY_16;
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
        return TYPE_BGRA_8;
    case QImage::Format_RGBX64:
    case QImage::Format_RGBA64:
        return TYPE_RGBA_16;
    default:
        return 0;
    }
}

} // namespace

QImage ProfileToSrgb(const QImage& pixels, const QByteArray& icc, bool cmyk)
{
    if (pixels.format() == QImage::Format_Indexed8) {
        const ProfileTransformPtr transform = ProfileFind(icc, TYPE_BGRA_8);
        if (!transform->handle) {
            return {};
        }
        QList<QRgb> colours = pixels.colorTable();
        for (QRgb& colour : colours) {
            const QRgb in = colour;
            cmsDoTransform(transform->handle, &in, &colour, 1);
            colour = (colour & 0xffffffu) | (in & 0xff000000u);
        }
        QImage result = pixels;
        result.setColorTable(colours);
        return result;
    }
    const cmsUInt32Number format = ProfileFormat(pixels, cmyk);
    if (format == 0) {
        return {};
    }
    const bool alpha =
        pixels.format() == QImage::Format_ARGB32 || pixels.format() == QImage::Format_RGBA64;
    const QImage::Format shown = alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    const ProfileTransformPtr transform = ProfileFind(icc, format);
    if (!transform->handle) {
        // A grey picture may carry the profile of the colours it was made from.
        const bool grey = T_COLORSPACE(format) == PT_GRAY;
        return grey ? ProfileToSrgb(pixels.convertToFormat(QImage::Format_RGB32), icc, false)
                    : QImage();
    }
    if (transform->same) {
        return pixels;
    }
    QImage result(pixels.size(), shown);
    if (result.isNull()) {
        return {};
    }
    if (!alpha) {
        result.fill(0xffffffffu);
    }
    for (int y = 0; y < pixels.height(); ++y) {
        cmsDoTransform(transform->handle, pixels.constScanLine(y), result.scanLine(y),
                       cmsUInt32Number(pixels.width()));
    }
    return result;
}

QImage PlainCmykToSrgb(const QImage& pixels)
{
    QImage result(pixels.size(), QImage::Format_RGB32);
    if (result.isNull()) {
        return {};
    }
    for (int y = 0; y < pixels.height(); ++y) {
        const uchar* in = pixels.constScanLine(y);
        QRgb* out = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < pixels.width(); ++x, in += 4) {
            const int light = 255 - in[3];
            const auto mix = [light](int ink) { return ((255 - ink) * light + 127) / 255; };
            out[x] = qRgb(mix(in[0]), mix(in[1]), mix(in[2]));
        }
    }
    return result;
}

} // namespace quillane
