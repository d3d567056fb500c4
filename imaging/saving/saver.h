#pragma once
// One save from picture to file: the pixels encoded or carried over, the metadata put in, the
// result read back, and the file exchanged at once.
#include "core/atomic_save.h"
#include "imaging/comments/comment_set.h"
#include "imaging/encode.h"
#include "imaging/saving/loaded_file.h"
#include <QSizeF>
#include <optional>

namespace quillane {

/// Save modes as the windows pass them; any other number appends too. Appending makes a file where
/// there is none; a TIFF file that is there gets a further page, any other is left alone.
enum PictureSaveMode : qint32 { kSaveReplace = 0, kSaveAppend = 1, kSaveCreate = 2 };

/// A small picture that goes into the file.
struct StampWish {
    QSizeF box;       ///< it fits into it with its shape kept; pixels
    qint32 bits = 24; ///< 8 grey, else colours
};

struct SaveJob {
    QString path;
    Bitmap picture;
    EncodeRequest request;
    qint32 mode = kSaveReplace;
    CommentSet comments;                      ///< what the slots of the file are to hold
    std::shared_ptr<const LoadedFile> loaded; ///< nullptr: the picture came from no file
    std::optional<StampWish> stamp;
    SaveProbe probe; ///< see SaveOptions
};

/// Writes the file and returns what the picture's next save shall remember: after a save over the
/// loaded file the new one, else job.loaded. Failure, with what was there untouched: a format that
/// cannot be written or cannot hold what is asked, a file that was changed since it was loaded,
/// pages or content that cannot be carried over, a target that cannot be written. Any thread.
std::shared_ptr<const LoadedFile> SavePicture(const SaveJob& job);

} // namespace quillane
