#pragma once
#include "bad_codecs.h"
#include "imaging/worker/socket_message.h"

namespace quillane::worker {

/// Sends a message as it stands, in answer to the running request or to another.
template <typename Message> void SendRaw(Message message, MessageKind kind, quint64 of = ticket)
{
    message.head = {kProtocolMark, kind, of};
    SendPacket(kSocketDescriptor, &message, sizeof(message));
}

} // namespace quillane::worker
