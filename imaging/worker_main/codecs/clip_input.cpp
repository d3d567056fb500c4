#include "imaging/worker_main/codecs/clip_input.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include <algorithm>
#include <cstdlib>
#include <new>

namespace quillane::worker {

namespace {

constexpr int kClipBuffer = 32 * 1024;
/// Bytes that are read of a clip; its tables may lie at its end, so there is no fixed place.
constexpr qint64 kClipMostBytes = 96ll << 20;
constexpr qint64 kClipLeastRead = 512;      ///< what the smallest read counts for
constexpr qint64 kClipLookedAt = 4ll << 20; ///< while a clip without a header is examined
constexpr qint64 kClipExamined = 2'000'000; ///< microseconds of it
constexpr int kClipMostStreams = 64;
constexpr int kClipLookedAtPackets = 500;

/// Decoders of what cameras and the programs of their time have put into such files. All of them
/// are FFmpeg's own and work in one thread.
constexpr const char* kClipDecoders[] = {
    "mjpeg",  "mjpegb", "h264",    "hevc",     "mpeg4",       "mpeg1video",  "mpeg2video",
    "h263",   "h263i",  "h261",    "flv",      "msmpeg4",     "msmpeg4v1",   "msmpeg4v2",
    "wmv1",   "wmv2",   "wmv3",    "vc1",      "svq1",        "svq3",        "cinepak",
    "indeo2", "indeo3", "indeo4",  "indeo5",   "rpza",        "smc",         "qtrle",
    "8bps",   "qdraw",  "dvvideo", "rawvideo", "cyuv",        "msrle",       "msvideo1",
    "png",    "bmp",    "targa",   "gif",      "jpegls",      "jpeg2000",    "prores",
    "dnxhd",  "cfhd",   "huffyuv", "ffvhuff",  "ffv1",        "utvideo",     "lagarith",
    "v210",   "v308",   "v408",    "v410",     "r210",        "r10k",        "ayuv",
    "vp3",    "vp5",    "vp6",     "vp6f",     "vp8",         "vp9",         "theora",
    "mszh",   "zlib",   "tscc",    "tscc2",    "camstudio",   "zmbv",        "loco",
    "aasc",   "asv1",   "asv2",    "fraps",    "truemotion1", "truemotion2", "ultimotion",
    "vcr1",   "wnv1",   "xl",      "mvc1",     "mvc2",        "zerocodec",   "avrp",
};

const AVCodec* ClipDecoderFor(const ClipLibrary& library, AVCodecID id)
{
    for (const char* name : kClipDecoders) {
        const AVCodec* decoder = library.FindDecoderByName(name);
        if (decoder && decoder->id == id && decoder->type == AVMEDIA_TYPE_VIDEO) {
            return decoder;
        }
    }
    return nullptr;
}

/// The same as FFmpeg wants it told: names divided by commas.
const QByteArray& ClipDecoderNames()
{
    static const QByteArray names = [] {
        QByteArray all;
        for (const char* name : kClipDecoders) {
            all += (all.isEmpty() ? "" : ",") + QByteArray(name);
        }
        return all;
    }();
    return names;
}

/// The Exif orientation of a display matrix: a picture whose point (x, y) is shown at
/// (a x + c y, b x + d y), y downwards.
quint8 ClipOrientation(const qint32* matrix)
{
    const qint32 a = matrix[0], b = matrix[1], c = matrix[3], d = matrix[4];
    const bool turned = std::llabs(b) > std::llabs(a);
    if (!turned) {
        return a >= 0 ? (d >= 0 ? 1 : 4) : (d >= 0 ? 2 : 3);
    }
    return b > 0 ? (c > 0 ? 5 : 6) : (c > 0 ? 8 : 7);
}

/// How pictures are packed, in words; for what FFmpeg does not know, the container's letters.
QString ClipPacking(const ClipLibrary& library, const AVCodecParameters& told)
{
    const AVCodecDescriptor* descriptor = library.DescriptorGet(told.codec_id);
    if (descriptor && descriptor->long_name) {
        return QString::fromUtf8(descriptor->long_name);
    }
    QString letters;
    for (int shift = 0; shift < 32; shift += 8) {
        const uchar letter = uchar(told.codec_tag >> shift);
        letters += letter > ' ' && letter < 0x7f ? QChar(letter) : QChar(u'?');
    }
    return letters == u"????" ? QStringLiteral("something unknown") : letters;
}

/// Packets of pictures and sound, packets for broadcasting, or a bare stream of pictures.
const char* ClipMpegReader(ByteSource& source)
{
    constexpr uchar kPack = 0xba, kTransport = 0x47;
    uchar head[4] = {};
    source.ReadAt(0, head, sizeof(head));
    return head[0] == kTransport ? "mpegts" : head[3] == kPack ? "mpeg" : "mpegvideo";
}

qint16 ClipFormat(const ClipKind& kind, AVCodecID id)
{
    constexpr qint16 kAvi = 59, kMpeg1 = 243, kMpeg2 = 246;
    if (qstrcmp(kind.name, "AVI") == 0) {
        return kAvi;
    }
    if (qstrcmp(kind.name, "MPEG") == 0) {
        return id == AV_CODEC_ID_MPEG1VIDEO ? kMpeg1 : kMpeg2;
    }
    return 0;
}

} // namespace

ClipInput::ClipInput(const ClipKind& kind, ByteSource& source)
    : mKind(kind),
      mLibrary(LoadedClipLibrary(kind.name)),
      mSource(source),
      mLeft(kClipMostBytes)
{
    try {
        Open();
        ChooseStream();
    } catch (...) {
        Close();
        throw;
    }
}

ClipInput::~ClipInput()
{
    Close();
}

void ClipInput::Close()
{
    mLibrary.CloseInput(&mFormat);
    if (mIo) {
        mLibrary.Freep(&mIo->buffer);
        mLibrary.FreeIo(&mIo);
    }
}

void ClipInput::Damaged() const
{
    throw Failure(kFailureUnreadable,
                  QStringLiteral("This %1 is damaged: no picture can be decoded from it.")
                      .arg(QLatin1String(mKind.name)));
}

void ClipInput::Empty() const
{
    throw Failure(kFailureUnreadable,
                  QStringLiteral("This %1 holds no pictures.").arg(QLatin1String(mKind.name)));
}

int ClipInput::Read(void* self, uint8_t* to, int count)
{
    ClipInput& input = *static_cast<ClipInput*>(self);
    if (input.mLeft <= 0 || count <= 0) {
        return AVERROR_EOF;
    }
    qint64 got = 0;
    try {
        got = input.mSource.ReadAt(input.mPosition, to, count);
    } catch (...) {
        return AVERROR(EIO);
    }
    if (got <= 0) {
        return AVERROR_EOF;
    }
    input.mPosition += got;
    input.mLeft -= std::max(got, kClipLeastRead);
    return int(got);
}

int64_t ClipInput::Seek(void* self, int64_t position, int whence)
{
    ClipInput& input = *static_cast<ClipInput*>(self);
    const qint64 size = input.mSource.Size();
    qint64 base = 0;
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return size;
    case SEEK_SET:
        break;
    case SEEK_CUR:
        base = input.mPosition;
        break;
    case SEEK_END:
        base = size;
        break;
    default:
        return AVERROR(EINVAL);
    }
    // Both lie within the size of a file, so nothing overflows.
    if (position < -base || position > size - base) {
        return AVERROR(EINVAL);
    }
    input.mPosition = base + position;
    input.mLeft -= kClipLeastRead;
    return input.mPosition;
}

