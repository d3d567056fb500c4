#pragma once
// The locator's own pattern language: stars at the ends of a pattern, and nothing else.
#include <QString>
#include <QStringView>
#include <vector>

namespace quillane {

/// One pattern of a search string, its stars cut off.
struct LocatorPattern {
    QString text;  ///< in the letter case as typed; a star in the middle is plain
    QString upper; ///< the same upper-cased
    bool HasLeadingStar = false;
    bool HasTrailingStar = false;
    bool ExactFound = false; ///< a file of exactly this name has been found

    bool IsExact() const { return !HasLeadingStar && !HasTrailingStar; } ///< has neither star
};

/// The patterns of a search string, divided at every ";". An empty piece is an empty pattern; an
/// empty search string has none.
std::vector<LocatorPattern> ParsePatterns(const QString& searchString);

/// Each character's single upper-case form, so that the length stays ("ß" is its own).
QString UpperCased(QStringView text);

/// What one pattern says of a file's name.
enum class NameTest : quint8 {
    Matches,     ///< the file is found
    NextPattern, ///< the next pattern is asked
    NextFile,    ///< a name no longer than the pattern: no later pattern is asked either
};
/// Tests an upper-cased name against one pattern. With both stars the name holds the text
/// anywhere; with a leading one it holds it at or after one place before its tail; with a trailing
/// one it begins with it. A pattern without a star never matches here.
NameTest TestName(const LocatorPattern& pattern, QStringView upperName);

/// The status after a search: number of rows, then each pattern with its count.
QString FoundStatus(qint64 rows, const std::vector<LocatorPattern>& patterns,
                    const std::vector<qint32>& HitCount);

} // namespace quillane
