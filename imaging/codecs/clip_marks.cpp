// How clips are told by their beginning; the decoding process reads them.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include <algorithm>
#include <iterator>

namespace quillane::codecs {

namespace {

/// First atoms of QuickTime files that do not tell what they are.
constexpr const char* kClipAtoms[] = {"moov", "mdat", "wide", "free", "skip", "pnot", "udta"};
/// Brands of files with the same atoms that hold still pictures.
constexpr const char* kClipStills[] = {"heic", "heix", "heim", "heis", "hevc", "hevx", "mif1",
                                       "msf1", "avif", "avis", "crx ", "jp2 ", "jpx ", "jpm "};
constexpr qsizetype kClipTransport = 188; ///< bytes of a transport packet

template <size_t N> bool IsOneOf(QByteArrayView word, const char* const (&words)[N])
{
    return std::any_of(std::begin(words), std::end(words),
                       [word](const char* one) { return word == QByteArrayView(one); });
}

bool IsTransport(QByteArrayView head)
{
    constexpr char kSync = 0x47;
    return head.size() > 2 * kClipTransport && head[0] == kSync && head[kClipTransport] == kSync
        && head[2 * kClipTransport] == kSync;
}

} // namespace

bool MovMatches(QByteArrayView head, QStringView)
{
    if (head.size() < 12) {
        return false;
    }
    const QByteArrayView kind = head.sliced(4, 4);
    if (kind == QByteArrayView("ftyp")) {
        return !IsOneOf(head.sliced(8, 4), kClipStills);
    }
    return IsOneOf(kind, kClipAtoms);
}

bool AviMatches(QByteArrayView head, QStringView)
{
    return head.size() >= 12 && head.startsWith("RIFF")
        && (head.sliced(8, 4) == QByteArrayView("AVI ")
            || head.sliced(8, 4) == QByteArrayView("AVIX"));
}

bool MpegMatches(QByteArrayView head, QStringView extension)
{
    constexpr uchar kPack = 0xba, kSequence = 0xb3;
    if (head.size() >= 4 && head[0] == 0 && head[1] == 0 && head[2] == 1) {
        return uchar(head[3]) == kPack || uchar(head[3]) == kSequence;
    }
    // Three times the letter G proves little without the name.
    return IsTransport(head)
        && (extension.compare(u"MPG", Qt::CaseInsensitive) == 0
            || extension.compare(u"MPEG", Qt::CaseInsensitive) == 0
            || extension.compare(u"TS", Qt::CaseInsensitive) == 0);
}

} // namespace quillane::codecs
