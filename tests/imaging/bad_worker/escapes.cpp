// Attempts to break out, and texts that are not asked for.
#include "bad_codecs.h"
#include "imaging/worker/socket_message.h"
#include <algorithm>
#include <arpa/inet.h>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillane::worker {

void Tell(const TextVisitor& visit, bool refused)
{
    visit(0, refused ? "refused" : "allowed");
}
int TryOpen()
{
    return ::open("/etc/passwd", O_RDONLY);
}
int TryCreate()
{
    return ::open("/tmp/quillane-escape", O_CREAT | O_WRONLY, 0600);
}
int TryStat()
{
    struct stat about;
    return int(::syscall(SYS_newfstatat, AT_FDCWD, "/etc/passwd", &about, 0));
}
int TrySocket()
{
    return ::socket(AF_INET, SOCK_STREAM, 0);
}
int TryExecve()
{
    char name[] = "/bin/true";
    char* const arguments[] = {name, nullptr};
    return ::execve(name, arguments, nullptr);
}
int TryFork()
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    return child;
}
int TryTrace()
{
    return int(::ptrace(PTRACE_ATTACH, ::getppid(), nullptr, nullptr));
}
int TryKill()
{
    return ::kill(::getppid(), SIGURG);
}
int TryExecutableMemory()
{
    return ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS,
                  -1, 0)
            == MAP_FAILED
        ? -1
        : 0;
}
int TryMuchMemory()
{
    void* const much = std::malloc(size_t(3) << 30);
    const int got = much ? 0 : -1;
    std::free(much);
    return got;
}
int TryTruncatingTheWindow()
{
    // The window is the descriptor behind standard streams, socket and file, when it is open.
    int cut = -1;
    for (int fd = kSocketDescriptor + 1; fd < 16; ++fd) {
        cut = std::max(cut, ::ftruncate(fd, 0));
    }
    return cut;
}
void TellText(ByteSource&, const TextVisitor& visit)
{
    ++ticket;
    visit(3,
          "Ein Bild \xc3\xbc"
          "ber \xe6\x97\xa5\xe6\x9c\xac");
    visit(10, QByteArray(100'000, 'a') + "\xc3\xbc");
}
void TellTooOften(ByteSource&, const TextVisitor& visit)
{
    ++ticket;
    for (int i = 0; i < 1000; ++i) {
        visit(3, "again");
    }
}
void TellWrongSlot(ByteSource&, const TextVisitor& visit)
{
    ++ticket;
    visit(1000, "nowhere");
}

int TryConnect()
{
    // Its own end of the socket is the only one it has.
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(80);
    return ::connect(kSocketDescriptor, reinterpret_cast<const sockaddr*>(&address),
                     sizeof(address));
}
int TryWriting()
{
    int most = -1;
    for (int fd = 0; fd < 16; ++fd) {
        if (fd != STDERR_FILENO) {
            most = std::max(most, int(::write(fd, "x", 1)));
        }
    }
    return most;
}
int TryPwrite()
{
    return int(::pwrite(kSocketDescriptor + 1, "x", 1, 0));
}

} // namespace quillane::worker
