#include "core/ini_text.h"
#include "core/native_path.h"
#include <QStringList>
#include <algorithm>
#include <optional>

namespace quillane {

namespace {

constexpr int kEscapeDigits = 4; // of "\uXXXX", one UTF-16 unit

bool NeedsEscape(QStringView text, qsizetype at)
{
    const QChar unit = text[at];
    if (unit.category() == QChar::Other_Control || unit == QChar(0x2028) || unit == QChar(0x2029))
        return true;
    if (unit.isHighSurrogate())
        return !(at + 1 < text.size() && text[at + 1].isLowSurrogate());
    if (unit.isLowSurrogate())
        return !(at > 0 && text[at - 1].isHighSurrogate());
    return false;
}

// Whether a text reads back as itself when it stands without quotes.
bool IsPlainIni(QStringView text, bool value)
{
    if (text.isEmpty())
        return value;
    if (text.front().isSpace() || text.back().isSpace() || text.front() == u'"'
        || text.front() == QChar::ByteOrderMark)
        return false;
    if (!value && (text.front() == u'[' || text.front() == u';' || text.front() == u'#'))
        return false;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (NeedsEscape(text, at) || (!value && (text[at] == u'=' || text[at] == u']')))
            return false;
    }
    return true;
}

QString QuotedIni(QStringView text)
{
    QString quoted = QStringLiteral("\"");
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at].unicode();
        if (unit == u'"' || unit == u'\\')
            (quoted += u'\\') += QChar(unit);
        else if (unit == u'\n')
            quoted += QLatin1String("\\n");
        else if (unit == u'\r')
            quoted += QLatin1String("\\r");
        else if (NeedsEscape(text, at))
            quoted += QStringLiteral("\\u%1").arg(unit, kEscapeDigits, 16, QLatin1Char('0'));
        else
            quoted += QChar(unit);
    }
    return quoted += u'"';
}

QString IniForm(QStringView text, bool value)
{
    return IsPlainIni(text, value) ? text.toString() : QuotedIni(text);
}

// Reads the quoted text that begins at `at` and moves `at` behind it; nothing when it has no end.
std::optional<QString> ReadQuotedIni(QStringView line, qsizetype& at)
{
    QString text;
    for (qsizetype in = at + 1; in < line.size(); ++in) {
        if (line[in] == u'"') {
            at = in + 1;
            return text;
        }
        if (line[in] != u'\\' || in + 1 >= line.size()) {
            text += line[in];
            continue;
        }
        const QChar kind = line[++in];
        if (kind == u'n') {
            text += u'\n';
        } else if (kind == u'r') {
            text += u'\r';
        } else if (kind == u'u' && in + kEscapeDigits < line.size()) {
            bool valid = false;
            const ushort unit = line.sliced(in + 1, kEscapeDigits).toUShort(&valid, 16);
            if (!valid)
                return {};
            text += QChar(unit);
            in += kEscapeDigits;
        } else {
            text += kind;
        }
    }
    return {};
}

std::optional<QString> ReadIniSection(QStringView line)
{
    if (line.startsWith(QLatin1String("[\""))) {
        qsizetype at = 1;
        auto name = ReadQuotedIni(line, at);
        return name && line.sliced(at) == QLatin1String("]") ? name : std::nullopt;
    }
    if (!line.endsWith(u']'))
        return {};
    return line.sliced(1, line.size() - 2).toString();
}

// The value behind "="; nothing when it was cut short inside its quotes.
std::optional<QString> ReadIniValue(QStringView text)
{
    const QStringView value = text.trimmed();
    if (!value.startsWith(u'"'))
        return value.toString();
    qsizetype at = 0;
    auto quoted = ReadQuotedIni(value, at);
    if (quoted && at < value.size())
        return value.toString(); // written by hand: quotes inside a plain text
    return quoted;
}

void ReadIniEntry(QStringView line, QHash<QString, QString>& section)
{
    qsizetype equals = 0;
    QString key;
    if (line.startsWith(u'"')) {
        auto quoted = ReadQuotedIni(line, equals);
        if (!quoted)
            return;
        key = *quoted;
        while (equals < line.size() && line[equals].isSpace())
            ++equals;
        if (equals >= line.size() || line[equals] != u'=')
            return;
    } else {
        equals = line.indexOf(u'=');
        if (equals <= 0)
            return;
        key = line.first(equals).trimmed().toString();
    }
    if (auto value = ReadIniValue(line.sliced(equals + 1)))
        section.insert(key, *value);
}

} // namespace

IniSections ParseIni(const QByteArray& content)
{
    IniSections sections;
    const QString text = PathFromBytes(content); // keeps bytes that are no UTF-8
    QStringView left(text);
    if (left.startsWith(QChar(QChar::ByteOrderMark)))
        left = left.sliced(1);
    QString section;
    bool sectionKnown = true;
    while (!left.isEmpty()) {
        const qsizetype end = left.indexOf(u'\n');
        const QStringView line = (end < 0 ? left : left.first(end)).trimmed();
        left = end < 0 ? QStringView() : left.sliced(end + 1);
        if (line.isEmpty() || line.front() == u';' || line.front() == u'#')
            continue;
        if (line.front() == u'[') {
            const auto name = ReadIniSection(line);
            sectionKnown = name.has_value();
            section = name.value_or(QString());
        } else if (sectionKnown) {
            ReadIniEntry(line, sections[section]);
        }
    }
    return sections;
}

QByteArray IniText(const IniSections& sections)
{
    QString text;
    QStringList names = sections.keys();
    std::sort(names.begin(), names.end()); // the empty name first, as it needs no section line
    for (const QString& name : names) {
        const auto& entries = sections[name];
        if (entries.isEmpty())
            continue;
        if (!text.isEmpty())
            text += u'\n';
        if (!name.isEmpty())
            text += u'[' + IniForm(name, false) + QLatin1String("]\n");
        QStringList keys = entries.keys();
        std::sort(keys.begin(), keys.end());
        for (const QString& key : keys)
            text += IniForm(key, false) + u'=' + IniForm(entries[key], true) + u'\n';
    }
    return text.toUtf8();
}

} // namespace quillane
