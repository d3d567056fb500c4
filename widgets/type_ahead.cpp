#include "widgets/type_ahead.h"

#include <algorithm>

namespace quillane {

bool TypeAhead::IsTyping(qint64 now) const
{
    return !mWord.isEmpty() && now - mLast <= mInterval;
}

int TypeAhead::Typed(const QString& text, qint64 now, qint64 interval, int current, int count,
                     const std::function<bool(int item, const QString& beginning)>& matches)
{
    if (!IsTyping(now)) {
        mWord.clear();
    }
    mWord += text;
    mLast = now;
    mInterval = interval;
    if (count <= 0) {
        return -1;
    }
    const bool oneLetter = std::all_of(mWord.cbegin(), mWord.cend(), [&](QChar letter) {
        return letter.toCaseFolded() == mWord.at(0).toCaseFolded();
    });
    const auto find = [&](const QString& beginning, int from) {
        for (int step = 0; step < count; ++step) {
            const int item = (from + step) % count;
            if (matches(item, beginning)) {
                return item;
            }
        }
        return -1;
    };
    const int here = std::clamp(current, 0, count - 1);
    // A longer word may still fit the item it has led to; a single letter goes on to the next.
    int found = mWord.size() > 1 ? find(mWord, here) : -1;
    if (found < 0 && oneLetter) {
        found = find(mWord.left(1), current < 0 ? 0 : (here + 1) % count);
    }
    return found;
}

} // namespace quillane
