#pragma once
#include "imaging/worker_main/service/worker_codec.h"
#include <exception>
#include <string>

struct tiff;

namespace quillane::worker {

/// A TIFF file that libtiff writes into a sink.
class TiffOutput {
public:
    /// Failure kFailureGeneral when libtiff cannot begin.
    explicit TiffOutput(FileSink& file);
    ~TiffOutput();
    TiffOutput(const TiffOutput&) = delete;
    TiffOutput& operator=(const TiffOutput&) = delete;

    tiff* Handle() const { return mTiff; }
    /// Throws what the sink threw, or a Failure with libtiff's words, when `done` is false.
    void Expect(bool done);
    /// Writes what is left, the directory too, and closes.
    void Finish();

    /// What libtiff calls; nothing may be thrown through it.
    qint64 Write(const void* bytes, qint64 count) noexcept;
    FileSink& Sink() { return mFile; }
    qint64& Position() { return mPosition; }
    void SetWords(std::string words) { mWords = std::move(words); }

private:
    FileSink& mFile;
    tiff* mTiff = nullptr;
    qint64 mPosition = 0;
    std::exception_ptr mThrown;
    std::string mWords;
};

} // namespace quillane::worker
