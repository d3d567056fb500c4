#pragma once
#include "widgets/grid_layout.h"
#include "widgets/selection_set.h"
#include <QVector>
#include <Qt>

namespace quillane {

/// What mouse and keyboard do to a selection and its current item; no widget. Every action
/// answers what it changed.
class SelectionRules {
public:
    struct Change {
        bool selection = false;
        bool current = false;
        explicit operator bool() const { return selection || current; }
    };

    const SelectionSet& Selection() const { return mSet; }
    int Current() const { return mCurrent; }

    // The content changed.
    void Append(int count) { mSet.Resize(mSet.Size() + count); }
    void Insert(int index, int count); ///< before `index`
    /// The current item, when it goes, hands over to none.
    void Remove(int index, int count);
    void Clear();
    void Permute(const QVector<int>& order);

    // The program's own wishes.
    Change SetSelected(int index, bool on); ///< one item; the others stay
    Change SelectAll(bool on);              ///< or none
    Change SetCurrent(int index);           ///< the selection stays; -1 for none
    Change SelectOnly(int index);           ///< and make it current; -1 selects none

    /// The left button goes down on an item, or beside them all (-1). An item that is selected
    /// among others stays so with them until the button is released, as a drag may follow.
    Change Press(int index, Qt::KeyboardModifiers modifiers);
    /// The button is released without a drag or a rubber band.
    Change Release();
    /// The right button or the menu key: what is not selected is selected alone.
    Change PressForMenu(int index);

    /// A rubber band begins; with Ctrl its items change over, with Shift they are added.
    Change BeginBand(Qt::KeyboardModifiers modifiers);
    Change Band(const QVector<GridLayout::Range>& touched);
    /// Esc: as it was before the band.
    Change CancelBand();
    void EndBand();

    /// The keyboard leads to an item: alone, with Shift as a range, with Ctrl without selecting.
    Change MoveTo(int index, Qt::KeyboardModifiers modifiers);
    /// Space selects the current item, with Ctrl it changes over.
    Change Space(Qt::KeyboardModifiers modifiers);

private:
    bool RangeTo(int index, bool keepOthers);

    SelectionSet mSet;
    SelectionSet mBeforeBand;
    int mCurrent = -1;
    int mDeferred = -1;            ///< pressed item whose change waits for the release
    bool mDeferredToggles = false; ///< the change: out of the selection, else selected alone
    Qt::KeyboardModifiers mBandModifiers;
};

} // namespace quillane
