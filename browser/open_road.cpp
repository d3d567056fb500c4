#include "browser/open_road.h"

#include "core/file_kinds.h"

namespace quillane {

OpenRoad RoadFor(const QString& file, qint32 gsVideoTool)
{
    if (IsAlbumFile(file) == kTrue) {
        return OpenRoad::Album;
    }
    if (IsMediaFile(file) == kTrue) {
        return gsVideoTool == 0 ? OpenRoad::OwnPlayer : OpenRoad::SystemOpen;
    }
    if (IsPrintSetFile(file) == kTrue) {
        return OpenRoad::PrintSettings;
    }
    return OpenRoad::Tool;
}

namespace {

constexpr ToolRow kImageTools[] = {
    {0, "mnuImage", "mnuPopImage", u"View/Enhance Photo", "frmToolImageDisplay"},
    {1, "mnuTagEdit", "mnuPopEditTags", u"Edit Photo Metadata", "frmToolTagEdit"},
    {2, "mnuCustomTool1", "mnuPopCustomTool1", u"Custom Tool 1", nullptr},
    {3, "mnuCustomTool2", "mnuPopCustomTool2", u"Custom Tool 2", nullptr},
    {4, "mnuCustomTool3", "mnuPopCustomTool3", u"Custom Tool 3", nullptr},
    {5, "mnuCustomTool4", "mnuPopCustomTool4", u"Custom Tool 4", nullptr},
    {6, "mnuWindowsDefaultViewer", "mnuPopWindowsDefaultViewer", u"Windows Default Photo Viewer",
     nullptr},
};

} // namespace

std::span<const ToolRow> ImageTools()
{
    return kImageTools;
}

} // namespace quillane
