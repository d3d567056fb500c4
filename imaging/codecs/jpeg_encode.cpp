#include "imaging/codecs/codecs.h"
#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/jpeg_session.h"
#include "imaging/quality.h"
#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>
#include <memory>
#include <new>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kJpegOut[] = "JPEG";
constexpr int kJpegMostSide = 65500; ///< JPEG_MAX_DIMENSION of the library
/// Blocks of all channels that may lie in one unit of a scan (T.81, B.2.3).
constexpr int kJpegMostBlocks = 10;
constexpr qint64 kJpegOutRoom = 64 << 20; ///< bytes that are asked for at once
constexpr int kJpegOutRows = 16;          ///< handed over at once

/// Samples of luminance to one of colour.
struct JpegSampling {
    int across = 1, down = 1;
};

/// What the format code says: 4:4:4, 4:2:2, and 4:1:1, which is four to one across.
JpegSampling JpegSamplingOf(const EncodeRequest& request)
{
    const SourceLayout& layout = request.layout;
    if (layout.horizontal > 0 && layout.vertical > 0 && layout.horizontal <= 4
        && layout.vertical <= 4 && layout.horizontal * layout.vertical + 2 <= kJpegMostBlocks) {
        return {layout.horizontal, layout.vertical};
    }
    switch (request.format) {
    case 23:
    case 98:
        return {2, 1};
    case 21:
    case 101:
        return {4, 1};
    default:
        return {1, 1};
    }
}

/// Whether a picture in scans could be put together again within the reader's memory.
bool JpegFitsInScans(const Bitmap& picture, int channels, const JpegSampling& sampling)
{
    const qint64 pixels = qint64(picture.Width()) * picture.Height();
    const qint64 samples = pixels + pixels * (channels - 1) / (sampling.across * sampling.down);
    return samples * 2 + pixels * 4 < kJpegMemory;
}

/// Everything a run touches. The library's errors come back by longjmp, so the functions it can
/// jump out of hold no C++ objects of their own.
struct JpegOutRun {
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    jpeg_destination_mgr destination;
    std::jmp_buf jump;
    const QImage* pixels = nullptr;
    const EncodeRequest* request = nullptr;
    JpegSampling sampling;
    bool ink = false;    ///< four channels
    bool grey = false;   ///< one channel
    bool scans = false;  ///< progressive
    bool made = false;   ///< info has been created
    bool memory = false; ///< there was not enough
    char words[JMSG_LENGTH_MAX] = {};
    std::vector<uchar> inverted; ///< rows of ink as Adobe's programs write them, 255 for none
    QByteArray out;
    JOCTET buffer[64 * 1024];

    ~JpegOutRun()
    {
        if (made) {
            jpeg_destroy_compress(&info);
        }
    }
    static JpegOutRun& Of(j_compress_ptr any)
    {
        return *static_cast<JpegOutRun*>(any->client_data);
    }
    [[noreturn]] static void OnError(j_common_ptr common)
    {
        JpegOutRun& run = *static_cast<JpegOutRun*>(common->client_data);
        common->err->format_message(common, run.words);
        std::longjmp(run.jump, 1);
    }
    bool Append(size_t count)
    {
        try {
            out.append(reinterpret_cast<const char*>(buffer), qsizetype(count));
        } catch (const std::bad_alloc&) {
            memory = true;
        }
        return !memory;
    }
    static void Aim(j_compress_ptr any)
    {
        JpegOutRun& run = Of(any);
        run.destination.next_output_byte = run.buffer;
        run.destination.free_in_buffer = sizeof(run.buffer);
    }
    static boolean Empty(j_compress_ptr any)
    {
        JpegOutRun& run = Of(any);
        if (!run.Append(sizeof(run.buffer))) {
            std::longjmp(run.jump, 1);
        }
        Aim(any);
        return TRUE;
    }
    static void End(j_compress_ptr any)
    {
        JpegOutRun& run = Of(any);
        if (!run.Append(sizeof(run.buffer) - run.destination.free_in_buffer)) {
            std::longjmp(run.jump, 1);
        }
    }
    void Prepare();
    void Sample();
    void PutRows();
    bool Encode();
};

