#pragma once
// What can be chosen when a picture is saved, and how the choices hang together. No widget: the
// dialog shows what stands here.
#include "imaging/encode.h"
#include <QList>
#include <QString>
#include <QStringList>

namespace quillane {

/// What was chosen in FileSaveDialog.
struct SaveDialogChoice {
    QString file;
    qint16 format = 0;    ///< format code
    qint32 subFormat = 0; ///< position within the format's type
    qint32 bits = 24;     ///< per pixel
    qint32 quality = 10;  ///< 2..255, 2 the best
    bool stampWanted = false;
    qint32 stampBits = 24;
    float stampSize = 0;  ///< width and height of the stamp's box, pixels
    qint32 multiPage = 0; ///< above 0: append a page
};

/// A kind of file and the format codes that it can be written with.
struct SaveType {
    QString name;           ///< of its codec
    QStringList extensions; ///< with dots, in small letters, the usual ones first
    QList<qint16> formats;  ///< by code
    /// "JPEG (*.jpg *.jpeg)": name and the first few extensions.
    QString Words() const;
};
/// Every kind that can be written, by name.
const QList<SaveType>& SaveTypes();
/// Position in SaveTypes; -1 for a code that cannot be written.
qsizetype SaveTypeOf(qint16 format);

/// Every extension, in small letters without a dot, of files that can be read.
QStringList ReadableExtensions();

/// Whether the quality factor changes what is written.
bool TakesQuality(const SaveVariant& variant);
/// Whether a file of the format that is there can get a further page.
bool TakesFurtherPage(const SaveVariant& variant);
/// Words for a depth of a variant, such as "24 bits: full colours".
QString DepthWords(const SaveVariant& variant, const Bitmap& picture, qint32 bits);
/// "2 (best)", "255 (smallest file)", else the number.
QString QualityWords(qint32 quality);

/// What is chosen at a time. Every change leaves choices that fit one another.
class SaveChoices {
public:
    /// picture: what is to be saved; empty: its depth is not known. format, bits: of the file that
    /// it came from.
    SaveChoices(const Bitmap& picture, qint16 format, qint32 bits);

    qsizetype Type() const { return SaveTypeOf(mVariant->format); } ///< position in SaveTypes
    qint32 SubFormat() const;                                       ///< position in its formats
    qint16 Format() const { return mVariant->format; }
    const SaveVariant& Variant() const { return *mVariant; }
    qint32 Bits() const { return mBits; }

    void ChooseType(qsizetype type); ///< with the format of it that suits the picture best
    void ChooseSubFormat(qint32 position);
    void ChooseBits(qint32 bits); ///< passed over where the format lacks them
    /// A name was typed: an extension that is written chooses its kind. Whether that changed
    /// anything.
    bool NameTyped(const QString& name);

    /// The name with the extension of the chosen format in the place of another picture's; an empty
    /// name stays empty.
    QString Renamed(const QString& name) const;
    /// The name as the file is to be called: with an extension where it has none that is written.
    QString Completed(const QString& name) const;

private:
    void Choose(const SaveVariant& variant);
    qint32 SuitingBits(const SaveVariant& variant) const;
    bool Suits(const SaveVariant& variant) const;

    Bitmap mPicture;
    qint16 mFirstFormat;
    qint32 mFirstBits;
    const SaveVariant* mVariant;
    qint32 mBits = 24;
};

} // namespace quillane
