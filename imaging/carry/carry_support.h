#pragma once
// What the carriers of all kinds of file share.
#include "imaging/carry/carry.h"
#include "imaging/exif/exif_patcher.h"
#include "imaging/exif/xmp_patcher.h"

namespace quillane::carry {

/// The original's bytes, empty where there is none; Failure beyond limits::kMaxFileBytes.
QByteArray OriginalBytes(const CarryPlan& plan);
/// What the original's slots hold, as the plan tells or as `read` finds it.
CommentSet SlotsBefore(const CarryPlan& plan, void (*read)(ByteSource&, CommentSet&));
/// What an Exif block has to say of the new picture.
ExifFacts FactsOf(const CarryPlan& plan);
/// What an XMP packet has to say of it, after a change from one set of slots to another.
XmpWishes XmpWishesOf(const CommentSet& before, const CommentSet& wanted, bool upright);
/// The text of a slot, empty for none or for another shape.
QString SlotText(const CommentSet& set, qint16 slot);
/// Failure when `changed` reads back with another description than `wanted`: a piece of the file
/// that is too damaged to be replaced still says something.
void RequireDescription(const QByteArray& changed, void (*read)(ByteSource&, CommentSet&),
                        const QString& wanted);
/// Whether a colour profile is one for pictures of so many colour channels; true where it does
/// not say what for.
bool ProfileFits(const QByteArray& icc, int channels);

} // namespace quillane::carry
