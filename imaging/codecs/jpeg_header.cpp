#include "imaging/codecs/jpeg_header.h"
#include "imaging/limits.h"
#include <algorithm>
#include <cstring>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kJpegWalkName[] = "JPEG";
constexpr int kJpegExifMark = 6;     ///< bytes of "Exif\0\0"
constexpr int kJpegProfileMark = 14; ///< bytes of "ICC_PROFILE\0", number and count

/// One segment: its marker, where its content begins and how long it is.
struct JpegSegment {
    quint8 marker = 0;
    qint64 at = 0;
    qint64 size = 0;
};

constexpr bool JpegIsFrame(quint8 marker)
{
    return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

/// The next segment at or behind `position`, which moves behind it. Bytes that are no marker are
/// passed over, as decoders do. False at the end of the file or of the picture.
bool JpegNextSegment(ByteWindow& window, qint64& position, JpegSegment& segment)
{
    for (;;) {
        const uchar* p = window.At(position, 2);
        if (!p) {
            return false;
        }
        if (window.Fetched() > limits::kMaxHeaderBytes) {
            TooMuch(kJpegWalkName, QStringLiteral("has a header without end"));
        }
        if (p[0] != 0xff || p[1] == 0xff || p[1] == 0) {
            ++position;
            continue;
        }
        const quint8 marker = p[1];
        position += 2;
        if (marker == 0x01 || (marker >= 0xd0 && marker <= 0xd8)) {
            continue; // these have no content
        }
        if (marker == 0xd9) {
            return false;
        }
        const uchar* length = window.At(position, 2);
        if (!length) {
            return false;
        }
        const int bytes = Big16(length);
        if (bytes < 2) {
            continue;
        }
        segment = {marker, position + 2, bytes - 2};
        position += bytes;
        return true;
    }
}

void JpegReadFrame(ByteWindow& window, const JpegSegment& segment, JpegHeader& header)
{
    const uchar* p = segment.size >= 6 ? window.At(segment.at, segment.size) : nullptr;
    const int components = p ? p[5] : 0;
    if (!p || components < 1 || segment.size < 6 + 3 * components) {
        Damaged(kJpegWalkName, QStringLiteral("its frame header is cut short"));
    }
    header.frame = segment.marker;
    header.precision = p[0];
    header.height = Big16(p + 1);
    header.width = Big16(p + 3);
    header.components = components;
    if (components >= 3) {
        const int luma = p[7];
        const int chroma = p[10];
        const int chromaAcross = std::max(chroma >> 4, 1);
        const int chromaDown = std::max(chroma & 15, 1);
        header.across = std::max((luma >> 4) / chromaAcross, 1);
        header.down = std::max((luma & 15) / chromaDown, 1);
    }
    if (header.width > 0 && header.height == 0) {
        Unsupported(kJpegWalkName, QStringLiteral("does not tell its height in its header"));
    }
    CheckSides(kJpegWalkName, header.width, header.height);
}

void JpegReadJfif(ByteWindow& window, const JpegSegment& segment, JpegHeader& header)
{
    const uchar* p = segment.size >= 12 ? window.At(segment.at, 12) : nullptr;
    if (!p || std::memcmp(p, "JFIF", 5) != 0) {
        return;
    }
    const double perMetre = p[7] == 1 ? 1 / 0.0254 : p[7] == 2 ? 100.0 : 0.0;
    header.xResolution = DotsPerInch(Big16(p + 8) * perMetre);
    header.yResolution = DotsPerInch(Big16(p + 10) * perMetre);
}

void JpegReadExif(ByteWindow& window, const JpegSegment& segment, JpegHeader& header)
{
    const uchar* p = segment.size > kJpegExifMark ? window.At(segment.at, kJpegExifMark) : nullptr;
    if (!p || std::memcmp(p, "Exif\0", kJpegExifMark) != 0) {
        return;
    }
    const qint64 block = segment.at + kJpegExifMark;
    const qint64 size = segment.size - kJpegExifMark;
    header.exif = ReadExifHeader(size, [&](qint64 offset, qint64 count) {
        return offset <= size - count ? window.At(block + offset, count) : nullptr;
    });
}

/// The pieces of a colour profile, put together in the order of their numbers.
class JpegProfile {
public:
    void Add(ByteWindow& window, const JpegSegment& segment)
    {
        const uchar* p =
            segment.size > kJpegProfileMark ? window.At(segment.at, kJpegProfileMark) : nullptr;
        if (!p || std::memcmp(p, "ICC_PROFILE", 12) != 0) {
            return;
        }
        mPieces.push_back({p[12], segment.at + kJpegProfileMark, segment.size - kJpegProfileMark});
        mCount = p[13];
        mBytes += mPieces.back().size;
    }
    /// Empty when pieces are missing, stand twice or are too much.
    QByteArray Joined(ByteSource& source)
    {
        if (mPieces.empty() || mPieces.size() != size_t(mCount)
            || mBytes > limits::kMaxFieldBytes) {
            return {};
        }
        std::sort(mPieces.begin(), mPieces.end(),
                  [](const Piece& a, const Piece& b) { return a.number < b.number; });
        QByteArray icc(qsizetype(mBytes), Qt::Uninitialized);
        qint64 filled = 0;
        for (size_t i = 0; i < mPieces.size(); ++i) {
            const Piece& piece = mPieces[i];
            if (piece.number != int(i) + 1
                || source.ReadAt(piece.at, icc.data() + filled, piece.size) != piece.size) {
                return {};
            }
            filled += piece.size;
        }
        return icc;
    }
    bool IsFull() const { return mPieces.size() >= 255; }

private:
    struct Piece {
        int number;
        qint64 at;
        qint64 size;
    };
    std::vector<Piece> mPieces;
    int mCount = 0;
    qint64 mBytes = 0;
};

} // namespace

JpegHeader ReadJpegHeader(ByteSource& source, bool withProfile)
{
    JpegHeader header;
    JpegProfile profile;
    JpegSegment segment;
    ByteWindow window(source);
    qint64 position = 2; // behind the mark of the beginning
    while (JpegNextSegment(window, position, segment)) {
        if (JpegIsFrame(segment.marker)) {
            if (header.frame == 0) {
                JpegReadFrame(window, segment, header);
            }
            if (!withProfile) {
                break;
            }
        } else if (segment.marker == 0xe0) {
            JpegReadJfif(window, segment, header);
        } else if (segment.marker == 0xe1) {
            if (!header.exif.directory) {
                JpegReadExif(window, segment, header);
            }
        } else if (segment.marker == 0xe2) {
            if (withProfile && !profile.IsFull()) {
                profile.Add(window, segment);
            }
        } else if (segment.marker == 0xda) {
            break;
        }
    }
    if (header.frame == 0) {
        Damaged(kJpegWalkName, QStringLiteral("it has no frame header"));
    }
    if (withProfile) {
        header.icc = profile.Joined(source);
    }
    return header;
}

} // namespace quillane::codecs
