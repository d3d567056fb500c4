#include "core/text_lines.h"

namespace quillane {

TextLines::TextLines(QByteArrayView bytes) : mBytes(bytes)
{
    constexpr char kByteOrderMark[] = "\xef\xbb\xbf";
    if (mBytes.startsWith(kByteOrderMark)) {
        mBytes = mBytes.sliced(3);
    }
    if (!mBytes.contains('\n')) {
        mEnd = '\r';
    }
}

std::optional<QByteArrayView> TextLines::Next()
{
    if (mBytes.isEmpty()) {
        return {};
    }
    ++mNumber;
    const qsizetype end = mBytes.indexOf(mEnd);
    QByteArrayView line = end < 0 ? mBytes : mBytes.first(end);
    mBytes = end < 0 ? QByteArrayView() : mBytes.sliced(end + 1);
    if (line.endsWith('\r')) {
        line.chop(1);
    }
    return line;
}

} // namespace quillane
