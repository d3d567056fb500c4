#pragma once
// What can be chosen when a picture is saved, and how the choices hang together. No widget.
#include "imaging/encode.h"
#include <QString>
#include <QStringList>

namespace quillane {

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

} // namespace quillane
