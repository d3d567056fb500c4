#include "widgets/file_rows.h"

#include "core/file_kinds.h"
#include "core/paths.h"

#include <algorithm>

namespace quillane {

namespace {

struct FileIconKeys {
    FileKind kind;
    const char* big;
    const char* small;
};
constexpr FileIconKeys kFileIconKeys[] = {
    {FileKind::Picture, "colorBig", "color"},
    {FileKind::Album, "iflBig", "ifl"},
    {FileKind::PrintSetting, "PrintSetupBig", "PrintSetup"},
    {FileKind::Video, "VideoBig", "Video"},
};

const FileIconKeys& KeysOf(FileKind kind)
{
    return *std::find_if(std::begin(kFileIconKeys), std::end(kFileIconKeys),
                         [&](const FileIconKeys& keys) { return keys.kind == kind; });
}

bool HasTagText(const TagTexts& tags)
{
    return std::any_of(tags.begin(), tags.end(), [](const QString& tag) { return !tag.isEmpty(); });
}

} // namespace

FileKind FileKindOf(const QString& path)
{
    if (IsAlbumFile(path) == kTrue) {
        return FileKind::Album;
    }
    if (IsPrintSetFile(path) == kTrue) {
        return FileKind::PrintSetting;
    }
    return IsMediaFile(path) == kTrue ? FileKind::Video : FileKind::Picture;
}

QString BigIconKey(FileKind kind)
{
    return QLatin1String(KeysOf(kind).big);
}

QString SmallIconKey(FileKind kind)
{
    return QLatin1String(KeysOf(kind).small);
}

void FileRows::Clear()
{
    mTexts.clear();
    mRows.clear();
    mTags.clear();
    mFreeTags.clear();
}

void FileRows::Append(const FileRow& row)
{
    mRows.push_back(
        {row.path, row.size, row.modifiedSeconds, KeepTags(row.tags), FileKindOf(row.path)});
}

void FileRows::InsertAt(int row, const FileRow& content)
{
    row = std::clamp(row, 0, Count());
    mRows.insert(mRows.begin() + row,
                 {content.path, content.size, content.modifiedSeconds, KeepTags(content.tags),
                  FileKindOf(content.path)});
}

void FileRows::RemoveAt(int row)
{
    if (Has(row)) {
        DropTags(mRows[size_t(row)].tags);
        mRows.erase(mRows.begin() + row);
    }
}

void FileRows::SetPath(int row, const QString& path, const QString& shown)
{
    if (Has(row)) {
        mTexts.remove(Path(row));
        mTexts.remove(path);
        if (!shown.isEmpty()) {
            mTexts.insert(path, shown);
        }
        mRows[size_t(row)].path = path;
        mRows[size_t(row)].kind = FileKindOf(path);
    }
}

void FileRows::SetTags(int row, const TagTexts& tags)
{
    if (Has(row)) {
        DropTags(mRows[size_t(row)].tags);
        mRows[size_t(row)].tags = KeepTags(tags);
    }
}

void FileRows::Permute(const QVector<int>& order)
{
    if (order.size() != Count()) {
        return;
    }
    std::vector<Packed> moved;
    moved.reserve(mRows.size());
    for (const int from : order) {
        moved.push_back(std::move(mRows[size_t(from)]));
    }
    mRows = std::move(moved);
}

FileRow FileRows::Row(int row) const
{
    if (!Has(row)) {
        return {};
    }
    const Packed& packed = mRows[size_t(row)];
    return {packed.path, packed.size, packed.modifiedSeconds,
            packed.tags ? mTags[packed.tags - 1] : TagTexts{}};
}

QString FileRows::Text(int row) const
{
    const QString path = Path(row);
    const auto text = mTexts.constFind(path);
    return text == mTexts.cend() ? LeafName(path) : *text;
}

QString FileRows::Path(int row) const
{
    return Has(row) ? mRows[size_t(row)].path : QString();
}

qint64 FileRows::Size(int row) const
{
    return Has(row) ? mRows[size_t(row)].size : -1;
}

qint64 FileRows::ModifiedSeconds(int row) const
{
    return Has(row) ? mRows[size_t(row)].modifiedSeconds : -1;
}

QString FileRows::Tag(int row, int tag) const
{
    if (!Has(row) || tag < 0 || tag >= int(TagTexts{}.size())) {
        return {};
    }
    const quint32 place = mRows[size_t(row)].tags;
    return place ? mTags[place - 1][size_t(tag)] : QString();
}

FileKind FileRows::Kind(int row) const
{
    return Has(row) ? mRows[size_t(row)].kind : FileKind::Picture;
}

quint32 FileRows::KeepTags(const TagTexts& tags)
{
    if (!HasTagText(tags)) {
        return 0;
    }
    if (mFreeTags.empty()) {
        mTags.push_back(tags);
        return quint32(mTags.size());
    }
    const quint32 place = mFreeTags.back();
    mFreeTags.pop_back();
    mTags[place - 1] = tags;
    return place;
}

void FileRows::DropTags(quint32 place)
{
    if (place) {
        mTags[place - 1] = {};
        mFreeTags.push_back(place);
    }
}

} // namespace quillane
