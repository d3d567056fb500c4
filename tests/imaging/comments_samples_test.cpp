// Real camera files against what their manifest says of them.
#include "core/temp_folder.h"
#include "imaging/comments/comment_set.h"
#include "imaging/comments/slots.h"
#include "imaging/limits.h"
#include "picture_maker.h"
#include "worker_support.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <gtest/gtest.h>

namespace quillane {

namespace {

const QString kSampleFolder = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/");

using SampleRow = QHash<QString, QString>;

/// Rows of the manifest by column name; empty where the samples are not there.
QVector<SampleRow> ManifestRows()
{
    QVector<SampleRow> rows;
    if (!test::HasSamples()) {
        return rows;
    }
    const QString text =
        QString::fromUtf8(ReadWholeFile(kSampleFolder + QStringLiteral("MANIFEST.tsv"), 1 << 20));
    const QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
    const QStringList names = lines.first().split(u'\t');
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QStringList cells = lines.at(i).split(u'\t');
        SampleRow row;
        for (qsizetype c = 0; c < cells.size() && c < names.size(); ++c) {
            row.insert(names.at(c), cells.at(c));
        }
        rows.append(row);
    }
    return rows;
}

QString TextOfSlot(const CommentSet& set, qint16 slot)
{
    return set.At(slot).IsEmpty() ? QString() : set.At(slot).Text();
}

/// Degrees of a triple with the sign of its reference; nothing when there is no triple.
double DegreesOf(const CommentSet& set, qint16 reference, qint16 triple)
{
    if (set.At(triple).IsEmpty()) {
        return std::nan("");
    }
    const QVector<double> parts = set.At(triple).Rationals();
    double degrees = 0;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        degrees += parts.at(i + 1) == 0 ? 0 : parts.at(i) / parts.at(i + 1) / std::pow(60, i / 2);
    }
    const QString letter = TextOfSlot(set, reference);
    return letter.startsWith(u'S') || letter.startsWith(u'W') ? -degrees : degrees;
}

/// Whether a text begins as the manifest states, which has "?" and U+FFFD for what it cannot show.
bool BeginsAsStated(const QString& text, const QString& stated)
{
    if (text.size() < stated.size()) {
        return false;
    }
    for (qsizetype i = 0; i < stated.size(); ++i) {
        const QChar letter = stated.at(i);
        if (letter != text.at(i)
            && (text.at(i).unicode() < 0x80 || (letter != u'?' && letter != QChar(0xfffd)))) {
            return false;
        }
    }
    return true;
}

