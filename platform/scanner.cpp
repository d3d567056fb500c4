#include "platform/scanner.h"

namespace quillane {

QString ScanSource::Title() const
{
    const QString title = QStringLiteral("%1 %2").arg(vendor, model).simplified();
    return title.isEmpty() ? name : title;
}

QString Scanner::Selected() const
{
    const std::lock_guard<std::mutex> hold(mLock);
    return mSelected;
}

void Scanner::Select(const QString& source)
{
    const std::lock_guard<std::mutex> hold(mLock);
    mSelected = source;
}

} // namespace quillane
