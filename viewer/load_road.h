#pragma once
// How a picture gets into the viewer: a quick look at it first, then the whole. Any thread.
#include "core/native_path.h"
#include "imaging/comments/comment_set.h"
#include "imaging/reader.h"
#include <QImage>
#include <atomic>
#include <memory>
#include <optional>

namespace quillane {

/// A small picture in the place of one that is being loaded.
struct QuickPicture {
    QImage image; ///< upright, sRGB; null: none
    QSize whole;  ///< of the whole picture, upright
};
/// A look at the picture of a file before it is loaded: a cached or embedded small picture or a
/// decode at reduced scale, at most as large as `box` (device pixels). None of a picture that is
/// small, and where it cannot be had in much less time than the whole. Never fails.
QuickPicture QuickLook(const QString& file, QSize box, const QString& thumbnailCache,
                       const std::atomic<bool>* cancelled);

/// What the viewer shows of a file.
struct ViewedFile {
    QString file;
    std::optional<LoadedImage> picture; ///< nothing when it could not be loaded
    QString failure;                    ///< why, in words
    CommentSet comments;                ///< empty when they could not be read
    bool commentsRead = false;
    ImageFacts facts; ///< zeros when the file could not be loaded
    FileStat stat;    ///< from before it was read
};
/// Loads the first page at its own depth and reads the comments. Never fails: what could not be
/// had is missing. cancelled: see DecodeRequest; may be nullptr.
ViewedFile LoadViewedFile(const QString& file, const std::atomic<bool>* cancelled);

} // namespace quillane
