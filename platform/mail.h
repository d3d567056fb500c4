#pragma once
// Hands files to the user's mail program.
#include "platform/service_ended.h"
#include <QStringList>

namespace quillane {

class MailService {
public:
    virtual ~MailService() = default;
    /// Opens a new mail with these files attached, in this order, without subject, text or
    /// addresses. Waits for nothing: a missing file (kFailureNoFile), a missing mail program and
    /// a person's cancel (kFailureCancelled) are told by `ended`.
    virtual void Compose(const QStringList& attachments, ServiceEnded ended) = 0;
};

} // namespace quillane
