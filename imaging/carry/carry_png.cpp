#include "imaging/carry/png_texts.h"
#include "imaging/codec.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/slots.h"
#include "imaging/limits.h"
#include <QtEndian>
#include <algorithm>
#include <span>
#include <utility>

namespace quillane::carry {

namespace {

/// Chunks that say in which colours pixels are meant.
constexpr const char* kCarryPngColours[] = {"gAMA", "cHRM", "sRGB", "iCCP", "cICP", "mDCv", "cLLi"};
constexpr const char* kCarryPngFrames[] = {"acTL", "fcTL", "fdAT"};

bool CarryPngIsOneOf(const PngPart& part, std::span<const char* const> types)
{
    return std::any_of(types.begin(), types.end(), [&](const char* type) { return part.Is(type); });
}

/// The profile of an iCCP chunk; empty for none and for a damaged one. The chunk is read as part
/// of a picture of one pixel, by the reader of pictures and within its limits.
QByteArray CarryPngProfile(const PngParts& parts)
{
    const qsizetype at = parts.Find("iCCP");
    if (at < 0 || parts.chunks[size_t(at)].bytes.size() > limits::kMaxFieldBytes) {
        return {};
    }
    const bool grey = (parts.chunks.front().Content()[9] & 2) == 0;
    const QByteArray head =
        QByteArray("\0\0\0\1\0\0\0\1\x08", 9) + char(grey ? 0 : 2) + QByteArray(3, '\0');
    PngParts pixel;
    pixel.chunks = {MakePngPart("IHDR", head), parts.chunks[size_t(at)],
                    MakePngPart("IDAT", qCompress(QByteArray(grey ? 2 : 4, '\0')).sliced(4)),
                    MakePngPart("IEND", {})};
    QByteArray profile;
    ResumeNext([&] {
        const QByteArray bytes = pixel.Joined();
        MemorySource source(bytes);
        if (const Codec* codec = FindCodec(bytes, u"png")) {
            profile = codec->decode(source, {}).Icc();
        }
    });
    return profile;
}

/// The pixels of one PNG among the other chunks of another.
class PngCarry {
public:
    PngCarry(const QByteArray& encoded, const QByteArray& original)
        : mNew(CutPng(encoded)),
          mOld(CutPng(original))
    {
        if (!HasPicture(mNew) || !HasPicture(mOld)) {
            throw Failure(kFailureUnreadable,
                          QStringLiteral("This PNG is damaged: it holds no picture, so its "
                                         "metadata cannot be carried over."));
        }
        mSameLayout = HeaderOf(mNew) == HeaderOf(mOld);
        mSamePalette = ContentOf(mNew, "PLTE") == ContentOf(mOld, "PLTE");
        CheckFrames();
        ChooseColours();
    }

    PngParts Run()
    {
        const auto pixels = size_t(mOld.Find("IDAT"));
        mOut.chunks.push_back(mNew.chunks.front());
        if (mNewColours) {
            PutNew(kCarryPngColours);
        }
        const size_t palette = PalettePlace(pixels);
        for (size_t i = 1; i < pixels; ++i) {
            if (i == palette) {
                PutPalette();
            }
            PutOld(mOld.chunks[i]);
        }
        PutPalette();
        constexpr const char* kBefore[] = {"pHYs"};
        PutNew(kBefore);
        constexpr const char* kPixels[] = {"IDAT"};
        PutNew(kPixels);
        for (size_t i = pixels; i < mOld.chunks.size(); ++i) {
            PutOld(mOld.chunks[i]);
        }
        constexpr const char* kEnd[] = {"IEND"};
        PutNew(kEnd);
        mOut.behind = mOld.behind;
        return std::move(mOut);
    }

private:
    static bool HasPicture(const PngParts& parts)
    {
        return parts.Find("IHDR") == 0 && parts.chunks.front().Content().size() == 13
            && parts.Find("IDAT") > 0;
    }
    static QByteArrayView ContentOf(const PngParts& parts, const char* type)
    {
        const qsizetype at = parts.Find(type);
        return at < 0 ? QByteArrayView() : parts.chunks[size_t(at)].Content();
    }
    /// Size, depth and colour type.
    static QByteArrayView HeaderOf(const PngParts& parts)
    {
        return parts.chunks.front().Content().first(10);
    }
    int ColourType() const { return mNew.chunks.front().Content()[9]; }

