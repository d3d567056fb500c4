#include "imaging/worker_main/codecs/clip_library.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include <QByteArray>
#include <dlfcn.h>
#include <optional>

namespace quillane::worker {

namespace {

std::optional<ClipLibrary> gClipLibrary;

/// Opens a library of the version that this program was built for; nullptr without it. It is
/// never closed.
void* ClipLibraryHandle(const char* name, int version)
{
    return ::dlopen((QByteArray(name) + ".so." + QByteArray::number(version)).constData(),
                    RTLD_LAZY | RTLD_LOCAL);
}

/// Looks functions up in one library and in those that it is made from.
class ClipSymbols {
public:
    explicit ClipSymbols(void* handle) : mHandle(handle) { }
    template <typename Function> void Find(Function& function, const char* name)
    {
        void* symbol = mHandle ? ::dlsym(mHandle, name) : nullptr;
        function = reinterpret_cast<Function>(symbol);
        mComplete = mComplete && symbol;
    }
    bool IsComplete() const { return mComplete; }

private:
    void* mHandle;
    bool mComplete = true;
};

bool FindUtilities(ClipLibrary& library)
{
    ClipSymbols symbols(ClipLibraryHandle("libavutil", LIBAVUTIL_VERSION_MAJOR));
    symbols.Find(library.LogSetLevel, "av_log_set_level");
    symbols.Find(library.MaxAlloc, "av_max_alloc");
    symbols.Find(library.Malloc, "av_malloc");
    symbols.Find(library.Freep, "av_freep");
    symbols.Find(library.DictSet, "av_dict_set");
    symbols.Find(library.DictFree, "av_dict_free");
    symbols.Find(library.FrameAlloc, "av_frame_alloc");
    symbols.Find(library.FrameFree, "av_frame_free");
    symbols.Find(library.FrameUnref, "av_frame_unref");
    symbols.Find(library.FrameMoveRef, "av_frame_move_ref");
    return symbols.IsComplete();
}

bool FindDecoding(ClipLibrary& library)
{
    ClipSymbols symbols(ClipLibraryHandle("libavcodec", LIBAVCODEC_VERSION_MAJOR));
    symbols.Find(library.PacketAlloc, "av_packet_alloc");
    symbols.Find(library.PacketFree, "av_packet_free");
    symbols.Find(library.PacketUnref, "av_packet_unref");
    symbols.Find(library.FindDecoderByName, "avcodec_find_decoder_by_name");
    symbols.Find(library.DescriptorGet, "avcodec_descriptor_get");
    symbols.Find(library.AllocCodec, "avcodec_alloc_context3");
    symbols.Find(library.FreeCodec, "avcodec_free_context");
    symbols.Find(library.ParametersToContext, "avcodec_parameters_to_context");
    symbols.Find(library.OpenCodec, "avcodec_open2");
    symbols.Find(library.SendPacket, "avcodec_send_packet");
    symbols.Find(library.ReceiveFrame, "avcodec_receive_frame");
    return symbols.IsComplete();
}

bool FindReading(ClipLibrary& library)
{
    ClipSymbols symbols(ClipLibraryHandle("libavformat", LIBAVFORMAT_VERSION_MAJOR));
    symbols.Find(library.AllocFormat, "avformat_alloc_context");
    symbols.Find(library.OpenInput, "avformat_open_input");
    symbols.Find(library.CloseInput, "avformat_close_input");
    symbols.Find(library.FindStreamInfo, "avformat_find_stream_info");
    symbols.Find(library.FindInputFormat, "av_find_input_format");
    symbols.Find(library.ReadFrame, "av_read_frame");
    symbols.Find(library.StreamSideData, "av_stream_get_side_data");
    symbols.Find(library.AllocIo, "avio_alloc_context");
    symbols.Find(library.FreeIo, "avio_context_free");
    return symbols.IsComplete();
}

bool FindScaling(ClipLibrary& library)
{
    ClipSymbols symbols(ClipLibraryHandle("libswscale", LIBSWSCALE_VERSION_MAJOR));
    symbols.Find(library.ScalerFor, "sws_getContext");
    symbols.Find(library.FreeScaler, "sws_freeContext");
    symbols.Find(library.Coefficients, "sws_getCoefficients");
    symbols.Find(library.SetColours, "sws_setColorspaceDetails");
    symbols.Find(library.Scale, "sws_scale");
    return symbols.IsComplete();
}

} // namespace

void LoadClipLibrary()
{
    ClipLibrary library{};
    if (FindUtilities(library) && FindDecoding(library) && FindReading(library)
        && FindScaling(library)) {
        library.LogSetLevel(AV_LOG_QUIET);
        library.MaxAlloc(size_t(limits::kMaxPictureBytes));
        gClipLibrary = library;
    }
}

const ClipLibrary& LoadedClipLibrary(const char* format)
{
    if (!gClipLibrary) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This %1 can be shown only with the libraries of FFmpeg, "
                                     "which are not installed.")
                          .arg(QLatin1String(format)));
    }
    return *gClipLibrary;
}

} // namespace quillane::worker
