#pragma once
#include "core/native_path.h"
#include "platform/mail.h"
#include <QObject>
#include <QThreadPool>
#include <memory>
#include <vector>

namespace quillane {

/// Composes a mail by the desktop's portal, else by xdg-email.
class DesktopMail : public QObject, public MailService {
    Q_OBJECT
public:
    DesktopMail();
    ~DesktopMail() override;

    void Compose(const QStringList& attachments, ServiceEnded ended) override;

private:
    /// Attachments that are open for reading, or why one of them is not.
    struct Opened {
        std::vector<FileHandle> files;
        std::optional<Failure> failure;
    };
    static Opened OpenAll(const QStringList& attachments, bool keepOpen);
    void AskPortal(const QStringList& attachments, const Opened& opened, const ServiceEnded& ended);
    void AskXdgEmail(const QStringList& attachments, const ServiceEnded& ended);

    QThreadPool mPool; ///< opens files, which may lie on a slow volume
};

} // namespace quillane
