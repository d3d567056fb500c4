#include "imaging/codecs/codecs.h"
#include "imaging/codecs/encode_support.h"
#include "imaging/limits.h"
#include <QSysInfo>
#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <memory>
#include <new>
#include <png.h>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kPngOut[] = "PNG";
/// Photographs gain next to nothing beyond it, and it takes half the time of the usual 6.
constexpr int kPngOutEffort = 4;
constexpr int kPngOutPortion = 64 * 1024;

/// How the pixels are stored.
struct PngOutKind {
    int colourType = PNG_COLOR_TYPE_RGB;
    int depth = 8; ///< of a sample
};

/// Whether red, green and blue are the same in every pixel.
bool PngOutIsGrey(const QImage& pixels)
{
    for (int y = 0; y < pixels.height(); ++y) {
        if (pixels.depth() == 64) {
            const quint16* p = reinterpret_cast<const quint16*>(pixels.constScanLine(y));
            for (int x = 0; x < pixels.width(); ++x, p += 4) {
                if (p[0] != p[1] || p[0] != p[2]) {
                    return false;
                }
            }
        } else {
            const QRgb* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
            if (!std::all_of(row, row + pixels.width(), qIsGray)) {
                return false;
            }
        }
    }
    return true;
}

/// 16 bits are grey of 16 or grey with 8 bits of transparency, 32 bits are four channels of 8 or
/// grey with transparency of 16 each.
PngOutKind PngOutKindOf(const QImage& pixels, int bits)
{
    switch (pixels.format()) {
    case QImage::Format_Mono: {
        const QList<QRgb> colours = EncodedColours(pixels, 1);
        const bool plain = colours[0] == qRgb(0, 0, 0) && colours[1] == qRgb(255, 255, 255);
        return {plain ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_PALETTE, 1};
    }
    case QImage::Format_Indexed8:
        return {PNG_COLOR_TYPE_PALETTE, bits <= 2 ? bits : bits <= 4 ? 4 : 8};
    case QImage::Format_Grayscale8:
        return {PNG_COLOR_TYPE_GRAY, 8};
    case QImage::Format_Grayscale16:
        return {PNG_COLOR_TYPE_GRAY, 16};
    case QImage::Format_ARGB32:
        return {bits == 16 ? PNG_COLOR_TYPE_GRAY_ALPHA : PNG_COLOR_TYPE_RGB_ALPHA, 8};
    case QImage::Format_RGBX64:
        return {PNG_COLOR_TYPE_RGB, 16};
    case QImage::Format_RGBA64:
        return {bits == 32 ? PNG_COLOR_TYPE_GRAY_ALPHA : PNG_COLOR_TYPE_RGB_ALPHA, 16};
    default:
        return {PNG_COLOR_TYPE_RGB, 8};
    }
}

/// Everything a run touches. The library's errors come back by longjmp, so the functions it can
/// jump out of hold no C++ objects of their own.
struct PngOutRun {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::jmp_buf jump;
    const QImage* pixels = nullptr;
    const EncodeRequest* request = nullptr;
    PngOutKind kind;
    int packedBits = 0; ///< of an index, where rows are packed
    std::vector<png_color> colours;
    std::vector<png_byte> alphas;
    std::vector<uchar> row; ///< one row as the file has it
    QByteArray out;
    bool memory = false; ///< there was not enough
    char words[128] = {};

    ~PngOutRun()
    {
        if (png) {
            png_destroy_write_struct(&png, &info);
        }
    }
    [[noreturn]] static void OnError(png_structp png, png_const_charp words)
    {
        PngOutRun& run = *static_cast<PngOutRun*>(png_get_error_ptr(png));
        std::strncpy(run.words, words, sizeof(run.words) - 1);
        std::longjmp(run.jump, 1);
    }
    static void OnWrite(png_structp png, png_bytep from, size_t count)
    {
        PngOutRun& run = *static_cast<PngOutRun*>(png_get_io_ptr(png));
        try {
            run.out.append(reinterpret_cast<const char*>(from), qsizetype(count));
        } catch (const std::bad_alloc&) {
            run.memory = true;
        }
        if (run.memory) {
            png_error(png, "there is not enough memory");
        }
    }
    void TakePalette();
    const uchar* Row(int y);
    bool Encode();
};

/// Colours in use and, up to the last one that is not opaque, how opaque they are.
void PngOutRun::TakePalette()
{
    const QList<QRgb> all = EncodedColours(*pixels, kind.depth);
    const qsizetype count = std::clamp<qsizetype>(pixels->colorCount(), 1, all.size());
    size_t lastClear = 0;
    colours.reserve(size_t(count));
    alphas.reserve(size_t(count));
    for (const QRgb colour : all.first(count)) {
        colours.push_back(
            {png_byte(qRed(colour)), png_byte(qGreen(colour)), png_byte(qBlue(colour))});
        alphas.push_back(png_byte(qAlpha(colour)));
        lastClear = qAlpha(colour) < 255 ? alphas.size() : lastClear;
    }
    alphas.resize(lastClear);
}

