#include "locator/pattern.h"

#include <QStringList>
#include <algorithm>

namespace quillane {

namespace {

/// Cuts the stars at the ends and notes them.
LocatorPattern PatternOf(const QString& typed)
{
    LocatorPattern pattern;
    QString text = typed;
    for (qsizetype star = text.indexOf(u'*'); star >= 0; star = text.indexOf(u'*', star)) {
        qsizetype next = star + 1;
        if (star == 0) {
            pattern.HasLeadingStar = true;
            text.remove(0, 1);
            next = 0;
        }
        // Of two stars that make a whole pattern the second stands at both ends by now.
        if (star < text.size() && star == text.size() - 1 && text[star] == u'*') {
            pattern.HasTrailingStar = true;
            text.chop(1);
        }
        star = next;
    }
    pattern.text = text;
    pattern.upper = UpperCased(text);
    return pattern;
}

} // namespace

std::vector<LocatorPattern> ParsePatterns(const QString& searchString)
{
    std::vector<LocatorPattern> patterns;
    if (searchString.isEmpty()) {
        return patterns;
    }
    const QStringList pieces = searchString.split(u';');
    patterns.reserve(size_t(pieces.size()));
    for (const QString& piece : pieces) {
        patterns.push_back(PatternOf(piece));
    }
    return patterns;
}

QString UpperCased(QStringView text)
{
    QString upper(text.size(), Qt::Uninitialized);
    QChar* out = upper.data();
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar unit = text[at];
        if (unit.unicode() < 0x80) {
            out[at] = unit >= u'a' && unit <= u'z' ? QChar(char16_t(unit.unicode() - 0x20)) : unit;
        } else if (unit.isHighSurrogate() && at + 1 < text.size()
                   && text[at + 1].isLowSurrogate()) {
            const char32_t whole = QChar::toUpper(QChar::surrogateToUcs4(unit, text[at + 1]));
            out[at] = QChar(QChar::highSurrogate(whole));
            out[at + 1] = QChar(QChar::lowSurrogate(whole));
            ++at;
        } else {
            out[at] = unit.toUpper();
        }
    }
    return upper;
}

NameTest TestName(const LocatorPattern& pattern, QStringView upperName)
{
    const qsizetype spare = upperName.size() - pattern.upper.size();
    if (spare <= 0) {
        return NameTest::NextFile;
    }
    bool matches = false;
    if (pattern.HasLeadingStar && pattern.HasTrailingStar) {
        matches = upperName.contains(pattern.upper);
    } else if (pattern.HasLeadingStar) {
        // One character short of the tail: "*x" finds "ax" and "axy".
        matches = upperName.indexOf(pattern.upper, spare - 1) >= 0;
    } else if (pattern.HasTrailingStar) {
        matches = upperName.startsWith(pattern.upper);
    }
    return matches ? NameTest::Matches : NameTest::NextPattern;
}

QString FoundStatus(qint64 rows, const std::vector<LocatorPattern>& patterns,
                    const std::vector<qint32>& HitCount)
{
    QString status = QString::number(rows) + QStringLiteral("  Files Found  ");
    for (size_t n = 0; n < patterns.size(); ++n) {
        status += QStringLiteral("    ") + patterns[n].text + QStringLiteral(" - ")
            + QString::number(n < HitCount.size() ? HitCount[n] : 0);
    }
    return status;
}

} // namespace quillane
