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
    std::shared_ptr<const LoadedFile> loaded; ///< the file as it was when it was loaded or saved
};

/// Notes what LEAD1 has just loaded from `file`: format, depth and the file itself. The texts are
/// emptied and count as not read until the window has filled them.
void NoteLoaded(ViewerPicture& held, const EngineInstance& LEAD1, const QString& file);

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
