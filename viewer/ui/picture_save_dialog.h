#pragma once
#include "viewer/save_preview.h"
#include "viewer/ui/file_dialog_panel.h"
#include "viewer/ui/picture_file_dialogs.h"
#include "widgets/background_jobs.h"
#include <QCheckBox>
#include <QComboBox>
#include <QSlider>
#include <QSpinBox>

namespace quillane {

/// Chooses name and format to save a picture under, and shows what it will look like.
class PictureSaveDialog : public FileDialogWithPanel {
    Q_DECLARE_TR_FUNCTIONS(quillane::PictureSaveDialog)
public:
    PictureSaveDialog(QWidget* owner, const SaveDialogStart& start);
    /// What was chosen, once the dialog was accepted.
    const SaveDialogChoice& Chosen() const { return mChosen; }

    void accept() override;

private:
    void Build(qint32 quality);
    QWidget* BuildQuality(qint32 quality);
    QWidget* BuildStamp();
    void Connect();
    void ShowChoices();
    void EnableControls();
    void NameChanged(const QString& name);
    void RenameFile();
    void LookAtTarget();
    void Preview();
    void StartPreview();
    void ShowPreview();
    bool AgreesToReplace(const QString& file);

    Bitmap mPicture;
    SaveChoices mChoices;
    SaveDialogChoice mChosen;
    SavePreview mPreview;
    QString mLookedAt;         ///< the target that was looked at last
    bool mTargetTakes = false; ///< it is there and takes a further page
    bool mEncoding = false;
    bool mEncodeAgain = false;
    QComboBox* mFormat;
    QComboBox* mSubFormat;
    QComboBox* mBits;
    QSpinBox* mQuality;
    QSlider* mQualityBar;
    QLabel* mQualityEnds[2];
    QCheckBox* mStamp;
    QSpinBox* mStampSize;
    QComboBox* mStampBits;
    QCheckBox* mMultiPage;
    QCheckBox* mActual;
    BackgroundJobs mJobs{2}; ///< last: it ends before what its answers touch
};

} // namespace quillane
