#include "imaging/carry/carry_support.h"
#include "imaging/carry/jpeg_parts.h"
#include "imaging/carry/jpeg_pictures.h"
#include "imaging/carry/jpeg_profile.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/exif_lift.h"
#include "imaging/comments/slots.h"
#include <QtEndian>
#include <optional>

namespace quillane::carry {

namespace {

constexpr qsizetype kCarryExifMark = 6; ///< bytes of "Exif\0\0"
constexpr char kCarryXmpMark[] = "http://ns.adobe.com/xap/1.0/";

bool CarryIsNamed(const JpegPart& part, quint8 marker, QByteArrayView name)
{
    return part.marker == marker && part.content.startsWith(name);
}
bool CarryIsJfif(const JpegPart& part)
{
    return CarryIsNamed(part, kPartApp0, QByteArrayView("JFIF\0", 5));
}
bool CarryIsAdobe(const JpegPart& part)
{
    return CarryIsNamed(part, kPartApp14, "Adobe");
}
bool CarryIsXmp(const JpegPart& part)
{
    return CarryIsNamed(part, kPartApp1, QByteArrayView(kCarryXmpMark, sizeof kCarryXmpMark));
}

/// Whether it is the segment that slots are read of.
bool CarryIsExif(const JpegPart& part)
{
    if (!CarryIsNamed(part, kPartApp1, QByteArrayView("Exif\0", 5))
        || part.content.size() <= kCarryExifMark) {
        return false;
    }
    MemorySource block(part.content.sliced(kCarryExifMark));
    return !LiftExif(block).isEmpty();
}

/// Puts a JPEG together: the coded picture of one, what stands around it of another.
class JpegCarry {
public:
    JpegCarry(const QByteArray& encoded, const CarryPlan& plan)
        : mEncoded(encoded),
          mPlan(plan),
          mNew(CutJpeg(encoded, JpegMaker::Program)),
          mProfile(ProfileOf(mNew.segments)),
          mOriginal(OriginalBytes(plan)),
          mBefore(SlotsBefore(plan, ReadJpegComments)),
          mHasExif(plan.exif)
    {
        if (!mOriginal.isEmpty()) {
            mOld = CutJpeg(mOriginal);
            mOldProfile = ProfileOf(mOld.segments);
        }
        for (const JpegPart& part : mOld.segments) {
            mHadExif = mHadExif || CarryIsExif(part);
            mHadJfif = mHadJfif || CarryIsJfif(part);
        }
    }

    QByteArray Run()
    {
        mOut = QByteArray("\xff\xd8", 2);
        mOut.reserve(mEncoded.size() + mOriginal.size() / 4 + (64 << 10));
        PutLeading();
        for (const JpegPart& part : mOld.segments) {
            PutOriginal(part);
        }
        PutMissing();
        for (const JpegPart& part : mNew.segments) {
            if (DescribesPixels(part.marker)) {
                Put(part.marker, part.content);
            }
        }
        mOut += QByteArrayView(mEncoded).sliced(mNew.scan, mNew.end - mNew.scan);
        MoveTables();
        if (mOld.ended) {
            mOut += QByteArrayView(mOriginal).sliced(mOld.end);
        }
        return mOut;
    }

private:
    void Put(quint8 marker, const QByteArray& content)
    {
        mOut += SegmentBytes(marker, content, QStringLiteral("A block of data"));
    }

    /// What has to stand first: the encoder's own head where the original had one or tells
    /// nothing, and a new Exif block.
    void PutLeading()
    {
        if (!mHadJfif && !(mHadExif && mHasExif)) {
            PutEncoders(CarryIsJfif);
        }
        if (!mHadJfif) {
            PutNewExif();
        }
    }

    void PutNewExif()
    {
        if (mHasExif && !mHadExif) {
            PutExif(NewExifBlock(CommentChanges({}, mPlan.wanted), NewFacts(), kMaxJpegExifBytes));
        }
    }

    ExifFacts NewFacts() const
    {
        ExifFacts facts = FactsOf(mPlan);
        facts.otherColours = !mProfile.isEmpty();
        for (const JpegPart& part : mNew.segments) {
            // Units at byte 7 of a JFIF head, 1 for dots per inch, and then both densities.
            if (CarryIsJfif(part) && part.content.size() >= 12 && part.content[7] == 1) {
                facts.xResolution = qFromBigEndian<quint16>(part.content.constData() + 8);
                facts.yResolution = qFromBigEndian<quint16>(part.content.constData() + 10);
            }
        }
        return facts;
    }

    void PutExif(const QByteArray& block)
    {
        Put(kPartApp1, QByteArray("Exif\0\0", kCarryExifMark) + block);
    }

    /// The encoder's segments of a kind.
    template <typename Is> void PutEncoders(Is&& is)
    {
        for (const JpegPart& part : mNew.segments) {
            if (is(part)) {
                Put(part.marker, part.content);
            }
        }
    }

