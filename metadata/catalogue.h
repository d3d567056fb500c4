#pragma once
// Every field that the system shows of an image, twice: as rows for the lists of the viewer and
// as text blocks for the browser's description. Both walk one table (catalogue_fields.h). Nothing
// here fails: a field that cannot be read or formatted has an empty value, or shows what the
// field before it left (catalogue_work.h), and its row stays.
#include "imaging/comments/comment_set.h"
#include "imaging/image_facts.h"
#include "metadata/catalogue_fields.h"
#include "platform/ui_loop.h"
#include <QVector>

namespace quillane {

struct FileStat;

/// One row of a list.
struct CatalogueRow {
    QString label;
    QString value;
    bool operator==(const CatalogueRow&) const = default;
};

/// Titles and widths (in twips) of a list's two columns.
struct CatalogueColumns {
    const char* label;
    const char* value;
    qint32 labelTwips;
    qint32 valueTwips;
};
inline constexpr CatalogueColumns kImageInfoColumns{"Image Field", "Value", 2300, 3200};
inline constexpr CatalogueColumns kCameraColumns{"Camera Tag", "Value", 2300, 3200};
inline constexpr CatalogueColumns kGpsColumns{"GPS Tag", "Value", 2300, 3200};
inline constexpr CatalogueColumns kDicomColumns{"DICOM Tag", "Value", 2300, 3200};

/// Rows of lvCamera, lvGPS and lvDICOM, in table order.
QVector<CatalogueRow> FillCameraList(const CommentSet& comments);
QVector<CatalogueRow> FillGpsList(const CommentSet& comments);
QVector<CatalogueRow> FillDicomList(const CommentSet& comments);

/// Rows of lvImageInfo. The file's date is by the system's local format, empty for a missing file.
QVector<CatalogueRow> FillImageInfoList(const ImageFacts& facts, const FileStat& stat,
                                        const UiLoop& loop);

/// One text box of the viewer's general tags.
struct GeneralBox {
    QString box;   ///< its name
    QString label; ///< the words beside it
    QString value; ///< without blanks at its ends
};
/// The boxes for a file, which is a PNG by its name or not.
QVector<GeneralBox> FillGeneralBoxes(const QString& file, const CommentSet& comments);

/// The text blocks: label, value and CR LF for every field; all but the last begin with a heading.
QString GeneralTagsText(const QString& file, const CommentSet& comments);
QString CameraTagsText(const CommentSet& comments);
QString GpsTagsText(const CommentSet& comments);
QString DicomTagsText(const CommentSet& comments);

} // namespace quillane
