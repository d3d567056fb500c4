#include "imaging/codecs/png_session.h"
#include "imaging/codecs/byte_stream.h"
#include "imaging/limits.h"
#include <QtEndian>
#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <png.h>

namespace quillane::codecs {

/// Everything a run touches. The library's errors come back by longjmp, so the functions it can
/// jump out of hold no C++ objects of their own.
struct PngSession::Run {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::jmp_buf jump;
    std::unique_ptr<ByteStream> stream;
    int width = 0, height = 0, depth = 0, colourType = 0;
    bool interlaced = false;
    bool transparent = false; ///< has an alpha channel or a transparent colour
    int rows = 0;
    char words[128] = {};
    PngLayout layout;

    static Run& Of(png_structp png) { return *static_cast<Run*>(png_get_error_ptr(png)); }
    [[noreturn]] static void OnError(png_structp png, png_const_charp words);
    static void OnWarning(png_structp, png_const_charp) { }
    static void OnRead(png_structp png, png_bytep to, size_t count);
    bool ReadHeader();
    void Prepare();
    void TakePalette();
    bool Decode(uchar* to, qint64 line, const std::atomic<bool>* cancelled);
};

namespace {

/// Chunks whose content the picture does not need; unread, a text cannot inflate without end.
constexpr png_byte kPngPassedOver[] = "tEXt\0zTXt\0iTXt\0sPLT\0hIST\0tIME\0eXIf\0pCAL\0sCAL";
constexpr int kPngPassedOverCount = 9;
constexpr int kPngPasses = 7;
/// Compressed bytes taken at once; of a file that is cut off, so many are lost at most.
constexpr int kPngPortion = 512;

} // namespace

void PngSession::Run::OnError(png_structp png, png_const_charp words)
{
    Run& run = Of(png);
    std::strncpy(run.words, words, sizeof(run.words) - 1);
    std::longjmp(run.jump, 1);
}

void PngSession::Run::OnRead(png_structp png, png_bytep to, size_t count)
{
    Run& run = *static_cast<Run*>(png_get_io_ptr(png));
    if (run.stream->Read(to, qint64(count)) != qint64(count)) {
        png_error(png, "it ends early");
    }
}

bool PngSession::Run::ReadHeader()
{
    if (setjmp(jump)) {
        return false;
    }
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
    info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        return false;
    }
    png_set_read_fn(png, this, OnRead);
    png_set_user_limits(png, limits::kMaxSide, limits::kMaxSide);
    png_set_chunk_cache_max(png, 1000);
    png_set_chunk_malloc_max(png, limits::kMaxFieldBytes);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, 0);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, kPngPassedOver, kPngPassedOverCount);
    // Damaged check sums of what is not needed are no reason to refuse the pixels.
    png_set_crc_action(png, PNG_CRC_DEFAULT, PNG_CRC_WARN_DISCARD);
    png_set_compression_buffer_size(png, kPngPortion);
    png_set_option(png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
    png_read_info(png, info);
    width = int(png_get_image_width(png, info));
    height = int(png_get_image_height(png, info));
    depth = png_get_bit_depth(png, info);
    colourType = png_get_color_type(png, info);
    interlaced = png_get_interlace_type(png, info) != PNG_INTERLACE_NONE;
    Prepare();
    if (interlaced) {
        png_set_interlace_handling(png);
    }
    png_read_update_info(png, info);
    return true;
}

/// Tells the library to deliver rows as the picture keeps them.
void PngSession::Run::Prepare()
{
    const bool coded = png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    transparent =
        (colourType & PNG_COLOR_MASK_ALPHA) != 0 || (coded && colourType != PNG_COLOR_TYPE_PALETTE);
    if (colourType == PNG_COLOR_TYPE_PALETTE) {
        if (depth < 8) {
            png_set_packing(png);
        }
        return;
    }
    if (transparent && coded) {
        png_set_tRNS_to_alpha(png); // which widens grey of less than 8 bits too
    } else if (colourType == PNG_COLOR_TYPE_GRAY && depth > 1 && depth < 8) {
        png_set_expand_gray_1_2_4_to_8(png);
    }
    if (depth == 16 && QSysInfo::ByteOrder == QSysInfo::LittleEndian) {
        png_set_swap(png);
    }
    const bool grey = (colourType & PNG_COLOR_MASK_COLOR) == 0;
    if (grey && !transparent) {
        return;
    }
    if (grey) {
        png_set_gray_to_rgb(png);
    }
    if (depth < 16) {
        png_set_bgr(png);
    }
    if (!transparent) {
        png_set_filler(png, 0xffff, PNG_FILLER_AFTER);
    }
}

