#include "imaging/worker_main/codecs/jpeg2000_stream.h"
#include <algorithm>
#include <new>

namespace quillane::worker {

namespace {

void IgnoreJpeg2000Message(const char*, void*)
{ }

void CountJpeg2000Message(const char*, void* complaints)
{
    ++*static_cast<int*>(complaints);
}

} // namespace

Jpeg2000Stream::Jpeg2000Stream(ByteSource& source)
    : mSource(&source),
      mStream(opj_stream_create(OPJ_J2K_STREAM_CHUNK_SIZE, OPJ_TRUE))
{
    Connect();
    opj_stream_set_read_function(Handle(), Read);
    opj_stream_set_user_data_length(Handle(), OPJ_UINT64(source.Size()));
}

Jpeg2000Stream::Jpeg2000Stream(FileSink& sink)
    : mSink(&sink),
      mBase(sink.Size()),
      mStream(opj_stream_create(OPJ_J2K_STREAM_CHUNK_SIZE, OPJ_FALSE))
{
    Connect();
    opj_stream_set_write_function(Handle(), Write);
}

void Jpeg2000Stream::Connect()
{
    if (!mStream) {
        throw std::bad_alloc();
    }
    opj_stream_set_skip_function(Handle(), Skip);
    opj_stream_set_seek_function(Handle(), Seek);
    opj_stream_set_user_data(Handle(), this, nullptr);
}

OPJ_SIZE_T Jpeg2000Stream::Read(void* to, OPJ_SIZE_T count, void* self)
{
    auto& stream = *static_cast<Jpeg2000Stream*>(self);
    const qint64 got = stream.mSource->ReadAt(stream.mPosition, to, qint64(count));
    if (got <= 0) {
        return OPJ_SIZE_T(-1); // the end
    }
    stream.mPosition += got;
    return OPJ_SIZE_T(got);
}

OPJ_SIZE_T Jpeg2000Stream::Write(void* from, OPJ_SIZE_T count, void* self)
{
    auto& stream = *static_cast<Jpeg2000Stream*>(self);
    if (stream.mThrown) {
        return OPJ_SIZE_T(-1);
    }
    try {
        stream.mSink->WriteAt(stream.mBase + stream.mPosition, from, qint64(count));
    } catch (...) {
        stream.mThrown = std::current_exception();
        return OPJ_SIZE_T(-1);
    }
    stream.mPosition += qint64(count);
    return count;
}

OPJ_OFF_T Jpeg2000Stream::Skip(OPJ_OFF_T count, void* self)
{
    auto& stream = *static_cast<Jpeg2000Stream*>(self);
    if (count < 0 && stream.mPosition + count < 0) {
        return -1;
    }
    stream.mPosition += count;
    return count;
}

OPJ_BOOL Jpeg2000Stream::Seek(OPJ_OFF_T position, void* self)
{
    if (position < 0) {
        return OPJ_FALSE;
    }
    static_cast<Jpeg2000Stream*>(self)->mPosition = position;
    return OPJ_TRUE;
}

void Jpeg2000Stream::Rethrow() const
{
    if (mThrown) {
        std::rethrow_exception(mThrown);
    }
}

void CountJpeg2000Complaints(opj_codec_t* codec, int& complaints)
{
    opj_set_info_handler(codec, IgnoreJpeg2000Message, nullptr);
    opj_set_warning_handler(codec, CountJpeg2000Message, &complaints);
    opj_set_error_handler(codec, CountJpeg2000Message, &complaints);
}

Jpeg2000Band::Jpeg2000Band(ByteSource& source, const Jpeg2000Header& header, int reduction,
                           quint32 top, quint32 bottom)
    : stream(source),
      codec(opj_create_decompress(header.boxed ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K))
{
    if (!codec) {
        throw std::bad_alloc();
    }
    CountJpeg2000Complaints(codec.get(), complaints);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    parameters.cp_reduce = OPJ_UINT32(reduction);
    opj_image_t* made = nullptr;
    const bool read = opj_setup_decoder(codec.get(), &parameters)
        && opj_decoder_set_strict_mode(codec.get(), OPJ_FALSE)
        && opj_read_header(stream.Handle(), codec.get(), &made);
    image.reset(made);
    if (!read || !image || image->numcomps < 1) {
        ThrowJpeg2000Damaged();
    }
    const auto place = [](quint32 value) { return OPJ_INT32(value); };
    if (!opj_set_decode_area(codec.get(), image.get(), place(header.x0), place(top),
                             place(header.x0 + header.width), place(bottom))) {
        ThrowJpeg2000Damaged();
    }
    // Read leniently, a stream that breaks off is only complained of.
    complaints = 0;
    whole = opj_decode(codec.get(), stream.Handle(), image.get())
        && opj_end_decompress(codec.get(), stream.Handle()) && complaints == 0;
    for (quint32 i = 0; i < image->numcomps; ++i) {
        const opj_image_comp_t& one = image->comps[i];
        if (!one.data || one.w < 1 || one.h < 1 || one.prec < 1 || one.prec > 31) {
            ThrowJpeg2000Damaged();
        }
    }
}

} // namespace quillane::worker
