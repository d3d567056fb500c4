#pragma once
#include "imaging/acquire.h"
#include <QDialog>

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;

namespace quillane {

/// The list of scanners, filled as soon as they have answered.
class ScanSourceDialog : public QDialog {
    Q_OBJECT
public:
    /// current: name of the source that is chosen already; it is marked when it answers.
    ScanSourceDialog(SourceSearch& search, QString current, QWidget* parent = nullptr);
    /// Name of the marked source; empty while there is none.
    QString Chosen() const;

private:
    void ShowSearching();
    void ShowSources(const QList<ScanSource>& sources);
    void ShowWords(const QString& words);
    void ShowWhetherChosen();

    SourceSearch& mSearch;
    QString mCurrent;
    QLabel* mWords;
    QProgressBar* mBusy;
    QListWidget* mList;
    QPushButton* mSelect;
    QPushButton* mAgain;
};

/// Has a person choose the scanner for this run of the program (TwainSelect).
void ChooseScanSource(Scanner& scanner, QWidget* owner);

} // namespace quillane
