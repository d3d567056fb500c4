#include "imaging/worker_main/codecs/tiff_output.h"
#include "core/failure.h"
#include <cstdarg>
#include <cstdio>
#include <tiffio.h>

namespace quillane::worker {

namespace {

TiffOutput& OutputOf(thandle_t handle)
{
    return *static_cast<TiffOutput*>(handle);
}

/// A file that is being written is not read.
tmsize_t ReadOutput(thandle_t, void*, tmsize_t)
{
    return 0;
}

tmsize_t WriteOutput(thandle_t handle, void* bytes, tmsize_t count)
{
    return OutputOf(handle).Write(bytes, count);
}

toff_t SeekOutput(thandle_t handle, toff_t offset, int whence)
{
    TiffOutput& output = OutputOf(handle);
    const qint64 base = whence == SEEK_SET ? 0
        : whence == SEEK_CUR               ? output.Position()
                                           : output.Sink().Size();
    output.Position() = base + qint64(offset);
    return toff_t(output.Position());
}

int CloseOutput(thandle_t)
{
    return 0;
}

toff_t SizeOfOutput(thandle_t handle)
{
    return toff_t(OutputOf(handle).Sink().Size());
}

int KeepOutputError(TIFF*, void* user, const char*, const char* format, va_list values)
{
    char words[256];
    // The library's own formats; never one that a file brought along.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int count = std::vsnprintf(words, sizeof(words), format, values);
#pragma GCC diagnostic pop
    if (count > 0) {
        OutputOf(user).SetWords(words);
    }
    return 1;
}

int IgnoreOutputWarning(TIFF*, void*, const char*, const char*, va_list)
{
    return 1;
}

} // namespace

TiffOutput::TiffOutput(FileSink& file) : mFile(file)
{
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, KeepOutputError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options, IgnoreOutputWarning, this);
    mTiff = TIFFClientOpenExt("picture", "wl", this, ReadOutput, WriteOutput, SeekOutput,
                              CloseOutput, SizeOfOutput, nullptr, nullptr, options);
    TIFFOpenOptionsFree(options);
    Expect(mTiff != nullptr);
}

TiffOutput::~TiffOutput()
{
    if (mTiff) {
        TIFFClose(mTiff);
    }
}

qint64 TiffOutput::Write(const void* bytes, qint64 count) noexcept
{
    if (mThrown) {
        return 0;
    }
    try {
        mFile.WriteAt(mPosition, bytes, count);
    } catch (...) {
        mThrown = std::current_exception();
        return 0;
    }
    mPosition += count;
    return count;
}

void TiffOutput::Expect(bool done)
{
    if (mThrown) {
        std::rethrow_exception(mThrown);
    }
    if (!done) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("The TIFF file cannot be written: %1")
                          .arg(QString::fromStdString(mWords)));
    }
}

void TiffOutput::Finish()
{
    Expect(TIFFWriteDirectory(mTiff) == 1);
    TIFFClose(mTiff);
    mTiff = nullptr;
    Expect(true);
}

} // namespace quillane::worker
