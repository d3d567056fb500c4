#pragma once
// The boxes of the page "General Comment Tags", on their way into a file.
#include "imaging/engine.h"
#include "platform/ui_loop.h"

namespace quillane {

/// Texts of the boxes, under their names.
struct GeneralTagTexts {
    QString txtArtistExif;
    QString txtCopyrightExif;
    QString txtMake;
    QString txtDateCreated;
    QString txtComputer; ///< of a PNG: its title
    QString txtModel;    ///< of a PNG: its disclaimer
    QString txtDocument; ///< of a PNG: its comment
    QString txtPage;     ///< of a PNG: its warning
};

/// What stands in an empty box of the date when a file is saved: the two-digit year and the day of
/// the year without a division, month, day, and the time: "26325:11:21 14:13:48".
QString GeneralTagDate(const QDateTime& when);
/// The name that the program leaves in the files it saves: version, blank, title.
QString GeneralTagSoftware(const QString& appTitle);

/// Sets the pending comments of a save from the boxes: artist, copyright, make, the program's own
/// name, date, and the four whose slots differ for a PNG; an empty box clears its slot. A box of
/// the date that is empty is filled first. filled: whether the boxes hold what stands in this file;
/// else none of them is written, and the slots keep what they hold. Any thread.
void WriteGeneralTags(EngineInstance& LEAD1, const QString& file, GeneralTagTexts& texts,
                      const UiLoop& loop, const QString& appTitle, bool filled);

} // namespace quillane
