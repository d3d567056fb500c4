#pragma once
// The values that every window shares, under the names they have everywhere. They live in
// one Session (session.h); no window keeps a copy.
#include <QString>
#include <array>

namespace quillane {

template <typename T> using Four = std::array<T, 4>;

struct Globals {
    // Kept in the settings store.
    qint32 jpegQuality = 10;      ///< quality factor for saving, 2 best .. 255
    qint16 lowThresh = 0;         ///< lower threshold
    qint16 highThresh = 50;       ///< upper threshold
    qint32 gsImageTool = 0;       ///< default image tool, 0 to 6
    QString gsPath;               ///< folder being browsed, as a rule with a separator at its end
    qint16 gThumbnailWidth = 100; ///< cell size in pixels
    qint16 gThumbnailHeight = 100;
    qint32 gBrightness = 16;     ///< brightness step
    qint32 gContrast = 16;       ///< contrast step
    QString gsComments;          ///< comment text of the album window
    Four<QString> gTagKeyword;   ///< remembered tag names
    Four<QString> gTagValue;     ///< remembered tag values
    Four<qint16> gTagCheckBox{}; ///< remembered tag check boxes
    Four<QString> gsFileKeyword; ///< tag names shown as columns 4 to 7 of the Details view
    qint32 gsVideoTool = 0;      ///< 0 the own media player, else the system's "Open" action
    QString browsePath;          ///< last folder of the folder-pick dialog
    QString exePath;             ///< start folder for picking a program

    // Live for one run.
    QString gsFileName;          ///< full path of the current file, which every tool opens
    QString gsFilter;            ///< mask of browsable files, patterns divided by semicolons
    QString gsNewName;           ///< new path set by the rename dialog, empty on cancel
    qint32 gCurrentItem = 0;     ///< list row that is being filled
    qint32 gImageListIndex = -1; ///< position of the current cell or row, -1 for none
    qint32 gImagesAdded = 0;     ///< cells added by the running scan
    qint32 gFilesSeen = 0;       ///< files met by the running scan; drives the progress bar
    bool gBrowseCanceled = false;
    qint16 gSlideShowMode = 0; ///< 0 folder, 1 selected images, 2 album
    bool gSearchActive = false;
    bool matchCase = false;
    bool matchWord = false;
    QString gsImageDimension; ///< the last "Dimension:  " line of the preview panel
    QString gsImageFormat;    ///< the last "Format: " line of the preview panel
    QString gsCrLf;
    QString gsTab;
    QString gsAppTitle;
    QString gsSiteName;
};

} // namespace quillane
