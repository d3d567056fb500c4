#include "imaging/comments/png_text.h"
#include "imaging/limits.h"
#include <algorithm>
#include <csetjmp>
#include <png.h>

namespace quillane {

namespace {

/// Keywords of texts (PNG 1.2, section 4.2.3) and their slots.
struct PngKeyword {
    const char* keyword;
    qint16 slot;
};
constexpr PngKeyword kPngKeywords[] = {
    {"Author", 0},   {"Copyright", 1}, {"Creation Time", 2}, {"Description", 3}, {"Source", 5},
    {"Software", 9}, {"Title", 175},   {"Disclaimer", 176},  {"Warning", 177},   {"Comment", 178},
};

/// The beginning of a PNG of one grey pixel. The texts of any file are read as if they stood
/// behind it, so that nothing else of the file has to make sense.
constexpr unsigned char kPngTextHead[] = {
    0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n', 0, 0, 0, 13, 'I',  'H',  'D',  'R',  0,
    0,    0,   1,   0,   0,    0,    1,    8,    0, 0, 0, 0,  0x3a, 0x7e, 0x9b, 0x55,
};

} // namespace

qint16 PngKeywordSlot(QByteArrayView keyword)
{
    for (const PngKeyword& known : kPngKeywords) {
        if (keyword == QByteArrayView(known.keyword)) {
            return known.slot;
        }
    }
    return -1;
}

const char* PngSlotKeyword(qint16 slot)
{
    for (const PngKeyword& known : kPngKeywords) {
        if (known.slot == slot) {
            return known.keyword;
        }
    }
    return nullptr;
}

/// What the library touches. Its errors come back by longjmp, so the function it can jump out of
/// holds no C++ objects of its own.
struct PngTextReader::Run {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::jmp_buf jump;
    bool failed = false;

    [[noreturn]] static void OnError(png_structp png, png_const_charp)
    {
        std::longjmp(static_cast<Run*>(png_get_error_ptr(png))->jump, 1);
    }
    static void OnWarning(png_structp, png_const_charp) { }
    bool Start();
    bool Feed(unsigned char* bytes, size_t count);
    int TextCount(png_textp* texts) const;
};

bool PngTextReader::Run::Start()
{
    if (setjmp(jump)) {
        return false;
    }
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
    info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        return false;
    }
    png_set_chunk_malloc_max(png, png_alloc_size_t(limits::kMaxTextBytes) + 1);
    png_set_chunk_cache_max(png, 0);
    png_set_benign_errors(png, 1);
    png_set_progressive_read_fn(png, nullptr, nullptr, nullptr, nullptr);
    return true;
}

bool PngTextReader::Run::Feed(unsigned char* bytes, size_t count)
{
    if (setjmp(jump)) {
        return false;
    }
    png_process_data(png, info, bytes, count);
    return true;
}

int PngTextReader::Run::TextCount(png_textp* texts) const
{
    int count = 0;
    png_get_text(png, info, texts, &count);
    return count;
}

PngTextReader::PngTextReader() : mRun(new Run)
{
    unsigned char head[sizeof kPngTextHead];
    std::copy(std::begin(kPngTextHead), std::end(kPngTextHead), head);
    mRun->failed = !mRun->Start() || !mRun->Feed(head, sizeof head);
}

PngTextReader::~PngTextReader()
{
    if (mRun->png) {
        png_destroy_read_struct(&mRun->png, &mRun->info, nullptr);
    }
}

QByteArray PngTextReader::Take(std::span<unsigned char> chunk)
{
    if (mRun->failed) {
        return {};
    }
    png_textp texts = nullptr;
    const int before = mRun->TextCount(&texts);
    if (!mRun->Feed(chunk.data(), chunk.size())) {
        mRun->failed = true;
        return {};
    }
    if (mRun->TextCount(&texts) <= before) {
        return {};
    }
    const png_text& text = texts[before];
    const size_t length = text.text_length > 0 ? text.text_length : text.itxt_length;
    return QByteArray(text.text, qsizetype(length));
}

} // namespace quillane
