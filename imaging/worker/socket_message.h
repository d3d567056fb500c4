#pragma once
// Sending and receiving one message with at most one descriptor. In the header because the
// decoding process uses it too and links nothing else of this library.
#include "core/native_path.h"
#include <cerrno>
#include <cstring>
#include <sys/socket.h>

namespace quillane::worker {

/// Sends one packet, with a descriptor when `descriptor` is not negative. False when the other
/// end is gone or its queue stays full; never raises SIGPIPE.
inline bool SendPacket(int socket, const void* bytes, size_t count, int descriptor = -1)
{
    iovec part{const_cast<void*>(bytes), count};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    if (descriptor >= 0) {
        message.msg_control = control;
        message.msg_controllen = sizeof(control);
        cmsghdr* head = CMSG_FIRSTHDR(&message);
        head->cmsg_level = SOL_SOCKET;
        head->cmsg_type = SCM_RIGHTS;
        head->cmsg_len = CMSG_LEN(sizeof(int));
        std::memcpy(CMSG_DATA(head), &descriptor, sizeof(int));
    }
    ssize_t sent;
    do {
        sent = ::sendmsg(socket, &message, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == ssize_t(count);
}

/// One received packet.
struct Packet {
    ssize_t bytes = 0;     ///< 0 when the other end is gone, -1 when nothing is there
    bool whole = false;    ///< false for a packet longer than the buffer
    FileHandle descriptor; ///< that came with it; further ones are closed at once
};

/// Receives one packet into `to`. `flags` as for recvmsg (MSG_DONTWAIT).
inline Packet ReceivePacket(int socket, void* to, size_t room, int flags = 0)
{
    constexpr int kSpaceForDescriptors = 4;
    iovec part{to, room};
    alignas(cmsghdr) char control[CMSG_SPACE(kSpaceForDescriptors * sizeof(int))] = {};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof(control);
    Packet packet;
    do {
        packet.bytes = ::recvmsg(socket, &message, flags | MSG_CMSG_CLOEXEC);
    } while (packet.bytes < 0 && errno == EINTR);
    if (packet.bytes < 0) {
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            packet.bytes = 0;
        }
        return packet;
    }
    packet.whole = (message.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
    for (cmsghdr* head = CMSG_FIRSTHDR(&message); head; head = CMSG_NXTHDR(&message, head)) {
        if (head->cmsg_level != SOL_SOCKET || head->cmsg_type != SCM_RIGHTS) {
            continue;
        }
        const size_t count = (head->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (size_t i = 0; i < count; ++i) {
            int received;
            std::memcpy(&received, CMSG_DATA(head) + i * sizeof(int), sizeof(int));
            FileHandle handle(received);
            if (i == 0 && !packet.descriptor.IsOpen()) {
                packet.descriptor = std::move(handle);
            }
        }
    }
    return packet;
}

} // namespace quillane::worker
