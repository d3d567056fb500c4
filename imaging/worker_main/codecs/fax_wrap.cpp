#include "imaging/worker_main/codecs/fax_wrap.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <algorithm>
#include <cstring>

namespace quillane::worker {

namespace {

QByteArray FaxLittle(quint32 value, int bytes)
{
    QByteArray out;
    for (int i = 0; i < bytes; ++i) {
        out.append(char(value >> (8 * i) & 255));
    }
    return out;
}

/// The TIFF up to its pixels: one strip.
QByteArray FaxTiffHead(const BarePixels& pixels)
{
    struct Entry {
        quint16 tag, type;
        quint32 value;
    };
    constexpr quint16 kShort = 3, kLong = 4;
    const bool colour = pixels.samples == 3;
    const bool grey = pixels.bits == 8 && !colour;
    const Entry entries[] = {
        {256, kLong, quint32(pixels.width)},
        {257, kLong, quint32(pixels.height)},
        {258, kShort, quint32(pixels.bits)}, // all samples alike
        {259, kShort, quint32(pixels.coding)},
        {262, kShort,
         colour                           ? 2u
             : grey || pixels.zeroIsBlack ? 1u
                                          : 0u},
        {266, kShort, pixels.lowBitFirst ? 2u : 1u},
        {273, kLong, 0}, // filled in below
        {277, kShort, quint32(pixels.samples)},
        {278, kLong, quint32(pixels.height)},
        {279, kLong, quint32(pixels.bytes)},
        {292, kLong, pixels.twoDimensional ? 1u : 0u},
    };
    constexpr quint32 kEntries = sizeof(entries) / sizeof(entries[0]);
    constexpr quint32 kEntryBytes = 12;
    constexpr quint32 kBehind = 8 + 2 + kEntries * kEntryBytes + 4;
    constexpr quint32 kSamplesBytes = 6;
    QByteArray head = "II" + FaxLittle(42, 2) + FaxLittle(8, 4) + FaxLittle(kEntries, 2);
    for (const Entry& entry : entries) {
        const bool samples = entry.tag == 258 && colour;
        const quint32 value = entry.tag == 273 ? kBehind + kSamplesBytes
            : samples                          ? kBehind
                                               : entry.value;
        head += FaxLittle(entry.tag, 2) + FaxLittle(entry.type, 2) + FaxLittle(samples ? 3 : 1, 4)
            + FaxLittle(value, 4);
    }
    head += FaxLittle(0, 4);
    for (int i = 0; i < 3; ++i) {
        head += FaxLittle(quint32(pixels.bits), 2);
    }
    return head;
}

/// A head of its own, then a part of another source.
class FaxTiffSource : public ByteSource {
public:
    FaxTiffSource(QByteArray head, ByteSource& body, qint64 from, qint64 bytes)
        : mHead(std::move(head)),
          mBody(body),
          mFrom(from),
          mBytes(bytes)
    { }
    qint64 Size() const override { return mHead.size() + mBytes; }
    qint64 ReadAt(qint64 position, void* to, qint64 count) override
    {
        if (position < 0 || position >= Size()) {
            return 0;
        }
        count = std::min(count, Size() - position);
        char* out = static_cast<char*>(to);
        qint64 done = 0;
        if (position < mHead.size()) {
            done = std::min<qint64>(count, mHead.size() - position);
            std::memcpy(out, mHead.constData() + position, size_t(done));
        }
        if (done < count) {
            done += mBody.ReadAt(mFrom + position + done - mHead.size(), out + done, count - done);
        }
        return done;
    }

private:
    QByteArray mHead;
    ByteSource& mBody;
    qint64 mFrom, mBytes;
};

} // namespace

bool DecodeBarePixels(ByteSource& source, const BarePixels& pixels, const char* format,
                      PictureSink& sink)
{
    const qint64 there = std::min(pixels.bytes, source.Size() - pixels.at);
    if (there <= 0) {
        ThrowFaxDamaged(format, QStringLiteral("it ends before its first row"));
    }
    BarePixels told = pixels;
    told.bytes = there;
    FaxTiffSource tiff(FaxTiffHead(told), source, pixels.at, there);
    try {
        return DecodeTiff(tiff, {}, sink);
    } catch (const Failure& failure) {
        if (failure.Number() != kFailureUnreadable) {
            throw;
        }
        ThrowFaxDamaged(format, QStringLiteral("its pixels cannot be decoded"));
    }
}

QByteArray ReadFaxBytes(ByteSource& source, qint64 count, const char* format, bool whole)
{
    if (whole && source.Size() > count) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This %1 has %2 MB, which is more than can be read.")
                          .arg(QLatin1String(format))
                          .arg(source.Size() >> 20));
    }
    QByteArray bytes(std::min(count, source.Size()), Qt::Uninitialized);
    bytes.resize(source.ReadAt(0, bytes.data(), bytes.size()));
    return bytes;
}

void ThrowFaxDamaged(const char* format, const QString& why)
{
    throw Failure(kFailureUnreadable,
                  QStringLiteral("This %1 is damaged: %2.").arg(QLatin1String(format), why));
}

void ThrowFaxUnsupported(const char* format, const QString& what)
{
    throw Failure(
        kFailureUnreadable,
        QStringLiteral("This %1 %2, which is not supported.").arg(QLatin1String(format), what));
}

void CheckFaxSize(const char* format, qint64 width, qint64 height)
{
    if (width < 1 || height < 1) {
        ThrowFaxDamaged(
            format, QStringLiteral("it claims a size of %1 x %2 pixels").arg(width).arg(height));
    }
    if (width > limits::kMaxSide || height > limits::kMaxSide
        || width * height > limits::kMaxPixels) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This %1 claims a size of %2 x %3 pixels, which is more than "
                                     "can be read.")
                          .arg(QLatin1String(format))
                          .arg(width)
                          .arg(height));
    }
}

} // namespace quillane::worker
