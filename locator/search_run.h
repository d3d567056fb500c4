#pragma once
#include "locator/walk.h"
#include "widgets/background_jobs.h"
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

namespace quillane {

/// A search on a thread of its own that tells the window thread what it finds while it runs. One
/// at a time: a new one takes the place of the one that runs.
class LocatorSearch : public QObject {
    Q_OBJECT
public:
    /// Files found in one folder, or a part of them.
    struct Batch {
        QString folder; ///< with its separator
        std::vector<FoundFile> files;
    };
    explicit LocatorSearch(QObject* parent = nullptr);
    /// A search that runs is dropped without a word.
    ~LocatorSearch() override;

    /// Begins a search; one that runs is dropped without a word. searchString is not empty.
    void Start(const QString& startFolder, const QString& searchString, bool includeSubfolders);
    /// Ends the search at once; some of what is not told yet is told first, the rest never.
    /// Nothing when none runs.
    void Stop();
    /// Drops the search without a word and forgets its folders.
    void Terminate();
    /// Counts from the next folder on.
    void SetIncludesSubfolders(bool on);
    bool IsRunning() const { return mShared != nullptr; }

Q_SIGNALS:
    /// The folder that is being searched.
    void folderShown(const QString& folder);
    void found(const std::vector<LocatorSearch::Batch>& batches);
    /// The search has come to its end, or was stopped.
    void ended(const FindResult& result);
    /// Something could not be read; `words` say what.
    void failed(const QString& words);

private:
    struct Shared;
    bool Tell();
    void TellNext();
    void Finish();

    BackgroundJobs mJobs;
    QTimer mTimer;                   ///< looks for what is new
    std::shared_ptr<Shared> mShared; ///< of the search that runs
    bool mWorked = false;            ///< it has found all there is; some may not be told yet
};

} // namespace quillane
