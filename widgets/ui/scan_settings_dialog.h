#pragma once
#include "platform/scanner.h"
#include <QComboBox>
#include <QDialog>
#include <QSpinBox>

namespace quillane {

/// What a scanner offers to be chosen before a page is scanned.
class ScanSettingsDialog : public QDialog {
    Q_OBJECT
public:
    explicit ScanSettingsDialog(const ScanChoices& choices, QWidget* parent = nullptr);
    /// Puts what was chosen into the wishes; what was not offered stays.
    void Fill(ScanWishes& wishes) const;

private:
    QComboBox* mMode;
    QComboBox* mFeed;
    QComboBox* mResolutions; ///< when there are only some
    QSpinBox* mResolution;   ///< when any of a range goes
    bool mAnyResolution;
    bool mHasResolution;
};

/// Asks a person for the wishes of a scan; false when it was cancelled.
bool AskScanWishes(QWidget* owner, const ScanChoices& choices, ScanWishes& wishes);

} // namespace quillane
