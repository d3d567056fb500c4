#pragma once
#include "viewer/ui/file_dialog_panel.h"
#include "widgets/background_jobs.h"

namespace quillane {

/// Chooses a picture that is there, with a look at the marked one.
class PictureOpenDialog : public FileDialogWithPanel {
    Q_DECLARE_TR_FUNCTIONS(quillane::PictureOpenDialog)
public:
    PictureOpenDialog(QWidget* owner, const QString& title, const QString& folder);
    /// The chosen path, once the dialog was accepted.
    const QString& Chosen() const { return mChosen; }

    void accept() override;

private:
    void Mark(const QString& path);
    void LookAtMarked();

    QString mMarked; ///< whose preview is wanted
    QString mChosen;
    bool mLooking = false;
    BackgroundJobs mJobs{2}; ///< last: it ends before what its answers touch
};

} // namespace quillane
