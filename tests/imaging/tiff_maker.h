#pragma once
// Makes TIFF files byte by byte, so that tests know every bit of them.
#include <QByteArray>
#include <QList>
#include <algorithm>
#include <vector>

namespace quillane::test {

/// A directory under construction. Values are 16 or 32-bit numbers, rationals or bytes.
class TiffMaker {
public:
    explicit TiffMaker(bool bigEndian = false) : mBig(bigEndian) { }

    TiffMaker& Short(quint16 tag, const QList<quint32>& values)
    {
        QByteArray bytes;
        for (const quint32 value : values) {
            bytes += Number(value, 2);
        }
        return Add(tag, 3, quint32(values.size()), bytes);
    }
    TiffMaker& Long(quint16 tag, const QList<quint32>& values)
    {
        QByteArray bytes;
        for (const quint32 value : values) {
            bytes += Number(value, 4);
        }
        return Add(tag, 4, quint32(values.size()), bytes);
    }
    TiffMaker& Rational(quint16 tag, quint32 numerator, quint32 denominator)
    {
        return Add(tag, 5, 1, Number(numerator, 4) + Number(denominator, 4));
    }
    TiffMaker& Bytes(quint16 tag, const QByteArray& bytes)
    {
        return Add(tag, 7, quint32(bytes.size()), bytes);
    }
    /// Size, one strip or tile a chunk, and what every picture needs.
    TiffMaker& Picture(quint32 width, quint32 height, const QList<quint32>& bits,
                       quint16 photometric, quint32 rowsPerStrip = 0)
    {
        Long(256, {width}).Long(257, {height}).Short(258, bits).Short(262, {photometric});
        Short(277, {quint32(bits.size())});
        return rowsPerStrip ? Long(278, {rowsPerStrip}) : *this;
    }
    TiffMaker& Compression(quint16 code) { return Short(259, {code}); }
    TiffMaker& Tiles(quint32 width, quint32 height)
    {
        mTiled = true;
        return Long(322, {width}).Long(323, {height});
    }
    /// Pixel bytes of the next strip or tile.
    TiffMaker& Chunk(const QByteArray& bytes)
    {
        mChunks.append(bytes);
        return *this;
    }
    /// A 16-bit number as this file stores it.
    QByteArray Two(quint32 value) const { return Number(value, 2); }
    QByteArray Four(quint32 value) const { return Number(value, 4); }

    /// One page as it lies from `at` on; `next` is the offset of the page behind it.
    QByteArray Page(quint32 at, quint32 next = 0)
    {
        QByteArray data;
        QList<quint32> offsets, counts;
        for (const QByteArray& chunk : mChunks) {
            offsets.append(at + quint32(data.size()));
            counts.append(quint32(chunk.size()));
            data += chunk;
            Pad(data);
        }
        const std::vector<Entry> given = mEntries;
        if (!mChunks.isEmpty()) {
            Long(mTiled ? 324 : 273, offsets).Long(mTiled ? 325 : 279, counts);
        }
        std::vector<Entry> entries = mEntries;
        mEntries = given;
        std::sort(entries.begin(), entries.end(),
                  [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
        QByteArray directory = Number(quint32(entries.size()), 2);
        for (const Entry& entry : entries) {
            QByteArray value = entry.bytes;
            if (value.size() > 4) {
                const quint32 offset = at + quint32(data.size());
                data += value;
                Pad(data);
                value = Number(offset, 4);
            }
            directory += Number(entry.tag, 2) + Number(entry.type, 2) + Number(entry.count, 4)
                + value.leftJustified(4, '\0');
        }
        mDirectoryAt = at + quint32(data.size());
        return data + directory + Number(next, 4);
    }
    quint32 DirectoryAt() const { return mDirectoryAt; } ///< of the last Page
    /// A file of this one page.
    QByteArray File()
    {
        const QByteArray page = Page(8);
        return Head(mDirectoryAt) + page;
    }
    QByteArray Head(quint32 firstDirectory) const
    {
        return QByteArray(mBig ? "MM" : "II") + Number(42, 2) + Number(firstDirectory, 4);
    }

private:
    struct Entry {
        quint16 tag, type;
        quint32 count;
        QByteArray bytes;
    };
    TiffMaker& Add(quint16 tag, quint16 type, quint32 count, const QByteArray& bytes)
    {
        mEntries.push_back({tag, type, count, bytes});
        return *this;
    }
    static void Pad(QByteArray& data)
    {
        if (data.size() % 2) {
            data.append('\0');
        }
    }
    QByteArray Number(quint32 value, int bytes) const
    {
        QByteArray result;
        for (int i = 0; i < bytes; ++i) {
            result.append(char(value >> 8 * (mBig ? bytes - 1 - i : i)));
        }
        return result;
    }

    bool mBig;
    bool mTiled = false;
    std::vector<Entry> mEntries;
    QList<QByteArray> mChunks;
    quint32 mDirectoryAt = 0;
};

} // namespace quillane::test
