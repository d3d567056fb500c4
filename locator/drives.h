#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>

namespace quillane {

/// The drives that can be searched: "/" and the volumes of the system's mount table.
QStringList LocatorDrives(const QByteArray& mountTable);
/// Which of these drives a folder lies on, the innermost one: its place in the list, which begins
/// with "/".
int DriveOf(const QStringList& drives, const QString& folder);

} // namespace quillane
