#include "fpx_maker.h"
#include "picture_maker.h"
#include <QStringList>

namespace quillane::making {

namespace {

constexpr int kSector = 512;
constexpr int kSmall = 64;
constexpr int kSmallBelow = 4096;
constexpr quint32 kEnd = 0xfffffffe;
constexpr quint32 kNone = 0xffffffff;

struct Entry {
    QString name;
    int kind = 2; ///< 1 storage, 2 stream, 5 root
    quint32 child = kNone, right = kNone, start = kEnd;
    quint32 size = 0;
};

QByteArray EntryBytes(const Entry& entry)
{
    QByteArray bytes;
    for (const QChar c : entry.name) {
        bytes += Little(c.unicode(), 2);
    }
    bytes = bytes.leftJustified(64, '\0', true);
    bytes += Little(quint32(entry.name.size() + 1) * 2, 2);
    bytes += char(entry.kind);
    bytes += '\1';
    bytes += Little(kNone, 4) + Little(entry.right, 4) + Little(entry.child, 4);
    bytes += QByteArray(36, '\0');
    return bytes + Little(entry.start, 4) + Little(entry.size, 4) + Little(0, 4);
}

QByteArray Padded(QByteArray bytes, int to)
{
    return bytes + QByteArray((to - bytes.size() % to) % to, '\0');
}

/// Appends a run of sectors to a table of chains; the first sector's number.
quint32 ChainOf(QList<quint32>& table, qsizetype bytes, int sector)
{
    const quint32 first = quint32(table.size());
    const qsizetype count = (bytes + sector - 1) / sector;
    for (qsizetype i = 0; i < count; ++i) {
        table.append(i + 1 < count ? first + quint32(i) + 1 : kEnd);
    }
    return count > 0 ? first : kEnd;
}

QByteArray TableBytes(const QList<quint32>& table)
{
    QByteArray bytes;
    for (const quint32 next : table) {
        bytes += Little(next, 4);
    }
    while (bytes.size() % kSector != 0) {
        bytes += Little(kNone, 4);
    }
    return bytes;
}

} // namespace

QByteArray MakeCompound(const QMap<QString, QByteArray>& streams)
{
    QList<Entry> entries{{"Root Entry", 5}};
    QList<quint32> table;
    QList<quint32> smallTable;
    QByteArray sectors;
    QByteArray smalls;
    QMap<QString, int> storages{{"", 0}};
    const auto attach = [&](int storage, const Entry& entry) {
        Entry added = entry;
        added.right = entries[storage].child; // a list of siblings is a tree too
        entries[storage].child = quint32(entries.size());
        entries.append(added);
        return int(entries.size()) - 1;
    };
    for (auto stream = streams.begin(); stream != streams.end(); ++stream) {
        QStringList parts = stream.key().split('/');
        const QString leaf = parts.takeLast();
        int storage = 0;
        QString path;
        for (const QString& part : parts) {
            path += part + "/";
            if (!storages.contains(path)) {
                storages.insert(path, attach(storage, {part, 1}));
            }
            storage = storages.value(path);
        }
        Entry entry{leaf, 2};
        entry.size = quint32(stream->size());
        if (stream->size() < kSmallBelow) {
            entry.start = ChainOf(smallTable, stream->size(), kSmall);
            smalls += Padded(*stream, kSmall);
        } else {
            entry.start = ChainOf(table, stream->size(), kSector);
            sectors += Padded(*stream, kSector);
        }
        attach(storage, entry);
    }
    entries[0].start = ChainOf(table, smalls.size(), kSector);
    entries[0].size = quint32(smalls.size());
    sectors += Padded(smalls, kSector);
    const QByteArray smallBytes = TableBytes(smallTable);
    const quint32 smallStart = ChainOf(table, smallBytes.size(), kSector);
    sectors += smallBytes;
    QByteArray directory;
    for (const Entry& entry : entries) {
        directory += EntryBytes(entry);
    }
    const quint32 directoryStart = ChainOf(table, directory.size(), kSector);
    sectors += Padded(directory, kSector);
    // The table's own sectors come last; they have to be counted in.
    int tables = 1;
    while ((table.size() + tables) * 4 > tables * kSector) {
        ++tables;
    }
    const quint32 tableStart = quint32(table.size());
    for (int i = 0; i < tables; ++i) {
        table.append(0xfffffffd);
    }
    sectors += TableBytes(table);
    QByteArray header("\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", 8);
    header += QByteArray(16, '\0') + Little(0x3e, 2) + Little(3, 2) + Little(0xfffe, 2);
    header += Little(9, 2) + Little(6, 2) + QByteArray(10, '\0') + Little(quint32(tables), 4);
    header += Little(directoryStart, 4) + Little(0, 4) + Little(kSmallBelow, 4);
    header += Little(smallStart, 4) + Little(quint32(smallBytes.size() / kSector), 4);
    header += Little(kEnd, 4) + Little(0, 4);
    for (int i = 0; i < 109; ++i) {
        header += Little(i < tables ? tableStart + quint32(i) : kNone, 4);
    }
    return header + sectors;
}

QByteArray MakeFpx(const FpxMake& make)
{
    QMap<QString, QByteArray> streams;
    QList<QPair<quint32, QByteArray>> properties;
    for (qsizetype i = 0; i < make.resolutions.size(); ++i) {
        QByteArray colour = Little(1, 4) + Little(quint32(make.channels.size()), 4);
        for (const quint32 channel : make.channels) {
            colour += Little(channel, 4);
        }
        properties.append({0x02000002 | quint32(i) << 16, colour});
        const FpxResolutionMake& resolution = make.resolutions[i];
        QByteArray table;
        QByteArray data(28, '\0');
        for (const FpxTileMake& tile : resolution.tiles) {
            const quint32 at = tile.sharesFirst ? 0 : quint32(data.size() - 28);
            const QByteArray& bytes =
                tile.sharesFirst ? resolution.tiles.first().bytes : tile.bytes;
            table += Little(at, 4) + Little(quint32(bytes.size()), 4)
                + Little(quint32(tile.packing), 4) + tile.detail;
            data += tile.bytes;
        }
        const QByteArray header = QByteArray(28, '\0') + Little(36, 4)
            + Little(quint32(resolution.size.width()), 4)
            + Little(quint32(resolution.size.height()), 4)
            + Little(quint32(resolution.tiles.size()), 4) + Little(quint32(make.tileSide), 4)
            + Little(quint32(make.tileSide), 4) + Little(quint32(make.channels.size()), 4)
            + Little(36, 4) + Little(16, 4) + table;
        const QString storage =
            make.store + QString("Resolution %1/").arg(i, 4, 10, QLatin1Char('0'));
        streams.insert(storage + "Subimage 0000 Header", header);
        streams.insert(storage + "Subimage 0000 Data", data);
    }
    for (auto one = make.tables.begin(); one != make.tables.end(); ++one) {
        properties.append({0x03000001 | quint32(one.key()) << 16, *one});
    }
    QByteArray index;
    QByteArray values;
    const qsizetype valuesAt = 8 + 8 * properties.size();
    for (const auto& [id, blob] : properties) {
        index += Little(id, 4) + Little(quint32(valuesAt + values.size()), 4);
        values += Little(0x41, 4) + Little(quint32(blob.size()), 4) + Padded(blob, 4);
    }
    const QByteArray section =
        Little(quint32(valuesAt + values.size()), 4) + Little(quint32(properties.size()), 4);
    streams.insert(make.store + "\x05Image Contents",
                   Little(0xfffe, 2) + QByteArray(22, '\0') + Little(1, 4) + QByteArray(16, '\0')
                       + Little(48, 4) + section + index + values);
    return MakeCompound(streams);
}

namespace {

/// Walks the segments before the picture's data; tells each with its marker.
template <typename Walker> qsizetype WalkSegments(const QByteArray& jpeg, Walker&& walker)
{
    qsizetype at = 2;
    while (at + 4 < jpeg.size() && uchar(jpeg[at + 1]) != 0xda) {
        const qsizetype size = 2 + (uchar(jpeg[at + 2]) << 8 | uchar(jpeg[at + 3]));
        walker(uchar(jpeg[at + 1]), jpeg.mid(at, size));
        at += size;
    }
    return at;
}

bool IsTable(uchar marker)
{
    return marker == 0xdb || marker == 0xc4;
}

} // namespace

QByteArray JpegTablesOf(const QByteArray& jpeg)
{
    QByteArray tables("\xff\xd8", 2);
    WalkSegments(jpeg, [&](uchar marker, const QByteArray& segment) {
        tables += IsTable(marker) ? segment : QByteArray();
    });
    return tables + QByteArray("\xff\xd9", 2);
}

QByteArray JpegWithoutTables(const QByteArray& jpeg)
{
    QByteArray picture("\xff\xd8", 2);
    const qsizetype data = WalkSegments(jpeg, [&](uchar marker, const QByteArray& segment) {
        picture += IsTable(marker) || marker == 0xe0 ? QByteArray() : segment;
    });
    return picture + jpeg.mid(data);
}

} // namespace quillane::making
