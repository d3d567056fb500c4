#include "widgets/selection_rules.h"

#include <utility>

namespace quillane {

void SelectionRules::Insert(int index, int count)
{
    mSet.Insert(index, count);
    mBeforeBand.Insert(index, count);
    if (mCurrent >= index) {
        mCurrent += count;
    }
    mDeferred = -1;
}

void SelectionRules::Remove(int index, int count)
{
    mSet.Remove(index, count);
    mBeforeBand.Remove(index, count);
    if (mCurrent >= index + count) {
        mCurrent -= count;
    } else if (mCurrent >= index) {
        mCurrent = -1;
    }
    mDeferred = -1;
}

void SelectionRules::Clear()
{
    mSet.Clear();
    mBeforeBand.Clear();
    mCurrent = -1;
    mDeferred = -1;
}

void SelectionRules::Permute(const QVector<int>& order)
{
    mSet.Permute(order);
    mCurrent = mCurrent < 0 ? -1 : int(order.indexOf(mCurrent));
    mDeferred = -1;
}

SelectionRules::Change SelectionRules::SetSelected(int index, bool on)
{
    return {mSet.Set(index, on), false};
}

SelectionRules::Change SelectionRules::SelectAll(bool on)
{
    return {mSet.SetAll(on), false};
}

SelectionRules::Change SelectionRules::SetCurrent(int index)
{
    if (index < 0 || index >= mSet.Size()) {
        index = -1;
    }
    const bool changed = index != mCurrent;
    mCurrent = index;
    mSet.SetAnchor(index);
    return {false, changed};
}

SelectionRules::Change SelectionRules::SelectOnly(int index)
{
    Change change = SetCurrent(index);
    change.selection = mCurrent < 0 ? mSet.SetAll(false) : mSet.SetOnly(mCurrent, mCurrent);
    return change;
}

bool SelectionRules::RangeTo(int index, bool keepOthers)
{
    if (mSet.Anchor() < 0) {
        mSet.SetAnchor(mCurrent >= 0 ? mCurrent : index);
    }
    const int anchor = mSet.Anchor();
    return keepOthers ? mSet.SetRange(anchor, index, true) : mSet.SetOnly(anchor, index);
}

SelectionRules::Change SelectionRules::Press(int index, Qt::KeyboardModifiers modifiers)
{
    mDeferred = -1;
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    if (index < 0 || index >= mSet.Size()) {
        const bool keep = control || modifiers.testFlag(Qt::ShiftModifier);
        return {!keep && mSet.SetAll(false), false};
    }
    Change change;
    if (modifiers.testFlag(Qt::ShiftModifier)) {
        change.selection = RangeTo(index, control);
        change.current = mCurrent != index;
        mCurrent = index; // the anchor stays
        return change;
    }
    change = SetCurrent(index);
    if (control) {
        // What is selected may be dragged with Ctrl held, so it goes out on release alone.
        if (mSet.Contains(index)) {
            mDeferred = index;
            mDeferredToggles = true;
        } else {
            change.selection = mSet.Set(index, true);
        }
    } else if (mSet.Contains(index) && mSet.Count() > 1) {
        mDeferred = index;
        mDeferredToggles = false;
    } else {
        change.selection = mSet.SetOnly(index, index);
    }
    return change;
}

SelectionRules::Change SelectionRules::Release()
{
    if (mDeferred < 0) {
        return {};
    }
    const int index = std::exchange(mDeferred, -1);
    return {mDeferredToggles ? mSet.Set(index, false) : mSet.SetOnly(index, index), false};
}

SelectionRules::Change SelectionRules::PressForMenu(int index)
{
    mDeferred = -1;
    if (index < 0 || index >= mSet.Size()) {
        return {};
    }
    return mSet.Contains(index) ? SetCurrent(index) : SelectOnly(index);
}

SelectionRules::Change SelectionRules::BeginBand(Qt::KeyboardModifiers modifiers)
{
    mDeferred = -1;
    mBandModifiers = modifiers & (Qt::ControlModifier | Qt::ShiftModifier);
    mBeforeBand = mSet;
    return mBandModifiers ? Change{} : Change{mSet.SetAll(false), false};
}

SelectionRules::Change SelectionRules::Band(const QVector<GridLayout::Range>& touched)
{
    mBeforeBand.Resize(mSet.Size()); // rows may have come since
    SelectionSet wanted = mBeforeBand;
    if (!mBandModifiers) {
        wanted.SetAll(false);
    }
    for (const GridLayout::Range& range : touched) {
        if (!mBandModifiers.testFlag(Qt::ControlModifier)) {
            wanted.SetRange(range.first, range.last, true);
            continue;
        }
        for (int index = range.first; index <= range.last; ++index) {
            wanted.Set(index, !mBeforeBand.Contains(index));
        }
    }
    wanted.SetAnchor(mSet.Anchor());
    if (wanted == mSet) {
        return {};
    }
    mSet = std::move(wanted);
    return {true, false};
}

SelectionRules::Change SelectionRules::CancelBand()
{
    mBeforeBand.Resize(mSet.Size());
    mBeforeBand.SetAnchor(mSet.Anchor());
    const bool changed = !(mSet == mBeforeBand);
    mSet = mBeforeBand;
    mBeforeBand.Clear();
    return {changed, false};
}

void SelectionRules::EndBand()
{
    mBeforeBand.Clear();
}

SelectionRules::Change SelectionRules::MoveTo(int index, Qt::KeyboardModifiers modifiers)
{
    if (index < 0 || index >= mSet.Size()) {
        return {};
    }
    mDeferred = -1;
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    if (modifiers.testFlag(Qt::ShiftModifier)) {
        Change change;
        change.selection = RangeTo(index, control);
        change.current = mCurrent != index;
        mCurrent = index;
        return change;
    }
    return control ? SetCurrent(index) : SelectOnly(index);
}

SelectionRules::Change SelectionRules::Space(Qt::KeyboardModifiers modifiers)
{
    if (mCurrent < 0) {
        return {};
    }
    mSet.SetAnchor(mCurrent);
    const bool on = !modifiers.testFlag(Qt::ControlModifier) || !mSet.Contains(mCurrent);
    return {mSet.Set(mCurrent, on), false};
}

} // namespace quillane
