#include "browser/about_text.h"

#include <QUrl>
#include <QUrlQuery>

namespace quillane {

QString VersionText()
{
    return QStringLiteral("%1.%2.%3")
        .arg(QUILLANE_VERSION_MAJOR)
        .arg(QUILLANE_VERSION_MINOR)
        .arg(QUILLANE_VERSION_REVISION);
}

QString MainCaption(const QString& appTitle, const QString& siteName)
{
    constexpr int kBlanksBeforeSite = 15;
    return appTitle + u' ' + VersionText() + QString(kBlanksBeforeSite, u' ') + siteName;
}

QString AboutCaption(const QString& appTitle)
{
    return QStringLiteral("About ") + appTitle;
}

// The name ends in .example, which belongs to nobody, until the project has a home.
QString MakerSite()
{
    return QStringLiteral("https://quillane.example/");
}

QString SupportPage()
{
    return MakerSite() + QStringLiteral("contact.html");
}

QString TutorialPage()
{
    return MakerSite() + QStringLiteral("tutorial.html");
}

QString SupportAddress()
{
    return QStringLiteral("support@quillane.example");
}

QString SupportMailLink(const QString& appTitle)
{
    QUrl link(QStringLiteral("mailto:") + SupportAddress());
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("subject"), appTitle + QStringLiteral(" Help Request"));
    link.setQuery(query);
    return QString::fromLatin1(link.toEncoded());
}

QString SiteName()
{
    return QStringLiteral("quillane.example");
}

} // namespace quillane
