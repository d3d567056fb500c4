#include "imaging/comments/exif_lift.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/comments/slots.h"
#include "imaging/limits.h"
#include <QtEndian>
#include <algorithm>
#include <vector>

namespace quillane {

namespace {

constexpr quint16 kLiftExifPointer = 0x8769;
constexpr quint16 kLiftGpsPointer = 0x8825;
constexpr quint16 kLiftLong = 4;
constexpr quint16 kLiftLong8 = 16; ///< types of BigTIFF alone
constexpr quint16 kLiftIfd8 = 18;
constexpr int kLiftMaxEntries = 1000; ///< of one directory; real ones have a few dozen
/// Bytes of one value by type 1 to 12 (TIFF 6.0, section 2); type 13 is a LONG.
constexpr quint8 kLiftTypeBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};

/// One field as it will stand in the small structure.
struct LiftedField {
    quint16 tag = 0;
    quint16 type = 0;
    quint32 count = 0;
    QByteArray value;
};
using LiftedDirectory = std::vector<LiftedField>;

/// How many values of a field its slot can use.
qint64 LiftWantedCount(SlotShape shape)
{
    switch (shape) {
    case SlotShape::Integer:
    case SlotShape::Rational:
        return 1;
    case SlotShape::RationalTriple:
        return 3;
    default:
        return limits::kMaxTextBytes;
    }
}

class ExifLift {
public:
    explicit ExifLift(ByteSource& source) : mSource(source), mWindow(source) { }

    QByteArray Run()
    {
        const qint64 first = ReadMark();
        if (first < 8) {
            return {};
        }
        LiftedDirectory tiff = ReadDirectory(first, SlotHome::TiffDirectory);
        if (!mEntrySeen) {
            return {};
        }
        LiftedDirectory exif, gps;
        if (mExifAt >= 8) {
            exif = ReadDirectory(mExifAt, SlotHome::ExifDirectory);
        }
        if (mGpsAt >= 8) {
            gps = ReadDirectory(mGpsAt, SlotHome::GpsDirectory);
        }
        return Write(tiff, exif, gps);
    }

private:
    /// One entry as the file states it.
    struct Entry {
        const CommentSlot* slot;
        quint16 tag;
        quint16 type;
        qint64 count;
        qint64 valueAt;
    };

    quint16 Short(const uchar* p) const { return mBig ? codecs::Big16(p) : codecs::Little16(p); }
    quint32 Long(const uchar* p) const { return mBig ? codecs::Big32(p) : codecs::Little32(p); }
    qint64 Wide(const uchar* p) const
    {
        return qint64(mBig ? qFromBigEndian<quint64>(p) : qFromLittleEndian<quint64>(p));
    }
    /// A count or an offset, as wide as the structure has them.
    qint64 Number(const uchar* p) const { return mWide ? Wide(p) : qint64(Long(p)); }

    /// A directory's place in an entry; a BigTIFF may have it 32 bits wide too.
    qint64 Pointer(const uchar* p, quint16 type) const
    {
        const bool wide = mWide && (type == kLiftLong8 || type == kLiftIfd8);
        return wide ? Wide(p) : qint64(Long(p));
    }

    /// Place of the first directory, 0 for no TIFF structure.
    qint64 ReadMark()
    {
        const uchar* head = mWindow.At(0, 8);
        if (!head || head[0] != head[1] || (head[0] != 'I' && head[0] != 'M')) {
            return 0;
        }
        mBig = head[0] == 'M';
        const quint16 version = Short(head + 2);
        mWide = version == 43;
        if (version != 42 && !mWide) {
            return 0;
        }
        const uchar* first = mWide ? mWindow.At(8, 8) : head + 4;
        return first ? Number(first) : 0;
    }

    LiftedDirectory ReadDirectory(qint64 at, SlotHome home)
    {
        const int countBytes = mWide ? 8 : 2;
        const int entryBytes = mWide ? 20 : 12;
        const uchar* counter = mWindow.At(at, countBytes);
        if (!counter) {
            return {};
        }
        const qint64 stated = mWide ? Wide(counter) : Short(counter);
        const qint64 count = std::clamp<qint64>(stated, 0, kLiftMaxEntries);
        // The entries first and then their values, which stand behind them: so the file is read
        // in one direction.
        std::vector<Entry> entries;
        for (qint64 i = 0; i < count; ++i) {
            const qint64 entryAt = at + countBytes + i * entryBytes;
            const uchar* p = mWindow.At(entryAt, entryBytes);
            if (!p) {
                break;
            }
            mEntrySeen = true;
            ReadEntry(p, entryAt, home, entries);
        }
        std::stable_sort(entries.begin(), entries.end(),
                         [](const Entry& a, const Entry& b) { return a.valueAt < b.valueAt; });
        LiftedDirectory fields;
        for (const Entry& entry : entries) {
            LiftValue(entry, fields);
        }
        std::stable_sort(fields.begin(), fields.end(),
                         [](const LiftedField& a, const LiftedField& b) { return a.tag < b.tag; });
        return fields;
    }

