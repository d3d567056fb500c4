#include "metadata/tag_writer.h"

#include "core/failure.h"
#include "core/file_kinds.h"
#include "imaging/comments/slots.h"
#include "imaging/worker/worker_host.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <iostream>

namespace quillane {
namespace {

class TagWriter : public testing::Test {
protected:
    TagWriter()
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
    }
    QString Copy(const QString& from, const QString& name) const
    {
        const QString path = mFolder.filePath(name);
        WriteWholeFile(path, ReadWholeFile(from, 1 << 28));
        return path;
    }
    static QString Sample(const QString& name)
    {
        return QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/") + name;
    }
    /// What a window does for one update.
    static void Update(const QString& file, const QString& text)
    {
        EngineInstance lead;
        lead.Load(file, 0, 0);
        WriteTagText(lead, file, text, {lead.InfoFormat(), lead.InfoBits(), 10, 0});
    }
    /// Every field that an independent reader finds, by group and name, but for those that a save
    /// has to change.
    static QJsonObject FieldsOf(const QString& file)
    {
        QProcess reader;
        reader.start(QStringLiteral("exiftool"),
                     {QStringLiteral("-j"), QStringLiteral("-u"), QStringLiteral("-b"),
                      QStringLiteral("-G1"), QStringLiteral("-x"), QStringLiteral("ThumbnailImage"),
                      file});
        EXPECT_TRUE(reader.waitForFinished());
        QJsonObject fields =
            QJsonDocument::fromJson(reader.readAllStandardOutput()).array().first().toObject();
        for (const QString& name : fields.keys()) {
            // The file as such, what follows from other fields, places in the file, the text
            // that was written, the preview, and what says how the pixels stand.
            for (const char* free : {"System:",
                                     "ExifTool:",
                                     "Composite:",
                                     "Offset",
                                     "Start",
                                     "File:Comment",
                                     "ImageDescription",
                                     "IFD1:",
                                     "Orientation",
                                     "SourceFile",
                                     "XMP-dc:Description",
                                     "IFD0:ImageWidth",
                                     "IFD0:ImageHeight",
                                     "ExifImageWidth",
                                     "ExifImageHeight",
                                     "InteropIFD:RelatedImage",
                                     "MPF0:",
                                     "MPImage",
                                     "StripByteCounts",
                                     "File:CurrentIPTCDigest",
                                     "PrintIM",
                                     "InteropOffset",
                                     "File:ImageWidth",
                                     "File:ImageHeight",
                                     "Adobe:",
                                     "JFIF:JFIFVersion"}) {
                if (name.contains(QLatin1String(free))) {
                    fields.remove(name);
                }
            }
        }
        return fields;
    }
    QTemporaryDir mFolder;
};

TEST_F(TagWriter, QualityIsTheBestForAPngOnly)
{
    EXPECT_EQ(QualityFor(QStringLiteral("/a/b.png"), 90), 2);
    EXPECT_EQ(QualityFor(QStringLiteral("/a.PNG.d/b.jpg"), 90), 2);
    EXPECT_EQ(QualityFor(QStringLiteral("/a/b.jpg"), 90), 90);
}

TEST_F(TagWriter, CopyCommentsTakesEverySlotOfTheFileAndClearsTheOthers)
{
    const QString file = Copy(Sample(QStringLiteral("AST_0101.JPG")), QStringLiteral("a.jpg"));
    EngineInstance lead;
    lead.SetComment(5, QStringLiteral("left over"));
    lead.SetComment(100, QStringLiteral("left over"));
    CopyComments(lead, file);
    const CommentSet held = ReadComments(file);
    int filled = 0;
    for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
        EXPECT_EQ(lead.Comment(slot), held.At(slot)) << slot;
        filled += held.At(slot).IsEmpty() ? 0 : 1;
    }
    EXPECT_GT(filled, 20);
    EXPECT_TRUE(lead.MethodErrors());
}

TEST_F(TagWriter, AFileThatCannotCarryTagsIsLeftAlone)
{
    const QString file = Copy(Sample(QStringLiteral("chart.BMP")), QStringLiteral("a.bmp"));
    const QByteArray before = ReadWholeFile(file, 1 << 28);
    Update(file, QStringLiteral("A=1"));
    EXPECT_EQ(ReadWholeFile(file, 1 << 28), before);
}

TEST_F(TagWriter, AFileThatVanishedIsNotWrittenAnewWithoutItsFields)
{
    const QString file = Copy(Sample(QStringLiteral("AST_0101.JPG")), QStringLiteral("a.jpg"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    ASSERT_TRUE(RemoveFile(file));
    EXPECT_THROW(WriteTagText(lead, file, QStringLiteral("A=1"), {98, 24, 2, 0}), Failure);
    EXPECT_EQ(StatPath(file).type, FileType::Missing);
}

TEST_F(TagWriter, AnEmptyTextTakesTheDescriptionAway)
{
    const QString file = Copy(Sample(QStringLiteral("AST_0101.JPG")), QStringLiteral("a.jpg"));
    Update(file, {});
    EXPECT_TRUE(ReadComments(file).At(kDescriptionSlot).IsEmpty());
    EXPECT_FALSE(ReadComments(file).At(kDateTakenSlot).IsEmpty());
}

TEST_F(TagWriter, RepeatedUpdatesOfTheSameLengthDoNotLetTheFileGrow)
{
    const QString file = Copy(Sample(QStringLiteral("petals.png")), QStringLiteral("a.png"));
    Update(file, QStringLiteral("Round=00\r\n"));
    const qint64 size = StatPath(file).size;
    for (int round = 1; round < 50; ++round) {
        Update(file, QStringLiteral("Round=%1\r\n").arg(round, 2, 10, QLatin1Char('0')));
    }
    EXPECT_EQ(StatPath(file).size, size);
}

TEST_F(TagWriter, FiftyUpdatesOfACameraFileKeepEverythingElse)
{
    const QString folder = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/exif");
    QStringList names;
    if (StatPath(folder).type == FileType::Folder
        && !QStandardPaths::findExecutable(QStringLiteral("exiftool")).isEmpty()) {
        ListFolder(folder, [&](DirEntry&& entry) {
            names.append(entry.name);
            return true;
        });
        ASSERT_FALSE(names.isEmpty());
    }
    const int rounds = qEnvironmentVariableIsSet("QUILLANE_LONG") ? 50 : 5;
    int seen = 0;
    for (const QString& name : names) {
        if (IsImageFile(name) != kTrue) {
            continue;
        }
        const QString file = Copy(folder + u'/' + name, name);
        const QJsonObject before = FieldsOf(file);
        bool refused = false;
        for (int round = 0; round < rounds && !refused; ++round) {
            try {
                Update(file, QStringLiteral("Name=Ann\r\nRound=%1\r\n").arg(round));
            } catch (const Failure& failure) {
                std::cout << name.toStdString() << ": " << failure.what() << '\n';
                refused = true;
            }
        }
        const QJsonObject after = FieldsOf(file);
        for (auto field = before.begin(); field != before.end(); ++field) {
            EXPECT_EQ(after.value(field.key()), field.value())
                << name.toStdString() << ": " << field.key().toStdString();
        }
        if (!refused) {
            EXPECT_EQ(ReadComments(file).At(kDescriptionSlot).Text(),
                      QStringLiteral("Name=Ann\r\nRound=%1\r\n").arg(rounds - 1))
                << name.toStdString();
        }
        ++seen;
    }
    std::cout << seen << " camera files of ../shared/samples\n";
}

} // namespace
} // namespace quillane
