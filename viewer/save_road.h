#pragma once
// How the viewer's picture gets into a file. Plain functions without a widget: a window gathers
// what its controls hold, runs one of them with RunAside, and tells in words what failed.
#include "platform/fixed_places.h"
#include "viewer/general_tags.h"
#include "viewer/save_choices.h"

namespace quillane {

/// What the viewer holds beside its picture.
struct ViewerPicture {
    QString file;               ///< the viewer's file
    qint16 format = 0;          ///< code noted when the file was loaded
    qint32 bits = 0;            ///< per pixel, noted when the file was loaded
    qint32 quality = 10;        ///< jpegQuality as the window took it
    qint32 mode = kSaveReplace; ///< of a save over the file
    QString tags;               ///< text of txtTags; lines may end either way
    bool tagsRead = false;      ///< txtTags was filled from this file
    GeneralTagTexts general;    ///< boxes; a save fills in an empty date
    bool generalRead = false;   ///< the boxes were filled from this file: their page is on
    QString appTitle;           ///< gsAppTitle
    // As the file was when it was loaded or saved; NoteLoaded and the saves fill them in.
    std::shared_ptr<const LoadedFile> loaded;
    std::shared_ptr<const CommentSet> comments;
    qint64 pixels = 0; ///< key of pixels that belong to that file; 0: none do
};

/// Makes `file` the viewer's file and notes what LEAD1 has loaded from it: format, depth, comments
/// and the file itself; nothing where LEAD1 holds no picture of that file. The texts are emptied
/// and count as not read until the window has filled them. It reads from the file.
void NoteLoaded(ViewerPicture& held, EngineInstance& LEAD1, const QString& file);

/// To be called before another picture takes the place of LEAD1's (a paste, a scan): taken back by
/// an undo, the old one still belongs to its file.
void NoteBeforeNewPicture(ViewerPicture& held, const EngineInstance& LEAD1);

/// Saves over the viewer's file in its own format and depth, with every comment of the file, the
/// text of the tags and the general tags. Failure, with the file as it was: a format that cannot
/// be written, a file that others changed or replaced since, pages that would be lost, and what
/// SavePicture tells.
void SaveImage(EngineInstance& LEAD1, ViewerPicture& held, const UiLoop& loop);

/// Saves as was chosen in the dialog, with all that the viewer's file carries as far as the new
/// format holds it. The viewer's file stays the same; where it was the one that was chosen, its
/// new format and depth are noted. An empty name does nothing. A page that is added to a file has
/// no stamp. Failure as SaveImage.
void SaveImageAs(EngineInstance& LEAD1, ViewerPicture& held, const SaveDialogChoice& choice,
                 const UiLoop& loop);

/// Saves the flat copy that is printed, an uncompressed Exif TIFF in full colours, with the
/// comments of the viewer's file, and returns its path.
QString SavePrintCopy(EngineInstance& LEAD1, const ViewerPicture& held, const FixedPlaces& places);

} // namespace quillane
