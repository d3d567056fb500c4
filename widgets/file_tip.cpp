#include "widgets/file_tip.h"

#include "core/native_path.h"
#include "core/paths.h"
#include "widgets/label_lines.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

namespace quillane {

namespace {

QString FileTipText(const char* text)
{
    return QCoreApplication::translate("FileTip", text);
}

} // namespace

QString FileTip(const QString& path, QSize pixels, const QString& failure)
{
    QStringList lines{QStringLiteral("<b>%1</b>").arg(DisplayName(LeafName(path)).toHtmlEscaped())};
    QStringList facts;
    if (!pixels.isEmpty()) {
        facts.append(QStringLiteral("%1 \u00d7 %2").arg(pixels.width()).arg(pixels.height()));
    }
    const FileStat stat = StatPath(path);
    const QLocale locale = QLocale::system();
    if (stat.type == FileType::Missing) {
        facts.append(FileTipText("The file is not there any more."));
    } else {
        facts.append(locale.formattedDataSize(stat.size));
        lines.append(facts.join(QStringLiteral(", ")));
        facts = {locale.toString(ModifiedTime(stat), QLocale::ShortFormat)};
    }
    lines.append(facts.join(QStringLiteral(", ")));
    if (!failure.isEmpty()) {
        lines.append(failure.toHtmlEscaped());
    }
    return QStringLiteral("<p style='white-space:pre-wrap'>") + lines.join(QStringLiteral("<br>"))
        + QStringLiteral("</p>");
}

} // namespace quillane
