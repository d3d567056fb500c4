#pragma once
#include "core/native_path.h"
#include "platform/folder_watch.h"
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>

namespace quillane {

/// One inotify watch on the folder being browsed. Changes are gathered for a moment, so that a
/// thousand copied files tell once.
class DesktopWatch : public QObject, public FolderWatch {
    Q_OBJECT
public:
    DesktopWatch();
    ~DesktopWatch() override;

    void Watch(const QString& folder) override;
    void OnChange(std::function<void()> changed) override { mChanged = std::move(changed); }

private:
    void ReadEvents();

    FileHandle mInotify;
    int mWatch = -1;
    std::unique_ptr<QSocketNotifier> mNotifier;
    QTimer mGather;
    std::function<void()> mChanged;
};

} // namespace quillane