const uchar* PngOutRun::Row(int y)
{
    const uchar* from = pixels->constScanLine(y);
    if (packedBits > 0) {
        PackIndexes(*pixels, y, packedBits, row.data());
        return row.data();
    }
    if (kind.colourType != PNG_COLOR_TYPE_GRAY_ALPHA) {
        return from;
    }
    if (kind.depth == 16) {
        quint16* to = reinterpret_cast<quint16*>(row.data());
        const quint16* in = reinterpret_cast<const quint16*>(from);
        for (int x = 0; x < pixels->width(); ++x) {
            to[2 * x] = in[4 * x];
            to[2 * x + 1] = in[4 * x + 3];
        }
    } else {
        const QRgb* in = reinterpret_cast<const QRgb*>(from);
        for (int x = 0; x < pixels->width(); ++x) {
            row[size_t(2 * x)] = uchar(qGray(in[x]));
            row[size_t(2 * x) + 1] = uchar(qAlpha(in[x]));
        }
    }
    return row.data();
}

bool PngOutRun::Encode()
{
    if (setjmp(jump)) {
        return false;
    }
    png = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, OnError,
                                  [](png_structp, png_const_charp) {});
    info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        memory = true;
        return false;
    }
    png_set_write_fn(png, this, OnWrite, [](png_structp) {});
    png_set_user_limits(png, limits::kMaxSide, limits::kMaxSide);
    png_set_compression_level(png, kPngOutEffort);
    png_set_compression_buffer_size(png, kPngOutPortion);
    png_set_option(png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
    png_set_IHDR(png, info, png_uint_32(pixels->width()), png_uint_32(pixels->height()), kind.depth,
                 kind.colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (kind.colourType == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, colours.data(), int(colours.size()));
        if (!alphas.empty()) {
            png_set_tRNS(png, info, alphas.data(), int(alphas.size()), nullptr);
        }
    }
    if (request->xResolution > 0 && request->yResolution > 0) {
        png_set_pHYs(png, info, DotsPerMetre(request->xResolution),
                     DotsPerMetre(request->yResolution), PNG_RESOLUTION_METER);
    }
    if (!request->icc.isEmpty()) {
        png_set_iCCP(png, info, "ICC profile", PNG_COMPRESSION_TYPE_BASE,
                     reinterpret_cast<png_const_bytep>(request->icc.constData()),
                     png_uint_32(request->icc.size()));
    }
    png_write_info(png, info);
    const bool colour = kind.colourType == PNG_COLOR_TYPE_RGB;
    if (kind.depth == 16 && QSysInfo::ByteOrder == QSysInfo::LittleEndian) {
        png_set_swap(png);
    }
    if (colour) {
        png_set_filler(png, 0, PNG_FILLER_AFTER);
    }
    if (kind.depth == 8 && (kind.colourType & PNG_COLOR_MASK_COLOR) != 0) {
        png_set_bgr(png);
    }
    for (int y = 0; y < pixels->height(); ++y) {
        png_write_row(png, Row(y));
    }
    png_write_end(png, info);
    return true;
}

} // namespace

QByteArray PngEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const auto run = std::make_unique<PngOutRun>();
    run->pixels = &picture.Pixels();
    run->request = &request;
    run->kind = PngOutKindOf(picture.Pixels(), request.bits);
    const bool blended = run->kind.colourType == PNG_COLOR_TYPE_GRAY_ALPHA;
    if (blended && run->kind.depth == 16 && !PngOutIsGrey(picture.Pixels())) {
        CannotHold(kPngOut, QStringLiteral("colours of 16 bits each in 32 bits per pixel"));
    }
    if (picture.Pixels().depth() <= 8 && run->kind.depth < 8) {
        run->packedBits = run->kind.depth;
        run->row.resize(size_t(picture.Width()));
    } else if (blended) {
        run->row.resize(size_t(picture.Width()) * 4);
    }
    if (run->kind.colourType == PNG_COLOR_TYPE_PALETTE) {
        run->TakePalette();
    }
    if (!run->Encode()) {
        if (run->memory) {
            throw std::bad_alloc();
        }
        throw Failure(
            kFailureGeneral,
            QStringLiteral("The PNG cannot be written: %1.").arg(QString::fromLatin1(run->words)),
            QString::fromLatin1(kPngOut));
    }
    return std::move(run->out);
}

} // namespace quillane::codecs