/// Colours of a palette, its transparency in; indexes beyond its end are black.
void PngSession::Run::TakePalette()
{
    png_colorp colours = nullptr;
    int count = 0;
    png_bytep alphas = nullptr;
    int alphaCount = 0;
    png_get_PLTE(png, info, &colours, &count);
    png_get_tRNS(png, info, &alphas, &alphaCount, nullptr);
    for (int i = 0; i < 1 << depth; ++i) {
        const int alpha = i < alphaCount && alphas ? alphas[i] : 255;
        layout.colours.append(i < count && colours
                                  ? qRgba(colours[i].red, colours[i].green, colours[i].blue, alpha)
                                  : qRgb(0, 0, 0));
    }
}

/// Rows from the top that hold pixels is counted in `rows`; false on a longjmp or when cancelled.
bool PngSession::Run::Decode(uchar* to, qint64 line, const std::atomic<bool>* cancelled)
{
    if (setjmp(jump)) {
        return false;
    }
    const int passes = interlaced ? kPngPasses : 1;
    for (int pass = 0; pass < passes; ++pass) {
        for (int y = 0; y < height; ++y) {
            if (cancelled && cancelled->load(std::memory_order_relaxed)) {
                return false;
            }
            // Given as the row to display, coarse pixels fill the places of finer ones.
            png_bytep row = to + y * line;
            if (interlaced) {
                png_read_row(png, nullptr, row);
            } else {
                png_read_row(png, row, nullptr);
            }
            rows = std::max(rows, y + 1);
        }
    }
    return true;
}

PngSession::PngSession() : mRun(new Run)
{ }

PngSession::~PngSession()
{
    if (mRun->png) {
        png_destroy_read_struct(&mRun->png, &mRun->info, nullptr);
    }
}

bool PngSession::Start(ByteSource& source)
{
    Run& run = *mRun;
    run.stream = std::make_unique<ByteStream>(source, 0, source.Size());
    if (!run.ReadHeader()) {
        return false;
    }
    PngLayout& layout = run.layout;
    layout.width = run.width;
    layout.height = run.height;
    layout.fileDepth = run.depth * png_get_channels(run.png, run.info);
    const bool wide = run.depth == 16;
    const bool grey = (run.colourType & PNG_COLOR_MASK_COLOR) == 0;
    if (run.colourType == PNG_COLOR_TYPE_PALETTE) {
        layout.format = QImage::Format_Indexed8;
        layout.model = ColourModel::Palette;
        layout.fileDepth = run.depth;
        run.TakePalette();
        return true;
    }
    const int channels = (grey ? 1 : 3) + ((run.colourType & PNG_COLOR_MASK_ALPHA) ? 1 : 0);
    layout.fileDepth = run.depth * channels;
    if (grey && !run.transparent) {
        layout.format = wide ? QImage::Format_Grayscale16
            : run.depth == 1 ? QImage::Format_Mono
                             : QImage::Format_Grayscale8;
        layout.model = run.depth == 1 ? ColourModel::BlackWhite : ColourModel::Grey;
        return true;
    }
    layout.model = ColourModel::Rgb;
    if (run.transparent) {
        layout.format = wide ? QImage::Format_RGBA64 : QImage::Format_ARGB32;
    } else {
        layout.format = wide ? QImage::Format_RGBX64 : QImage::Format_RGB32;
    }
    return true;
}

const PngLayout& PngSession::Layout() const
{
    return mRun->layout;
}

QByteArray PngSession::Icc() const
{
    png_charp name = nullptr;
    int method = 0;
    png_bytep profile = nullptr;
    png_uint_32 size = 0;
    if (png_get_iCCP(mRun->png, mRun->info, &name, &method, &profile, &size) == 0 || !profile) {
        return {};
    }
    return QByteArray(reinterpret_cast<const char*>(profile), qsizetype(size));
}

bool PngSession::DecodeRows(uchar* to, qint64 line, const std::atomic<bool>* cancelled)
{
    return mRun->Decode(to, line, cancelled);
}

int PngSession::Rows() const
{
    return mRun->rows;
}

QString PngSession::Words() const
{
    QString words =
        mRun->words[0] ? QString::fromLatin1(mRun->words) : QStringLiteral("it cannot be read");
    words[0] = words[0].toLower();
    return words;
}

} // namespace quillane::codecs
