// A decoding process for tests, locked as the real one, that was taken over: whatever it is asked
// for (facts, pixels, comments, a new file), it makes one system call that would lead out of its
// prison. Which one is the codec's name; what came of it is told in the answer.
#include "imaging/worker_main/service/worker_codec.h"
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <linux/io_uring.h>
#include <linux/openat2.h>
#include <linux/perf_event.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

namespace quillane::worker {

namespace {

constexpr const char* kForeign = "/etc/passwd";
constexpr const char* kOwn = "/tmp/quillane-escape";
constexpr const char* kOther = "/tmp/quillane-escape/other"; ///< never there
/// The picture's file, or the original of one that is written anew, comes as the first descriptor
/// behind the socket.
constexpr int kPicture = kSocketDescriptor + 1;

template <typename... Arguments> long Call(long number, Arguments... arguments)
{
    return ::syscall(number, arguments...);
}

long CallOfOldKind()
{
#ifdef __x86_64__
    long result = 20; // getpid, by the gate of 32 bits
    asm volatile("int $0x80" : "+a"(result) : : "memory");
    return result;
#else
    ::raise(SIGKILL);
    return -1;
#endif
}

long CallOfOtherWidth()
{
#ifdef __x86_64__
    constexpr long kX32 = 0x40000000;
    return Call(kX32 | SYS_openat, AT_FDCWD, kForeign, O_RDONLY);
#else
    ::raise(SIGKILL);
    return -1;
#endif
}

struct Attempt {
    const char* name;
    long (*run)();
};

constexpr Attempt kAttempts[] = {
    // Files
    {"open", [] { return Call(SYS_openat, AT_FDCWD, kForeign, O_RDONLY); }},
    {"open2",
     [] {
         open_how how{};
         return Call(SYS_openat2, AT_FDCWD, kForeign, &how, sizeof(how));
     }},
    {"create", [] { return Call(SYS_openat, AT_FDCWD, kOwn, O_CREAT | O_WRONLY, 0600); }},
    {"memory file", [] { return Call(SYS_memfd_create, "escape", 0); }},
    {"folder", [] { return Call(SYS_mkdirat, AT_FDCWD, kOwn, 0700); }},
    {"remove", [] { return Call(SYS_unlinkat, AT_FDCWD, kOwn, 0); }},
    {"rename", [] { return Call(SYS_renameat2, AT_FDCWD, kOwn, AT_FDCWD, kOther, 0); }},
    {"link", [] { return Call(SYS_linkat, AT_FDCWD, kForeign, AT_FDCWD, kOwn, 0); }},
    {"symlink", [] { return Call(SYS_symlinkat, kForeign, AT_FDCWD, kOwn); }},
    {"readlink",
     [] {
         char text[64];
         return Call(SYS_readlinkat, AT_FDCWD, "/proc/self/exe", text, sizeof(text));
     }},
    {"look",
     [] {
         struct stat about { };
         return Call(SYS_newfstatat, AT_FDCWD, kForeign, &about, 0);
     }},
    {"access", [] { return Call(SYS_faccessat, AT_FDCWD, kForeign, R_OK); }},
    {"list",
     [] {
         char text[512];
         return Call(SYS_getdents64, kPicture, text, sizeof(text));
     }},
    {"mode", [] { return Call(SYS_fchmodat, AT_FDCWD, kOwn, 0777); }},
    {"go elsewhere", [] { return Call(SYS_chdir, "/"); }},
    {"watch", [] { return Call(SYS_inotify_init1, 0); }},
    // The file that was handed over
    {"its bytes", [] { return Call(SYS_pwrite64, kPicture, "x", 1, 0); }},
    {"its mode", [] { return Call(SYS_fchmod, kPicture, 0); }},
    {"its owner", [] { return Call(SYS_fchown, kPicture, 0, 0); }},
    {"its size", [] { return Call(SYS_ftruncate, kPicture, 0); }},
    {"its times", [] { return Call(SYS_utimensat, kPicture, nullptr, nullptr, 0); }},
    {"its attributes", [] { return Call(SYS_fsetxattr, kPicture, "user.x", "x", 1, 0); }},
    {"its room", [] { return Call(SYS_fallocate, kPicture, 0, 0, 1 << 20); }},
    {"its flags", [] { return Call(SYS_fcntl, kPicture, F_SETFL, O_NONBLOCK); }},
    {"its name", [] { return Call(SYS_linkat, kPicture, "", AT_FDCWD, kOwn, AT_EMPTY_PATH); }},
    {"copy", [] { return Call(SYS_sendfile, kSocketDescriptor, kPicture, nullptr, 10); }},
    {"duplicate", [] { return Call(SYS_dup3, kPicture, 12, 0); }},
    {"device", [] { return Call(SYS_ioctl, kSocketDescriptor, 0x5413, nullptr); }},
    // The network
    {"socket", [] { return Call(SYS_socket, AF_INET, SOCK_STREAM, 0); }},
    {"local socket", [] { return Call(SYS_socket, AF_UNIX, SOCK_STREAM, 0); }},
    {"pair",
     [] {
         int both[2];
         return Call(SYS_socketpair, AF_UNIX, SOCK_STREAM, 0, both);
     }},
    {"bind",
     [] {
         sockaddr_in address{};
         address.sin_family = AF_INET;
         return Call(SYS_bind, kSocketDescriptor, &address, sizeof(address));
     }},
    {"listen", [] { return Call(SYS_listen, kSocketDescriptor, 1); }},
    {"accept", [] { return Call(SYS_accept4, kSocketDescriptor, nullptr, nullptr, 0); }},
    // Other programs
    {"execute", [] { return Call(SYS_execve, "/bin/true", nullptr, nullptr); }},
    {"execute file",
     [] { return Call(SYS_execveat, kPicture, "", nullptr, nullptr, AT_EMPTY_PATH); }},
    {"fork", [] { return Call(SYS_clone, SIGCHLD, nullptr, nullptr, nullptr, 0); }},
    {"fork anew",
     [] {
         unsigned long arguments[11] = {};
         return Call(SYS_clone3, arguments, sizeof(arguments));
     }},
    {"trace", [] { return Call(SYS_ptrace, PTRACE_ATTACH, ::getppid(), nullptr, nullptr); }},
    {"be traced", [] { return Call(SYS_ptrace, PTRACE_TRACEME, 0, nullptr, nullptr); }},
    {"read memory",
     [] {
         char byte = 0;
         const iovec mine{&byte, 1};
         return Call(SYS_process_vm_readv, ::getppid(), &mine, 1, &mine, 1, 0);
     }},
    {"write memory",
     [] {
         char byte = 0;
         const iovec mine{&byte, 1};
         return Call(SYS_process_vm_writev, ::getppid(), &mine, 1, &mine, 1, 0);
     }},
    {"handle", [] { return Call(SYS_pidfd_open, ::getpid(), 0); }},
    {"signal", [] { return Call(SYS_kill, ::getppid(), SIGURG); }},
    {"thread signal", [] { return Call(SYS_tgkill, ::getppid(), ::getppid(), SIGURG); }},
    {"limits of others",
     [] {
         rlimit told{};
         return Call(SYS_prlimit64, ::getppid(), RLIMIT_AS, nullptr, &told);
     }},
    {"shared memory", [] { return Call(SYS_shmget, 0, 4096, 0600); }},
    {"message queue", [] { return Call(SYS_msgget, 0, 0600); }},
    // The prison itself
    {"own limits",
     [] {
         const rlimit all{RLIM_INFINITY, RLIM_INFINITY};
         return Call(SYS_prlimit64, 0, RLIMIT_AS, &all, nullptr);
     }},
    {"filter", [] { return Call(SYS_seccomp, 0, 0, nullptr); }},
    {"control", [] { return Call(SYS_prctl, PR_SET_DUMPABLE, 1, 0, 0, 0); }},
    {"become root", [] { return Call(SYS_setuid, 0); }},
    {"new world", [] { return Call(SYS_unshare, CLONE_NEWUSER); }},
    {"other root", [] { return Call(SYS_chroot, "/"); }},
    {"mount", [] { return Call(SYS_mount, "none", kOther, "tmpfs", 0, nullptr); }},
    {"ring",
     [] {
         io_uring_params wishes{};
         return Call(SYS_io_uring_setup, 1, &wishes);
     }},
    {"kernel program", [] { return Call(SYS_bpf, 0, nullptr, 0); }},
    {"measure",
     [] {
         perf_event_attr what{};
         return Call(SYS_perf_event_open, &what, 0, -1, -1, 0);
     }},
    {"faults", [] { return Call(SYS_userfaultfd, 0); }},
    {"keys", [] { return Call(SYS_keyctl, 0, -3, 0, 0, 0); }},
    {"executable memory",
     [] {
         return Call(SYS_mmap, nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC,
                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
     }},
    {"make executable",
     [] {
         alignas(4096) static char page[4096];
         return Call(SYS_mprotect, page, sizeof(page), PROT_READ | PROT_EXEC);
     }},
    {"old gate", CallOfOldKind},
    {"other width", CallOfOtherWidth},
};

/// "refused", "allowed", or the error when it failed for another reason than the prison's.
QByteArray Outcome(const Attempt& attempt)
{
    errno = 0;
    if (attempt.run() >= 0) {
        return "allowed";
    }
    return errno == EPERM ? QByteArray("refused") : "error " + QByteArray::number(errno);
}

template <size_t I> ImageFacts EscapingProbe(ByteSource&)
{
    ImageFacts facts;
    facts.width = facts.height = 1;
    facts.bits = 24;
    facts.format = 3;
    facts.compression = QString::fromLatin1(Outcome(kAttempts[I]));
    return facts;
}

/// The outcome as grey pixels, a letter each.
template <size_t I> bool EscapingDecode(ByteSource&, const PictureWish&, PictureSink& sink)
{
    const QByteArray outcome = Outcome(kAttempts[I]);
    PictureShape shape;
    shape.width = qint32(outcome.size());
    shape.height = 1;
    shape.layout = PixelLayout::Grey8;
    shape.fileDepth = 8;
    sink.Begin(shape);
    std::memcpy(sink.NextRow(), outcome.constData(), size_t(outcome.size()));
    return false;
}

template <size_t I> void EscapingComments(ByteSource&, const TextVisitor& visit)
{
    visit(3, Outcome(kAttempts[I]));
}

template <size_t I> void EscapingEncode(PictureRows& picture, const EncodeWish&, FileSink& file)
{
    for (qint32 y = 0; y < picture.Shape().height; ++y) {
        picture.NextRow();
    }
    const QByteArray outcome = Outcome(kAttempts[I]);
    file.Append(outcome.constData(), outcome.size());
}

template <size_t... I> constexpr auto CodecsOf(std::index_sequence<I...>)
{
    return std::array<WorkerCodec, sizeof...(I)>{
        WorkerCodec{kAttempts[I].name, nullptr, EscapingProbe<I>, EscapingDecode<I>,
                    EscapingComments<I>, EscapingEncode<I>}...};
}

constexpr auto kEscaping = CodecsOf(std::make_index_sequence<std::size(kAttempts)>());

} // namespace

} // namespace quillane::worker

int main()
{
    return quillane::worker::Serve(quillane::worker::kEscaping);
}
