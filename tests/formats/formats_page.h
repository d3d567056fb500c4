#pragma once
#include <QString>
#include <QStringList>

namespace quillane {

/// Extensions of the pictures and clips that are browsed, in the order of the mask, each once.
QStringList BrowsedPictures();
/// The page FORMATS.md: what is read and written, out of the tables of the program.
QString FormatsPage();

} // namespace quillane
