#pragma once
#include <QString>
#include <functional>

namespace quillane {

/// One watch on one folder: tells, once for many changes and within a second, that files came,
/// went or changed there. Called on the window thread.
class FolderWatch {
public:
    virtual ~FolderWatch() = default;
    /// Watches this folder instead of the one before; empty watches none.
    virtual void Watch(const QString& folder) = 0;
    virtual void OnChange(std::function<void()> changed) = 0;
};

} // namespace quillane
