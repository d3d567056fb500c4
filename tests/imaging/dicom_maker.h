#pragma once
// Makes DICOM files element by element.
#include <QByteArray>
#include <QList>
#include <map>

namespace quillane::test {

/// A file in explicit little endian under construction; elements come in order of their tags.
class DicomMaker {
public:
    explicit DicomMaker(const QByteArray& transferSyntax = "1.2.840.10008.1.2.1")
        : mSyntax(transferSyntax)
    { }
    DicomMaker& Text(quint32 tag, const char* type, QByteArray value, char padding = ' ')
    {
        if (value.size() % 2) {
            value.append(padding);
        }
        return Element(tag, type, value);
    }
    DicomMaker& Short(quint32 tag, const QList<quint32>& values)
    {
        QByteArray bytes;
        for (const quint32 value : values) {
            bytes += Number(value, 2);
        }
        return Element(tag, "US", bytes);
    }
    DicomMaker& Element(quint32 tag, const char* type, const QByteArray& value)
    {
        mElements[tag] = Encode(tag, type, value);
        return *this;
    }
    /// Grey or colour pixels of 8 or 16 bits.
    DicomMaker& Picture(quint32 width, quint32 height, quint32 samples, const char* photometric,
                        quint32 allocated, quint32 stored, const QByteArray& pixels)
    {
        Short(0x00280002, {samples}).Text(0x00280004, "CS", photometric);
        if (samples > 1) {
            Short(0x00280006, {0});
        }
        Short(0x00280010, {height}).Short(0x00280011, {width}).Short(0x00280100, {allocated});
        Short(0x00280101, {stored}).Short(0x00280102, {stored - 1}).Short(0x00280103, {0});
        QByteArray even = pixels;
        if (even.size() % 2) {
            even.append('\0');
        }
        return Element(0x7fe00010, allocated > 8 ? "OW" : "OB", even);
    }
    QByteArray DataSet() const
    {
        QByteArray bytes;
        for (const auto& [tag, element] : mElements) {
            bytes += element;
        }
        return bytes;
    }
    QByteArray File() const { return File(DataSet()); }
    QByteArray File(const QByteArray& dataSet) const
    {
        QByteArray syntax = mSyntax;
        if (syntax.size() % 2) {
            syntax.append('\0');
        }
        const QByteArray meta = Encode(0x00020001, "OB", QByteArray("\0\1", 2))
            + Encode(0x00020002, "UI", QByteArray("1.2.840.10008.5.1.4.1.1.7\0", 26))
            + Encode(0x00020003, "UI", "1.2.3.4.") + Encode(0x00020010, "UI", syntax);
        return QByteArray(128, '\0') + "DICM"
            + Encode(0x00020000, "UL", Number(quint32(meta.size()), 4)) + meta + dataSet;
    }
    static QByteArray Number(quint32 value, int bytes)
    {
        QByteArray result;
        for (int i = 0; i < bytes; ++i) {
            result.append(char(value >> 8 * i));
        }
        return result;
    }

private:
    static QByteArray Encode(quint32 tag, const QByteArray& type, const QByteArray& value)
    {
        const QByteArray head = Number(tag >> 16, 2) + Number(tag & 0xffff, 2) + type;
        const bool isLong = type == "OB" || type == "OW" || type == "UN" || type == "UT";
        return head
            + (isLong ? Number(0, 2) + Number(quint32(value.size()), 4)
                      : Number(quint32(value.size()), 2))
            + value;
    }
    QByteArray mSyntax;
    std::map<quint32, QByteArray> mElements;
};

} // namespace quillane::test
