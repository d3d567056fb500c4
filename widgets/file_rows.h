#pragma once
// Rows of the file list: compact, their texts made when they are shown.
#include <QHash>
#include <QString>
#include <QVector>
#include <array>
#include <vector>

namespace quillane {

/// What a row stands for, which decides its icon.
enum class FileKind : quint8 { Picture, Album, PrintSetting, Video };
/// The kind a path has, tested in the order album, print setting, media, anything else.
FileKind FileKindOf(const QString& path);
/// Keys of the icons: "iflBig", "PrintSetupBig", "VideoBig", "colorBig", and "ifl", "PrintSetup",
/// "Video", "color".
QString BigIconKey(FileKind kind);
QString SmallIconKey(FileKind kind);

using TagTexts = std::array<QString, 4>;

struct FileRow {
    QString path;                ///< full path; the text shown is its leaf name
    qint64 size = -1;            ///< bytes; negative when unknown
    qint64 modifiedSeconds = -1; ///< since 1970, UTC; negative when unknown
    TagTexts tags;               ///< columns 4 to 7
};

enum FileColumn : int { kColumnName, kColumnSize, kColumnModified, kColumnFirstTag };
inline constexpr int kFileColumns = 7;

/// The rows themselves. Tag texts cost memory only where there are some.
class FileRows {
public:
    int Count() const { return int(mRows.size()); }
    void Clear();                                   ///< no rows
    void Append(const FileRow& row);                ///< at the end
    void InsertAt(int row, const FileRow& content); ///< before row; at the end for row == Count()
    void RemoveAt(int row);
    /// shown: a text to show instead of the leaf name, empty for none.
    void SetPath(int row, const QString& path, const QString& shown = {});
    void SetTags(int row, const TagTexts& tags);
    /// Row i becomes what row order[i] was.
    void Permute(const QVector<int>& order);

    // Rows out of range have empty content.
    FileRow Row(int row) const;            ///< all of it
    QString Path(int row) const;           ///< full path
    QString Text(int row) const;           ///< the name as shown
    qint64 Size(int row) const;            ///< bytes, negative when unknown
    qint64 ModifiedSeconds(int row) const; ///< since 1970, UTC; negative when unknown
    QString Tag(int row, int tag) const;   ///< tag 0 to 3
    FileKind Kind(int row) const;

private:
    struct Packed {
        QString path;
        qint64 size;
        qint64 modifiedSeconds;
        quint32 tags; ///< 0 none, else one above the place in mTags
        FileKind kind;
    };
    bool Has(int row) const { return row >= 0 && row < Count(); }
    quint32 KeepTags(const TagTexts& tags);
    void DropTags(quint32 place);

    std::vector<Packed> mRows;
    QHash<QString, QString> mTexts; ///< by path: what is shown where it is not the leaf name
    std::vector<TagTexts> mTags;
    std::vector<quint32> mFreeTags; ///< places in mTags that hold nothing any more
};

} // namespace quillane
