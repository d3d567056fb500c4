#pragma once
#include "core/browser_host.h"
#include "core/session.h"
#include "core/settings_store.h"
#include "platform/platform.h"
#include "search/criteria.h"
#include "search/row_texts.h"
#include "widgets/ui/menu_set.h"
#include <QCheckBox>
#include <QCloseEvent>
#include <QDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QScrollArea>
#include <QTabWidget>
#include <array>

namespace quillane {

/// The window that edits the criteria of a search. It opens blank whatever was stored, and by
/// whichever road it closes, its rows take the place of what stood in the arrays and the store.
class frmBrowserSearch : public QDialog {
    Q_OBJECT
public:
    /// criteria: those of the session; host: the main window, whose search is switched.
    frmBrowserSearch(Session& session, SettingsStore& store, SearchCriteria& criteria,
                     Platform platform, BrowserHost& host, QWidget* parent = nullptr);

    /// The first time reads options and criteria from the store.
    void setVisible(bool visible) override;
    /// Closes the window as cmdCancel does, and so does the Esc key: with the search off.
    void reject() override;
    /// Reads the rows back, stores everything and closes. Where a number does not fit, a message
    /// box says so; with the result Accepted the window then stays for it to be corrected.
    void done(int result) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    struct Row {
        QCheckBox* check = nullptr;
        QLineEdit* keyword = nullptr;
        QLineEdit* first = nullptr; ///< the wanted text, or the lower bound
        QLineEdit* high = nullptr;  ///< of a numeric row
    };
    void LoadForm();
    void SaveForm();
    QScrollArea* BuildPage();
    QGroupBox* BuildNumericFrame();
    QGroupBox* BuildTextFrame();
    QWidget* BuildButtons();
    QCheckBox* AddCheck(const char* name, int index, int mnemonic, SearchCriterion& row);
    void Search();
    void ShowUnfit();
    SearchWindowTexts Texts() const;

    Session& mSession;
    SettingsStore& mStore;
    SearchCriteria& mCriteria;
    Platform mPlatform;
    BrowserHost& mHost;
    QMenuBar* mBar;
    MenuSet mMenus;
    QTabWidget* SSTab1;
    std::array<Row, 4> mNumeric;
    std::array<Row, 4> mCharacter;
    bool mFormLoaded = false;
};

} // namespace quillane
