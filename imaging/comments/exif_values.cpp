#include "imaging/comments/exif_values.h"
#include "imaging/comments/slots.h"
#include "imaging/comments/text_bytes.h"
#include "imaging/limits.h"
#include <cmath>
#include <exiv2/error.hpp>
#include <exiv2/exif.hpp>
#include <exiv2/version.hpp>
#include <limits>
#include <mutex>
#include <optional>

namespace quillane {

namespace {

/// The library's call for an integer has another name in each of its generations.
qint64 ExifInteger(const Exiv2::Value& value, int index)
{
#if EXIV2_TEST_VERSION(0, 28, 0)
    return value.toInt64(size_t(index));
#else
    return value.toLong(index);
#endif
}

void ExifSilence()
{
    static std::once_flag once;
    std::call_once(once, [] { Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute); });
}

std::optional<SlotHome> ExifHomeOf(const std::string& group)
{
    if (group == "Image") {
        return SlotHome::TiffDirectory;
    }
    if (group == "Photo") {
        return SlotHome::ExifDirectory;
    }
    if (group == "GPSInfo") {
        return SlotHome::GpsDirectory;
    }
    return {};
}

const CommentSlot* ExifSlotOf(SlotHome home, quint16 tag)
{
    for (const CommentSlot& slot : CommentSlots()) {
        if (slot.home == home && slot.tag == tag) {
            return &slot;
        }
    }
    return nullptr;
}

bool ExifIsInteger(Exiv2::TypeId type)
{
    switch (type) {
    case Exiv2::unsignedByte:
    case Exiv2::unsignedShort:
    case Exiv2::unsignedLong:
    case Exiv2::signedByte:
    case Exiv2::signedShort:
    case Exiv2::signedLong:
        return true;
    default:
        return false;
    }
}

QByteArray ExifBytes(const Exiv2::Value& value)
{
    QByteArray bytes(qsizetype(value.size()), '\0');
    value.copy(reinterpret_cast<Exiv2::byte*>(bytes.data()), Exiv2::littleEndian);
    return bytes;
}

CommentValue ExifText(const Exiv2::Value& value)
{
    switch (value.typeId()) {
    case Exiv2::asciiString:
    case Exiv2::unsignedByte:
    case Exiv2::undefined:
        break;
    default:
        return {};
    }
    const QString text = TextFromFieldBytes(ExifBytes(value));
    return text.isEmpty() ? CommentValue() : CommentValue(text);
}

CommentValue ExifWhole(const Exiv2::Value& value)
{
    qint64 number = 0;
    if (ExifIsInteger(value.typeId())) {
        number = ExifInteger(value, 0);
    } else if (value.typeId() == Exiv2::unsignedRational
               || value.typeId() == Exiv2::signedRational) {
        const Exiv2::Rational ratio = value.toRational(0);
        if (ratio.second == 0 || ratio.first % ratio.second != 0) {
            return {};
        }
        number = qint64(ratio.first) / ratio.second;
    } else {
        return {};
    }
    constexpr qint64 kLargest = std::numeric_limits<qint32>::max();
    return number >= -kLargest && number <= kLargest ? CommentValue(qint32(number))
                                                     : CommentValue();
}

CommentValue ExifRationals(const Exiv2::Value& value, int wanted)
{
    QVector<double> parts;
    for (int i = 0; i < wanted && i < int(value.count()); ++i) {
        if (const auto* ratios = dynamic_cast<const Exiv2::URationalValue*>(&value)) {
            parts << double(ratios->value_[size_t(i)].first)
                  << double(ratios->value_[size_t(i)].second);
        } else if (const auto* below = dynamic_cast<const Exiv2::RationalValue*>(&value)) {
            parts << double(below->value_[size_t(i)].first)
                  << double(below->value_[size_t(i)].second);
        } else if (ExifIsInteger(value.typeId())) {
            parts << double(ExifInteger(value, i)) << 1.0;
        } else if (const auto* doubles = dynamic_cast<const Exiv2::DoubleValue*>(&value);
                   doubles && std::isfinite(doubles->value_[size_t(i)])) {
            parts << doubles->value_[size_t(i)] << 1.0;
        } else if (const auto* floats = dynamic_cast<const Exiv2::FloatValue*>(&value);
                   floats && std::isfinite(floats->value_[size_t(i)])) {
            parts << double(floats->value_[size_t(i)]) << 1.0;
        } else {
            return {};
        }
    }
    return parts.isEmpty() ? CommentValue() : CommentValue(parts);
}

CommentValue ExifInShape(const Exiv2::Value& value, SlotShape shape)
{
    switch (shape) {
    case SlotShape::Text:
        return ExifText(value);
    case SlotShape::Integer:
        return ExifWhole(value);
    case SlotShape::Rational:
        return ExifRationals(value, 1);
    case SlotShape::RationalTriple:
        return ExifRationals(value, 3);
    case SlotShape::Bytes:
        break;
    }
    return CommentValue(ExifBytes(value));
}

void ExifAddOne(const Exiv2::Exifdatum& datum, CommentSet& set)
{
    const std::optional<SlotHome> home = ExifHomeOf(datum.groupName());
    const CommentSlot* slot = home ? ExifSlotOf(*home, datum.tag()) : nullptr;
    if (!slot || datum.count() == 0 || !set.At(slot->slot).IsEmpty()) {
        return;
    }
    CommentValue value = ExifInShape(datum.value(), slot->shape);
    if (!value.IsEmpty()) {
        set.Set(slot->slot, std::move(value));
    }
}

} // namespace

void AddExifValues(const QByteArray& block, CommentSet& set)
{
    ExifSilence();
    try {
        Exiv2::ExifData fields;
        Exiv2::ExifParser::decode(fields, reinterpret_cast<const Exiv2::byte*>(block.constData()),
                                  quint32(block.size()));
        for (const Exiv2::Exifdatum& datum : fields) {
            ExifAddOne(datum, set);
        }
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("The Exif data of this file are damaged: %1")
                          .arg(QString::fromLocal8Bit(error.what())));
    }
}

} // namespace quillane
