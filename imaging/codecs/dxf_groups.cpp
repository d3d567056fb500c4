#include "imaging/codecs/dxf_groups.h"
#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

namespace quillane::codecs {

namespace {

constexpr char kDxfSentinel[] = "AutoCAD Binary DXF\r\n\x1a";
constexpr qsizetype kDxfSentinelBytes = 22; ///< with the zero behind it

enum class DxfValue : quint8 { Text, Double, Int16, Int32, Int64, Byte, Chunk };

struct DxfRange {
    int first, last;
    DxfValue value;
};
/// What stands behind a code in a binary file; text behind all others.
constexpr DxfRange kDxfRanges[] = {
    {10, 59, DxfValue::Double},    {60, 79, DxfValue::Int16},     {90, 99, DxfValue::Int32},
    {110, 149, DxfValue::Double},  {160, 169, DxfValue::Int64},   {170, 179, DxfValue::Int16},
    {210, 239, DxfValue::Double},  {270, 289, DxfValue::Int16},   {290, 299, DxfValue::Byte},
    {310, 319, DxfValue::Chunk},   {370, 389, DxfValue::Int16},   {400, 409, DxfValue::Int16},
    {420, 429, DxfValue::Int32},   {440, 449, DxfValue::Int32},   {450, 459, DxfValue::Int32},
    {460, 469, DxfValue::Double},  {1004, 1004, DxfValue::Chunk}, {1010, 1059, DxfValue::Double},
    {1060, 1070, DxfValue::Int16}, {1071, 1071, DxfValue::Int32},
};

DxfValue DxfValueOf(int code)
{
    for (const DxfRange& range : kDxfRanges) {
        if (code >= range.first && code <= range.last) {
            return range.value;
        }
    }
    return DxfValue::Text;
}

double DxfParse(QByteArrayView text)
{
    double value = 0;
    const char* first = text.data();
    const char* last = first + text.size();
    if (first != last && *first == '+') {
        ++first;
    }
    const auto result = std::from_chars(first, last, value);
    return result.ec == std::errc() && std::isfinite(value) ? value : 0;
}

} // namespace

double DxfGroup::Number() const
{
    return written ? DxfParse(text) : number;
}

int DxfGroup::Whole() const
{
    const double value = Number();
    return std::abs(value) < 2e9 ? int(value) : 0;
}

DxfGroups::DxfGroups(QByteArrayView bytes) : mBytes(bytes)
{
    mBinary = bytes.startsWith(QByteArrayView(kDxfSentinel, kDxfSentinelBytes - 1));
    if (mBinary) {
        mAt = kDxfSentinelBytes;
        // Up to release 12 a code had one byte: the name of the section then begins at once.
        mCodeBytes = bytes.size() > mAt + 1 && bytes[mAt + 1] != 0 ? 1 : 2;
    } else if (bytes.startsWith("\xef\xbb\xbf")) {
        mAt = 3;
    }
}

bool DxfGroups::Next(DxfGroup& group)
{
    mBefore = mAt;
    return mBinary ? NextBinary(group) : NextWritten(group);
}

bool DxfGroups::Line(QByteArrayView& line)
{
    if (mAt >= mBytes.size()) {
        return false;
    }
    const QByteArrayView rest = mBytes.sliced(mAt);
    qsizetype end = rest.indexOf('\n');
    end = end < 0 ? rest.size() : end;
    line = rest.first(end).trimmed();
    mAt += std::min(end + 1, rest.size());
    return true;
}

bool DxfGroups::NextWritten(DxfGroup& group)
{
    QByteArrayView code;
    group.written = true;
    if (!Line(code) || !Line(group.text)) {
        return false;
    }
    const auto result = std::from_chars(code.data(), code.data() + code.size(), group.code);
    return result.ec == std::errc();
}

quint64 DxfGroups::Little(int count)
{
    quint64 value = 0;
    for (int i = 0; i < count && mAt < mBytes.size(); ++i) {
        value |= quint64(uchar(mBytes[mAt++])) << (8 * i);
    }
    return value;
}

bool DxfGroups::NextBinary(DxfGroup& group)
{
    if (mBytes.size() - mAt < mCodeBytes + 1) {
        return false;
    }
    group.code = mCodeBytes == 1 ? int(Little(1)) : int(qint16(Little(2)));
    if (mCodeBytes == 1 && group.code == 255) {
        group.code = int(Little(2));
    }
    group.text = {};
    group.written = false;
    switch (DxfValueOf(group.code)) {
    case DxfValue::Text: {
        const QByteArrayView rest = mBytes.sliced(mAt);
        const qsizetype end = rest.indexOf('\0');
        if (end < 0) {
            return false;
        }
        group.text = rest.first(end);
        group.written = true;
        mAt += end + 1;
        return true;
    }
    case DxfValue::Chunk: {
        const qsizetype size = qsizetype(Little(1));
        mAt += std::min(size, mBytes.size() - mAt);
    }
        group.number = 0;
        return true;
    case DxfValue::Double: {
        const double value = std::bit_cast<double>(Little(8));
        group.number = std::isfinite(value) ? value : 0;
        return true;
    }
    case DxfValue::Int16:
        group.number = qint16(Little(2));
        return true;
    case DxfValue::Int32:
        group.number = qint32(Little(4));
        return true;
    case DxfValue::Int64:
        group.number = double(qint64(Little(8)));
        return true;
    case DxfValue::Byte:
        group.number = double(Little(1));
        return true;
    }
    return false;
}

bool DxfIsStart(QByteArrayView head, bool trusting)
{
    DxfGroups groups(head);
    if (groups.IsBinary()) {
        return true;
    }
    DxfGroup group;
    bool remarks = false;
    while (groups.Next(group)) {
        if (group.code == 0) {
            return group.text == "SECTION";
        }
        if (group.code != 999) {
            return false;
        }
        remarks = true;
    }
    return remarks && trusting;
}

double DxfEntity::Number(int code, double otherwise) const
{
    for (const DxfGroup& group : groups) {
        if (group.code == code) {
            return group.Number();
        }
    }
    return otherwise;
}

int DxfEntity::Whole(int code, int otherwise) const
{
    for (const DxfGroup& group : groups) {
        if (group.code == code) {
            return group.Whole();
        }
    }
    return otherwise;
}

QByteArrayView DxfEntity::Text(int code) const
{
    for (const DxfGroup& group : groups) {
        if (group.code == code) {
            return group.text;
        }
    }
    return {};
}

bool DxfEntity::Has(int code) const
{
    return std::any_of(groups.begin(), groups.end(),
                       [code](const DxfGroup& group) { return group.code == code; });
}

} // namespace quillane::codecs
