#pragma once
// The program's side of the decoding processes. Any thread.
#include "imaging/carry/carry.h"
#include "imaging/codec.h"
#include "imaging/comments/comment_set.h"

namespace quillane::worker {

/// Path of the quillane-codec program and how many of them may run at once. Called once at
/// start, before any other call; nothing is spawned until the first use.
void Configure(const QString& program, int maxProcesses);
/// Spawns and locks one worker ahead of its first use, in the background.
void WarmUp();
/// Ends all workers; also at exit of the program.
void Shutdown();

/// The file's facts, decoded by a worker. codecName: Codec::name. Failure of the codec, or
/// kFailureWorker with words when the worker crashed, hung or lied; the next call gets a new one.
ImageFacts Probe(FileSource& source, const char* codecName);
/// Pixels as stored, not turned upright.
Bitmap Decode(FileSource& source, const char* codecName, const DecodeRequest& request);
/// Comment slots that only the worker's libraries read (DICOM).
CommentSet Comments(FileSource& source, const char* codecName);

/// The whole file, encoded by a worker (see EncodePicture): any codec there that writes. The
/// picture may be of any depth; the encoder brings it to request.bits. Failure of the encoder, or
/// kFailureWorker with words when the worker crashed, hung or lied; the next call gets a new one.
QByteArray Encode(const Bitmap& picture, const EncodeRequest& request, const char* codecName);
/// The original with new pixels and changed comments (DICOM); everything else in it stays. A null
/// picture: its pixels stay too, as they lie in the file, and of the request nothing counts.
QByteArray Rewrite(FileSource& original, const Bitmap& picture, const EncodeRequest& request,
                   std::span<const CommentChange> changes, const char* codecName);
/// The same for a file in memory, such as one that Encode has made.
QByteArray Rewrite(const QByteArray& original, const Bitmap& picture, const EncodeRequest& request,
                   std::span<const CommentChange> changes, const char* codecName);

} // namespace quillane::worker
