#include "imaging/comments/comment_set.h"
#include "imaging/codec.h"
#include "imaging/comments/carriers.h"
#include "imaging/worker/worker_host.h"
#include <algorithm>
#include <atomic>
#include <cstring>

namespace quillane {

namespace {

constexpr int kCommentMarkBytes = 512; ///< that the codecs tell a format by

std::atomic<qint64> sCommentParses{0};

struct CommentParser {
    const char* codec; ///< Codec::name
    void (*read)(ByteSource& source, CommentSet& set);
};
constexpr CommentParser kCommentParsers[] = {
    {"JPEG", ReadJpegComments},
    {"TIFF", ReadTiffComments},
    {"PNG", ReadPngComments},
    {"GIF", ReadGifComments},
};

const Codec* CommentCodec(FileSource& source, const QString& path)
{
    char head[kCommentMarkBytes];
    const qint64 got = source.ReadAt(0, head, kCommentMarkBytes);
    const qsizetype dot = path.lastIndexOf(u'.');
    const bool named = dot > path.lastIndexOf(u'/');
    return FindCodec(QByteArrayView(head, got),
                     named ? QStringView(path).sliced(dot + 1) : QStringView());
}

bool CommentSlotBefore(const std::pair<qint16, CommentValue>& value, qint16 slot)
{
    return value.first < slot;
}

} // namespace

const CommentValue& CommentSet::At(qint16 slot) const
{
    static const CommentValue none;
    const auto found = std::lower_bound(mValues.begin(), mValues.end(), slot, CommentSlotBefore);
    return found != mValues.end() && found->first == slot ? found->second : none;
}

void CommentSet::Set(qint16 slot, CommentValue value)
{
    const auto found = std::lower_bound(mValues.begin(), mValues.end(), slot, CommentSlotBefore);
    const bool there = found != mValues.end() && found->first == slot;
    if (value.IsEmpty()) {
        if (there) {
            mValues.erase(found);
        }
    } else if (there) {
        found->second = std::move(value);
    } else {
        mValues.emplace(found, slot, std::move(value));
    }
}

CommentSet ReadComments(const QString& path)
{
    FileSource source(path);
    return ReadComments(source, path);
}

CommentSet ReadComments(FileSource& source, const QString& path)
{
    sCommentParses.fetch_add(1, std::memory_order_relaxed);
    CommentSet set;
    ResumeNext([&] {
        const Codec* codec = CommentCodec(source, path);
        if (!codec) {
            return;
        }
        if (std::strcmp(codec->name, "DICOM") == 0) {
            set = worker::Comments(source, codec->name);
            return;
        }
        for (const CommentParser& parser : kCommentParsers) {
            if (std::strcmp(codec->name, parser.codec) == 0) {
                parser.read(source, set);
            }
        }
    });
    return set;
}

qint64 CommentParseCount()
{
    return sCommentParses.load(std::memory_order_relaxed);
}

} // namespace quillane
