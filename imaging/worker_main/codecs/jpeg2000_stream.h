#pragma once
#include "imaging/worker_main/codecs/jpeg2000_header.h"
#include "imaging/worker_main/service/worker_codec.h"
#include <exception>
#include <memory>
#include <openjpeg.h>

namespace quillane::worker {

/// Frees what OpenJPEG has made.
struct Jpeg2000Deleter {
    void operator()(opj_stream_t* stream) const { opj_stream_destroy(stream); }
    void operator()(opj_image_t* image) const { opj_image_destroy(image); }
};
/// OpenJPEG names stream and codec by one type; so the codec has an owner of its own.
struct Jpeg2000CodecDeleter {
    void operator()(opj_codec_t* codec) const { opj_destroy_codec(codec); }
};
using Jpeg2000Image = std::unique_ptr<opj_image_t, Jpeg2000Deleter>;
using Jpeg2000Codec = std::unique_ptr<opj_codec_t, Jpeg2000CodecDeleter>;
using Jpeg2000StreamPtr = std::unique_ptr<opj_stream_t, Jpeg2000Deleter>;

/// Where OpenJPEG reads and writes: a source from its beginning, or a sink from where it ends
/// now. Keeps what the sink threw, because nothing may be thrown through the library.
class Jpeg2000Stream {
public:
    explicit Jpeg2000Stream(ByteSource& source);
    explicit Jpeg2000Stream(FileSink& sink);
    Jpeg2000Stream(const Jpeg2000Stream&) = delete;
    Jpeg2000Stream& operator=(const Jpeg2000Stream&) = delete;

    opj_stream_t* Handle() const { return mStream.get(); }
    /// Throws what the sink threw, if anything.
    void Rethrow() const;

private:
    static OPJ_SIZE_T Read(void* to, OPJ_SIZE_T count, void* self);
    static OPJ_SIZE_T Write(void* from, OPJ_SIZE_T count, void* self);
    static OPJ_OFF_T Skip(OPJ_OFF_T count, void* self);
    static OPJ_BOOL Seek(OPJ_OFF_T position, void* self);
    void Connect();

    ByteSource* mSource = nullptr;
    FileSink* mSink = nullptr;
    qint64 mBase = 0;
    qint64 mPosition = 0;
    std::exception_ptr mThrown;
    Jpeg2000StreamPtr mStream;
};

/// Lets a codec's messages go nowhere but into a count of complaints.
void CountJpeg2000Complaints(opj_codec_t* codec, int& complaints);

/// One run of the library: what lies between two rows of the reference grid.
struct Jpeg2000Band {
    Jpeg2000Stream stream;
    Jpeg2000Codec codec;
    Jpeg2000Image image;
    int complaints = 0;
    bool whole = false; ///< nothing was missing

    /// Decodes the rows from `top` to before `bottom` of the reference grid, each side halved
    /// `reduction` times. Failure when nothing can be decoded.
    Jpeg2000Band(ByteSource& source, const Jpeg2000Header& header, int reduction, quint32 top,
                 quint32 bottom);
};

} // namespace quillane::worker