int ClipInput::OpenNothing(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**)
{
    return AVERROR(EPERM);
}

void ClipInput::Open()
{
    const AVInputFormat* reader =
        mLibrary.FindInputFormat(mKind.reader ? mKind.reader : ClipMpegReader(mSource));
    mFormat = mLibrary.AllocFormat();
    auto* buffer = static_cast<uchar*>(mLibrary.Malloc(kClipBuffer));
    mIo = buffer ? mLibrary.AllocIo(buffer, kClipBuffer, 0, this, Read, nullptr, Seek) : nullptr;
    if (!mFormat || !mIo) {
        if (!mIo) {
            mLibrary.Freep(&buffer);
        }
        throw std::bad_alloc();
    }
    mFormat->pb = mIo;
    mFormat->io_open = OpenNothing;
    mFormat->flags |= AVFMT_FLAG_CUSTOM_IO;
    mFormat->max_streams = kClipMostStreams;
    mFormat->probesize = kClipLookedAt;
    mFormat->max_analyze_duration = kClipExamined;
    mFormat->max_probe_packets = kClipLookedAtPackets;
    AVDictionary* options = nullptr;
    mLibrary.DictSet(&options, "codec_whitelist", ClipDecoderNames().constData(), 0);
    mLibrary.DictSet(&options, "protocol_whitelist", "none", 0);
    // On a failure FFmpeg frees the context itself.
    const int opened = mLibrary.OpenInput(&mFormat, nullptr, reader, &options);
    mLibrary.DictFree(&options);
    if (opened == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    if (opened < 0) {
        Damaged();
    }
    // Where a header tells the size of the pictures, nothing has to be decoded for it.
    const auto isSized = [](const AVStream* stream) {
        return stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && stream->codecpar->width > 0
            && stream->codecpar->codec_id != AV_CODEC_ID_NONE;
    };
    if (std::none_of(mFormat->streams, mFormat->streams + mFormat->nb_streams, isSized)
        && mLibrary.FindStreamInfo(mFormat, nullptr) < 0) {
        Damaged();
    }
}

/// The first stream of pictures that can be decoded; a picture of the cover only without others.
void ClipInput::ChooseStream()
{
    QString packing;
    bool isDecoded = false;
    for (const bool covers : {false, true}) {
        for (unsigned i = 0; i < mFormat->nb_streams && !mStream; ++i) {
            AVStream* stream = mFormat->streams[i];
            const AVCodecParameters& told = *stream->codecpar;
            const bool isCover = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
            if (told.codec_type != AVMEDIA_TYPE_VIDEO || isCover != covers) {
                continue;
            }
            mDecoder = ClipDecoderFor(mLibrary, told.codec_id);
            if (!mDecoder) {
                packing = ClipPacking(mLibrary, told);
                continue;
            }
            isDecoded = true;
            if (told.width > 0 && told.height != 0) {
                mStream = stream;
            }
        }
    }
    for (unsigned i = 0; i < mFormat->nb_streams; ++i) {
        AVStream* stream = mFormat->streams[i];
        stream->discard = stream == mStream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    if (mStream) {
        return;
    }
    if (isDecoded) {
        Damaged();
    }
    if (packing.isEmpty()) {
        Empty();
    }
    throw Failure(kFailureUnreadable,
                  QStringLiteral("This %1 has pictures packed as %2, which is not supported.")
                      .arg(QLatin1String(mKind.name), packing));
}

ImageFacts ClipInput::Facts() const
{
    const AVCodecParameters& told = *mStream->codecpar;
    ImageFacts facts;
    facts.width = told.width;
    // Raw pictures from the top have a negative height.
    facts.height = qint32(std::min<qint64>(std::llabs(told.height), limits::kMaxSide + 1));
    if (facts.width > limits::kMaxSide || facts.height > limits::kMaxSide) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This %1 has %2 x %3 pixels, which is more "
                                     "than can be read.")
                          .arg(QLatin1String(mKind.name))
                          .arg(told.width)
                          .arg(told.height));
    }
    facts.bits = 24;
    facts.format = ClipFormat(mKind, told.codec_id);
    facts.compression = ClipPacking(mLibrary, told);
    size_t bytes = 0;
    const uint8_t* matrix = mLibrary.StreamSideData(mStream, AV_PKT_DATA_DISPLAYMATRIX, &bytes);
    if (matrix && bytes >= 9 * sizeof(qint32)) {
        qint32 values[9];
        std::copy_n(matrix, sizeof(values), reinterpret_cast<uint8_t*>(values));
        facts.orientation = ClipOrientation(values);
    }
    return facts;
}

bool ClipInput::ReadPacket(AVPacket& packet)
{
    // What belongs to other streams is passed over, as far as there is anything left to read.
    while (mLeft > 0) {
        mLibrary.PacketUnref(&packet);
        const int done = mLibrary.ReadFrame(mFormat, &packet);
        if (done == AVERROR(ENOMEM)) {
            throw std::bad_alloc();
        }
        if (done < 0) {
            return false;
        }
        if (packet.stream_index == mStream->index) {
            return true;
        }
    }
    return false;
}

} // namespace quillane::worker
