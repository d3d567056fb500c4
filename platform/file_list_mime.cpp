#include "platform/file_list_mime.h"

#include "core/native_path.h"

#include <QByteArray>
#include <QUrl>
#include <algorithm>

namespace quillane {

namespace {

const QString kUriList = QStringLiteral("text/uri-list");
const QString kCopiedFiles = QStringLiteral("x-special/gnome-copied-files");
const QString kCutMark = QStringLiteral("application/x-kde-cutselection");
constexpr qsizetype kMostListBytes = qsizetype(64) << 20;

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

bool IsAddress(const QByteArray& line)
{
    const qsizetype colon = line.indexOf(':');
    return colon > 1 && line.indexOf("//") == colon + 1 && !line.first(colon).contains(' ');
}

/// Calls with every line of a text, without its end, up to the limit.
template <typename Line> void ForEachLine(const QByteArray& text, const Line& take)
{
    const qsizetype size = std::min(text.size(), kMostListBytes);
    for (qsizetype at = 0; at < size;) {
        const qsizetype end = text.indexOf('\n', at);
        if (end < 0 && size < text.size()) {
            return; // cut through by the limit
        }
        const qsizetype stop = end < 0 || end > size ? size : end;
        take(text.sliced(at, stop - at).trimmed());
        at = stop + 1;
    }
}

QStringList FilesOfLines(const QByteArray& lines)
{
    QStringList files;
    ForEachLine(lines, [&](const QByteArray& line) {
        if (line.startsWith('#')) {
            return;
        }
        if (const QString file = FileOfAddress(line); !file.isEmpty()) {
            files.append(file);
        }
    });
    return files;
}

/// Whether a text is nothing but paths and addresses.
bool IsListOfPaths(const QByteArray& text)
{
    bool all = true;
    ForEachLine(text, [&](const QByteArray& line) {
        all = all && (line.isEmpty() || line.startsWith('/') || IsAddress(line));
    });
    return all;
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

FileList ReadFileList(const QMimeData& data)
{
    FileList list;
    QByteArray copied = data.data(kCopiedFiles);
    if (!copied.isEmpty()) {
        // Its first line says what is wanted.
        const qsizetype first = copied.indexOf('\n');
        list.isCut = (first < 0 ? copied : copied.first(first)).trimmed() == "cut";
        copied = first < 0 ? QByteArray() : copied.sliced(first + 1);
    }
    if (data.data(kCutMark).startsWith('1')) {
        list.isCut = true;
    }
    list.present = data.hasFormat(kUriList) || data.hasFormat(kCopiedFiles);
    if (data.hasFormat(kUriList)) {
        list.files = FilesOfLines(data.data(kUriList));
    }
    if (list.files.isEmpty()) {
        list.files = FilesOfLines(copied);
    }
    if (!list.present && data.hasText()) {
        const QByteArray text = data.text().left(kMostListBytes).toUtf8();
        if (IsListOfPaths(text)) {
            list.files = FilesOfLines(text);
            list.present = !list.files.isEmpty();
        }
    }
    return list;
}

QStringList FilesOfMimeData(const QMimeData& data)
{
    return ReadFileList(data).files;
}

} // namespace quillane