bool IsReadHere(const QString& file)
{
    for (const char* end : {".jpg", ".tif", ".png", ".gif", ".dic"}) {
        if (file.endsWith(QLatin1String(end), Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

} // namespace

class CommentSamples : public test::WorkerTest { };

TEST_F(CommentSamples, MakeModelDateDescriptionAndPositionAreThoseOfTheManifest)
{
    const QVector<SampleRow> rows = ManifestRows();
    if (rows.isEmpty()) {
        std::cout << "no folder of samples here\n";
        return;
    }
    int files = 0, facts = 0;
    for (const SampleRow& row : rows) {
        const QString file = row.value(QStringLiteral("file"));
        if (!IsReadHere(file) || file.startsWith(QStringLiteral("hostile/"))) {
            continue;
        }
        SCOPED_TRACE(file.toStdString());
        ++files;
        const CommentSet set = ReadComments(kSampleFolder + file);
        const std::pair<const char*, qint16> texts[] = {
            {"make", 5}, {"model", 6}, {"date_time_original", kDateTakenSlot}};
        for (const auto& [column, slot] : texts) {
            const QString stated = row.value(QString::fromLatin1(column)).simplified();
            const QString read = TextOfSlot(set, slot).simplified();
            // A date with a time zone is put together of fields that are no Exif.
            const bool composed = slot == kDateTakenSlot && stated.contains(u'+');
            EXPECT_EQ(read, composed ? QString() : stated) << column;
            facts += stated.isEmpty() ? 0 : 1;
        }
        const QString description = row.value(QStringLiteral("image_description")).simplified();
        if (!description.isEmpty()) {
            // The manifest cuts long descriptions.
            EXPECT_TRUE(BeginsAsStated(TextOfSlot(set, kDescriptionSlot).simplified(), description))
                << TextOfSlot(set, kDescriptionSlot).toStdString();
            ++facts;
        }
        const std::tuple<const char*, qint16, qint16> places[] = {{"gps_latitude", 42, 43},
                                                                  {"gps_longitude", 44, 45}};
        for (const auto& [column, reference, triple] : places) {
            const QString stated = row.value(QString::fromLatin1(column));
            if (!stated.isEmpty()) {
                EXPECT_NEAR(DegreesOf(set, reference, triple), stated.toDouble(), 0.00001);
                ++facts;
            }
        }
    }
    std::cout << files << " files, " << facts << " facts\n";
    EXPECT_GT(files, 0);
    EXPECT_GT(facts, 0);
}

TEST_F(CommentSamples, DicomFilesTellTheirPatients)
{
    const QVector<SampleRow> rows = ManifestRows();
    int files = 0;
    for (const SampleRow& row : rows) {
        const QString file = row.value(QStringLiteral("file"));
        if (!file.startsWith(QStringLiteral("dicom/"))) {
            continue;
        }
        SCOPED_TRACE(file.toStdString());
        ++files;
        const CommentSet set = ReadComments(kSampleFolder + file);
        const std::pair<const char*, qint16> fields[] = {
            {"PatientName=", 10}, {"PatientID=", 11}, {"Modality=", 18}};
        for (const QString& part :
             row.value(QStringLiteral("detail")).split(QStringLiteral("; "))) {
            for (const auto& [name, slot] : fields) {
                if (part.startsWith(QLatin1String(name))) {
                    EXPECT_EQ(TextOfSlot(set, slot), part.sliced(QLatin1String(name).size()));
                }
            }
        }
    }
    std::cout << files << " files\n";
    EXPECT_EQ(files > 0, test::HasSamples());
}

TEST_F(CommentSamples, HostileFilesAndEveryTruncationEndQuickly)
{
    const QVector<SampleRow> rows = ManifestRows();
    const TempFolder folder;
    int files = 0;
    for (const SampleRow& row : rows) {
        const QString file = row.value(QStringLiteral("file"));
        SCOPED_TRACE(file.toStdString());
        ++files;
        EXPECT_NO_THROW(ReadComments(kSampleFolder + file));
        const QByteArray whole = ReadWholeFile(kSampleFolder + file, limits::kMaxFileBytes);
        const QByteArray name = "cut" + file.sliced(file.lastIndexOf(u'.')).toUtf8();
        for (int cut = 0; cut < 20; ++cut) {
            folder.Write(name, whole.first(whole.size() * cut / 20));
            EXPECT_NO_THROW(ReadComments(folder.Path(name))) << cut;
        }
    }
    std::cout << files << " files, each cut at 20 places\n";
    EXPECT_EQ(files > 0, test::HasSamples());
}

TEST_F(CommentSamples, WhatAnotherWriterWritesIsRead)
{
    if (!test::HasTool(QStringLiteral("exiftool"))) {
        std::cout << "no exiftool here\n";
        return;
    }
    const auto write = [](const QString& file, QStringList arguments) {
        arguments << QStringLiteral("-overwrite_original") << file;
        ASSERT_TRUE(test::RunTool(QStringLiteral("exiftool"), arguments).has_value());
    };
    const QString jpeg = Write(QStringLiteral("a.jpg"), making::MakeJpeg({}));
    const QString png = Write(QStringLiteral("a.png"), making::MakePng({}));
    const QString gif = Write(QStringLiteral("a.gif"), making::MakeGif({}));
    const QStringList exif = {QStringLiteral("-n"),
                              QStringLiteral("-Artist=Ann"),
                              QStringLiteral("-ImageDescription=City=Rome"),
                              QStringLiteral("-DateTimeOriginal=2003:01:05 13:07:09"),
                              QStringLiteral("-ExposureTime=0.004"),
                              QStringLiteral("-ISO=400"),
                              QStringLiteral("-SensingMethod=2"),
                              QStringLiteral("-GPSLatitude=40.5"),
                              QStringLiteral("-GPSLatitudeRef=S")};
    write(jpeg, exif);
    write(png,
          exif
              + QStringList{QStringLiteral("-PNG:Title=A title"),
                            QStringLiteral("-PNG:Comment=A comment")});
    write(gif, {QStringLiteral("-Comment=City=Rome")});
    for (const QString& file : {jpeg, png}) {
        const CommentSet set = ReadComments(file);
        EXPECT_EQ(TextOfSlot(set, 0), QStringLiteral("Ann"));
        EXPECT_EQ(TextOfSlot(set, 3), QStringLiteral("City=Rome"));
        EXPECT_EQ(TextOfSlot(set, 22), QStringLiteral("2003:01:05 13:07:09"));
        EXPECT_EQ(set.At(34), CommentValue(QVector<double>{1, 250}));
        EXPECT_EQ(set.At(162), CommentValue(400));
        EXPECT_EQ(set.At(171).Bytes().at(0), 2);
        EXPECT_EQ(DegreesOf(set, 42, 43), -40.5);
    }
    EXPECT_EQ(TextOfSlot(ReadComments(png), 175), QStringLiteral("A title"));
    EXPECT_EQ(TextOfSlot(ReadComments(png), 178), QStringLiteral("A comment"));
    EXPECT_EQ(TextOfSlot(ReadComments(gif), 3), QStringLiteral("City=Rome"));
}

TEST_F(CommentSamples, AnotherReaderTellsTheSame)
{
    if (!test::HasSamples() || !test::HasTool(QStringLiteral("exiftool"))) {
        std::cout << "no samples or no exiftool here\n";
        return;
    }
    const std::optional<QByteArray> told =
        test::RunTool(QStringLiteral("exiftool"),
                      {QStringLiteral("-j"), QStringLiteral("-n"), QStringLiteral("-G0:1"),
                       QStringLiteral("-charset"), QStringLiteral("exif=Latin1"),
                       QStringLiteral("-r"), kSampleFolder + QStringLiteral("exif")});
    ASSERT_TRUE(told.has_value());
    const QJsonArray files = QJsonDocument::fromJson(*told).array();
    int facts = 0;
    for (const QJsonValue& value : files) {
        const QJsonObject object = value.toObject();
        const QString path = object.value(QStringLiteral("SourceFile")).toString();
        SCOPED_TRACE(path.toStdString());
        const CommentSet set = ReadComments(path);
        const std::tuple<const char*, qint16> rationals[] = {
            {"EXIF:ExifIFD:ExposureTime", 34},
            {"EXIF:ExifIFD:FNumber", 35},
            {"EXIF:ExifIFD:FocalLength", 33},
            {"EXIF:ExifIFD:ExposureCompensation", 27},
            {"EXIF:ExifIFD:BrightnessValue", 26}};
        for (const auto& [name, slot] : rationals) {
            const QJsonValue other = object.value(QLatin1String(name));
            if (!other.isDouble() || set.At(slot).IsEmpty()) {
                EXPECT_TRUE(!other.isDouble() || other.toDouble() == 0) << name;
                continue;
            }
            const QVector<double> parts = set.At(slot).Rationals();
            EXPECT_NEAR(parts.at(0) / parts.at(1), other.toDouble(),
                        std::abs(other.toDouble()) * 1e-6)
                << name;
            ++facts;
        }
        const std::tuple<const char*, qint16> integers[] = {{"EXIF:ExifIFD:MeteringMode", 30},
                                                            {"EXIF:ExifIFD:LightSource", 31},
                                                            {"EXIF:ExifIFD:Flash", 32},
                                                            {"EXIF:ExifIFD:ExposureProgram", 160},
                                                            {"EXIF:ExifIFD:ISO", 162}};
        for (const auto& [name, slot] : integers) {
            const QJsonValue other = object.value(QLatin1String(name));
            if (other.isDouble()) {
                EXPECT_EQ(set.At(slot), CommentValue(qint32(other.toDouble()))) << name;
                ++facts;
            }
        }
        const std::tuple<const char*, qint16> texts[] = {{"EXIF:IFD0:Make", 5},
                                                         {"EXIF:IFD0:Model", 6},
                                                         {"EXIF:IFD0:Software", 9},
                                                         {"EXIF:IFD0:ModifyDate", 2},
                                                         {"EXIF:ExifIFD:CreateDate", 23}};
        for (const auto& [name, slot] : texts) {
            const QJsonValue other = object.value(QLatin1String(name));
            if (other.isString()) {
                EXPECT_EQ(TextOfSlot(set, slot).trimmed(), other.toString().trimmed()) << name;
                ++facts;
            }
        }
    }
    std::cout << files.size() << " files, " << facts << " facts\n";
    EXPECT_GT(facts, 100);
}

} // namespace quillane
