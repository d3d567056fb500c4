#include "platform/ui/desktop_dialogs.h"

#include "core/failure.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>

namespace quillane {

namespace {

QMessageBox::Icon QtIcon(BoxIcon icon)
{
    switch (icon) {
    case BoxIcon::Information:
        return QMessageBox::Information;
    case BoxIcon::Warning:
        return QMessageBox::Warning;
    case BoxIcon::Critical:
        return QMessageBox::Critical;
    case BoxIcon::Question:
        return QMessageBox::Question;
    case BoxIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons QtButtons(BoxButtons buttons)
{
    switch (buttons) {
    case BoxButtons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case BoxButtons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case BoxButtons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case BoxButtons::Ok:
        break;
    }
    return QMessageBox::Ok;
}

/// The window a box stands over, so that it never appears behind it.
QWidget* DialogOwner()
{
    if (QWidget* const active = QApplication::activeWindow()) {
        return active;
    }
    if (QWidget* const modal = QApplication::activeModalWidget()) {
        return modal;
    }
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowType() == Qt::Window) {
            return window;
        }
    }
    return nullptr;
}

void NameButton(const QMessageBox& box, QMessageBox::StandardButton button, const char* name)
{
    if (QAbstractButton* const found = box.button(button)) {
        found->setObjectName(QLatin1String(name));
    }
}

/// "All Files|*.*|Pictures|*.jpg;*.png" as the toolkit writes it.
QStringList QtFilters(const QString& filter)
{
    QStringList filters;
    const QStringList parts = filter.split(u'|', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString patterns = parts.at(i + 1);
        patterns.replace(u';', u' ').replace(QStringLiteral("*.*"), QStringLiteral("*"));
        filters.append(QStringLiteral("%1 (%2)").arg(parts.at(i), patterns));
    }
    return filters;
}

} // namespace

BoxAnswer DesktopDialogs::Box(const QString& text, const QString& title, BoxIcon icon,
                              BoxButtons buttons)
{
    // Its owner can be destroyed while the box is open, and takes the box along.
    const QPointer<QMessageBox> box =
        new QMessageBox(QtIcon(icon), title.isEmpty() ? QStringLiteral("Quillane") : title, text,
                        QtButtons(buttons), DialogOwner());
    box->setObjectName(QStringLiteral("messageBox"));
    box->setTextFormat(Qt::PlainText);
    NameButton(*box, QMessageBox::Ok, "cmdOK");
    NameButton(*box, QMessageBox::Cancel, "cmdCancel");
    NameButton(*box, QMessageBox::Yes, "cmdYes");
    NameButton(*box, QMessageBox::No, "cmdNo");
    const int pressed = box->exec();
    delete box;
    switch (pressed) {
    case QMessageBox::Ok:
        return BoxAnswer::Ok;
    case QMessageBox::Yes:
        return BoxAnswer::Yes;
    case QMessageBox::Cancel:
        return BoxAnswer::Cancel;
    default: // closed from outside
        return buttons == BoxButtons::Ok   ? BoxAnswer::Ok
            : buttons == BoxButtons::YesNo ? BoxAnswer::No
                                           : BoxAnswer::Cancel;
    case QMessageBox::No:
        return BoxAnswer::No;
    }
}

QString DesktopDialogs::File(const FileDialogSpec& spec)
{
    const QPointer<QFileDialog> dialog = new QFileDialog(DialogOwner(), spec.title, spec.folder);
    dialog->setObjectName(QStringLiteral("fileDialog"));
    dialog->setAcceptMode(spec.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog->setFileMode(spec.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    const QStringList filters = QtFilters(spec.filter);
    if (!filters.isEmpty()) {
        dialog->setNameFilters(filters);
    }
    if (!spec.fileName.isEmpty()) {
        dialog->selectFile(spec.fileName);
    }
    const bool accepted = dialog->exec() == QDialog::Accepted;
    const QStringList chosen = accepted && dialog ? dialog->selectedFiles() : QStringList();
    delete dialog;
    if (chosen.isEmpty()) {
        throw Failure(kFailureCancelled, QStringLiteral("The dialog was cancelled."));
    }
    return chosen.first();
}

} // namespace quillane
