#include "viewer/metadata_rules.h"

#include "core/file_kinds.h"

namespace quillane {

namespace {

bool IsExifFormat(qint16 format)
{
    return format == 96 || format == 97 || format == 98 || format == 101;
}

} // namespace

MetadataTabs MetadataTabsFor(const QString& file, qint16 format)
{
    if (IsImageFile(file) != kTrue) {
        return {};
    }
    if (IsExifFormat(format)) {
        return {true, true, true, false};
    }
    if (IsTiffFile(file) == kTrue || IsPngFile(file) == kTrue) {
        return {true, false, false, false};
    }
    return {false, false, false, IsDicomFile(file) == kTrue};
}

bool HasPngWords(const QString& file, qint16 format)
{
    return !IsExifFormat(format) && IsTiffFile(file) != kTrue && IsPngFile(file) == kTrue;
}

} // namespace quillane
