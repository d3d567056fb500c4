#include "comment_files.h"

#include <algorithm>
#include <array>

namespace quillane::making {

namespace {

QByteArray BigNumber(quint64 value, int bytes)
{
    QByteArray result;
    for (int i = bytes - 1; i >= 0; --i) {
        result.append(char(value >> 8 * i));
    }
    return result;
}

quint32 Crc32(const QByteArray& bytes)
{
    quint32 crc = ~0u;
    for (const char c : bytes) {
        crc ^= uchar(c);
        for (int bit = 0; bit < 8; ++bit) {
            crc = crc & 1 ? crc >> 1 ^ 0xedb88320u : crc >> 1;
        }
    }
    return ~crc;
}

QByteArray Deflated(const QByteArray& text)
{
    return qCompress(text).sliced(4); // without the length that the toolkit puts before it
}

} // namespace

ExifMaker::ExifMaker(bool bigEndian, bool bigTiff) : mBig(bigEndian), mWide(bigTiff)
{ }

QByteArray ExifMaker::Number(qint64 value, int bytes) const
{
    QByteArray result = BigNumber(quint64(value), bytes);
    if (!mBig) {
        std::reverse(result.begin(), result.end());
    }
    return result;
}

ExifMaker& ExifMaker::Ascii(Directory directory, quint16 tag, const QByteArray& text)
{
    const QByteArray ended = text + '\0';
    return Field(directory, tag, {2, quint32(ended.size()), ended});
}

ExifMaker& ExifMaker::Bytes(Directory directory, quint16 tag, const QByteArray& bytes, quint16 type)
{
    return Field(directory, tag, {type, quint32(bytes.size()), bytes});
}

ExifMaker& ExifMaker::Short(Directory directory, quint16 tag, const QList<qint64>& values)
{
    QByteArray bytes;
    for (const qint64 value : values) {
        bytes += Number(value, 2);
    }
    return Field(directory, tag, {3, quint32(values.size()), bytes});
}

ExifMaker& ExifMaker::Long(Directory directory, quint16 tag, const QList<qint64>& values,
                           quint16 type)
{
    QByteArray bytes;
    for (const qint64 value : values) {
        bytes += Number(value, 4);
    }
    return Field(directory, tag, {type, quint32(values.size()), bytes});
}

ExifMaker& ExifMaker::Rational(Directory directory, quint16 tag, const QList<qint64>& parts,
                               quint16 type)
{
    QByteArray bytes;
    for (const qint64 part : parts) {
        bytes += Number(part, 4);
    }
    return Field(directory, tag, {type, quint32(parts.size() / 2), bytes});
}

ExifMaker& ExifMaker::Field(Directory directory, quint16 tag, const ExifField& field)
{
    mDirectories[directory][tag] = field;
    return *this;
}

ExifMaker& ExifMaker::PointTo(Directory directory, quint32 offset)
{
    mPointers[directory] = offset;
    return *this;
}

QByteArray ExifMaker::Entry(quint16 tag, const ExifField& field, qint64 valuesAt,
                            QByteArray& values) const
{
    const int width = mWide ? 8 : 4;
    QByteArray entry = Number(tag, 2) + Number(field.type, 2) + Number(field.count, width);
    if (field.value.size() <= width) {
        return entry + field.value + QByteArray(width - field.value.size(), '\0');
    }
    entry += Number(valuesAt + values.size(), width);
    values += field.value;
    return entry;
}

QByteArray ExifMaker::Block() const
{
    const int head = mWide ? 16 : 8;
    const int countBytes = mWide ? 8 : 2;
    const int entryBytes = mWide ? 20 : 12;
    const int nextBytes = mWide ? 8 : 4;
    std::array<std::map<quint16, ExifField>, 3> all{mDirectories[0], mDirectories[1],
                                                    mDirectories[2]};
    const std::pair<Directory, quint16> pointers[] = {{Exif, 0x8769}, {Gps, 0x8825}};
    for (const auto& [directory, tag] : pointers) {
        if (!all[directory].empty() || mPointers.contains(directory)) {
            all[Tiff][tag] = {4, 1, Number(0, 4)};
        }
    }
    std::array<qint64, 4> places{head, 0, 0, 0};
    for (size_t i = 0; i < 3; ++i) {
        places[i + 1] = places[i] + countBytes + entryBytes * qint64(all[i].size()) + nextBytes;
    }
    for (const auto& [directory, tag] : pointers) {
        if (all[Tiff].contains(tag)) {
            const auto stated = mPointers.find(directory);
            const qint64 to = stated == mPointers.end() ? places[directory] : stated->second;
            all[Tiff][tag].value = Number(to, 4);
        }
    }
    QByteArray block = QByteArray(mBig ? "MM" : "II")
        + (mWide ? Number(43, 2) + Number(8, 2) + Number(0, 2) + Number(head, 8)
                 : Number(42, 2) + Number(head, 4));
    QByteArray values;
    for (const auto& directory : all) {
        block += Number(qint64(directory.size()), countBytes);
        for (const auto& [tag, field] : directory) {
            block += Entry(tag, field, places[3], values);
        }
        block += Number(0, nextBytes);
    }
    return block + values;
}

QByteArray JpegSegment(quint8 marker, const QByteArray& content)
{
    return QByteArray("\xff") + char(marker) + BigNumber(quint64(content.size() + 2), 2) + content;
}

QByteArray JpegWith(const QByteArray& segments)
{
    const QByteArray frame = JpegSegment(0xc0, QByteArray::fromHex("080001000101011100"));
    const QByteArray scan = JpegSegment(0xda, QByteArray::fromHex("0101003f00"));
    return QByteArray("\xff\xd8") + segments + frame + scan + QByteArray("\0\xff\xd9", 3);
}

QByteArray JpegWithExif(const QByteArray& block)
{
    return JpegWith(JpegSegment(0xe1, QByteArray("Exif\0\0", 6) + block));
}

QByteArray PngChunk(const QByteArray& type, const QByteArray& content)
{
    return BigNumber(quint64(content.size()), 4) + type + content
        + BigNumber(Crc32(type + content), 4);
}

QByteArray PngText(const QByteArray& keyword, const QByteArray& text)
{
    return PngChunk("tEXt", keyword + '\0' + text);
}

QByteArray PngCompressedText(const QByteArray& keyword, const QByteArray& text)
{
    return PngChunk("zTXt", keyword + QByteArray(2, '\0') + Deflated(text));
}

QByteArray PngUtf8Text(const QByteArray& keyword, const QByteArray& text, bool compressed)
{
    return PngChunk("iTXt",
                    keyword + '\0' + char(compressed ? 1 : 0) + QByteArray(3, '\0')
                        + (compressed ? Deflated(text) : text));
}

QByteArray PngWith(const QByteArray& before, const QByteArray& behind)
{
    const QByteArray size = BigNumber(1, 4) + BigNumber(1, 4) + QByteArray("\x08\0\0\0\0", 5);
    return QByteArray::fromHex("89504e470d0a1a0a") + PngChunk("IHDR", size) + before
        + PngChunk("IDAT", Deflated(QByteArray(2, '\0'))) + behind + PngChunk("IEND", {});
}

QByteArray GifExtension(quint8 label, const QByteArray& content)
{
    QByteArray bytes = QByteArray("\x21") + char(label);
    for (qsizetype at = 0; at < content.size(); at += 255) {
        const QByteArray part = content.mid(at, 255);
        bytes += char(part.size()) + part;
    }
    return bytes + '\0';
}

QByteArray GifWith(const QByteArray& before, const QByteArray& behind)
{
    return "GIF89a" + QByteArray::fromHex("01000100800000000000ffffff") + before
        + QByteArray::fromHex("2c0000000001000100000202440100") + behind + ';';
}

} // namespace quillane::making
