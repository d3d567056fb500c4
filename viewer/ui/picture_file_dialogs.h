#pragma once
// The dialogs in which a person chooses the picture to open, and name and format to save under.
//
// Controls of both, by object name: those of the toolkit's dialog (fileNameEdit, treeView,
// listView, buttonBox, ...), PreviewPicture and PreviewWords, and DialogHint, which tells why a
// name cannot be taken. Of FileSaveDialog besides: SaveFormat, SaveSubFormat, SaveBits,
// SaveQuality, SaveQualityBar, StampWanted, StampSize, StampBits, MultiPage, PreviewActual. The
// dialogs themselves are called FileOpenDialog and FileSaveDialog, the question before a file is
// replaced messageBox, with cmdYes and cmdNo.
#include "imaging/bitmap.h"
#include "viewer/save_choices.h"
#include <QString>

class QWidget;

namespace quillane {

/// What FileSaveDialog shows at first.
struct SaveDialogStart {
    QString title;
    QString filter; ///< "All Files|*.*" style
    QString folder;
    QString fileName;  ///< path or leaf name
    qint16 format = 0; ///< code that is chosen at first, when it can be written
    qint32 bits = 0;   ///< per pixel that are chosen at first, when the format has them
    qint32 quality = 10;
    Bitmap picture; ///< for the preview; empty: none
};

/// The chosen path, of a file that is there. Failure kFailureCancelled when the dialog was
/// cancelled.
QString FileOpenDialog(QWidget* owner, const QString& title, const QString& folder);
/// What was chosen; a person has agreed to replace a file that is there, or adds a page to it.
/// Failure kFailureCancelled when the dialog was cancelled.
SaveDialogChoice FileSaveDialog(QWidget* owner, const SaveDialogStart& start);

} // namespace quillane
