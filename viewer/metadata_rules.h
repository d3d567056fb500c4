#pragma once
#include <QString>
#include <array>
#include <span>

namespace quillane {

/// Which tabs of the metadata page are there for a file, beside the first one.
struct MetadataTabs {
    bool general = false;
    bool camera = false;
    bool gps = false;
    bool dicom = false;
    bool operator==(const MetadataTabs&) const = default;
};
/// By the file's name and the format code that its loading told (0 when it could not be loaded).
MetadataTabs MetadataTabsFor(const QString& file, qint16 format);

/// A label of the general tags whose words depend on the kind of file.
struct GeneralLabel {
    const char* name; ///< of the label
    const char* box;  ///< of the box beside it
    const char* tiff; ///< its words for a TIFF or an Exif file
    const char* png;  ///< its words for a PNG
};
inline constexpr GeneralLabel kGeneralLabels[] = {
    {"Label13", "txtModel", "Model:", "Disc. :"},
    {"Label18", "txtPage", "Page:", "Warning:"},
    {"Label16", "txtComputer", "Computer:", "Title:"},
    {"Label17", "txtDocument", "Document:", "Misc. Info:"},
};
/// Whether the labels have the words of a PNG.
bool HasPngWords(const QString& file, qint16 format);

} // namespace quillane
