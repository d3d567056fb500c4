#include "imaging/carry/png_texts.h"
#include "imaging/comments/exif_lift.h"
#include "imaging/comments/exif_values.h"
#include "imaging/comments/png_text.h"
#include "imaging/exif/exif_slots.h"
#include "imaging/limits.h"
#include <algorithm>

namespace quillane::carry {

namespace {

constexpr QByteArrayView kTextsExifMark("Exif\0\0", 6);
constexpr QByteArrayView kTextsXmpKeyword("XML:com.adobe.xmp");

/// What a text chunk says; empty for a damaged one.
QByteArray TextsOf(const PngPart& part)
{
    if (part.bytes.size() > limits::kMaxTextBytes) {
        return {};
    }
    std::vector<unsigned char> bytes(part.bytes.begin(), part.bytes.end());
    return PngTextReader().Take(bytes);
}

class PngTexts {
public:
    explicit PngTexts(PngParts& parts) : mParts(parts)
    {
        for (size_t i = 0; i < parts.chunks.size() && mExifAt < 0; ++i) {
            if (parts.chunks[i].Is("eXIf")) {
                TakeExif(i);
            }
        }
    }

    void Put(const CommentChange& change)
    {
        const QString text = SlotText(Single(change), change.slot);
        const char* keyword = PngSlotKeyword(change.slot);
        const bool inExif = !mHeld.At(change.slot).IsEmpty();
        if (exif::IsExifSlot(change.slot) && (!keyword || inExif)) {
            mExifChanges.push_back(change);
        }
        if (!keyword) {
            return;
        }
        const std::vector<size_t> standing = Standing(change.slot);
        if (text.isEmpty()) {
            for (auto at = standing.rbegin(); at != standing.rend(); ++at) {
                mParts.chunks.erase(mParts.chunks.begin() + qsizetype(*at));
                mExifAt -= mExifAt > qsizetype(*at) ? 1 : 0;
            }
        } else if (!standing.empty()) {
            mParts.chunks[Speaking(standing)] = MakePngText(keyword, text);
        } else if (!inExif) {
            Insert(MakePngText(keyword, text));
        }
    }

    void PutExif(const ExifFacts& facts)
    {
        if (mExifAt >= 0) {
            const QByteArray block = PatchExifBlock(mBlock, mExifChanges, facts, kMaxPngExifBytes);
            if (block != mBlock) {
                mParts.chunks[size_t(mExifAt)] = MakePngPart("eXIf", mMark + block);
            }
            return;
        }
        const bool needed =
            std::any_of(mExifChanges.begin(), mExifChanges.end(), [](const CommentChange& change) {
                return !HeldValue(change.value).IsEmpty();
            });
        if (needed) {
            Insert(MakePngPart("eXIf", NewExifBlock(mExifChanges, facts, kMaxPngExifBytes)));
        }
    }

    void PutXmp(const XmpWishes& wishes)
    {
        for (PngPart& part : mParts.chunks) {
            if (!part.Is("iTXt") || PngTextKeyword(part) != kTextsXmpKeyword) {
                continue;
            }
            const QByteArray packet = TextsOf(part);
            const QByteArray patched = PatchXmp(packet, wishes);
            if (patched != packet) {
                part = MakePngPart("iTXt",
                                   kTextsXmpKeyword.toByteArray() + QByteArray(5, '\0') + patched);
            }
        }
    }

private:
    static CommentSet Single(const CommentChange& change)
    {
        CommentSet set;
        set.Set(change.slot, change.value);
        return set;
    }

    void TakeExif(size_t at)
    {
        QByteArray block = mParts.chunks[at].Content().toByteArray();
        // Some writers leave the mark of a JPEG's Exif segment before the block.
        const bool marked = block.startsWith(kTextsExifMark.first(5)) && block.size() > 6;
        const QByteArray mark = marked ? block.left(6) : QByteArray();
        block.remove(0, mark.size());
        MemorySource source(block);
        const QByteArray lifted = LiftExif(source);
        if (lifted.isEmpty()) {
            return;
        }
        mExifAt = qsizetype(at);
        mMark = mark;
        mBlock = block;
        ResumeNext([&] { AddExifValues(lifted, mHeld); });
    }

    std::vector<size_t> Standing(qint16 slot) const
    {
        std::vector<size_t> standing;
        for (size_t i = 0; i < mParts.chunks.size(); ++i) {
            const PngPart& part = mParts.chunks[i];
            if (IsPngText(part) && PngKeywordSlot(PngTextKeyword(part)) == slot) {
                standing.push_back(i);
            }
        }
        return standing;
    }

    /// The first of these chunks that says anything, else the first.
    size_t Speaking(const std::vector<size_t>& standing) const
    {
        const auto found = std::find_if(standing.begin(), standing.end(), [this](size_t at) {
            return !TextsOf(mParts.chunks[at]).isEmpty();
        });
        return found != standing.end() ? *found : standing.front();
    }

    /// Puts a new chunk before the pixels.
    void Insert(const PngPart& part)
    {
        qsizetype at = mParts.Find("IDAT");
        if (at < 0) {
            at = std::max<qsizetype>(mParts.Find("IEND"), 0);
        }
        mParts.chunks.insert(mParts.chunks.begin() + at, part);
        mExifAt += mExifAt >= at ? 1 : 0;
    }

    PngParts& mParts;
    qsizetype mExifAt = -1;
    QByteArray mMark, mBlock;
    CommentSet mHeld; ///< of the Exif chunk
    std::vector<CommentChange> mExifChanges;
};

} // namespace

void PutPngComments(PngParts& parts, std::span<const CommentChange> changes, const ExifFacts& facts,
                    const XmpWishes& wishes)
{
    PngTexts texts(parts);
    for (const CommentChange& change : changes) {
        texts.Put(change);
    }
    texts.PutExif(facts);
    texts.PutXmp(wishes);
}

} // namespace quillane::carry
