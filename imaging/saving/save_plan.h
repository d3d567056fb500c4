#pragma once
#include "imaging/saving/saver.h"

namespace quillane {

/// What a job is found to be before anything is made.
struct SavePlan {
    const SaveVariant* variant = nullptr;
    bool inPlace = false;   ///< the target is the file that was loaded
    bool replaced = false;  ///< another file has the loaded one's name now
    bool sameCodec = false; ///< the loaded file is of the format that is written
    /// The pixels are those of the file, upright, at the depth and in the format that are asked
    /// for, and whole, so that they may stay as they lie in it. A JPEG is encoded anew all the
    /// same.
    bool pixelsStay = false;
    bool pixelsUntouched = false; ///< the pixels are those that were loaded
};

/// Looks a job over. Failure: no picture, a format that cannot be written.
SavePlan PlanSave(const SaveJob& job);
/// Failure in words for what would lose part of the loaded file: it was changed by others, was
/// read in part, holds more than is shown, or more pictures than can be carried over.
void RefuseLosses(const SaveJob& job, const SavePlan& plan);
/// The failure of a file that is not any more as it was loaded.
[[noreturn]] void RefuseChangedFile(const SaveJob& job);
/// The file's name without its folder, for words.
QString SaveLeaf(const QString& path);

} // namespace quillane
