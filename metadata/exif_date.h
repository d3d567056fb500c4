#pragma once
#include <QString>

namespace quillane {

/// "2003:01:05 13:07:09" as "Jan 05,2003  1:07:09 PM". Cut by position alone: what stands there
/// is taken as it is, and midnight reads 0. Never fails.
QString FormatExifDateTime(const QString& value);
/// "2003:01:05 13:07:09" as "01/05/2003". Never fails.
QString FormatExifDate(const QString& value);

} // namespace quillane
