#pragma once
#include "platform/file_service.h"
#include <QByteArray>
#include <QDateTime>

namespace quillane {

/// What stands in the note beside a file in the trash: its old place with every byte that is
/// none of a plain path written as "%" and two digits, and the time. As desktops agreed on it in
/// the trash specification of freedesktop.org, version 1.0.
QByteArray TrashNote(const QByteArray& path, const QDateTime& when);
/// Puts a file into the trash of its volume: that of the home folder where both are on one volume,
/// else ".Trash" with a folder of the user's, else ".Trash-" and the user's number, at the volume's
/// top. As FileService::Trash.
TrashedFile MoveToTrash(const QString& path, const QString& homeTrash);
/// As FileService::BringBack.
void BringBackFromTrash(const TrashedFile& file);
/// The user's trash folder by the environment.
QString UsualHomeTrash();

} // namespace quillane
