#include "widgets/menu_entry.h"

namespace quillane {

QString PlainCaption(const QString& caption)
{
    QString plain = caption;
    plain.remove(u'&').remove(QStringLiteral("..."));
    return plain;
}

QString NotYetTip(const QString& caption)
{
    return QStringLiteral("%1 is not part of this version yet.").arg(PlainCaption(caption));
}

} // namespace quillane
