#pragma once
#include "imaging/image_facts.h"
#include "imaging/worker_main/codecs/clip_library.h"
#include "imaging/worker_main/service/worker_codec.h"

namespace quillane::worker {

/// One kind of clip.
struct ClipKind {
    const char* name;   ///< Codec::name
    const char* reader; ///< FFmpeg's name of the format; nullptr: one of the MPEG ones
};

/// An open clip, and in it the stream of pictures whose first one is wanted. FFmpeg reads through
/// the source, so many bytes at most, and opens nothing itself.
class ClipInput {
public:
    /// Failure kFailureUnreadable for what holds no pictures, or none that are decoded here.
    ClipInput(const ClipKind& kind, ByteSource& source);
    ~ClipInput();
    ClipInput(const ClipInput&) = delete;
    ClipInput& operator=(const ClipInput&) = delete;

    const ClipLibrary& Library() const { return mLibrary; }
    const char* Name() const { return mKind.name; }
    const AVStream& Stream() const { return *mStream; }
    const AVCodec& Decoder() const { return *mDecoder; }
    /// What the container tells of its pictures.
    ImageFacts Facts() const;
    /// The next packet of the stream; false at the end, or when enough has been read.
    bool ReadPacket(AVPacket& packet);

    /// kFailureUnreadable: there is not a single picture.
    [[noreturn]] void Empty() const;
    /// kFailureUnreadable: the clip is damaged.
    [[noreturn]] void Damaged() const;

private:
    static int Read(void* self, uint8_t* to, int count);
    static int64_t Seek(void* self, int64_t position, int whence);
    static int OpenNothing(AVFormatContext* format, AVIOContext** io, const char* url, int flags,
                           AVDictionary** options);
    void Open();
    void ChooseStream();
    void Close();

    const ClipKind& mKind;
    const ClipLibrary& mLibrary;
    ByteSource& mSource;
    qint64 mPosition = 0;
    qint64 mLeft; ///< bytes that may still be read
    AVFormatContext* mFormat = nullptr;
    AVIOContext* mIo = nullptr;
    AVStream* mStream = nullptr;
    const AVCodec* mDecoder = nullptr;
};

} // namespace quillane::worker
