#pragma once
// Programs that note how they were called, in a folder that stands for PATH.
#include "core/temp_folder.h"
#include "platform/scoped_environment.h"
#include <QList>
#include <QTest>
#include <algorithm>
#include <unistd.h>

namespace quillane {

constexpr int kTestPatience = 20000; ///< milliseconds until a condition counts as never met

/// How many files this process holds open.
inline int OpenDescriptors()
{
    int open = 0;
    ListFolder(QStringLiteral("/proc/self/fd"), [&](DirEntry&&) {
        ++open;
        return true;
    });
    return open;
}

/// The processes that this thread has started and that are there still, ended or not.
inline QByteArray ChildProcesses()
{
    const QString thread = QStringLiteral("/proc/self/task/%1/children").arg(gettid());
    const FileHandle file = OpenForReading(thread);
    QByteArray children(1 << 16, Qt::Uninitialized);
    const ssize_t got = read(file.Fd(), children.data(), size_t(children.size()));
    children.truncate(std::max<ssize_t>(got, 0));
    return children;
}

/// What a program saw: its name, its folder, its arguments.
struct ProgramCall {
    QByteArray program;
    QByteArray folder;
    QList<QByteArray> arguments;
};

class ProgramLog {
public:
    /// A program of that name that writes down its call; `then` is what it does next (lines of a
    /// shell script).
    void Offer(const QByteArray& name, const QByteArray& then = "exit 0") const
    {
        mFolder.MakeFolder(name + ".calls");
        mFolder.Write(name,
                      "#!/bin/sh\n"
                      "log='"
                          + mFolder.Bytes(name)
                          + ".calls'/$$\n"
                            "printf '%s\\0' \"$PWD\" \"$@\" > \"$log.part\"\n"
                            "/bin/mv \"$log.part\" \"$log\"\n"
                          + then + "\n");
        mFolder.Chmod(name, 0755);
    }
    int CallCount(const QByteArray& name) const
    {
        int calls = 0;
        ListFolder(mFolder.Path(name + ".calls"), [&](DirEntry&& entry) {
            calls += entry.name.endsWith(QLatin1String(".part")) ? 0 : 1;
            return true;
        });
        return calls;
    }
    /// Waits for the first call of the program.
    ProgramCall WaitForCall(const QByteArray& name) const
    {
        EXPECT_TRUE(QTest::qWaitFor([&] { return CallCount(name) > 0; }, kTestPatience));
        ProgramCall call{name, {}, {}};
        ListFolder(mFolder.Path(name + ".calls"), [&](DirEntry&& entry) {
            call.arguments =
                ReadWholeFile(mFolder.Path(name + ".calls") + u'/' + entry.name, 1 << 20)
                    .split('\0');
            return false;
        });
        if (call.arguments.size() >= 2) {
            call.folder = call.arguments.takeFirst();
            call.arguments.removeLast(); // what follows the last end of text
        }
        return call;
    }
    /// The arguments of every call so far, each call's joined with '|', in the order of their text.
    QList<QByteArray> Calls(const QByteArray& name) const
    {
        QList<QByteArray> calls;
        ListFolder(mFolder.Path(name + ".calls"), [&](DirEntry&& entry) {
            if (!entry.name.endsWith(QLatin1String(".part"))) {
                QList<QByteArray> words =
                    ReadWholeFile(mFolder.Path(name + ".calls") + u'/' + entry.name, 1 << 20)
                        .split('\0');
                words.removeFirst();
                words.removeLast();
                calls.append(words.join('|'));
            }
            return true;
        });
        std::sort(calls.begin(), calls.end());
        return calls;
    }
    const TempFolder& Folder() const { return mFolder; }

private:
    TempFolder mFolder;
    ScopedEnvironment mPath{"PATH", mFolder.Bytes()};
};

} // namespace quillane
