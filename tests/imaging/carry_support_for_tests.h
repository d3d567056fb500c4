#pragma once
// What the tests of carried metadata share.
#include "codec_support_for_tests.h"
#include "comment_files.h"
#include "core/temp_folder.h"
#include "imaging/carry/carry.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/exif_lift.h"
#include "imaging/comments/exif_values.h"
#include "imaging/comments/slots.h"
#include "picture_maker.h"
#include "worker_support.h"

#include <gtest/gtest.h>

namespace quillane::making {

/// The slots of an Exif block as the program's readers tell them.
inline CommentSet SlotsOfBlock(const QByteArray& block)
{
    CommentSet set;
    MemorySource source(block);
    const QByteArray lifted = LiftExif(source);
    if (!lifted.isEmpty()) {
        AddExifValues(lifted, set);
    }
    return set;
}

/// The slots of a whole file.
inline CommentSet SlotsOfFile(const QByteArray& content, const QByteArray& name)
{
    const TempFolder folder;
    folder.Write(name, content);
    return ReadComments(folder.Path(name));
}

inline QString TextOf(const CommentSet& set, qint16 slot)
{
    const QString* text = set.At(slot).If<QString>();
    return text ? *text : QString();
}

/// A value for a slot that its field can hold, another one for every `variant`.
inline CommentValue ValueFor(const CommentSlot& slot, int variant = 0)
{
    const double number = slot.slot + variant;
    switch (slot.shape) {
    case SlotShape::Text:
        return QStringLiteral("te\u00e4xt %1 of %2").arg(variant).arg(slot.slot);
    case SlotShape::Integer:
        return qint32(100 + slot.slot + variant);
    case SlotShape::Rational:
        return QVector<double>{number, 7};
    case SlotShape::RationalTriple:
        return QVector<double>{number, 1, 26, 1, 4638, 100};
    case SlotShape::Bytes:
        break;
    }
    // Eight bytes fit every width of number that such a field may have.
    return QByteArray("0210abc") + char('A' + variant);
}

/// Whether a slot has a field in an Exif block.
inline bool IsInExifBlock(const CommentSlot& slot)
{
    return slot.home != SlotHome::Dicom && slot.home != SlotHome::PngText;
}

/// Facts of a file in memory that a codec of this process reads.
inline ImageFacts FactsOfFile(const QByteArray& content)
{
    MemorySource source(content);
    return CodecFor(content).probe(source);
}
inline QSize DecodedSize(const QByteArray& content)
{
    return DecodeBytes(content).Pixels().size();
}
inline int OrientationOf(const QByteArray& content)
{
    return FactsOfFile(content).orientation;
}
inline QByteArray DecodedProfile(const QByteArray& content)
{
    return DecodeBytes(content).Icc();
}

/// A source of bytes in memory that a plan can point to.
struct PlanOf {
    explicit PlanOf(const QByteArray& original, void (*read)(ByteSource&, CommentSet&))
        : source(original)
    {
        read(source, before);
        plan.original = &source;
        plan.before = &before;
        plan.wanted = before;
    }
    PlanOf(const PlanOf&) = delete;
    PlanOf& operator=(const PlanOf&) = delete;
    MemorySource source;
    CommentSet before;
    CarryPlan plan;
};

/// What exiftool says, one line a row; nothing when it is not installed.
inline QString ExifTool(const QByteArray& content, const QByteArray& name,
                        const QStringList& arguments)
{
    const TempFolder folder;
    folder.Write(name, content);
    const std::optional<QByteArray> said =
        test::RunTool(QStringLiteral("exiftool"), arguments + QStringList{folder.Path(name)});
    return said ? QString::fromUtf8(*said).trimmed() : QString();
}

} // namespace quillane::making
