#pragma once
#include <QByteArray>
#include <QStringList>

namespace quillane {

/// The system's table of mounted volumes; empty where there is none, or above 1 MB. It is the one
/// source that answers without asking the volumes themselves.
QByteArray ReadMountTable();
/// Folders of the volumes that a person plugs in or connects, in the table's order and each once:
/// those under /media, /run/media and /mnt.
QStringList VolumesOf(const QByteArray& mountTable);

} // namespace quillane
