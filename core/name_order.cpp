#include "core/name_order.h"
#include <algorithm>
#include <string>
#include <vector>

namespace quillane {

namespace {

struct NameKey {
    quint64 head;  ///< the first eight units that names do not have in common, see HeadOf
    quint32 start; ///< where the folded name lies in the common store
    quint32 length;
    quint32 index; ///< of the name
};

void AppendFolded(std::u16string& folded, QStringView name)
{
    for (qsizetype at = 0; at < name.size(); ++at) {
        const char16_t unit = name[at].unicode();
        if (unit < 0x80) {
            folded += unit >= u'A' && unit <= u'Z' ? char16_t(unit + 32) : unit;
        } else if (name[at].isHighSurrogate() && at + 1 < name.size()
                   && name[at + 1].isLowSurrogate()) {
            const char32_t character =
                QChar::toCaseFolded(QChar::surrogateToUcs4(name[at], name[at + 1]));
            if (character < 0x10000) {
                folded += char16_t(character);
            } else {
                folded += QChar::highSurrogate(character);
                folded += QChar::lowSurrogate(character);
            }
            ++at;
        } else {
            folded += name[at].toCaseFolded().unicode();
        }
    }
}

std::u16string_view FoldedName(const std::u16string& folded, const NameKey& key)
{
    return std::u16string_view(folded).substr(key.start, key.length);
}

// Eight units as bytes, so that most comparisons are one of numbers. A unit that does not fit
// ends it: equal heads say nothing, unequal ones decide.
quint64 HeadOf(std::u16string_view text)
{
    quint64 head = 0;
    for (size_t i = 0; i < 8; ++i) {
        const char16_t unit = i < text.size() ? text[i] : u'\0';
        head = head << 8 | std::min<char16_t>(unit, 0xFF);
        if (unit >= 0xFF || unit == 0)
            return head << 8 * (7 - i);
    }
    return head;
}

size_t CommonPrefix(std::u16string_view first, std::u16string_view second)
{
    return size_t(std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first
                  - first.begin());
}

} // namespace

void SortNamesIgnoringCase(QStringList& names)
{
    if (names.size() < 2)
        return;
    std::u16string folded;
    std::vector<NameKey> keys;
    keys.reserve(size_t(names.size()));
    size_t units = 0;
    for (const QString& name : std::as_const(names))
        units += size_t(name.size());
    folded.reserve(units);
    for (qsizetype i = 0; i < names.size(); ++i) {
        const size_t start = folded.size();
        AppendFolded(folded, names[i]);
        keys.push_back({0, quint32(start), quint32(folded.size() - start), quint32(i)});
    }

    // Camera files begin alike, so the head starts behind what all names have in common.
    const std::u16string_view first = FoldedName(folded, keys.front());
    size_t common = first.size();
    for (const NameKey& key : keys)
        common = std::min(common, CommonPrefix(first.substr(0, common), FoldedName(folded, key)));
    for (NameKey& key : keys)
        key.head = HeadOf(FoldedName(folded, key).substr(common));

    std::sort(keys.begin(), keys.end(), [&](const NameKey& left, const NameKey& right) {
        if (left.head != right.head)
            return left.head < right.head;
        const int order = FoldedName(folded, left).compare(FoldedName(folded, right));
        return order != 0 ? order < 0 : names[left.index] < names[right.index];
    });

    QStringList sorted;
    sorted.reserve(names.size());
    for (const NameKey& key : keys)
        sorted.append(std::move(names[key.index]));
    names = std::move(sorted);
}

} // namespace quillane
