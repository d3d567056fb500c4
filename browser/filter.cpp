#include "browser/filter.h"

#include "core/numbers.h"

namespace quillane {

qint32 LastPatternIndex(const QString& mask)
{
    constexpr double kPatternLength = 6; // "*.JPG;"
    return ToInt32(double(mask.size()) / kPatternLength - 1);
}

} // namespace quillane
