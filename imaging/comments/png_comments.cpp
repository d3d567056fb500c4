#include "imaging/codecs/codec_support.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/exif_lift.h"
#include "imaging/comments/exif_values.h"
#include "imaging/comments/png_text.h"
#include "imaging/comments/slots.h"
#include "imaging/comments/text_bytes.h"
#include "imaging/limits.h"
#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace quillane {

namespace {

constexpr int kPngMaxKeyword = 79;
constexpr int kPngMaxTexts = 32;       ///< texts with such keywords that are looked into
constexpr int kPngMaxChunks = 200'000; ///< chunks that are walked over
constexpr qint64 kPngChunkFrame = 12;  ///< bytes of length, type and check sum

/// One walk over the chunks of a PNG.
class PngCommentWalk {
public:
    PngCommentWalk(ByteSource& source, CommentSet& set) : mSource(source), mSet(set) { }

    void Run()
    {
        qint64 position = 8;
        uchar head[8];
        for (int i = 0; i < kPngMaxChunks; ++i) {
            if (mSource.ReadAt(position, head, 8) != 8) {
                break;
            }
            const qint64 length = codecs::Big32(head);
            const auto is = [&](const char* type) { return std::memcmp(head + 4, type, 4) == 0; };
            if (is("IEND")) {
                break;
            }
            if (is("tEXt") || is("zTXt") || is("iTXt")) {
                TakeText(position, length);
            } else if (is("eXIf") && mExif.isEmpty()) {
                LiftChunk(position + 8, length);
            }
            position += kPngChunkFrame + length;
        }
        // What a text tells stands before what the Exif chunk tells.
        if (!mExif.isEmpty()) {
            AddExifValues(mExif, mSet);
        }
    }

private:
    void TakeText(qint64 position, qint64 length)
    {
        if (length > limits::kMaxTextBytes || mTexts >= kPngMaxTexts) {
            return;
        }
        const qint16 slot = SlotOf(position + 8, length);
        if (slot < 0 || !mSet.At(slot).IsEmpty()) {
            return;
        }
        ++mTexts;
        std::vector<uchar> chunk(size_t(length + kPngChunkFrame));
        if (mSource.ReadAt(position, chunk.data(), qint64(chunk.size())) != qint64(chunk.size())) {
            return;
        }
        if (!mReader) {
            mReader = std::make_unique<PngTextReader>();
        }
        const QString text = TextFromFieldBytes(mReader->Take(chunk));
        if (!text.isEmpty()) {
            mSet.Set(slot, text);
        }
    }

    /// The slot of the keyword that the chunk's content begins with, -1 for one without.
    qint16 SlotOf(qint64 at, qint64 length)
    {
        char keyword[kPngMaxKeyword + 1] = {};
        const qint64 got = mSource.ReadAt(at, keyword, std::min<qint64>(length, kPngMaxKeyword));
        const size_t size = strnlen(keyword, size_t(got));
        return PngKeywordSlot(QByteArrayView(keyword, qsizetype(size)));
    }

    void LiftChunk(qint64 at, qint64 length)
    {
        // Some writers leave the mark of a JPEG's Exif segment before the block.
        char mark[6] = {};
        const bool marked = mSource.ReadAt(at, mark, 6) == 6 && std::memcmp(mark, "Exif\0", 5) == 0;
        const qint64 skipped = marked ? 6 : 0;
        codecs::PartSource block(mSource, at + skipped, length - skipped);
        mExif = LiftExif(block);
    }

    ByteSource& mSource;
    CommentSet& mSet;
    std::unique_ptr<PngTextReader> mReader;
    QByteArray mExif;
    int mTexts = 0;
};

} // namespace

void ReadPngComments(ByteSource& source, CommentSet& set)
{
    PngCommentWalk(source, set).Run();
}

} // namespace quillane
