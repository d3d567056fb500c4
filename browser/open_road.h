#pragma once
// What a double click opens, and what the seven image tools are.
#include <QString>
#include <span>

namespace quillane {

enum class OpenRoad { Album, OwnPlayer, SystemOpen, PrintSettings, Tool };

/// By the file's kind, tested in this order: album, media (the own player if gsVideoTool is 0,
/// else the system's "Open" action), print-setting file, anything else the default tool.
OpenRoad RoadFor(const QString& file, qint32 gsVideoTool);

struct ToolRow {
    qint32 number;
    const char* menu;  ///< chooses the default tool
    const char* popup; ///< opens the current file with it at once
    const char16_t* caption;
    const char* window; ///< the window it shows, or nullptr
};
inline constexpr qint32 kFirstCustomTool = 2, kLastCustomTool = 5, kSystemTool = 6;
/// The seven tools in the order of their numbers.
std::span<const ToolRow> ImageTools();

} // namespace quillane
