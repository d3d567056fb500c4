#pragma once
// Message boxes and file dialogs. Code asks this seam, so that a test can answer.
#include <QString>
#include <QStringList>

class QWidget;

namespace quillane {

enum class BoxIcon { None, Information, Warning, Critical, Question };
enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class BoxAnswer { Ok, Cancel, Yes, No };

struct FileDialogSpec {
    QString title;
    QString folder;    ///< shown first
    QString fileName;  ///< prefilled
    QString filter;    ///< "All Files|*.*" style: words and pattern in turn; empty shows all
    bool save = false; ///< a save dialog that asks before it replaces
};

class Dialogs {
public:
    virtual ~Dialogs() = default;
    /// Shows a message box that blocks, and returns the button pressed.
    virtual BoxAnswer Box(const QString& text, const QString& title, BoxIcon icon = BoxIcon::None,
                          BoxButtons buttons = BoxButtons::Ok) = 0;
    /// The chosen path. Failure kFailureCancelled when the dialog is cancelled.
    virtual QString File(const FileDialogSpec& spec) = 0;
};

} // namespace quillane
