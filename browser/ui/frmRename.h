#pragma once
#include "core/session.h"
#include <QDialog>
#include <QLineEdit>

namespace quillane {

/// Asks for another name of the current file. OK leaves gsPath joined to it in gsNewName, anything
/// else leaves gsNewName empty.
class frmRename : public QDialog {
    Q_OBJECT
public:
    explicit frmRename(Session& session, QWidget* parent = nullptr);

public Q_SLOTS:
    void accept() override;
    void reject() override;

private:
    Session& mSession;
    QLineEdit* mName; ///< txtNewName
};

} // namespace quillane
