#pragma once
// What a decoding process says is believed only after these checks. Pure functions.
#include "imaging/bitmap.h"
#include "imaging/image_facts.h"
#include "imaging/worker/protocol.h"
#include <QString>
#include <optional>

namespace quillane::worker {

/// An announced picture that is within the limits, with its sizes counted by the program.
struct CheckedPicture {
    AnnounceMessage said;
    qint64 rowBytes = 0;
    qint64 pixelBytes = 0;
};

/// Failure kFailureLimit for a picture beyond limits.h; nothing for numbers that no honest
/// process says.
std::optional<CheckedPicture> CheckAnnouncement(const AnnounceMessage& said, const QString& format);
/// Facts with the sizes filled in; nothing for numbers that no honest process says. Failure
/// kFailureLimit for a picture beyond limits.h.
std::optional<ImageFacts> CheckFacts(const FactsMessage& said, qint64 fileBytes,
                                     const QString& format);
/// Text of a field of fixed size: up to its first zero, nothing when there is none or when it
/// is not UTF-8.
std::optional<QString> CheckText(const char* text, qint64 room);
/// An empty image for the picture, its colours set.
QImage MakeImage(const CheckedPicture& picture);
/// The colour model that goes with a layout.
ColourModel ModelOf(PixelLayout layout);

} // namespace quillane::worker