    void ReadEntry(const uchar* p, qint64 entryAt, SlotHome home, std::vector<Entry>& entries)
    {
        const quint16 tag = Short(p);
        const quint16 type = Short(p + 2);
        const uchar* value = p + (mWide ? 12 : 8);
        if (home == SlotHome::TiffDirectory && tag == kLiftExifPointer) {
            mExifAt = Pointer(value, type);
            return;
        }
        if (home == SlotHome::TiffDirectory && tag == kLiftGpsPointer) {
            mGpsAt = Pointer(value, type);
            return;
        }
        const CommentSlot* slot = SlotOf(home, tag);
        const qint64 count = Number(p + 4);
        if (!slot || type == 0 || type >= std::size(kLiftTypeBytes) || count < 1
            || std::any_of(entries.begin(), entries.end(),
                           [&](const Entry& entry) { return entry.tag == tag; })) {
            return;
        }
        // Compared by division: a hostile count times the width need not fit.
        const bool inlined = count <= (mWide ? 8 : 4) / kLiftTypeBytes[type];
        const qint64 valueAt = inlined ? entryAt + (value - p) : Number(value);
        entries.push_back({slot, tag, type, count, valueAt});
    }

    static const CommentSlot* SlotOf(SlotHome home, quint16 tag)
    {
        for (const CommentSlot& slot : CommentSlots()) {
            if (slot.home == home && slot.tag == tag) {
                return &slot;
            }
        }
        return nullptr;
    }

    void LiftValue(const Entry& entry, LiftedDirectory& fields)
    {
        const qint64 width = kLiftTypeBytes[entry.type];
        if (entry.count > limits::kMaxFieldBytes / width) {
            return;
        }
        const qint64 count = std::min(entry.count, LiftWantedCount(entry.slot->shape));
        const qint64 bytes = count * width;
        if (bytes > limits::kMaxTextBytes || mLifted + bytes > limits::kMaxFieldBytes
            || entry.valueAt < 0 || entry.valueAt > mSource.Size() - bytes) {
            return;
        }
        QByteArray value(qsizetype(bytes), Qt::Uninitialized);
        if (bytes <= codecs::ByteWindow::kWidth) {
            const uchar* p = mWindow.At(entry.valueAt, bytes);
            if (!p) {
                return;
            }
            std::copy(p, p + bytes, value.begin());
        } else if (mSource.ReadAt(entry.valueAt, value.data(), bytes) != bytes) {
            return;
        }
        mLifted += bytes;
        fields.push_back({entry.tag, entry.type, quint32(count), std::move(value)});
    }

    void PutShort(QByteArray& out, quint16 value) const
    {
        char bytes[2];
        mBig ? qToBigEndian(value, bytes) : qToLittleEndian(value, bytes);
        out.append(bytes, 2);
    }
    void PutLong(QByteArray& out, quint32 value) const
    {
        char bytes[4];
        mBig ? qToBigEndian(value, bytes) : qToLittleEndian(value, bytes);
        out.append(bytes, 4);
    }

    static qint64 DirectoryBytes(const LiftedDirectory& directory)
    {
        return 2 + 12 * qint64(directory.size()) + 4;
    }
    LiftedField PointerField(quint16 tag, qint64 to) const
    {
        QByteArray value;
        PutLong(value, quint32(to));
        return {tag, kLiftLong, 1, value};
    }

    /// The small structure: the three directories one after the other, then the longer values.
    QByteArray Write(LiftedDirectory& tiff, const LiftedDirectory& exif,
                     const LiftedDirectory& gps) const
    {
        const qint64 pointers = (exif.empty() ? 0 : 1) + (gps.empty() ? 0 : 1);
        const qint64 exifAt = 8 + DirectoryBytes(tiff) + 12 * pointers;
        const qint64 gpsAt = exifAt + (exif.empty() ? 0 : DirectoryBytes(exif));
        const qint64 valuesAt = gpsAt + (gps.empty() ? 0 : DirectoryBytes(gps));
        if (!exif.empty()) {
            tiff.push_back(PointerField(kLiftExifPointer, exifAt));
        }
        if (!gps.empty()) {
            tiff.push_back(PointerField(kLiftGpsPointer, gpsAt));
        }
        std::stable_sort(tiff.begin(), tiff.end(),
                         [](const LiftedField& a, const LiftedField& b) { return a.tag < b.tag; });
        QByteArray out;
        out.reserve(qsizetype(valuesAt + mLifted + 64));
        out.append(mBig ? "MM" : "II");
        PutShort(out, 42);
        PutLong(out, 8);
        QByteArray values;
        for (const LiftedDirectory* directory : {&std::as_const(tiff), &exif, &gps}) {
            if (directory->empty() && directory != &tiff) {
                continue;
            }
            WriteDirectory(*directory, valuesAt, out, values);
        }
        return out + values;
    }

    void WriteDirectory(const LiftedDirectory& directory, qint64 valuesAt, QByteArray& out,
                        QByteArray& values) const
    {
        PutShort(out, quint16(directory.size()));
        for (const LiftedField& field : directory) {
            PutShort(out, field.tag);
            PutShort(out, field.type);
            PutLong(out, field.count);
            if (field.value.size() <= 4) {
                out.append(field.value).append(4 - field.value.size(), '\0');
            } else {
                PutLong(out, quint32(valuesAt + values.size()));
                values.append(field.value);
                if (values.size() % 2 != 0) {
                    values.append('\0');
                }
            }
        }
        PutLong(out, 0);
    }

    ByteSource& mSource;
    codecs::ByteWindow mWindow;
    bool mBig = false;
    bool mWide = false; ///< BigTIFF: counts and offsets of 64 bits
    bool mEntrySeen = false;
    qint64 mExifAt = 0;
    qint64 mGpsAt = 0;
    qint64 mLifted = 0; ///< bytes of values so far
};

} // namespace

QByteArray LiftExif(ByteSource& source)
{
    return ExifLift(source).Run();
}

} // namespace quillane
