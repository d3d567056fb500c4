#pragma once
// The one table of fields that the lists of the viewer and the text blocks of the browser share.
#include "metadata/catalogue_work.h"
#include <QString>
#include <span>

namespace quillane {

enum class CatalogueBlock : quint8 { Camera, Gps, Dicom };

/// One row of a block.
struct CatalogueField {
    qint16 slot;
    const char* label;     ///< in the list
    const char* textLabel; ///< in the text block; nullptr for the list's label and ": "
    SlotShape shape;       ///< in which the row reads the slot
    QString (*format)(const CatalogueWork& work);
};
/// The rows of a block in their order.
std::span<const CatalogueField> CatalogueFields(CatalogueBlock block);
/// What stands before a row's value in the text block.
QString TextLabelOf(const CatalogueField& field);

inline constexpr qint16 kNoSlot = -1; ///< not shown

/// One general image tag. A PNG's text chunks take the place of some fields, so slots and labels
/// come in pairs: [0] for other files, [1] for a PNG.
struct GeneralField {
    qint16 textSlot[2];       ///< in the text block
    const char* textLabel[2]; ///< nullptr where the slot is kNoSlot
    qint16 boxSlot[2];        ///< in the viewer's box
    const char* box;          ///< the viewer's box; nullptr for none
    const char* boxLabel;     ///< the words beside the box
};
/// The general tags in the order of the text block.
std::span<const GeneralField> GeneralFields();

} // namespace quillane