    void PutOriginal(const JpegPart& part)
    {
        if (DescribesPixels(part.marker)) {
            return;
        }
        if (CarryIsJfif(part)) {
            if (!std::exchange(mJfifPut, true)) {
                PutOriginalJfif(part);
                PutNewExif();
            }
        } else if (CarryIsNamed(part, kPartApp0, QByteArrayView("JFXX\0", 5))) {
            if (mPlan.keepPreview) { // it is nothing but a preview
                Put(part.marker, part.content);
            }
        } else if (CarryIsAdobe(part)) {
            if (!std::exchange(mAdobePut, true)) {
                PutEncoders(CarryIsAdobe);
            }
        } else if (IsProfilePart(part)) {
            PutProfilePart(part);
        } else if (CarryIsExif(part)) {
            PutOriginalExif(part);
        } else if (CarryIsXmp(part)) {
            PutXmp(part);
        } else if (part.marker == kPartComment) {
            PutOriginalComment(part);
        } else {
            if (IsPictureTable(part)) {
                mTables.push_back({&part, mOut.size() + 4});
            }
            Put(part.marker, part.content);
        }
    }

    /// The original's head tells version and density, whatever their unit; the preview in it goes
    /// with the pixels it was made of.
    void PutOriginalJfif(const JpegPart& part)
    {
        constexpr qsizetype kPreviewAt = 12; ///< its width and height, one byte each
        if (part.content.size() < kPreviewAt + 2) {
            PutEncoders(CarryIsJfif);
        } else if (mPlan.keepPreview) {
            Put(part.marker, part.content);
        } else {
            Put(part.marker, part.content.left(kPreviewAt) + QByteArray(2, '\0'));
        }
    }

    void PutOriginalExif(const JpegPart& part)
    {
        if (!mHasExif) {
            PutMovedComment();
            return;
        }
        if (std::exchange(mExifSeen, true)) {
            Put(part.marker, part.content);
            return;
        }
        PutExif(PatchExifBlock(part.content.sliced(kCarryExifMark),
                               CommentChanges(mBefore, mPlan.wanted), FactsOf(mPlan),
                               kMaxJpegExifBytes));
    }

    void PutXmp(const JpegPart& part)
    {
        const qsizetype mark = sizeof kCarryXmpMark;
        const QByteArray packet =
            PatchXmp(part.content.sliced(mark), XmpWishesOf(mBefore, mPlan.wanted, true));
        mOut += SegmentBytes(part.marker, part.content.left(mark) + packet,
                             QStringLiteral("The description in the XMP data"));
    }

    /// The description of an Exif block that is not written: before any other comment.
    void PutMovedComment()
    {
        if (mHadExif && !mHasExif && !mCommentPut) {
            PutComment(SlotText(mPlan.wanted, kDescriptionSlot));
        }
    }

    /// Comment markers: of a plain JPEG the first that is not empty is the description.
    void PutOriginalComment(const JpegPart& part)
    {
        PutMovedComment();
        const bool slot = !mHadExif && !part.content.isEmpty() && !mCommentSeen;
        if (slot) {
            mCommentSeen = true;
        }
        const QString was = SlotText(mBefore, kDescriptionSlot);
        const QString now = SlotText(mPlan.wanted, kDescriptionSlot);
        const bool cleared = !mHadExif && !mHasExif && now.isEmpty() && !was.isEmpty();
        if (cleared || (slot && mHasExif)) {
            return; // gone, or moved into the Exif block
        }
        if (slot && was != now) {
            PutComment(now);
        } else {
            Put(part.marker, part.content);
        }
    }

    void PutComment(const QString& text)
    {
        mCommentPut = true;
        if (!text.isEmpty()) {
            mOut += SegmentBytes(kPartComment, text.toUtf8(), QStringLiteral("The description"));
        }
    }

    void PutProfilePart(const JpegPart& part)
    {
        const bool replaced = !mProfile.isEmpty() && mProfile != mOldProfile;
        if (!std::exchange(mProfileSeen, true) && replaced) {
            PutEncoders(IsProfilePart);
        }
        if (!replaced && ProfileFits(mOldProfile, ChannelsOf(mNew.segments))) {
            Put(part.marker, part.content);
        }
    }

    /// What the encoder's picture needs and no segment of the original stood for.
    void PutMissing()
    {
        if (!mHasExif && !mCommentSeen && !mCommentPut) {
            PutComment(SlotText(mPlan.wanted, kDescriptionSlot));
        }
        if (!mProfileSeen) {
            PutEncoders(IsProfilePart);
        }
        if (!mAdobePut) {
            PutEncoders(CarryIsAdobe);
        }
    }

    /// Pictures behind the first one have moved: their table tells where to.
    void MoveTables()
    {
        for (const auto& [part, at] : mTables) {
            if (mOld.ended) {
                mOut.replace(
                    at, part->content.size(),
                    MovePictureTable(part->content, {part->at, at, mOld.end, mOut.size()}));
            }
        }
    }

    const QByteArray& mEncoded;
    const CarryPlan& mPlan;
    const JpegParts mNew;
    const QByteArray mProfile; ///< of the new picture
    const QByteArray mOriginal;
    const CommentSet mBefore;
    JpegParts mOld;
    QByteArray mOldProfile;
    const bool mHasExif;
    bool mHadExif = false, mHadJfif = false;
    bool mJfifPut = false, mAdobePut = false, mProfileSeen = false, mExifSeen = false;
    bool mCommentSeen = false, mCommentPut = false;
    std::vector<std::pair<const JpegPart*, qint64>> mTables;
    QByteArray mOut;
};

} // namespace

} // namespace quillane::carry

namespace quillane {

QByteArray CarryIntoJpeg(const QByteArray& encoded, const CarryPlan& plan)
{
    return carry::JpegCarry(encoded, plan).Run();
}

} // namespace quillane
