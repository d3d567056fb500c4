#pragma once
#include "core/session.h"
#include "locator/search_run.h"
#include "locator/ui/dir_list.h"
#include "locator/ui/found_list.h"
#include "platform/platform.h"
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <functional>
#include <memory>

namespace quillane {

/// The window "Find Files": searches a folder, and those below it, for files by patterns of their
/// names. The search runs on another thread; rows appear while it does.
class frmLocate : public QMainWindow {
    Q_OBJECT
public:
    /// endProgram ends the whole program at once: for "Exit", and when a folder cannot be read.
    frmLocate(Session& session, Platform platform, std::function<void()> endProgram,
              QWidget* parent = nullptr);
    ~frmLocate() override;

    /// The first time sets drive and folder to those of gsPath.
    void setVisible(bool visible) override;

    /// Begins a search for Text1's patterns in Dir1's folder, in the place of one that runs. An
    /// empty text does nothing but clear the list.
    void StartSearch();
    /// Ends the search; the folder that it had come to stays in the status.
    void CancelSearch();
    bool IsSearching() const { return mSearch.IsRunning(); }

private:
    void BuildMenu();
    void Build();
    QWidget* BuildChoices();
    void ConnectControls();
    void LoadForm();
    void Ended(const FindResult& result);
    void Failed();
    void EnableActions();
    void OpenFound(int row);
    void CopyFound();

    Session& mSession;
    Platform mPlatform;
    std::function<void()> mEndProgram;
    QLineEdit* Text1;
    QCheckBox* Check1;
    QPushButton* cmdAction[2];
    QComboBox* Drive1;
    DirList* Dir1;
    FoundList* List1;
    QLabel* Status;
    LocatorSearch mSearch;
    std::unique_ptr<Hourglass> mBusy; ///< while a search runs
    bool mFormLoaded = false;
};

} // namespace quillane
