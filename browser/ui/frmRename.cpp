#include "browser/ui/frmRename.h"

#include "core/paths.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillane {

namespace {

constexpr int kNameLetters = 40; // as wide as so many, at first

/// What the new name is joined to. A file of a sub-folder keeps its place.
QString FolderOfNewName(const Session& session)
{
    const QString folder = FolderOf(session.gsFileName);
    const QString shown = WithSeparator(session.gsPath);
    return folder != shown && folder.startsWith(shown) ? folder : session.gsPath;
}

/// Why no file can have this name; empty when one can.
QString RenameAdvice(const QString& name)
{
    if (name.contains(NativeSeparator())) {
        return frmRename::tr("A name cannot contain \"%1\".").arg(NativeSeparator());
    }
    if (name == QLatin1String(".") || name == QLatin1String("..")) {
        return frmRename::tr("\"%1\" is the name of a folder.").arg(name);
    }
    return {};
}

} // namespace

frmRename::frmRename(Session& session, QWidget* parent)
    : QDialog(parent),
      mSession(session),
      mName(new QLineEdit(LeafName(session.gsFileName)))
{
    setObjectName(QStringLiteral("frmRename"));
    setWindowTitle(tr("Rename"));
    setModal(true);
    auto* label = new QLabel(tr("New &name:"));
    label->setBuddy(mName);
    mName->setObjectName(QStringLiteral("txtNewName"));
    mName->setAccessibleName(tr("New name"));
    mName->setMinimumWidth(mName->fontMetrics().averageCharWidth() * kNameLetters);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("cmdOK"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &frmRename::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &frmRename::reject);
    auto* advice = new QLabel;
    advice->setObjectName(QStringLiteral("lblAdvice"));
    connect(mName, &QLineEdit::textChanged, this, [ok, advice](const QString& text) {
        advice->setText(RenameAdvice(text));
        ok->setEnabled(!text.isEmpty() && advice->text().isEmpty());
    });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(mName);
    layout->addWidget(advice);
    layout->addWidget(buttons);
    layout->addStretch();
    // The name without its extension, which nearly always stays.
    const qsizetype dot = mName->text().lastIndexOf(u'.');
    mName->setSelection(0, int(dot > 0 ? dot : mName->text().size()));
    mName->setFocus();
}

void frmRename::accept()
{
    mSession.gsNewName = JoinAsIs(FolderOfNewName(mSession), mName->text());
    QDialog::accept();
}

void frmRename::reject()
{
    mSession.gsNewName.clear();
    QDialog::reject();
}

} // namespace quillane
