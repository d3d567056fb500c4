#include "imaging/exif/exif_fields.h"
#include "imaging/limits.h"
#include <cmath>
#include <limits>

namespace quillane::exif {

namespace {

/// Fields whose type does not follow from the shape of their slot (Exif 2.3, tables 7 and 12).
struct FieldForm {
    qint16 slot;
    quint16 type;
};
constexpr FieldForm kFieldForms[] = {
    {24, kTypeSignedRational}, // ShutterSpeedValue
    {26, kTypeSignedRational}, // BrightnessValue
    {27, kTypeSignedRational}, // ExposureBiasValue
    {41, kTypeByte},           // GPSVersionID
    {46, kTypeByte},           // GPSAltitudeRef
    {167, kTypeRational},      // FocalPlaneXResolution
    {168, kTypeRational},      // FocalPlaneYResolution
    {169, kTypeShort},         // SubjectLocation
    {170, kTypeRational},      // ExposureIndex
    {171, kTypeShort},         // SensingMethod
};

quint16 FieldFormType(const CommentSlot& slot)
{
    for (const FieldForm& form : kFieldForms) {
        if (form.slot == slot.slot) {
            return form.type;
        }
    }
    switch (slot.shape) {
    case SlotShape::Text:
        return kTypeAscii;
    case SlotShape::Integer:
        return kTypeShort;
    case SlotShape::Rational:
    case SlotShape::RationalTriple:
        return kTypeRational;
    case SlotShape::Bytes:
        break;
    }
    return kTypeUndefined;
}

[[noreturn]] void FieldRefused(const CommentSlot& slot, qint32 number, const QString& why)
{
    throw Failure(number,
                  QStringLiteral("The field %1 cannot be written: %2.")
                      .arg(QString::fromLatin1(slot.field), why));
}

[[noreturn]] void FieldTooLarge(const CommentSlot& slot)
{
    FieldRefused(slot, kFailureOverflow, QStringLiteral("its number is too large"));
}

struct FieldRatio {
    double above = 0, below = 0;
};

/// The ratio as whole numbers of at most `most`, the nearest there is.
FieldRatio FieldWholeRatio(const CommentSlot& slot, FieldRatio ratio, double most)
{
    if (!std::isfinite(ratio.above) || !std::isfinite(ratio.below)) {
        FieldRefused(slot, kFailureOverflow, QStringLiteral("it is no number"));
    }
    if (ratio.below < 0) {
        ratio = {-ratio.above, -ratio.below};
    }
    const auto fits = [most](const FieldRatio& candidate) {
        return std::trunc(candidate.above) == candidate.above
            && std::trunc(candidate.below) == candidate.below && std::abs(candidate.above) <= most
            && candidate.below <= most;
    };
    if (fits(ratio)) {
        return ratio;
    }
    // The convergents of the continued fraction come nearer one by one.
    const double wanted = ratio.below == 0 ? ratio.above : std::abs(ratio.above / ratio.below);
    const double sign = ratio.above < 0 ? -1 : 1;
    if (!(wanted <= most) || ratio.below == 0) {
        FieldTooLarge(slot);
    }
    FieldRatio before{1, 0};
    FieldRatio now{std::floor(wanted), 1};
    double rest = wanted - std::floor(wanted);
    for (int step = 0; step < 40 && rest > 1e-12; ++step) {
        const double inverse = 1 / rest;
        const double whole = std::floor(inverse);
        const FieldRatio next{whole * now.above + before.above, whole * now.below + before.below};
        if (!fits(next)) {
            break;
        }
        before = now;
        now = next;
        rest = inverse - whole;
    }
    return {sign * now.above, now.below};
}

StoredField FieldOfRationals(const CommentSlot& slot, const QVector<double>& parts, quint16 type,
                             const TiffStructure& structure)
{
    if (parts.isEmpty() || parts.size() % 2 != 0) {
        FieldRefused(slot, kFailureType,
                     QStringLiteral("a rational has a numerator and a denominator"));
    }
    for (qsizetype i = 0; i < parts.size(); i += 2) {
        // A negative ratio is kept as one, also where the standard did not think of any.
        if ((parts[i] < 0) != (parts[i + 1] < 0) && parts[i] != 0) {
            type = kTypeSignedRational;
        }
    }
    // A signed field that holds more than it should is kept as an unsigned one.
    constexpr double kMostSigned = std::numeric_limits<qint32>::max();
    constexpr double kMost = std::numeric_limits<quint32>::max();
    StoredField field{type, {}};
    field.value.reserve(parts.size() * 4);
    for (qsizetype i = 0; i < parts.size(); i += 2) {
        const FieldRatio ratio = FieldWholeRatio(slot, {parts[i], parts[i + 1]},
                                                 type == kTypeSignedRational ? kMostSigned : kMost);
        field.value += structure.BytesOf(quint64(qint64(ratio.above)), 4);
        field.value += structure.BytesOf(quint64(qint64(ratio.below)), 4);
    }
    return field;
}

StoredField FieldOfInteger(const CommentSlot& slot, qint32 number, const TiffStructure& structure)
{
    if (number < 0) {
        FieldTooLarge(slot);
    }
    if (number > 0xffff) {
        return {kTypeLong, structure.BytesOf(quint64(number), 4)};
    }
    return {kTypeShort, structure.BytesOf(quint64(number), 2)};
}

StoredField FieldOfBytes(const QByteArray& bytes, quint16 type, const TiffStructure& structure)
{
    // A rational is two numbers of four bytes, each turned for itself.
    const int width = type == kTypeRational ? 4 : FieldTypeBytes(type);
    const int step = FieldTypeBytes(type);
    if (width == 1 || bytes.size() % step != 0) {
        return {quint16(width == 1 ? type : quint16(kTypeUndefined)), bytes};
    }
    StoredField field{type, {}};
    field.value.reserve(bytes.size());
    for (qsizetype at = 0; at < bytes.size(); at += width) {
        quint64 number = 0;
        for (int i = width - 1; i >= 0; --i) {
            number = number << 8 | quint8(bytes[at + i]);
        }
        field.value += structure.BytesOf(number, width);
    }
    return field;
}

StoredField FieldOfText(const CommentSlot& slot, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    if (bytes.size() >= limits::kMaxTextBytes) {
        FieldRefused(slot, kFailureLimit, QStringLiteral("its text is longer than 1 MB"));
    }
    return {kTypeAscii, bytes + '\0'};
}

} // namespace

StoredField StoredForm(const CommentSlot& slot, const CommentValue& value,
                       const TiffStructure& structure)
{
    const quint16 type = FieldFormType(slot);
    try {
        switch (slot.shape) {
        case SlotShape::Text:
            return FieldOfText(slot, value.Text());
        case SlotShape::Integer:
            return FieldOfInteger(slot, value.Integer(), structure);
        case SlotShape::Rational:
        case SlotShape::RationalTriple:
            return FieldOfRationals(slot, value.Rationals(), type, structure);
        case SlotShape::Bytes:
            return FieldOfBytes(value.Bytes(), type, structure);
        }
    } catch (const Failure& failure) {
        if (failure.Number() == kFailureType) {
            FieldRefused(slot, kFailureType, QStringLiteral("its value is of another kind"));
        }
        throw;
    }
    return {};
}

} // namespace quillane::exif
