#pragma once
#include "imaging/bitmap.h"
#include "imaging/byte_source.h"
#include "imaging/encode.h"
#include "imaging/image_facts.h"
#include <QSize>
#include <atomic>
#include <span>

namespace quillane {

/// How a picture is wanted.
struct DecodeRequest {
    /// When not empty, a codec that can decode at reduced scale does, as long as both sides
    /// (as stored) stay at least this large. A hint: the full picture is always allowed.
    QSize atLeast;
    qint32 page = 0;
    /// When set and true, decoding stops with Failure kFailureCancelled at the next row or so.
    const std::atomic<bool>* cancelled = nullptr;
};

/// One format family. Its functions are pure: bytes in, facts or pixels out, in any thread.
/// Damaged content is a Failure (kFailureUnreadable, kFailureLimit) that names the format, or
/// a partial picture when at least some rows decoded.
struct Codec {
    const char* name;
    /// Upper-cased extensions without the dot, divided by blanks; only a hint for formats
    /// without a mark of their own.
    const char* extensions;
    /// Whether a file that begins with these bytes (up to 512 of them) is of this format.
    bool (*matches)(QByteArrayView head, QStringView extension);
    ImageFacts (*probe)(ByteSource& source);
    /// Pixels as stored, not turned upright.
    Bitmap (*decode)(ByteSource& source, const DecodeRequest& request);
    /// Whether the work is done by the decoding process; probe and decode are then null here.
    bool inWorker;
    /// The whole file for EncodePicture, which has looked at the table of variants and brought the
    /// picture to the wanted depth; nullptr for a format that is only read. With `encodesInWorker`
    /// it is null here and the decoding process has it.
    QByteArray (*encode)(const Bitmap& picture, const EncodeRequest& request) = nullptr;
    bool encodesInWorker = false;
};

/// Every codec, in the order in which their marks are tried.
std::span<const Codec> AllCodecs();
/// The codec for this content; nullptr when none takes it.
const Codec* FindCodec(QByteArrayView head, QStringView extension);

} // namespace quillane
