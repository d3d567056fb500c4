#include "album/album_clip.h"

#include "platform/file_list_mime.h"

namespace quillane {

namespace {

/// Kinds of data that are always a list of files.
bool HasListKind(const QMimeData& data)
{
    return data.hasFormat(QStringLiteral("text/uri-list"))
        || data.hasFormat(QStringLiteral("x-special/gnome-copied-files"));
}

} // namespace

bool MayHoldFileList(const QMimeData& data)
{
    return HasListKind(data) || data.hasText();
}

bool HoldsFileList(const QMimeData& data)
{
    return HasListKind(data) || ReadFileList(data).present;
}

std::shared_ptr<QMimeData> FileListCopy(const QMimeData& data)
{
    auto copy = std::make_shared<QMimeData>();
    for (const char* kind :
         {"text/uri-list", "x-special/gnome-copied-files", "application/x-kde-cutselection"}) {
        const QString format = QLatin1String(kind);
        if (data.hasFormat(format)) {
            copy->setData(format, data.data(format));
        }
    }
    if (!HasListKind(data) && data.hasText()) {
        copy->setText(data.text());
    }
    return copy;
}

} // namespace quillane
