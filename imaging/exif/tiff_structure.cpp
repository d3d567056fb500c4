#include "imaging/exif/tiff_structure.h"
#include <algorithm>
#include <iterator>

namespace quillane::exif {

namespace {

/// Bytes of one value by type; 14 and 15 are not in use.
constexpr quint8 kStructureTypeBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};

bool StructureIsInteger(quint16 type)
{
    switch (type) {
    case kTypeByte:
    case kTypeUndefined:
    case kTypeShort:
    case kTypeLong:
    case kTypeIfd:
    case kTypeLong8:
    case kTypeIfd8:
        return true;
    default:
        return false;
    }
}

} // namespace

int FieldTypeBytes(quint16 type)
{
    return type < std::size(kStructureTypeBytes) ? kStructureTypeBytes[type] : 0;
}

std::optional<TiffStructure> TiffStructure::Open(QByteArrayView bytes)
{
    if (bytes.size() < 8 || bytes[0] != bytes[1] || (bytes[0] != 'I' && bytes[0] != 'M')) {
        return {};
    }
    TiffStructure structure(bytes);
    structure.mBig = bytes[0] == 'M';
    const quint64 version = structure.NumberOf(bytes.sliced(2, 2));
    structure.mWide = version == 43;
    if ((version != 42 && !structure.mWide) || (structure.mWide && bytes.size() < 16)) {
        return {};
    }
    const quint64 first =
        structure.NumberOf(structure.mWide ? bytes.sliced(8, 8) : bytes.sliced(4, 4));
    if (first < quint64(structure.HeaderBytes()) || first > quint64(bytes.size())) {
        return {};
    }
    structure.mFirst = qint64(first);
    return structure;
}

TiffDirectory TiffStructure::ReadDirectory(qint64 at) const
{
    TiffDirectory directory;
    if (at < HeaderBytes() || at > mBytes.size() - CountBytes()) {
        return directory;
    }
    const quint64 stated = NumberOf(mBytes.sliced(at, CountBytes()));
    const qint64 entriesAt = at + CountBytes();
    const qint64 room = (mBytes.size() - entriesAt) / EntryBytes();
    const auto count = qint64(std::min({stated, kMaxFields, quint64(room)}));
    directory.at = at;
    directory.whole = quint64(count) == stated;
    directory.fields.reserve(size_t(count));
    for (qint64 i = 0; i < count; ++i) {
        directory.fields.push_back(ReadField(entriesAt + i * EntryBytes()));
    }
    directory.table = {at, entriesAt + count * EntryBytes()};
    if (directory.whole && directory.table.to <= mBytes.size() - OffsetBytes()) {
        const quint64 next = NumberOf(mBytes.sliced(directory.table.to, OffsetBytes()));
        directory.next = next <= quint64(mBytes.size()) ? qint64(next) : 0;
        directory.table.to += OffsetBytes();
    } else {
        directory.whole = false;
    }
    return directory;
}

TiffField TiffStructure::ReadField(qint64 at) const
{
    const QByteArrayView bytes = mBytes.sliced(at, EntryBytes());
    TiffField field;
    field.tag = quint16(NumberOf(bytes.sliced(0, 2)));
    field.type = quint16(NumberOf(bytes.sliced(2, 2)));
    field.count = NumberOf(bytes.sliced(4, OffsetBytes()));
    field.entry = bytes.last(OffsetBytes()).toByteArray();
    const auto width = quint64(FieldTypeBytes(field.type));
    // Compared by division: a hostile count times the width need not fit.
    if (width == 0 || field.count > quint64(mBytes.size()) / width) {
        field.sound = false;
        return field;
    }
    const auto size = qint64(field.count * width);
    if (size > OffsetBytes()) {
        const quint64 offset = NumberOf(field.entry);
        field.sound = offset <= quint64(mBytes.size() - size);
        if (field.sound) {
            field.outside = {qint64(offset), qint64(offset) + size};
        }
    }
    return field;
}

QByteArrayView TiffStructure::Value(const TiffField& field) const
{
    if (!field.sound) {
        return {};
    }
    if (field.outside.Size() > 0) {
        return mBytes.sliced(field.outside.from, field.outside.Size());
    }
    return QByteArrayView(field.entry).first(qsizetype(field.count) * FieldTypeBytes(field.type));
}

std::optional<quint64> TiffStructure::Number(const TiffField& field, quint64 index) const
{
    if (!field.sound || index >= field.count || !StructureIsInteger(field.type)) {
        return {};
    }
    const int width = FieldTypeBytes(field.type);
    return NumberOf(Value(field).sliced(qsizetype(index) * width, width));
}

quint64 TiffStructure::NumberOf(QByteArrayView bytes) const
{
    quint64 number = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        number = number << 8 | quint8(bytes[mBig ? i : bytes.size() - 1 - i]);
    }
    return number;
}

QByteArray TiffStructure::BytesOf(quint64 number, int count) const
{
    QByteArray bytes(count, Qt::Uninitialized);
    for (int i = 0; i < count; ++i) {
        bytes[i] = char(number >> 8 * (mBig ? count - 1 - i : i));
    }
    return bytes;
}

const TiffField* FindField(const TiffDirectory& directory, quint16 tag)
{
    const auto found = std::find_if(directory.fields.begin(), directory.fields.end(),
                                    [tag](const TiffField& field) { return field.tag == tag; });
    return found != directory.fields.end() ? &*found : nullptr;
}

} // namespace quillane::exif
