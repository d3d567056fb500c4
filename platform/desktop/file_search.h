#pragma once
#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace quillane {

/// A program that searches a folder for files, ready to be started.
struct SearchCommand {
    QString program; ///< full path
    QList<QByteArray> arguments;
};

/// The search that belongs to the desktop's file manager if it is installed, else any search
/// that is; nothing where there is none.
std::optional<SearchCommand> FileSearchIn(const QString& folder);

/// Desktop file of the program that opens folders, as the user's and the system's lists of
/// default applications name it; empty when none does.
QString DefaultFileManager();

} // namespace quillane
