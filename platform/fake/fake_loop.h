#pragma once
#include "platform/ui_loop.h"
#include <functional>
#include <set>

namespace quillane {

/// A message loop whose Esc key and clock a test holds.
class FakeLoop : public UiLoop {
public:
    /// Esc counts as pressed at the n-th poll, counted from 1.
    void PressEscAtPoll(int poll) { mEscPolls.insert(poll); }
    /// Esc goes down after so many polls and stays down: it counts at every later one.
    void HoldEscAfterPolls(int polls) { mEscHeldFrom = polls + 1; }
    /// A key that was held is up again.
    void ReleaseEsc() { mEscHeldFrom = 0; }
    /// Runs on every yield: what a person would do in the middle of a long action.
    void OnYield(std::function<void()> action) { mOnYield = std::move(action); }
    void SetNow(const QDateTime& now) { mNow = now; }

    int Yields() const { return mYields; }
    int Waits() const { return mWaits; }
    int EscPolls() const { return mPolls; }
    int Forgets() const { return mForgets; }
    int HourglassDepth() const { return mHourglass; }
    int HourglassBegins() const { return mHourglassBegins; }

    bool Yield(Generation generation) override;
    void ProcessEvents() override;
    void WaitForEvents(int ms) override;
    Generation NewGeneration() override { return ++mNewest; }
    Generation Newest() const override { return mNewest; }
    bool PollEsc() override;
    void ForgetEsc() override { ++mForgets; }
    void BeginHourglass() override;
    void EndHourglass() override { --mHourglass; }
    QDateTime Now() const override { return mNow; }
    /// "2026-11-21 04:05:06", whatever the locale; empty for an invalid time.
    QString SystemDateText(const QDateTime& when) const override;

private:
    std::set<int> mEscPolls;
    std::function<void()> mOnYield;
    QDateTime mNow{QDate(2026, 11, 21), QTime(4, 5, 6)};
    Generation mNewest = 0;
    int mEscHeldFrom = 0; ///< the first poll that finds it down; 0: not held
    int mPolls = 0, mYields = 0, mWaits = 0, mForgets = 0, mHourglass = 0, mHourglassBegins = 0;
};

} // namespace quillane
