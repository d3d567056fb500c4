// Fifty changes of text in a row to every camera file there is: what no slot names stays.
#include "carry_support_for_tests.h"
#include "imaging/carry/jpeg_parts.h"
#include "imaging/exif/tiff_structure.h"
#include "imaging/format_table.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <iostream>

namespace quillane {

namespace {

using making::TextOf;

/// What exiftool sees in each file of a folder of the things that must not change.
QMap<QString, QString> WitnessOf(const TempFolder& folder)
{
    QMap<QString, QString> seen;
    const std::optional<QByteArray> said = test::RunTool(
        QStringLiteral("exiftool"),
        {"-q", "-q", "-m", "-b", "-json", "-G1", "-MakerNotes:all", "-ICC_Profile:all", "-IPTC:all",
         "-Photoshop:all", "-InteropIFD:all", "-ext", "*", folder.Path({})});
    for (const QJsonValue& file : QJsonDocument::fromJson(said.value_or("[]")).array()) {
        QJsonObject fields = file.toObject();
        const QString name = fields.take("SourceFile").toString().section(u'/', -1);
        seen.insert(name, QString::fromUtf8(QJsonDocument(fields).toJson()));
    }
    return seen;
}

/// What is wrong with each file of a folder as a validator tells it.
QMap<QString, QStringList> ComplaintsOf(const TempFolder& folder)
{
    QMap<QString, QStringList> complaints;
    const std::optional<QByteArray> said =
        test::RunTool(QStringLiteral("exiftool"),
                      {"-q", "-q", "-validate", "-warning", "-error", "-a", "-G4", "-json", "-ext",
                       "*", folder.Path({})});
    for (const QJsonValue& file : QJsonDocument::fromJson(said.value_or("[]")).array()) {
        const QJsonObject fields = file.toObject();
        QStringList lines;
        for (const QString& name : fields.keys()) {
            if (name.endsWith("Warning") || name.endsWith("Error")) {
                lines << fields.value(name).toString();
            }
        }
        complaints.insert(fields.value("SourceFile").toString().section(u'/', -1), lines);
    }
    return complaints;
}

QByteArray MakerNoteOf(const QByteArray& jpeg)
{
    for (const carry::JpegPart& part : carry::CutJpeg(jpeg).segments) {
        if (part.marker != 0xe1 || !part.content.startsWith("Exif")) {
            continue;
        }
        const QByteArray block = part.content.sliced(6);
        const auto structure = exif::TiffStructure::Open(block);
        if (!structure) {
            continue;
        }
        const exif::TiffDirectory first = structure->ReadDirectory(structure->FirstDirectory());
        const exif::TiffField* pointer = exif::FindField(first, exif::kTagExifPointer);
        if (!pointer) {
            return {};
        }
        const exif::TiffDirectory directory =
            structure->ReadDirectory(qint64(structure->Number(*pointer).value_or(0)));
        const exif::TiffField* note = exif::FindField(directory, exif::kTagMakerNote);
        return note
            ? QByteArray::number(note->outside.from) + ':' + structure->Value(*note).toByteArray()
            : QByteArray();
    }
    return {};
}

TEST(CarrySamples, FiftyChangesOfTextLeaveWhatNoSlotNames)
{
    int seen = 0, notes = 0;
    const TempFolder originals, changed;
    for (const test::Sample& sample : test::Samples(QStringLiteral("exif/"), {"jpg", "jpeg"})) {
        SCOPED_TRACE(sample.file.toStdString());
        const QByteArray original = ReadWholeFile(sample.path, 8 << 20);
        const ImageFacts facts = making::FactsOfFile(original);
        QByteArray file = original;
        const QByteArray note = MakerNoteOf(original);
        ++seen;
        notes += note.isEmpty() ? 0 : 1;
        // The pixels need not be coded anew for this: the file itself is what was encoded.
        QByteArray encoded;
        {
            making::JpegMake make;
            make.width = facts.width;
            make.height = facts.height;
            encoded = making::MakeJpeg(make);
        }
        qsizetype settled = 0;
        for (int round = 0; round < 50; ++round) {
            making::PlanOf with(file, ReadJpegComments);
            with.plan.exif = IsExifFormat(facts.format);
            with.plan.width = facts.width;
            with.plan.height = facts.height;
            with.plan.keepPreview = true;
            const QString text = QStringLiteral("City=%1\r\n").arg(round, 3, 10, QChar(u'0'))
                + QString(60, QChar(u'a' + round % 26));
            with.plan.wanted.Set(kDescriptionSlot, text);
            file = CarryIntoJpeg(encoded, with.plan);
            MemorySource source(file);
            CommentSet read;
            ReadJpegComments(source, read);
            ASSERT_EQ(read, with.plan.wanted) << round;
            ASSERT_EQ(MakerNoteOf(file), note) << round;
            if (round == 1) {
                settled = file.size();
            } else if (round > 1) {
                ASSERT_EQ(file.size(), settled) << round;
            }
        }
        EXPECT_FALSE(file.contains("City=048"));
        for (const carry::JpegPart& part : carry::CutJpeg(original).segments) {
            const bool named = part.content.startsWith("Exif") || part.content.startsWith("JFIF")
                || part.content.startsWith("Adobe") || part.content.startsWith("http")
                || carry::DescribesPixels(part.marker) || part.content.startsWith("ICC")
                || part.content.startsWith("MPF")
                || (part.marker == 0xfe && !IsExifFormat(facts.format));
            EXPECT_TRUE(named || file.contains(part.content)) << int(part.marker);
        }
        EXPECT_EQ(making::DecodedProfile(file), making::DecodedProfile(original));
        const QByteArray name = QByteArray::number(seen) + ".jpg";
        originals.Write(name, original);
        changed.Write(name, file);
    }
    if (test::HasTool(QStringLiteral("exiftool"))) {
        const QMap<QString, QString> before = WitnessOf(originals);
        EXPECT_EQ(before.size(), seen);
        EXPECT_EQ(WitnessOf(changed), before);
        const QMap<QString, QStringList> flaws = ComplaintsOf(originals);
        const QMap<QString, QStringList> after = ComplaintsOf(changed);
        EXPECT_EQ(after.size(), seen);
        for (auto file = after.begin(); file != after.end(); ++file) {
            for (const QString& line : file.value()) {
                EXPECT_TRUE(flaws.value(file.key()).contains(line))
                    << file.key().toStdString() << ": " << line.toStdString();
            }
        }
    }
    std::cout << seen << " files, " << notes << " of them with a MakerNote\n";
    EXPECT_TRUE(!test::HasSamples() || (seen > 25 && notes > 8));
}

} // namespace

} // namespace quillane
