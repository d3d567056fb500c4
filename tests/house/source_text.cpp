#include "house/source_text.h"
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>

namespace quillane::house {

namespace {

bool IsWordUnit(QChar unit)
{
    return unit.isLetterOrNumber() || unit == u'_';
}

// Whether the quote at `at` divides the digits of a number.
bool DividesDigits(const QString& text, qsizetype at)
{
    qsizetype start = at;
    while (start > 0 && (IsWordUnit(text[start - 1]) || text[start - 1] == u'\''))
        --start;
    return start < at && text[start].isDigit();
}

// The end of a literal that begins with the quote at `at`.
qsizetype LiteralEnd(const QString& text, qsizetype at)
{
    const QChar quote = text[at];
    for (++at; at < text.size() && text[at] != quote && text[at] != u'\n'; ++at) {
        if (text[at] == u'\\')
            ++at;
    }
    return std::min(at + 1, text.size());
}

// The end of a raw literal whose quote stands at `at`.
qsizetype RawLiteralEnd(const QString& text, qsizetype at)
{
    const qsizetype open = text.indexOf(u'(', at);
    if (open < 0)
        return text.size();
    const QString close = u')' + text.mid(at + 1, open - at - 1) + u'"';
    const qsizetype end = text.indexOf(close, open);
    return end < 0 ? text.size() : end + close.size();
}

} // namespace

QString CodeOf(const QString& text)
{
    QString code = text;
    const auto blank = [&](qsizetype from, qsizetype to) {
        for (qsizetype i = from; i < to; ++i) {
            if (code[i] != u'\n')
                code[i] = u' ';
        }
    };
    // Keeps the quotes; one that is never closed takes all with it.
    const auto blankInside = [&](qsizetype from, qsizetype to) {
        const bool closed = to - 1 > from && text[to - 1] == text[from];
        blank(from + 1, closed ? to - 1 : to);
    };
    for (qsizetype at = 0; at < text.size();) {
        qsizetype end = at + 1;
        if (text.mid(at, 2) == QLatin1String("//")) {
            end = text.indexOf(u'\n', at);
            end = end < 0 ? text.size() : end;
            blank(at, end);
        } else if (text.mid(at, 2) == QLatin1String("/*")) {
            end = text.indexOf(QLatin1String("*/"), at + 2);
            end = end < 0 ? text.size() : end + 2;
            blank(at, end);
        } else if (text[at] == u'"') {
            end = at > 0 && text[at - 1] == u'R' ? RawLiteralEnd(text, at) : LiteralEnd(text, at);
            blankInside(at, end);
        } else if (text[at] == u'\'' && !DividesDigits(text, at)) {
            end = LiteralEnd(text, at);
            blankInside(at, end);
        }
        at = end;
    }
    return code;
}

std::vector<Include> IncludesOf(const QString& text)
{
    static const QRegularExpression kDirective(QStringLiteral("^\\s*#\\s*include\\b"));
    static const QRegularExpression kName(
        QStringLiteral("^\\s*#\\s*include\\s*(?:<([^>]+)>|\"([^\"]+)\")"));
    std::vector<Include> includes;
    const QStringList lines = text.split(u'\n');
    const QStringList codeLines = CodeOf(text).split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (!kDirective.match(codeLines[i]).hasMatch())
            continue;
        const auto match = kName.match(lines[i]);
        if (match.hasMatch()) {
            const bool angled = !match.captured(1).isEmpty();
            includes.push_back({int(i) + 1, match.captured(angled ? 1 : 2), angled});
        }
    }
    return includes;
}

std::vector<int> LinesWithWord(const QString& text, const QString& word)
{
    std::vector<int> found;
    int line = 1;
    qsizetype counted = 0;
    for (qsizetype at = text.indexOf(word); at >= 0; at = text.indexOf(word, at + 1)) {
        const bool begins = at == 0 || !IsWordUnit(text[at - 1]);
        const qsizetype end = at + word.size();
        const bool ends = end == text.size() || !IsWordUnit(text[end]);
        if (!begins || !ends)
            continue;
        line += int(QStringView(text).sliced(counted, at - counted).count(u'\n'));
        counted = at;
        if (found.empty() || found.back() != line)
            found.push_back(line);
    }
    return found;
}

std::vector<SourceFile> ReadTree(const QString& root)
{
    static const QStringList kTextNames{"run", "test", "in_own_home", "CMakeLists.txt"};
    static const QStringList kTextEnds{".h",  ".cpp", ".ui",  ".cmake", ".py",   ".sh",
                                       ".md", ".qrc", ".xml", ".html",  ".json", ".yml"};
    std::vector<SourceFile> files;
    QStringList folders{root};
    while (!folders.isEmpty()) {
        const QString folder = folders.takeLast();
        const auto entries =
            QDir(folder).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
        for (const QFileInfo& entry : entries) {
            const QString path = entry.filePath().mid(root.size() + 1);
            if (entry.isDir()) {
                if (!entry.isSymLink() && path != QLatin1String("build"))
                    folders.append(entry.filePath());
                continue;
            }
            const bool isText = kTextNames.contains(entry.fileName())
                || std::any_of(kTextEnds.begin(), kTextEnds.end(),
                               [&](const QString& end) { return path.endsWith(end); });
            QFile file(entry.filePath());
            if (isText && file.open(QIODevice::ReadOnly))
                files.push_back({path, QString::fromUtf8(file.readAll())});
        }
    }
    std::sort(files.begin(), files.end(), [](const SourceFile& left, const SourceFile& right) {
        return left.path < right.path;
    });
    return files;
}

} // namespace quillane::house
