#include "platform/clip_files.h"

#include "core/native_path.h"
#include "platform/file_list_mime.h"

#include <QClipboard>
#include <QGuiApplication>

namespace quillane {

void cFileInfo::SetName(const QString& name)
{
    mName = name;
    const FileStat found = StatPath(name);
    if (found.type == FileType::Missing) {
        return;
    }
    mSize = found.size;
    mModified = ModifiedTime(found);
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot >= 0) {
        mExtension = name.sliced(dot + 1);
    }
}

bool cClipFiles::GetClipboardFiles()
{
    Clear();
    const QClipboard* clipboard = QGuiApplication::clipboard();
    const QMimeData* data = clipboard ? clipboard->mimeData() : nullptr;
    return data && GetFiles(*data);
}

bool cClipFiles::GetFiles(const QMimeData& data)
{
    Clear();
    const FileList list = ReadFileList(data);
    mIsCut = list.isCut;
    mFiles.reserve(size_t(list.files.size()));
    for (const QString& file : list.files) {
        mFiles.emplace_back().SetName(file);
    }
    return list.present;
}

void cClipFiles::Clear()
{
    mFiles.clear();
    mIsCut = false;
}

} // namespace quillane
