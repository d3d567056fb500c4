#include "metadata/catalogue.h"

#include "core/file_kinds.h"
#include "core/native_path.h"
#include "core/numbers.h"
#include "imaging/format_table.h"
#include "metadata/blanks.h"

namespace quillane {

namespace {

constexpr QLatin1String kCatalogueLineEnd{"\r\n"};

/// Visits every field of a block with its value.
template <typename Visit>
void WalkBlock(CatalogueBlock block, const CommentSet& comments, Visit&& visit)
{
    CatalogueWork work;
    for (const CatalogueField& field : CatalogueFields(block)) {
        work.Read(comments.At(field.slot), field.shape);
        QString value;
        ResumeNext([&] { value = field.format(work); });
        visit(field, value);
    }
}

QVector<CatalogueRow> BlockRows(CatalogueBlock block, const CommentSet& comments)
{
    QVector<CatalogueRow> rows;
    WalkBlock(block, comments, [&](const CatalogueField& field, const QString& value) {
        rows.append({QString::fromLatin1(field.label), value});
    });
    return rows;
}

QString BlockText(CatalogueBlock block, const CommentSet& comments)
{
    QString text;
    WalkBlock(block, comments, [&](const CatalogueField& field, const QString& value) {
        text += TextLabelOf(field) + value + kCatalogueLineEnd;
    });
    return text;
}

QString TrimmedText(const CommentSet& comments, qint16 slot)
{
    QString value;
    ResumeNext([&] { value = TrimBlanks(comments.At(slot).Text()).toString(); });
    return value;
}

} // namespace

QVector<CatalogueRow> FillCameraList(const CommentSet& comments)
{
    return BlockRows(CatalogueBlock::Camera, comments);
}

QVector<CatalogueRow> FillGpsList(const CommentSet& comments)
{
    return BlockRows(CatalogueBlock::Gps, comments);
}

QVector<CatalogueRow> FillDicomList(const CommentSet& comments)
{
    return BlockRows(CatalogueBlock::Dicom, comments);
}

QVector<CatalogueRow> FillImageInfoList(const ImageFacts& facts, const FileStat& stat,
                                        const UiLoop& loop)
{
    const QDateTime modified = ModifiedTime(stat);
    return {
        {QStringLiteral("File Format"), FormatDescription(facts.format)},
        {QStringLiteral("Image Width"), QString::number(facts.width) + QStringLiteral(" Pixels")},
        {QStringLiteral("Image Height"), QString::number(facts.height) + QStringLiteral(" Pixels")},
        {QStringLiteral("Bits per Pixel"), QString::number(facts.bits) + QStringLiteral(" bits")},
        {QStringLiteral("Compression Type"), facts.compression},
        {QStringLiteral("X Resolution"), QString::number(facts.xResolution)},
        {QStringLiteral("Y Resolution"), QString::number(facts.yResolution)},
        {QStringLiteral("Image Size in Memory"),
         QString::number(facts.sizeMemory) + QStringLiteral(" bytes")},
        {QStringLiteral("Image Size on Disk"),
         QString::number(facts.sizeDisk) + QStringLiteral(" bytes")},
        {QStringLiteral("File Date"),
         modified.isValid() ? loop.SystemDateText(modified) : QString()},
    };
}

QVector<GeneralBox> FillGeneralBoxes(const QString& file, const CommentSet& comments)
{
    const int kind = IsPngFile(file) == kTrue ? 1 : 0;
    QVector<GeneralBox> boxes;
    for (const GeneralField& field : GeneralFields()) {
        if (field.boxSlot[kind] != kNoSlot) {
            boxes.append({QString::fromLatin1(field.box), QString::fromLatin1(field.boxLabel),
                          TrimmedText(comments, field.boxSlot[kind])});
        }
    }
    return boxes;
}

QString GeneralTagsText(const QString& file, const CommentSet& comments)
{
    const int kind = IsPngFile(file) == kTrue ? 1 : 0;
    QString text = QStringLiteral("--------------- General Image Tags ---------------------")
        + kCatalogueLineEnd;
    for (const GeneralField& field : GeneralFields()) {
        if (field.textSlot[kind] != kNoSlot) {
            text += QString::fromLatin1(field.textLabel[kind])
                + TrimmedText(comments, field.textSlot[kind]) + kCatalogueLineEnd;
        }
    }
    return text;
}

QString CameraTagsText(const CommentSet& comments)
{
    return QStringLiteral("------------- Camera Exif Information -----------------")
        + kCatalogueLineEnd + BlockText(CatalogueBlock::Camera, comments);
}

QString GpsTagsText(const CommentSet& comments)
{
    return QStringLiteral("--------------- GPS Exif Tags ----------------------------")
        + kCatalogueLineEnd + BlockText(CatalogueBlock::Gps, comments);
}

QString DicomTagsText(const CommentSet& comments)
{
    return BlockText(CatalogueBlock::Dicom, comments);
}

} // namespace quillane
