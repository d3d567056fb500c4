#include "viewer/save_choices.h"

#include "core/failure.h"
#include "imaging/codec.h"
#include "imaging/format_facts.h"
#include "imaging/format_table.h"
#include <algorithm>
#include <cstring>

namespace quillane {

namespace {

constexpr const char* kPagesCodec = "TIFF"; // the one kind that takes further pages
constexpr qint16 kUsualFormat = 75;         // where nothing else is known
constexpr qsizetype kExtensionsShown = 3;   // of a kind, in its words

const Codec* SaveCodecOf(const char* name)
{
    for (const Codec& codec : AllCodecs()) {
        if (std::strcmp(codec.name, name) == 0) {
            return &codec;
        }
    }
    return nullptr;
}

QStringList SaveCodecExtensions(const char* name)
{
    QStringList extensions;
    if (const Codec* codec = SaveCodecOf(name)) {
        for (const QString& one :
             QString::fromLatin1(codec->extensions).toLower().split(u' ', Qt::SkipEmptyParts)) {
            extensions.append(u'.' + one);
        }
    }
    return extensions;
}

QList<SaveType> MakeSaveTypes()
{
    QList<SaveType> types;
    for (const SaveVariant& variant : SaveVariants()) {
        const QString name = QString::fromLatin1(variant.codec);
        auto type = std::find_if(types.begin(), types.end(),
                                 [&](const SaveType& one) { return one.name == name; });
        if (type == types.end()) {
            types.append({name, {}, {}});
            type = types.end() - 1;
        }
        type->formats.append(variant.format);
        const QString extension = QString::fromLatin1(variant.extension);
        if (!type->extensions.contains(extension)) {
            type->extensions.append(extension);
        }
    }
    for (SaveType& type : types) {
        for (const QString& other : SaveCodecExtensions(type.name.toLatin1().constData())) {
            if (!type.extensions.contains(other)) {
                type.extensions.append(other);
            }
        }
    }
    std::sort(types.begin(), types.end(), [](const SaveType& one, const SaveType& other) {
        return one.name.compare(other.name, Qt::CaseInsensitive) < 0;
    });
    return types;
}

/// The extension of a name with its dot, in small letters; empty for none.
QString SaveExtensionOf(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    const qsizetype begin = name.lastIndexOf(u'/') + 1;
    return dot > begin ? name.mid(dot).toLower() : QString();
}

/// Whether files of the variant are called so. Of a kind whose variants have extensions of their
/// own, only the variant's own counts, and those that no variant has.
bool SaveVariantIsCalled(const SaveVariant& variant, const QString& extension)
{
    if (extension == QLatin1String(variant.extension)) {
        return true;
    }
    const bool others =
        std::any_of(SaveVariants().begin(), SaveVariants().end(), [&](const SaveVariant& other) {
            return std::strcmp(other.codec, variant.codec) == 0
                && extension == QLatin1String(other.extension);
        });
    return !others && SaveCodecExtensions(variant.codec).contains(extension);
}

/// The first variant whose files are called so; those whose usual extension it is go first.
const SaveVariant* SaveVariantCalled(const QString& extension)
{
    for (const SaveVariant& variant : SaveVariants()) {
        if (extension == QLatin1String(variant.extension)) {
            return &variant;
        }
    }
    for (const SaveVariant& variant : SaveVariants()) {
        if (SaveVariantIsCalled(variant, extension)) {
            return &variant;
        }
    }
    return nullptr;
}

/// Whether a name's extension is that of pictures at all, written or only read.
bool IsPictureExtension(const QString& extension)
{
    return SaveVariantCalled(extension) || ReadableExtensions().contains(extension.mid(1));
}

bool SavedInInk(const SaveVariant& variant, const Bitmap& picture)
{
    return variant.colour == StoredColour::Cmyk || (variant.traits & kInkIn32) != 0
        || ((variant.traits & kInkKept) != 0 && picture.Model() == ColourModel::Cmyk);
}

bool SavedInGrey(const SaveVariant& variant)
{
    return variant.colour == StoredColour::Grey || (variant.traits & kGreyIn8) != 0;
}

} // namespace

QString SaveType::Words() const
{
    QStringList patterns;
    for (const QString& extension : extensions.first(qMin(kExtensionsShown, extensions.size()))) {
        patterns.append(u'*' + extension);
    }
    return QStringLiteral("%1 (%2)").arg(name, patterns.join(u' '));
}

const QList<SaveType>& SaveTypes()
{
    static const QList<SaveType> kTypes = MakeSaveTypes();
    return kTypes;
}

qsizetype SaveTypeOf(qint16 format)
{
    const QList<SaveType>& types = SaveTypes();
    for (qsizetype i = 0; i < types.size(); ++i) {
        if (types.at(i).formats.contains(format)) {
            return i;
        }
    }
    return -1;
}

QStringList ReadableExtensions()
{
    QStringList extensions;
    for (const Codec& codec : AllCodecs()) {
        const ReadFacts* const facts = FindReadFacts(codec.name);
        if (!facts || !facts->reader || facts->refused) {
            continue;
        }
        for (const QString& extension : SaveCodecExtensions(codec.name)) {
            if (!extensions.contains(extension.mid(1))) {
                extensions.append(extension.mid(1));
            }
        }
    }
    std::sort(extensions.begin(), extensions.end());
    return extensions;
}

bool TakesQuality(const SaveVariant& variant)
{
    // Luminance and colour apart lose a little, which no factor changes.
    const WriteFacts* const facts = FindWriteFacts(variant.format);
    return variant.lossy && facts && std::strstr(facts->packing, "JPEG") != nullptr;
}

bool TakesFurtherPage(const SaveVariant& variant)
{
    return std::strcmp(variant.codec, kPagesCodec) == 0;
}

QString DepthWords(const SaveVariant& variant, const Bitmap& picture, qint32 bits)
{
    const auto words = [bits](const QString& what) {
        return bits == 1 ? QStringLiteral("1 bit: %1").arg(what)
                         : QStringLiteral("%1 bits: %2").arg(bits).arg(what);
    };
    switch (bits) {
    case 1:
        return words(SavedInGrey(variant) ? QStringLiteral("black and white")
                                          : QStringLiteral("two colours"));
    case 16:
        return words((variant.traits & kColourIn16) != 0 ? QStringLiteral("fewer colours")
                                                         : QStringLiteral("deep grey"));
    case 24:
        return words(QStringLiteral("full colours"));
    case 32:
        return words(SavedInInk(variant, picture)
                         ? QStringLiteral("printing inks (CMYK)")
                         : QStringLiteral("full colours with transparency"));
    case 48:
        return words(QStringLiteral("deep colours"));
    case 64:
        return words(QStringLiteral("deep colours with transparency"));
    default:
        break;
    }
    if (SavedInGrey(variant)) {
        return words(QStringLiteral("shades of grey"));
    }
    return words(QStringLiteral("%1 colours").arg(1 << bits));
}

QString QualityWords(qint32 quality)
{
    if (quality <= kBestQuality) {
        return QStringLiteral("%1 (best)").arg(kBestQuality);
    }
    if (quality >= kLeastQuality) {
        return QStringLiteral("%1 (smallest file)").arg(kLeastQuality);
    }
    return QString::number(quality);
}

SaveChoices::SaveChoices(const Bitmap& picture, qint16 format, qint32 bits)
    : mPicture(picture),
      mFirstFormat(format),
      mFirstBits(bits),
      mVariant(FindSaveVariant(format))
{
    if (!mVariant) {
        mFirstFormat = 0;
        mVariant = FindSaveVariant(kUsualFormat);
    }
    Choose(*mVariant);
}

qint32 SaveChoices::SubFormat() const
{
    return qint32(SaveTypes().at(Type()).formats.indexOf(mVariant->format));
}

qint32 SaveChoices::SuitingBits(const SaveVariant& variant) const
{
    if (variant.format == mFirstFormat && variant.Holds(mFirstBits)) {
        return mFirstBits;
    }
    if (mPicture.IsNull()) {
        return variant.Holds(24) ? 24 : variant.depths[0];
    }
    const qint32 nearest = WrittenDepth(variant, mPicture, 0);
    // Transparency does not become ink.
    const bool ink = nearest == 32 && SavedInInk(variant, mPicture)
        && mPicture.Model() != ColourModel::Cmyk && variant.Holds(24);
    return ink ? 24 : nearest;
}

bool SaveChoices::Suits(const SaveVariant& variant) const
{
    if (mPicture.IsNull()) {
        return true;
    }
    const ColourModel model = mPicture.Model();
    const bool grey = model == ColourModel::Grey || model == ColourModel::BlackWhite;
    if (variant.colour == StoredColour::Grey && !grey) {
        return false;
    }
    return SuitingBits(variant) >= qMin(mPicture.Bits(), grey ? 16 : 24);
}

void SaveChoices::Choose(const SaveVariant& variant)
{
    // A depth that somebody chose stays with another packing of the same kind.
    const bool keep = mVariant != &variant && variant.Holds(mBits);
    mVariant = &variant;
    if (!keep) {
        mBits = SuitingBits(variant);
    }
}

void SaveChoices::ChooseType(qsizetype type)
{
    if (type < 0 || type >= SaveTypes().size() || type == Type()) {
        return;
    }
    const QList<qint16>& formats = SaveTypes().at(type).formats;
    const auto first = [&](const auto& wanted) -> const SaveVariant* {
        for (const qint16 format : formats) {
            const SaveVariant* const variant = FindSaveVariant(format);
            if (wanted(*variant)) {
                return variant;
            }
        }
        return nullptr;
    };
    // The one that the picture came from; one with an Exif block for a picture that had one; one
    // that holds all its colours.
    const SaveVariant* chosen =
        first([&](const SaveVariant& one) { return one.format == mFirstFormat; });
    if (!chosen && IsExifFormat(mFirstFormat)) {
        chosen =
            first([&](const SaveVariant& one) { return IsExifFormat(one.format) && Suits(one); });
    }
    if (!chosen) {
        chosen = first([&](const SaveVariant& one) { return Suits(one); });
    }
    mVariant = chosen ? chosen : FindSaveVariant(formats.constFirst());
    mBits = SuitingBits(*mVariant);
}

void SaveChoices::ChooseSubFormat(qint32 position)
{
    const QList<qint16>& formats = SaveTypes().at(Type()).formats;
    if (position >= 0 && position < formats.size() && formats.at(position) != mVariant->format) {
        Choose(*FindSaveVariant(formats.at(position)));
    }
}

void SaveChoices::ChooseBits(qint32 bits)
{
    if (mVariant->Holds(bits)) {
        mBits = bits;
    }
}

bool SaveChoices::NameTyped(const QString& name)
{
    const QString extension = SaveExtensionOf(name);
    if (extension.isEmpty() || SaveVariantIsCalled(*mVariant, extension)) {
        return false;
    }
    const SaveVariant* const called = SaveVariantCalled(extension);
    if (!called) {
        return false;
    }
    const qint16 before = mVariant->format;
    ChooseType(SaveTypeOf(called->format));
    if (!SaveVariantIsCalled(*mVariant, extension)) {
        Choose(*called);
    }
    return mVariant->format != before;
}

QString SaveChoices::Renamed(const QString& name) const
{
    const QString extension = SaveExtensionOf(name);
    if (name.isEmpty() || name.endsWith(u'/') || SaveVariantIsCalled(*mVariant, extension)) {
        return name;
    }
    const QString own = QString::fromLatin1(mVariant->extension);
    return (IsPictureExtension(extension) ? name.chopped(extension.size()) : name) + own;
}

QString SaveChoices::Completed(const QString& name) const
{
    const QString extension = SaveExtensionOf(name);
    if (name.isEmpty() || name.endsWith(u'/') || SaveVariantCalled(extension)) {
        return name;
    }
    return name + QString::fromLatin1(mVariant->extension);
}

} // namespace quillane
