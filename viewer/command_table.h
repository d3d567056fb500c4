#pragma once
// The commands that change the picture of the viewer, or look at it: one row each.
#include "imaging/engine.h"
#include <QLatin1String>
#include <array>
#include <functional>
#include <span>

namespace quillane {

/// What asks a person for the values of a command.
enum class CommandDialog : quint8 {
    None,
    Value,
    Filter,
    Noise,
    Emboss,
    Gamma,
    Intensity,
    ColorDepth,
    Contour,
    Rotate,
    Resize,     ///< window Resize
    Histogram,  ///< window Histogram, which gives no values
    FillColor,  ///< the system's colour dialog
    MessageBox, ///< tells the number of colours
};

/// What a dialog starts from and what it gives, in the order of its results: filter, spatial and
/// binary; rotate, angle, option and colour; resize, width, height and method.
using CommandValues = std::array<qint32, 4>;

struct EnhanceCommand {
    const char* menu; ///< name of the menu it stands in
    const char* name;
    const char16_t* caption;
    CommandDialog dialog;
    quint32 flags;       ///< flag word of the dialog, without its high bit
    CommandValues start; ///< of the dialog; of a command without one, what it works with
    /// What is done to the picture; nullptr where it stays.
    void (*work)(EngineInstance& lead, const CommandValues& values);
    bool undo; ///< whether the copy for undo is taken first
};

/// Every command in the order of the menus; the date stamp, which needs a file, is among them
/// without its work (date_stamp.h).
std::span<const EnhanceCommand> EnhanceCommands();
/// The row of that name; nullptr where there is none.
const EnhanceCommand* FindEnhanceCommand(QLatin1String name);

/// What a command needs of its window.
struct CommandRoad {
    /// Shows the dialog; Failure when it is cancelled.
    std::function<CommandValues(const EnhanceCommand& command)> ask;
    /// Does the work on LEAD1, on whatever thread.
    std::function<void(const std::function<void(EngineInstance&)>& work)> run;
};
/// The pattern of all of them: LEAD1's picture becomes that of LEAD2 where the command can be
/// undone, then the dialog is shown, then the work is done. Failure of the dialog (cancelled, too)
/// or of the work; the copy in LEAD2 has been taken even then.
void RunEnhanceCommand(const EnhanceCommand& command, const EngineInstance& LEAD1,
                       EngineInstance& LEAD2, const CommandRoad& road);

/// One level back: LEAD1 gets the picture of LEAD2, which keeps it, so that a second time changes
/// nothing. The region stays as far as it lies on the picture.
void UndoLast(EngineInstance& LEAD1, const EngineInstance& LEAD2);

/// "Bitmap contains 7 unique colors".
QString UniqueColorsText(qint64 colours);

} // namespace quillane
