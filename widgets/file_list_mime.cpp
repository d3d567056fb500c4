#include "widgets/file_list_mime.h"

#include "core/native_path.h"

#include <QByteArray>
#include <QUrl>

namespace quillane {

namespace {

const QString kUriList = QStringLiteral("text/uri-list");
const QString kCopiedFiles = QStringLiteral("x-special/gnome-copied-files");

/// The file address of a path, every byte of its name kept.
QByteArray AddressOfFile(const QString& path)
{
    // What RFC 3986 lets stand in a path; "~" and the like are kept by the call itself.
    return "file://" + BytesFromPath(path).toPercentEncoding("/!$&'()*+,;=:@");
}

/// The path of an address line; empty for one of another machine or another scheme.
QString FileOfAddress(QByteArray line)
{
    line = line.trimmed();
    if (line.startsWith('/')) {
        return PathFromBytes(line);
    }
    if (!line.toLower().startsWith("file:")) {
        return {};
    }
    line.remove(0, 5);
    if (line.startsWith("//")) {
        const qsizetype slash = line.indexOf('/', 2);
        const QByteArray host = slash < 0 ? line.mid(2) : line.mid(2, slash - 2);
        if (slash < 0 || (!host.isEmpty() && host.toLower() != "localhost")) {
            return {};
        }
        line.remove(0, slash);
    }
    return line.startsWith('/') ? PathFromBytes(QByteArray::fromPercentEncoding(line)) : QString();
}

QStringList FilesOfLines(const QByteArray& lines, bool skipFirst)
{
    QStringList files;
    for (const QByteArray& line : lines.split('\n')) {
        if (std::exchange(skipFirst, false) || line.startsWith('#')) {
            continue;
        }
        if (const QString file = FileOfAddress(line); !file.isEmpty()) {
            files.append(file);
        }
    }
    return files;
}

} // namespace

QMimeData* FileListMimeData(const QStringList& paths)
{
    QByteArray addresses, copied = "copy", plain;
    for (const QString& path : paths) {
        const QByteArray address = AddressOfFile(path);
        addresses += address + "\r\n";
        copied += '\n' + address;
        plain += (plain.isEmpty() ? QByteArray() : QByteArray("\n")) + BytesFromPath(path);
    }
    auto data = std::make_unique<QMimeData>();
    data->setData(kUriList, addresses);
    data->setData(kCopiedFiles, copied);
    data->setText(QString::fromUtf8(plain));
    return data.release();
}

QStringList FilesOfMimeData(const QMimeData& data)
{
    QStringList files;
    if (data.hasFormat(kUriList)) {
        files = FilesOfLines(data.data(kUriList), false);
    }
    if (files.isEmpty() && data.hasFormat(kCopiedFiles)) {
        files = FilesOfLines(data.data(kCopiedFiles), true);
    }
    if (files.isEmpty() && data.hasText()) {
        files = FilesOfLines(data.text().toUtf8(), false);
    }
    return files;
}

} // namespace quillane
