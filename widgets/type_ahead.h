#pragma once
#include <QString>
#include <QtGlobal>
#include <functional>

namespace quillane {

/// Finding an item by typing the beginning of its name. What is typed in quick succession is one
/// word; the same letter again and again steps through the items that begin with it.
class TypeAhead {
public:
    /// Whether a word is being typed at this time (milliseconds of any steady clock), so that a
    /// blank belongs to it.
    bool IsTyping(qint64 now) const;
    /// Takes typed text and answers the item to go to, -1 for none. `matches` tells whether an item
    /// begins with a text; `interval` is the longest pause within a word in milliseconds.
    int Typed(const QString& text, qint64 now, qint64 interval, int current, int count,
              const std::function<bool(int item, const QString& beginning)>& matches);
    void Forget() { mWord.clear(); }

private:
    QString mWord;
    qint64 mLast = 0;
    qint64 mInterval = 0;
};

} // namespace quillane
