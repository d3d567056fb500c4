#pragma once
#include "browser/preferences.h"
#include "platform/dialogs.h"
#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <functional>

namespace quillane {

/// The settings that have no menu of their own, on four tabs. cmdClose applies everything; any
/// other way of closing applies nothing, but for the video tool, which acts at once.
class frmBrowserPreferences : public QDialog {
    Q_OBJECT
public:
    /// Lets a person pick a program and returns its path; a Failure that it throws is shown.
    using PickProgram = std::function<QString()>;
    frmBrowserPreferences(Session& session, PreferencesTarget& target, Dialogs& dialogs,
                          PickProgram pickProgram, QWidget* parent = nullptr);

    /// Applies what the controls hold and closes the window. Failure when a text is no number; the
    /// window stays open then.
    void Apply();

private:
    /// The controls of one custom tool or application.
    struct SlotRow {
        QCheckBox* active;
        QLineEdit* caption;
        QLineEdit* path;
        QPushButton* browse;
    };
    QWidget* MakeFileTab();
    QWidget* MakeImagingTab();
    QWidget* MakeSlotTab(const char* kind, Four<SlotRow>& rows);
    QWidget* MakeSlot(const char* kind, int number, SlotRow& row);
    QWidget* MakeThumbnailFrame();
    QWidget* MakeListFrame();
    QWidget* MakeKeywordFrame();
    QWidget* MakeVideoFrame();
    QSize FirstSize() const;
    void Load();
    PreferencesForm Gather() const;
    void ShowWrongNumber();

    Session& mSession;
    PreferencesTarget& mTarget;
    Dialogs& mDialogs;
    PickProgram mPickProgram;
    QTabWidget* mTabs;
    QLineEdit *txtThumbX, *txtThumbY, *txtJPEGValue;
    QCheckBox *chkSubDirectory, *chkGridlines, *chkSorted;
    Four<QRadioButton*> optFileOptions{};
    Four<QLineEdit*> txtKeyword{};
    std::array<QRadioButton*, 2> optVideoTool{};
    Four<SlotRow> mTools{}, mApps{};
};

} // namespace quillane