    /// Frames behind the first share its header, palette and transparency.
    void CheckFrames()
    {
        const QByteArrayView head = ContentOf(mOld, "acTL");
        const bool several = mOld.Find("fdAT") >= 0
            || (head.size() >= 4 && qFromBigEndian<quint32>(head.data()) > 1);
        const bool fits = mSameLayout && mSamePalette
            && ContentOf(mNew, "tRNS") == ContentOf(mOld, "tRNS")
            && mNew.chunks.front().Content()[12] == mOld.chunks.front().Content()[12];
        mKeepFrames = fits;
        if (several && !fits) {
            throw Failure(kFailureGeneral,
                          QStringLiteral("This PNG is an animation, and its other frames do not "
                                         "fit a picture of another size or of other colours. Save "
                                         "under another name."));
        }
    }

    /// The original's colour chunks stay unless the new picture has a profile of its own.
    void ChooseColours()
    {
        const bool made = mNew.Find("iCCP") >= 0;
        const QByteArray held = CarryPngProfile(mOld);
        const int channels = ColourType() == 0 || ColourType() == 4 ? 1 : 3;
        mOldColours =
            made ? !held.isEmpty() && held == CarryPngProfile(mNew) : ProfileFits(held, channels);
        const bool any = std::any_of(mOld.chunks.begin(), mOld.chunks.end(), [](const auto& part) {
            return CarryPngIsOneOf(part, kCarryPngColours);
        });
        mNewColours = !mOldColours || !any;
    }

    /// Where the palette goes: where it stood, else behind what has to stand before it.
    size_t PalettePlace(size_t pixels) const
    {
        const qsizetype stood = mOld.Find("PLTE");
        if (stood > 0 && size_t(stood) < pixels) {
            return size_t(stood);
        }
        size_t place = 1;
        for (size_t i = 1; i < pixels; ++i) {
            const PngPart& part = mOld.chunks[i];
            if (CarryPngIsOneOf(part, kCarryPngColours) || part.Is("sBIT")) {
                place = i + 1;
            }
        }
        return place;
    }

    void PutPalette()
    {
        if (!std::exchange(mPalettePut, true)) {
            constexpr const char* kPalette[] = {"PLTE", "tRNS"};
            PutNew(kPalette);
        }
    }

    void PutNew(std::span<const char* const> types)
    {
        for (const PngPart& part : mNew.chunks) {
            if (CarryPngIsOneOf(part, types)) {
                mOut.chunks.push_back(part);
            }
        }
    }

    bool Stays(const PngPart& part) const
    {
        constexpr const char* kPixels[] = {"IHDR", "PLTE", "IDAT", "IEND", "tRNS"};
        if (CarryPngIsOneOf(part, kPixels) || part.Is("iDOT")) {
            return false; // of the coded picture; the last tells where in it rows begin
        }
        if (CarryPngIsOneOf(part, kCarryPngColours)) {
            return mOldColours;
        }
        if (CarryPngIsOneOf(part, kCarryPngFrames)) {
            return mKeepFrames;
        }
        if (part.Is("pHYs")) {
            return mNew.Find("pHYs") < 0;
        }
        if (part.Is("sBIT") || part.Is("bKGD")) {
            return HeaderOf(mNew).last(2) == HeaderOf(mOld).last(2) && mSamePalette;
        }
        return !part.Is("hIST") || mSamePalette;
    }

    void PutOld(const PngPart& part)
    {
        if (Stays(part)) {
            mOut.chunks.push_back(part);
        }
    }

    const PngParts mNew, mOld;
    PngParts mOut;
    bool mSameLayout = false, mSamePalette = false, mKeepFrames = false;
    bool mOldColours = true, mNewColours = false, mPalettePut = false;
};

} // namespace

} // namespace quillane::carry

namespace quillane {

QByteArray CarryIntoPng(const QByteArray& encoded, const CarryPlan& plan)
{
    const QByteArray original = carry::OriginalBytes(plan);
    const CommentSet before = carry::SlotsBefore(plan, ReadPngComments);
    carry::PngParts parts =
        original.isEmpty() ? carry::CutPng(encoded) : carry::PngCarry(encoded, original).Run();
    ExifFacts facts = carry::FactsOf(plan);
    facts.otherColours = parts.Find("iCCP") >= 0;
    carry::PutPngComments(parts, CommentChanges(before, plan.wanted), facts,
                          carry::XmpWishesOf(before, plan.wanted, true));
    return parts.Joined();
}

QByteArray ReplaceCommentsInPng(ByteSource& original, std::span<const CommentChange> changes)
{
    CommentSet before;
    ReadPngComments(original, before);
    CommentSet wanted = before;
    for (const CommentChange& change : changes) {
        wanted.Set(change.slot, change.value);
    }
    carry::PngParts parts = carry::CutPng(original.All(limits::kMaxFileBytes));
    carry::PutPngComments(parts, changes, {}, carry::XmpWishesOf(before, wanted, false));
    const QByteArray changed = parts.Joined();
    carry::RequireDescription(changed, ReadPngComments, carry::SlotText(wanted, kDescriptionSlot));
    return changed;
}

} // namespace quillane
