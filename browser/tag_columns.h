#pragma once
#include <QList>
#include <QString>
#include <array>
#include <memory>
#include <optional>

namespace quillane {

/// The tag columns of the list: reads the description of each image file on a few threads and
/// hands over four tag values per file, in order.
class TagColumns {
public:
    struct Row {
        int index = 0; ///< position in the list of paths
        std::array<QString, 4> tags;
    };
    /// Begins to read at once. Files that are no image files have no row.
    TagColumns(const QList<QString>& paths, const std::array<QString, 4>& keys);
    /// Drops what is still unread and waits for the files being read.
    ~TagColumns();
    TagColumns(const TagColumns&) = delete;
    TagColumns& operator=(const TagColumns&) = delete;

    /// Whether every row has been handed over.
    bool AtEnd() const;
    /// The next row; nothing when it is not read within some milliseconds.
    std::optional<Row> Next();

private:
    struct State;
    std::unique_ptr<State> mState;
};

} // namespace quillane
