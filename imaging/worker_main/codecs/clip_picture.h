#pragma once
#include "imaging/worker_main/codecs/clip_library.h"
#include "imaging/worker_main/service/worker_codec.h"

namespace quillane::worker {

/// Brings a decoded frame to `width` by `height` pixels and gives its rows to a sink, with
/// `format` in the words of what is refused. Failure kFailureUnreadable for samples that cannot be
/// shown; std::bad_alloc.
void GiveClipFrame(const ClipLibrary& library, const AVFrame& frame, const char* format,
                   qint32 width, qint32 height, PictureSink& sink);

} // namespace quillane::worker
