#include "widgets/mounted_volumes.h"

#include "core/failure.h"
#include "core/native_path.h"

#include <algorithm>
#include <iterator>

namespace quillane {

namespace {

constexpr qint64 kLargestMountTable = 1 << 20; // bytes
constexpr const char* kVolumeParents[] = {"/media/", "/run/media/", "/mnt/"};

/// A field of the table: blanks and the like stand as a backslash and three octal digits.
QByteArray UnescapedMount(const QByteArray& field)
{
    const auto octal = [](char digit) { return digit >= '0' && digit <= '7'; };
    QByteArray plain;
    for (qsizetype at = 0; at < field.size(); ++at) {
        if (field[at] == '\\' && at + 3 < field.size() && octal(field[at + 1])
            && octal(field[at + 2]) && octal(field[at + 3])) {
            plain += char((field[at + 1] - '0') * 64 + (field[at + 2] - '0') * 8
                          + (field[at + 3] - '0'));
            at += 3;
        } else {
            plain += field[at];
        }
    }
    return plain;
}

} // namespace

QByteArray ReadMountTable()
{
    QByteArray table;
    ResumeNext(
        [&] { table = ReadWholeFile(QStringLiteral("/proc/self/mounts"), kLargestMountTable); });
    return table;
}

QStringList VolumesOf(const QByteArray& mountTable)
{
    QStringList volumes;
    for (const QByteArray& line : mountTable.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() < 3) {
            continue;
        }
        const QByteArray folder = UnescapedMount(fields[1]);
        const bool pluggedIn = std::any_of(
            std::begin(kVolumeParents), std::end(kVolumeParents), [&](const char* parent) {
                return folder.startsWith(parent) && folder.size() > qsizetype(qstrlen(parent));
            });
        const QString path = PathFromBytes(folder);
        if (pluggedIn && !volumes.contains(path)) {
            volumes.append(path);
        }
    }
    return volumes;
}

} // namespace quillane
