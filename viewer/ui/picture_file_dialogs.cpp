#include "viewer/ui/picture_file_dialogs.h"

#include "core/failure.h"
#include "viewer/ui/picture_open_dialog.h"
#include "viewer/ui/picture_save_dialog.h"
#include <QPointer>
#include <memory>

namespace quillane {

namespace {

[[noreturn]] void FailCancelledDialog()
{
    throw Failure(kFailureCancelled, QStringLiteral("The dialog was cancelled."));
}

/// Runs a dialog and hands it to `take` when it was accepted. Its owner can be destroyed meanwhile
/// and takes it along.
template <typename Dialog, typename Take> void RunPictureDialog(Dialog* made, const Take& take)
{
    const QPointer<Dialog> dialog = made;
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog) {
        FailCancelledDialog();
    }
    const std::unique_ptr<Dialog> owned(dialog.data());
    if (!accepted) {
        FailCancelledDialog();
    }
    take(*owned);
}

} // namespace

QString FileOpenDialog(QWidget* owner, const QString& title, const QString& folder)
{
    QString chosen;
    RunPictureDialog(new PictureOpenDialog(owner, title, folder),
                     [&](const PictureOpenDialog& dialog) { chosen = dialog.Chosen(); });
    return chosen;
}

SaveDialogChoice FileSaveDialog(QWidget* owner, const SaveDialogStart& start)
{
    SaveDialogChoice chosen;
    RunPictureDialog(new PictureSaveDialog(owner, start),
                     [&](const PictureSaveDialog& dialog) { chosen = dialog.Chosen(); });
    return chosen;
}

} // namespace quillane