void JpegOutRun::Prepare()
{
    info.image_width = JDIMENSION(pixels->width());
    info.image_height = JDIMENSION(pixels->height());
    info.input_components = grey ? 1 : 4;
    info.in_color_space = grey ? JCS_GRAYSCALE : ink ? JCS_CMYK : JCS_EXT_BGRX;
    jpeg_set_defaults(&info);
    Sample();
    jpeg_set_linear_quality(&info, JpegTableScale(request->quality), TRUE);
    if (request->xResolution > 0 && request->yResolution > 0 && request->xResolution <= 0xffff
        && request->yResolution <= 0xffff) {
        info.density_unit = 1; // dots per inch
        info.X_density = UINT16(request->xResolution);
        info.Y_density = UINT16(request->yResolution);
    }
    if (scans) {
        jpeg_simple_progression(&info);
    }
}

/// Ink whose colours are stored more coarsely than its black goes as luminance and colour; black
/// is sampled as finely as luminance.
void JpegOutRun::Sample()
{
    const bool coarse = sampling.across * sampling.down > 1;
    if (grey) {
        return;
    }
    if (ink) {
        jpeg_set_colorspace(&info, coarse ? JCS_YCCK : JCS_CMYK);
    }
    for (int i = 0; i < info.num_components; ++i) {
        const bool full = i == 0 || i == 3;
        info.comp_info[i].h_samp_factor = full ? sampling.across : 1;
        info.comp_info[i].v_samp_factor = full ? sampling.down : 1;
    }
}

void JpegOutRun::PutRows()
{
    JSAMPROW rows[kJpegOutRows];
    const qint64 line = qint64(pixels->width()) * 4;
    while (info.next_scanline < info.image_height) {
        const int first = int(info.next_scanline);
        const int count = std::min(kJpegOutRows, pixels->height() - first);
        for (int i = 0; i < count; ++i) {
            const uchar* row = pixels->constScanLine(first + i);
            if (ink) {
                uchar* to = inverted.data() + i * line;
                std::transform(row, row + line, to, [](uchar c) { return uchar(~c); });
                rows[i] = to;
            } else {
                rows[i] = const_cast<JSAMPROW>(row); // which the library only reads
            }
        }
        jpeg_write_scanlines(&info, rows, JDIMENSION(count));
    }
}

bool JpegOutRun::Encode()
{
    info.err = jpeg_std_error(&errors);
    errors.error_exit = OnError;
    errors.emit_message = [](j_common_ptr, int) {};
    info.client_data = this;
    if (setjmp(jump)) {
        return false;
    }
    jpeg_create_compress(&info); // keeps err and client_data
    made = true;
    destination.init_destination = Aim;
    destination.empty_output_buffer = Empty;
    destination.term_destination = End;
    info.dest = &destination;
    Prepare();
    // Room for a byte a pixel, more than pictures take; what is not used costs nothing.
    out.reserve(qsizetype(std::min(qint64(pixels->width()) * pixels->height(), kJpegOutRoom)));
    jpeg_start_compress(&info, TRUE);
    if (!request->icc.isEmpty()) {
        jpeg_write_icc_profile(&info, reinterpret_cast<const JOCTET*>(request->icc.constData()),
                               unsigned(request->icc.size()));
    }
    PutRows();
    jpeg_finish_compress(&info);
    return true;
}

} // namespace

QByteArray JpegEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kJpegOut, picture, kJpegMostSide, kJpegMostSide);
    const auto run = std::make_unique<JpegOutRun>();
    run->pixels = &picture.Pixels();
    run->request = &request;
    run->ink = picture.Model() == ColourModel::Cmyk;
    run->grey = picture.Pixels().format() == QImage::Format_Grayscale8;
    run->sampling = JpegSamplingOf(request);
    if (run->ink) {
        if (2 * run->sampling.across * run->sampling.down + 2 > kJpegMostBlocks) {
            run->sampling = {};
        }
        run->inverted.resize(size_t(picture.Width()) * 4 * kJpegOutRows);
    }
    const int channels = run->grey ? 1 : run->ink ? 4 : 3;
    run->scans = request.layout.progressive && JpegFitsInScans(picture, channels, run->sampling);
    if (!run->Encode()) {
        if (run->memory) {
            throw std::bad_alloc();
        }
        throw Failure(
            kFailureGeneral,
            QStringLiteral("The JPEG cannot be written: %1.").arg(QString::fromLatin1(run->words)),
            QString::fromLatin1(kJpegOut));
    }
    return std::move(run->out);
}

} // namespace quillane::codecs
