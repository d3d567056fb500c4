#include "platform/ui/desktop_dialogs.h"

#include "core/failure.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>

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
    QMessageBox box(QtIcon(icon), title.isEmpty() ? QStringLiteral("Quillane") : title, text,
                    QtButtons(buttons), QApplication::activeWindow());
    box.setObjectName(QStringLiteral("messageBox"));
    box.setTextFormat(Qt::PlainText);
    switch (box.exec()) {
    case QMessageBox::Yes:
        return BoxAnswer::Yes;
    case QMessageBox::No:
        return BoxAnswer::No;
    case QMessageBox::Cancel:
        return BoxAnswer::Cancel;
    default:
        return BoxAnswer::Ok;
    }
}

QString DesktopDialogs::File(const FileDialogSpec& spec)
{
    QFileDialog dialog(QApplication::activeWindow(), spec.title, spec.folder);
    dialog.setObjectName(QStringLiteral("fileDialog"));
    dialog.setAcceptMode(spec.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(spec.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    const QStringList filters = QtFilters(spec.filter);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
    }
    if (!spec.fileName.isEmpty()) {
        dialog.selectFile(spec.fileName);
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        throw Failure(kFailureCancelled, QStringLiteral("The dialog was cancelled."));
    }
    return dialog.selectedFiles().first();
}

} // namespace quillane
