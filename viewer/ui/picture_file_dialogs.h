#pragma once
// The dialogs in which a person chooses the picture to open, and name and format to save under.
#include "imaging/bitmap.h"
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

/// What was chosen in FileSaveDialog.
struct SaveDialogChoice {
    QString file;
    qint16 format = 0;    ///< format code
    qint32 subFormat = 0; ///< position within the format's type
    qint32 bits = 24;     ///< per pixel
    qint32 quality = 10;  ///< 2..255, 2 the best
    bool stampWanted = false;
    qint32 stampBits = 24;
    float stampSize = 0;  ///< width and height of the stamp's box, pixels
    qint32 multiPage = 0; ///< above 0: append a page
};

/// The chosen path. Failure kFailureCancelled when the dialog was cancelled.
QString FileOpenDialog(QWidget* owner, const QString& title, const QString& folder);
/// What was chosen. Failure kFailureCancelled when the dialog was cancelled.
SaveDialogChoice FileSaveDialog(QWidget* owner, const SaveDialogStart& start);

} // namespace quillane
