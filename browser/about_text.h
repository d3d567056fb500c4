#pragma once
#include <QString>

namespace quillane {

/// "0.1.0": major, minor and revision of this version.
QString VersionText();
/// Caption of the main window: the title, the version, fifteen blanks, the site word.
QString MainCaption(const QString& appTitle, const QString& siteName);
/// Caption of the About window.
QString AboutCaption(const QString& appTitle);

QString MakerSite();    ///< home page
QString SupportPage();  ///< contact page
QString TutorialPage(); ///< tutorial page
/// Mail address of the support, as shown.
QString SupportAddress();
/// A mail link to the support with a subject of the title and the words "Help Request".
QString SupportMailLink(const QString& appTitle);
/// The maker's site word of the caption.
QString SiteName();

} // namespace quillane
