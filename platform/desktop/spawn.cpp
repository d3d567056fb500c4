#include "platform/desktop/spawn.h"

#include "core/failure.h"
#include "core/native_path.h"

#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace quillane {

void SpawnDetached(const QByteArray& program, const QList<QByteArray>& arguments,
                   const QByteArray& folder)
{
    // The shell starts the program in the background and ends at once, so that nobody has to
    // wait for the program: its parent is the system.
    static constexpr char kScript[] =
        "cd -- \"$1\" 2>/dev/null; shift; [ -x \"$1\" ] || exit 126; "
        "if command -v setsid >/dev/null; then setsid \"$@\" & else \"$@\" & fi";
    const QByteArray startIn = folder.isEmpty() ? QByteArray(".") : folder;
    QList<QByteArray> words{"/bin/sh", "-c", kScript, "sh", startIn, program};
    words.append(arguments);
    std::vector<char*> argv;
    for (QByteArray& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, "/bin/sh", &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    const bool started = error == 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status)
        && WEXITSTATUS(status) == 0;
    if (!started) {
        throw Failure(kFailureNoFile,
                      QStringLiteral("%1 could not be started.").arg(PathFromBytes(program)));
    }
}

} // namespace quillane
