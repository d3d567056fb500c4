#pragma once
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

namespace quillane {

/// Tests the files of a scan on all cores, ahead of the scan, and answers in their order.
class SearchAhead {
public:
    /// Whether a file passes; called on several threads at once, may throw a Failure.
    using Test = std::function<bool(const QString& path)>;

    /// Begins at once. A file that is being tested when the search goes away is not waited for, as
    /// it may lie on a disk that does not answer: the test holds all it needs.
    SearchAhead(QStringList paths, Test test);
    /// Drops what is not tested yet.
    ~SearchAhead();
    SearchAhead(const SearchAhead&) = delete;
    SearchAhead& operator=(const SearchAhead&) = delete;

    /// The answer for the next file; nothing when it is not there within some milliseconds. The
    /// Failure of its test comes out here. Failure kFailureIndex behind the last.
    std::optional<bool> Next();

private:
    struct State;
    std::shared_ptr<State> mState;
};

} // namespace quillane
