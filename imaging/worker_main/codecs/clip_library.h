#pragma once
// FFmpeg's libraries, loaded while the process may still open files: linked in, they would make
// every start of it many times slower.
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

namespace quillane::worker {

/// A pointer to a function like this one.
template <auto* function> using ClipCall = decltype(function);

/// The functions that are used of them, under their names without prefix.
struct ClipLibrary {
    // libavutil
    ClipCall<::av_log_set_level> LogSetLevel;
    ClipCall<::av_max_alloc> MaxAlloc;
    ClipCall<::av_malloc> Malloc;
    ClipCall<::av_freep> Freep;
    ClipCall<::av_dict_set> DictSet;
    ClipCall<::av_dict_free> DictFree;
    ClipCall<::av_frame_alloc> FrameAlloc;
    ClipCall<::av_frame_free> FrameFree;
    ClipCall<::av_frame_unref> FrameUnref;
    ClipCall<::av_frame_move_ref> FrameMoveRef;
    // libavcodec
    ClipCall<::av_packet_alloc> PacketAlloc;
    ClipCall<::av_packet_free> PacketFree;
    ClipCall<::av_packet_unref> PacketUnref;
    ClipCall<::avcodec_find_decoder_by_name> FindDecoderByName;
    ClipCall<::avcodec_descriptor_get> DescriptorGet;
    ClipCall<::avcodec_alloc_context3> AllocCodec;
    ClipCall<::avcodec_free_context> FreeCodec;
    ClipCall<::avcodec_parameters_to_context> ParametersToContext;
    ClipCall<::avcodec_open2> OpenCodec;
    ClipCall<::avcodec_send_packet> SendPacket;
    ClipCall<::avcodec_receive_frame> ReceiveFrame;
    // libavformat
    ClipCall<::avformat_alloc_context> AllocFormat;
    ClipCall<::avformat_open_input> OpenInput;
    ClipCall<::avformat_close_input> CloseInput;
    ClipCall<::avformat_find_stream_info> FindStreamInfo;
    ClipCall<::av_find_input_format> FindInputFormat;
    ClipCall<::av_read_frame> ReadFrame;
    ClipCall<::av_stream_get_side_data> StreamSideData;
    ClipCall<::avio_alloc_context> AllocIo;
    ClipCall<::avio_context_free> FreeIo;
    // libswscale
    ClipCall<::sws_getContext> ScalerFor;
    ClipCall<::sws_freeContext> FreeScaler;
    ClipCall<::sws_getCoefficients> Coefficients;
    ClipCall<::sws_setColorspaceDetails> SetColours;
    ClipCall<::sws_scale> Scale;
};

/// Loads them, once; nothing happens where they are not installed.
void LoadClipLibrary();
/// What was loaded. Failure kFailureUnreadable, in words that name the format, without it.
const ClipLibrary& LoadedClipLibrary(const char* format);

} // namespace quillane::worker
