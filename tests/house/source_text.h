#pragma once
// Sources as the house rules look at them.
#include <QString>
#include <QStringList>
#include <vector>

namespace quillane::house {

/// C++ text with comments and the contents of literals replaced by blanks; lines stay lines.
QString CodeOf(const QString& text);

struct Include {
    int line = 0; ///< from 1
    QString name;
    bool angled = false; ///< <name>, not "name"
};
/// The include lines of a C++ text, those in comments left out.
std::vector<Include> IncludesOf(const QString& text);

/// 1-based numbers of the lines of `text` that hold `word` as a whole word.
std::vector<int> LinesWithWord(const QString& text, const QString& word);

struct SourceFile {
    QString path; ///< from the root of the tree, with slashes
    QString text;
    bool IsHeader() const { return path.endsWith(".h"); }
    bool IsCpp() const { return IsHeader() || path.endsWith(".cpp"); }
    bool IsTest() const { return path.startsWith("tests/"); }
    bool IsBench() const { return path.startsWith("bench/"); }
    /// Part of the program or of its worker.
    bool IsProduct() const { return IsCpp() && !IsTest() && !IsBench() && !IsScript(); }
    /// What makes the sample pictures and the like; never part of the program.
    bool IsScript() const { return path.startsWith(QStringLiteral("scripts/")); }
};
/// All text files of the project: sources, scripts, build files. Build trees, hidden folders and
/// pictures are left out.
std::vector<SourceFile> ReadTree(const QString& root);

} // namespace quillane::house
