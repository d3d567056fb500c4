#include "imaging/codecs/codec_support.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/exif_lift.h"
#include "imaging/comments/exif_values.h"
#include "imaging/comments/slots.h"
#include "imaging/comments/text_bytes.h"
#include "imaging/limits.h"
#include <cstring>

namespace quillane {

namespace {

constexpr int kJpegExifHead = 6; ///< bytes of "Exif\0\0"
enum JpegMarker : quint8 {
    kJpegEnd = 0xd9,
    kJpegScan = 0xda,
    kJpegApp1 = 0xe1,
    kJpegComment = 0xfe,
};

/// Adds the Exif block of this segment; false when it is none or has no directory.
bool JpegAddExif(ByteSource& source, qint64 at, qint64 size, CommentSet& set)
{
    char head[kJpegExifHead];
    if (size <= kJpegExifHead || source.ReadAt(at, head, kJpegExifHead) != kJpegExifHead
        || std::memcmp(head, "Exif\0", 5) != 0) {
        return false;
    }
    codecs::PartSource block(source, at + kJpegExifHead, size - kJpegExifHead);
    const QByteArray lifted = LiftExif(block);
    if (lifted.isEmpty()) {
        return false;
    }
    AddExifValues(lifted, set);
    return true;
}

} // namespace

void ReadJpegComments(ByteSource& source, CommentSet& set)
{
    codecs::ByteWindow window(source);
    QByteArray comment;
    qint64 position = 2; // behind the mark of the beginning
    while (const uchar* p = window.At(position, 4)) {
        if (window.Fetched() > limits::kMaxHeaderBytes) {
            break;
        }
        const quint8 marker = p[1];
        if (p[0] != 0xff || marker == 0xff || marker == 0) {
            ++position; // stray bytes between segments are passed over
            continue;
        }
        if (marker == kJpegEnd || marker == kJpegScan) {
            break;
        }
        const int bytes = codecs::Big16(p + 2);
        if (marker == 0x01 || (marker >= 0xd0 && marker <= 0xd8) || bytes < 2) {
            position += 2; // these have no content
            continue;
        }
        const qint64 at = position + 4;
        const qint64 size = bytes - 2;
        if (marker == kJpegApp1 && JpegAddExif(source, at, size, set)) {
            return;
        }
        if (marker == kJpegComment && comment.isEmpty()) {
            comment.resize(size);
            comment.resize(source.ReadAt(at, comment.data(), size));
        }
        position += 2 + bytes;
    }
    const QString text = TextFromFieldBytes(comment);
    if (!text.isEmpty()) {
        set.Set(kDescriptionSlot, text);
    }
}

} // namespace quillane
