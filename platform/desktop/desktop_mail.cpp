#include "platform/desktop/desktop_mail.h"

#include "platform/desktop/find_program.h"
#include "platform/desktop/portal_request.h"
#include "platform/desktop/watched_program.h"

#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>

namespace quillane {

namespace {

using DescriptorList = QList<QDBusUnixFileDescriptor>;

/// What every implementation of the bus takes in one message; one that takes fewer than it is sent
/// closes the connection for good.
constexpr qsizetype kMostDescriptors = 16;

/// Exit codes of xdg-email.
enum XdgEmailCode : int { kXdgFileMissing = 2, kXdgToolMissing = 3, kXdgActionFailed = 4 };

Failure MailFailure(const ProgramEnd& end)
{
    switch (end.signal == 0 ? end.code : -1) {
    case kXdgFileMissing:
        return {kFailureNoFile, QStringLiteral("A file to be sent is not there any more.")};
    case kXdgToolMissing:
    case kXdgActionFailed:
        return {kFailureGeneral,
                QStringLiteral("No mail program took the files. Choose one in the settings of "
                               "the desktop. (%1)")
                    .arg(end.Words())};
    default:
        return {kFailureGeneral, end.Words()};
    }
}

} // namespace

DesktopMail::DesktopMail()
{
    mPool.setMaxThreadCount(1);
    qDBusRegisterMetaType<DescriptorList>();
}

DesktopMail::~DesktopMail()
{
    mPool.waitForDone();
}

DesktopMail::Opened DesktopMail::OpenAll(const QStringList& attachments, bool keepOpen)
{
    Opened opened;
    opened.files.reserve(keepOpen ? size_t(attachments.size()) : 0);
    for (const QString& path : attachments) {
        try {
            FileHandle file = OpenForReading(path);
            if (keepOpen) {
                opened.files.push_back(std::move(file));
            }
        } catch (const Failure& failure) {
            opened.failure = failure;
            break;
        }
    }
    return opened;
}

void DesktopMail::Compose(const QStringList& attachments, ServiceEnded ended)
{
    const bool portal = SessionBusTakesFiles() && attachments.size() <= kMostDescriptors;
    mPool.start([this, attachments, portal, ended = std::move(ended)] {
        const auto opened = std::make_shared<Opened>(OpenAll(attachments, portal));
        QMetaObject::invokeMethod(
            this,
            [this, attachments, portal, opened, ended] {
                if (opened->failure) {
                    ended(opened->failure);
                } else if (portal) {
                    AskPortal(attachments, *opened, ended);
                } else {
                    AskXdgEmail(attachments, ended);
                }
            },
            Qt::QueuedConnection);
    });
}

void DesktopMail::AskPortal(const QStringList& attachments, const Opened& opened,
                            const ServiceEnded& ended)
{
    DescriptorList descriptors;
    descriptors.reserve(qsizetype(opened.files.size()));
    for (const FileHandle& file : opened.files) {
        descriptors.append(QDBusUnixFileDescriptor(file.Fd()));
    }
    QVariantMap options;
    if (!descriptors.isEmpty()) {
        options.insert(QStringLiteral("attachment_fds"), QVariant::fromValue(descriptors));
    }
    PortalRequest::Send(
        {QStringLiteral("Email"), QStringLiteral("ComposeEmail"), {QString()}, options},
        [this, attachments, ended](PortalEnd end) {
            switch (end) {
            case PortalEnd::Done:
                ended({});
                break;
            case PortalEnd::Cancelled:
                ended(Failure(kFailureCancelled, QStringLiteral("The mail was cancelled.")));
                break;
            case PortalEnd::Silent:
                ended(Failure(kFailureGeneral, QStringLiteral("The mail program gave no answer.")));
                break;
            case PortalEnd::Failed:
                AskXdgEmail(attachments, ended);
                break;
            }
        },
        this);
}

void DesktopMail::AskXdgEmail(const QStringList& attachments, const ServiceEnded& ended)
{
    const QString program = FindProgram(QStringLiteral("xdg-email"));
    if (program.isEmpty()) {
        const bool tooMany = SessionBusTakesFiles() && attachments.size() > kMostDescriptors;
        ended(Failure(kFailureGeneral,
                      tooMany ? QStringLiteral("More than %1 files need xdg-email. Send fewer at "
                                               "once, or install the package xdg-utils.")
                                    .arg(kMostDescriptors)
                              : QStringLiteral("No mail program was found. Install one, and the "
                                               "package xdg-utils.")));
        return;
    }
    QList<QByteArray> arguments;
    arguments.reserve(2 * attachments.size());
    for (const QString& path : attachments) {
        arguments.append("--attach");
        arguments.append(BytesFromPath(path));
    }
    if (arguments.isEmpty()) {
        arguments.append("mailto:"); // it wants something to do
    }
    try {
        // It ends with the mail program, so it may take any time.
        WatchedProgram::Run(
            {program, arguments, {}, 0, false},
            [ended](const ProgramEnd& end) {
                ended(end.Good() ? std::nullopt : std::optional<Failure>(MailFailure(end)));
            },
            this);
    } catch (const Failure& failure) {
        ended(failure);
    }
}

} // namespace quillane
