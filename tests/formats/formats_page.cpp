#include "formats/formats_page.h"
#include "browser/filter.h"
#include "imaging/codec.h"
#include "imaging/format_facts.h"
#include "imaging/format_table.h"
#include <QMap>
#include <QStringList>
#include <algorithm>

namespace quillane {

namespace {

QString Row(const QStringList& cells)
{
    return QStringLiteral("| ") + cells.join(QStringLiteral(" | ")) + QStringLiteral(" |\n");
}

QString Head(const QStringList& cells)
{
    return Row(cells) + Row(QStringList(cells.size(), QStringLiteral("---")));
}

QString YesNo(bool yes)
{
    return yes ? QStringLiteral("yes") : QStringLiteral("no");
}

const char* Words(PagesRead pages)
{
    switch (pages) {
    case PagesRead::One:
        return "one";
    case PagesRead::FirstCounted:
        return "the first; all are counted";
    case PagesRead::FirstOnly:
        return "the first";
    case PagesRead::Any:
        return "any";
    }
    return "";
}

const char* Words(StoredColour colour)
{
    switch (colour) {
    case StoredColour::Any:
        return "as the depth says";
    case StoredColour::Grey:
        return "grey";
    case StoredColour::Rgb:
        return "RGB";
    case StoredColour::Cmyk:
        return "CMYK";
    case StoredColour::YCbCr:
        return "YCbCr";
    }
    return "";
}

const char* Words(CommentCarrier carrier)
{
    switch (carrier) {
    case CommentCarrier::None:
        return "none";
    case CommentCarrier::Jpeg:
        return "Exif, comment marker";
    case CommentCarrier::Tiff:
        return "TIFF, Exif and GPS fields";
    case CommentCarrier::Png:
        return "text chunks, Exif";
    case CommentCarrier::Gif:
        return "comment extension";
    case CommentCarrier::Dicom:
        return "DICOM elements";
    }
    return "";
}

/// What carries the comments of the codec's files, as its variants say.
CommentCarrier CarrierOf(QByteArrayView codec)
{
    for (const SaveVariant& variant : SaveVariants()) {
        if (codec == QByteArrayView(variant.codec)) {
            return variant.carrier;
        }
    }
    return CommentCarrier::None;
}

QString ReadRow(const QString& extension, const Codec& codec)
{
    const ReadFacts* facts = FindReadFacts(codec.name);
    if (!facts) {
        return Row({extension, codec.name, {}, {}, {}, {}, {}, {}});
    }
    if (facts->refused) {
        return Row({extension,
                    codec.name,
                    QStringLiteral("refused: ") + facts->refused,
                    {},
                    {},
                    {},
                    {},
                    {}});
    }
    return Row({extension, codec.name, QString::fromUtf8(facts->reader),
                codec.inWorker ? QStringLiteral("decoding process") : QStringLiteral("program"),
                facts->depths, Words(facts->pages), Words(CarrierOf(codec.name)),
                facts->note ? QString::fromUtf8(facts->note) : QString()});
}

/// Rows of the codecs by extension; an extension of several codecs has several.
QMap<QString, QString> ReadRows()
{
    QMap<QString, QString> rows;
    for (const Codec& codec : AllCodecs()) {
        for (const QString& extension : QString::fromLatin1(codec.extensions).split(u' ')) {
            rows[extension] += ReadRow(extension, codec);
        }
    }
    return rows;
}

QString ReadingOfMask(const QMap<QString, QString>& rows, const QStringList& mask)
{
    QString page;
    for (const QString& extension : mask) {
        page += rows.value(extension);
    }
    return page;
}

QString Depths(const SaveVariant& variant)
{
    QStringList depths;
    for (const qint32 bits : variant.depths) {
        if (bits > 0) {
            depths.append(QString::number(bits));
        }
    }
    return depths.join(QStringLiteral(", "));
}

QString WriteRow(const SaveVariant& variant)
{
    const WriteFacts* facts = FindWriteFacts(variant.format);
    return Row({QString::number(variant.format), FormatDescription(variant.format),
                QString::fromLatin1(variant.extension).mid(1), variant.codec, Words(variant.colour),
                facts ? QString::fromUtf8(facts->packing) : QString(), Depths(variant),
                YesNo(variant.lossy), YesNo(variant.stamp), Words(variant.carrier)});
}

QString RefusedCodes()
{
    QList<qint16> codes;
    for (const FormatRow& row : FormatTable()) {
        if (!FindSaveVariant(row.code) && !codes.contains(row.code)) {
            codes.append(row.code);
        }
    }
    std::sort(codes.begin(), codes.end());
    QString page;
    for (const qint16 code : codes) {
        page += Row({QString::number(code), FormatDescription(code), WhyNotWritten(code)});
    }
    return page;
}

} // namespace

QStringList BrowsedPictures()
{
    QStringList mask;
    for (const QString& pattern : QString::fromUtf16(kBrowseMask).split(u';')) {
        const QString extension = pattern.mid(2);
        // The page layouts and albums of the program's own are no pictures.
        const bool own = extension == QLatin1String("LY2") || extension == QLatin1String("IFL");
        if (!own && !mask.contains(extension)) {
            mask.append(extension);
        }
    }
    return mask;
}

QString FormatsPage()
{
    const QStringList heads{QStringLiteral("Extension"),      QStringLiteral("Format"),
                            QStringLiteral("Read by"),        QStringLiteral("Where"),
                            QStringLiteral("Bits per pixel"), QStringLiteral("Pictures"),
                            QStringLiteral("Comments"),       QStringLiteral("Notes")};
    QMap<QString, QString> rows = ReadRows();
    const QStringList mask = BrowsedPictures();
    QString page = QStringLiteral(
        "# Formats\n\n"
        "Made by `scripts/make_formats` out of the tables of the program; a test fails when this "
        "page\nis not what they say.\n\n"
        "## Reading\n\n"
        "The content of a file decides what it is, its extension only where the content does not "
        "tell.\nBits per pixel are those of the file; what is read from the decoding process "
        "cannot harm the\nprogram. Clips and drawings are shown and never written over.\n\n"
        "### Files that are browsed\n\n");
    page += Head(heads) + ReadingOfMask(rows, mask);
    page += QStringLiteral("\n### Other names\n\n") + Head(heads);
    for (auto row = rows.constBegin(); row != rows.constEnd(); ++row) {
        if (!mask.contains(row.key())) {
            page += row.value();
        }
    }
    page += QStringLiteral(
        "\n## Writing\n\n"
        "By format code. Quality counts only for lossy formats: 2 is the best, 255 the smallest "
        "file.\nBits are those per pixel. A stamp is an embedded preview. A save that appends adds "
        "a "
        "page to a TIFF\nthat is there; no other file takes one.\n\n");
    page += Head({QStringLiteral("Code"), QStringLiteral("Format"), QStringLiteral("Extension"),
                  QStringLiteral("Writer"), QStringLiteral("Colours"), QStringLiteral("Packing"),
                  QStringLiteral("Bits"), QStringLiteral("Lossy"), QStringLiteral("Stamp"),
                  QStringLiteral("Comments")});
    for (const SaveVariant& variant : SaveVariants()) {
        page += WriteRow(variant);
    }
    page += QStringLiteral("\n### Codes that are refused\n\n")
        + Head({QStringLiteral("Code"), QStringLiteral("Format"), QStringLiteral("Why")})
        + RefusedCodes();
    return page;
}

} // namespace quillane
