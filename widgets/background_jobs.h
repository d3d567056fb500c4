#pragma once
#include <QObject>
#include <functional>
#include <memory>

namespace quillane {

/// Jobs done away from the thread of their owner, with an answer on it. A job that hangs, like the
/// reading of a network folder that does not answer, holds up one thread of a few and nothing
/// else, not even the end of the program.
class BackgroundJobs : public QObject {
    Q_OBJECT
public:
    /// At most so many threads, which begin when they are needed.
    explicit BackgroundJobs(int mostThreads, QObject* parent = nullptr);
    /// Jobs that have not begun are dropped; those on their way get no answer any more.
    ~BackgroundJobs() override;

    /// Runs `work` on another thread, in the order of asking, and then `done` on this one. `work`
    /// holds all it needs and fails in no other way than in what it leaves behind.
    void Run(std::function<void()> work, std::function<void()> done);
    /// Jobs asked for and not answered yet.
    int Waiting() const { return mWaiting; }

private:
    struct Shared;
    std::shared_ptr<Shared> mShared;
    int mMostThreads;
    int mWaiting = 0;
};

} // namespace quillane
