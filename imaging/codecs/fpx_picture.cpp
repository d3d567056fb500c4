#include "imaging/codecs/fpx_picture.h"
#include "imaging/codecs/codec_support.h"
#include <algorithm>

namespace quillane::codecs {

namespace {

constexpr char kFpxName[] = "FlashPix";
constexpr int kFpxStreamHead = 28; ///< before what every stream has to say
constexpr int kFpxHeaderBytes = 36;
constexpr qint64 kFpxMostContents = 4ll << 20; ///< bytes of the property set
constexpr int kFpxMostProperties = 4'000;
constexpr int kFpxLeastTile = 8;
constexpr int kFpxMostTile = 1024;
constexpr quint32 kFpxBlob = 0x41;         ///< type of a property that is bytes
constexpr quint32 kFpxColourMask = 0xffff; ///< colour property: number of resolution in between
constexpr int kFpxMostResolutions = 24;

} // namespace

FpxPicture::FpxPicture(ByteSource& source) : mFile(source, kFpxName)
{
    const qint32 store = FindStore();
    if (store < 0) {
        Damaged(kFpxName, QStringLiteral("it holds no picture"));
    }
    ReadContents(store);
    for (const qint32 index : mFile.Inside(store)) {
        const QString& name = mFile.At(index).name;
        bool sound = false;
        const int number = QStringView(name).mid(11).toInt(&sound);
        if (name.startsWith(u"Resolution ", Qt::CaseInsensitive) && sound
            && mResolutions.size() < kFpxMostResolutions) {
            ReadResolution(index, number);
        }
    }
    if (mResolutions.empty()) {
        Damaged(kFpxName, QStringLiteral("none of its resolutions can be read"));
    }
    std::sort(mResolutions.begin(), mResolutions.end(),
              [](const FpxResolution& a, const FpxResolution& b) {
                  return a.size.width() * qint64(a.size.height())
                      < b.size.width() * qint64(b.size.height());
              });
    ReadColour(mColours.value(quint32(mResolutions.back().number)));
    const int channels = mResolutions.back().channels;
    if (channels != (mSpace == FpxSpace::Grey ? 1 : 3) + int(mAlpha)) {
        Unsupported(kFpxName, QStringLiteral("has %1 channels in an unknown order").arg(channels));
    }
    std::erase_if(mResolutions, [&](const FpxResolution& one) { return one.channels != channels; });
}

/// The storage with the resolutions: the first data object of a view, or the file itself.
qint32 FpxPicture::FindStore() const
{
    qint32 first = -1;
    for (const qint32 index : mFile.Inside(0)) {
        const QString& name = mFile.At(index).name;
        if (name.startsWith(u"Data Object Store ", Qt::CaseInsensitive)
            && (first < 0 || name < mFile.At(first).name)) {
            first = index;
        }
    }
    if (first < 0 && mFile.Find(0, u"\x05Image Contents") >= 0) {
        return 0;
    }
    return first;
}

/// The property set "Image Contents": colours of the resolutions and tables of JPEG tiles.
void FpxPicture::ReadContents(qint32 store)
{
    const qint32 index = mFile.Find(store, u"\x05Image Contents");
    if (index < 0) {
        Damaged(kFpxName, QStringLiteral("it does not describe its picture"));
    }
    CompoundStream stream = mFile.Open(index);
    const QByteArray bytes = stream.Head(kFpxMostContents);
    const uchar* p = reinterpret_cast<const uchar*>(bytes.constData());
    const qint64 size = bytes.size();
    // Where the first section begins stands behind the header and the section's identifier.
    const qint64 section = size >= 48 ? Little32(p + 44) : size;
    if (section > size - 8) {
        Damaged(kFpxName, QStringLiteral("the description of its picture is cut short"));
    }
    const quint32 count = std::min<quint32>(Little32(p + section + 4), kFpxMostProperties);
    for (quint32 i = 0; i < count && section + 16 + 8 * qint64(i) <= size; ++i) {
        const uchar* entry = p + section + 8 + 8 * qint64(i);
        const quint32 id = Little32(entry);
        const qint64 at = section + Little32(entry + 4);
        if (at > size - 8 || Little32(p + at) != kFpxBlob) {
            continue;
        }
        const qint64 length = std::min<qint64>(Little32(p + at + 4), size - at - 8);
        const QByteArray blob = bytes.mid(at + 8, length);
        if (id >> 24 == 3 && (id & kFpxColourMask) == 1) {
            mTables.insert(int(id >> 16 & 255), blob);
        } else if (id >> 24 == 2 && (id & kFpxColourMask) == 2) {
            mColours.insert(id >> 16 & 255, blob);
        }
    }
}

/// Channels and colour space: each channel has its space above its own number.
void FpxPicture::ReadColour(const QByteArray& blob)
{
    constexpr quint32 kUncalibrated = 0x80000000, kPremultiplied = 0x8000, kOpacity = 0x7ffe;
    const uchar* p = reinterpret_cast<const uchar*>(blob.constData());
    if (blob.size() < 12) {
        Damaged(kFpxName, QStringLiteral("it does not tell its colours"));
    }
    const qint64 channels = std::min<qint64>(Little32(p + 4), (blob.size() - 8) / 4);
    quint32 space = 0;
    for (qint64 i = 0; i < channels; ++i) {
        const quint32 channel = Little32(p + 8 + 4 * i) & ~kUncalibrated;
        if (i == 0) {
            space = channel >> 16;
            mPremultiplied = (channel & kPremultiplied) != 0;
        }
        mAlpha = mAlpha || (channel & kOpacity) == kOpacity;
    }
    switch (space) {
    case 0:
    case 1:
        mSpace = FpxSpace::Grey;
        break;
    case 2:
        mSpace = FpxSpace::PhotoYcc;
        break;
    case 3:
        mSpace = FpxSpace::Rgb;
        break;
    default:
        Unsupported(kFpxName, QStringLiteral("has colours of kind %1").arg(space));
    }
    if (channels == 1) {
        mAlpha = false; // opacity alone is shown as grey
        mSpace = FpxSpace::Grey;
    }
}

bool FpxPicture::ReadResolution(qint32 storage, int number)
{
    const qint32 header = mFile.Find(storage, u"Subimage 0000 Header");
    const qint32 data = mFile.Find(storage, u"Subimage 0000 Data");
    if (header < 0 || data < 0 || !mFile.At(header).isStream || !mFile.At(data).isStream) {
        return false;
    }
    CompoundStream stream = mFile.Open(header);
    uchar p[kFpxHeaderBytes];
    if (stream.ReadAt(kFpxStreamHead, p, sizeof(p)) != qint64(sizeof(p))) {
        return false;
    }
    const qint64 width = Little32(p + 4);
    const qint64 height = Little32(p + 8);
    const qint64 tileWidth = Little32(p + 16);
    const qint64 tileHeight = Little32(p + 20);
    const qint64 table = Little32(p + 28);
    const qint64 entry = Little32(p + 32);
    CheckSides(kFpxName, width, height);
    if (tileWidth < kFpxLeastTile || tileWidth > kFpxMostTile || tileHeight < kFpxLeastTile
        || tileHeight > kFpxMostTile || entry < 16 || entry > 256) {
        return false;
    }
    const qint64 across = (width + tileWidth - 1) / tileWidth;
    const qint64 down = (height + tileHeight - 1) / tileHeight;
    FpxResolution resolution;
    resolution.size = QSize(int(width), int(height));
    resolution.tile = QSize(int(tileWidth), int(tileHeight));
    resolution.channels = int(std::min<quint32>(Little32(p + 24), 100));
    resolution.data = data;
    resolution.number = number;
    // What the header claims must be in it.
    const qint64 room = std::max<qint64>(0, stream.Size() - kFpxStreamHead - table) / entry;
    const qint64 count = std::min<qint64>({qint64(Little32(p + 12)), across * down, room});
    if (count < 1) {
        return false;
    }
    resolution.tiles.resize(size_t(count));
    QByteArray bytes(qsizetype(count * entry), Qt::Uninitialized);
    bytes.resize(stream.ReadAt(kFpxStreamHead + table, bytes.data(), bytes.size()));
    for (qint64 i = 0; i < count && (i + 1) * entry <= bytes.size(); ++i) {
        const uchar* from = reinterpret_cast<const uchar*>(bytes.constData()) + i * entry;
        FpxTile& tile = resolution.tiles[size_t(i)];
        tile.at = Little32(from);
        tile.size = Little32(from + 4);
        tile.packing = Little32(from + 8);
        std::copy_n(from + 12, 4, tile.detail);
    }
    mResolutions.push_back(std::move(resolution));
    return true;
}

} // namespace quillane::codecs
