#include "imaging/comments/slots.h"
#include "imaging/engine.h"
#include "imaging/format_table.h"
#include "imaging/saving/stamp.h"
#include "imaging/thumbs/exif_preview.h"
#include "imaging/worker/worker_host.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

namespace quillane {
namespace {

class SaveTest : public testing::Test {
protected:
    SaveTest()
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
    }
    /// A copy of a sample picture.
    QString Copy(const QString& sample, const QString& name = {}) const
    {
        const QString path = mFolder.filePath(name.isEmpty() ? sample : name);
        WriteWholeFile(
            path,
            ReadWholeFile(QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/") + sample, 1 << 26));
        return path;
    }
    static QByteArray Bytes(const QString& path) { return ReadWholeFile(path, 1 << 26); }
    static void CopyComments(EngineInstance& lead, const QString& file)
    {
        for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
            lead.SetComment(slot, lead.ReadComment(file, 0, slot));
        }
    }
    /// Number and words of the Failure of a save; 0 when there was none.
    static qint32 FailureOf(EngineInstance& lead, const QString& file, qint16 format,
                            QString& words, qint32 mode = 0)
    {
        try {
            lead.Save(file, format, lead.InfoBits(), 2, mode);
            return 0;
        } catch (const Failure& failure) {
            words = failure.Description();
            return failure.Number();
        }
    }
    QTemporaryDir mFolder;
};

TEST_F(SaveTest, LoadClearsThePendingComments)
{
    const QString file = Copy(QStringLiteral("petals.png"));
    EngineInstance lead;
    lead.SetComment(kDescriptionSlot, QStringLiteral("A=1"));
    lead.Load(file, 0, 0);
    EXPECT_TRUE(lead.Comment(kDescriptionSlot).IsEmpty());
}

TEST_F(SaveTest, PendingCommentsAreWrittenAndStayPending)
{
    for (const char* sample : {"AST_0101.JPG", "CHART.TIF", "sunrise.gif", "petals.png"}) {
        const QString file = Copy(QLatin1String(sample));
        EngineInstance lead;
        lead.Load(file, 0, 0);
        CopyComments(lead, file);
        lead.SetComment(kDescriptionSlot, QStringLiteral("City=Rome\r\n"));
        EXPECT_EQ(lead.Save(file, lead.InfoFormat(), lead.InfoBits(), 2, 0), 0);
        EXPECT_EQ(ReadComments(file).At(kDescriptionSlot).Text(), QStringLiteral("City=Rome\r\n"))
            << sample;
        EXPECT_EQ(lead.Comment(kDescriptionSlot).Text(), QStringLiteral("City=Rome\r\n"));
    }
}

TEST_F(SaveTest, PixelsOfALosslessFileThatWereNotChangedStayToTheLastBit)
{
    for (const char* sample : {"CHART.TIF", "three_pages.tif", "sunrise.gif", "petals.png"}) {
        const QString file = Copy(QLatin1String(sample));
        const QImage before = LoadFile(file).bitmap.Pixels();
        const ImageFacts facts = ProbeFile(file);
        for (int round = 0; round < 3; ++round) {
            EngineInstance lead;
            lead.Load(file, 0, 0);
            CopyComments(lead, file);
            lead.SetComment(kDescriptionSlot, QStringLiteral("Round=%1").arg(round));
            lead.Save(file, lead.InfoFormat(), lead.InfoBits(), 2, 0);
        }
        EXPECT_EQ(LoadFile(file).bitmap.Pixels(), before) << sample;
        const ImageFacts after = ProbeFile(file);
        EXPECT_EQ(after.pages, facts.pages) << sample;
        EXPECT_EQ(after.bits, facts.bits) << sample;
        EXPECT_EQ(after.compression, facts.compression) << sample;
        EXPECT_EQ(ReadComments(file).At(kDescriptionSlot).Text(), QStringLiteral("Round=2"));
    }
}

TEST_F(SaveTest, AJpegIsEncodedAnewAndKeepsSamplingAndSize)
{
    const QString file = Copy(QStringLiteral("AST_0101.JPG"));
    const ImageFacts facts = ProbeFile(file);
    const QByteArray before = Bytes(file);
    EngineInstance lead;
    lead.Load(file, 0, 0);
    CopyComments(lead, file);
    lead.Save(file, lead.InfoFormat(), lead.InfoBits(), 60, 0);
    EXPECT_NE(Bytes(file), before);
    const ImageFacts after = ProbeFile(file);
    EXPECT_EQ(after.layout, facts.layout);
    EXPECT_EQ(after.format, facts.format);
    EXPECT_EQ(after.width, facts.width);
    EXPECT_EQ(after.height, facts.height);
}

TEST_F(SaveTest, AnUnknownFormatIsRefusedInWordsAndNothingIsTouched)
{
    const QString file = Copy(QStringLiteral("petals.png"));
    const QByteArray before = Bytes(file);
    EngineInstance lead;
    lead.Load(file, 0, 0);
    QString words;
    EXPECT_EQ(FailureOf(lead, file, 999, words), kFailureGeneral);
    EXPECT_TRUE(words.contains(QStringLiteral("999"))) << words.toStdString();
    EXPECT_EQ(FailureOf(lead, file, 124, words), kFailureGeneral);
    EXPECT_TRUE(words.contains(FormatDescription(124))) << words.toStdString();
    EXPECT_EQ(Bytes(file), before);
}

TEST_F(SaveTest, WithMethodErrorsOffOnlyTheStatusTellsOfAFailure)
{
    const QString file = Copy(QStringLiteral("petals.png"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    lead.SetMethodErrors(false);
    EXPECT_EQ(lead.Save(file, 999, 24, 2, 0), kFailureGeneral);
}

TEST_F(SaveTest, WithoutAPictureThereIsNothingToSave)
{
    EngineInstance lead;
    QString words;
    EXPECT_EQ(FailureOf(lead, mFolder.filePath(QStringLiteral("a.png")), 75, words),
              kFailureGeneral);
    EXPECT_EQ(StatPath(mFolder.filePath(QStringLiteral("a.png"))).type, FileType::Missing);
}

TEST_F(SaveTest, AFileThatSomebodyChangedSinceItWasLoadedIsNotOverwritten)
{
    const QString file = Copy(QStringLiteral("petals.png"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    WriteWholeFile(file, "somebody else's");
    QString words;
    EXPECT_NE(FailureOf(lead, file, 75, words), 0);
    EXPECT_EQ(Bytes(file), QByteArray("somebody else's"));
}

TEST_F(SaveTest, AFileWhoseNameIsGoneIsSavedAnewWithAllThatItHeld)
{
    const QString file = Copy(QStringLiteral("AST_0101.JPG"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    CopyComments(lead, file);
    const CommentSet before = ReadComments(file);
    ASSERT_TRUE(RemoveFile(file));
    lead.Save(file, lead.InfoFormat(), lead.InfoBits(), 2, 0);
    EXPECT_EQ(ReadComments(file), before);
}

TEST_F(SaveTest, ModeTwoCreatesOnly)
{
    const QString file = Copy(QStringLiteral("petals.png"));
    const QString other = mFolder.filePath(QStringLiteral("new.png"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    QString words;
    const QByteArray before = Bytes(file);
    EXPECT_NE(FailureOf(lead, file, 75, words, kSaveCreate), 0);
    EXPECT_EQ(Bytes(file), before);
    EXPECT_EQ(FailureOf(lead, other, 75, words, kSaveCreate), 0);
    EXPECT_EQ(ProbeFile(other).width, lead.InfoWidth());
}

TEST_F(SaveTest, AFileOfSeveralIconsIsNotSavedOverWithOne)
{
    // The one picture of the sample a second time: directory entries of 16 bytes behind a head of
    // 6, each with the place of its picture in its last four bytes.
    const QByteArray one = Bytes(Copy(QStringLiteral("flower.ico"), QStringLiteral("one.ico")));
    ASSERT_EQ(one[4], 1);
    QByteArray entry = one.mid(6, 16);
    const QByteArray picture = one.mid(22);
    QByteArray two = one.left(6);
    two[4] = 2;
    for (const quint32 at : {quint32(38), quint32(38 + picture.size())}) {
        qToLittleEndian(at, entry.data() + 12);
        two += entry;
    }
    const QString file = mFolder.filePath(QStringLiteral("two.ico"));
    WriteWholeFile(file, two + picture + picture);
    EngineInstance lead;
    lead.Load(file, 0, 0);
    ASSERT_EQ(lead.InfoPages(), 2);
    const QByteArray before = Bytes(file);
    lead.SetBitmap(lead.Bitmap());
    quillane::Bitmap changed = lead.Bitmap();
    changed.Pixels().fill(Qt::red);
    lead.SetBitmap(changed);
    QString words;
    EXPECT_NE(FailureOf(lead, file, lead.InfoFormat(), words), 0);
    EXPECT_EQ(Bytes(file), before);
}

TEST_F(SaveTest, TheOtherPagesOfATiffStayWhenTheFirstIsChanged)
{
    const QString file = Copy(QStringLiteral("three_pages.tif"));
    DecodeRequest second;
    second.page = 1;
    const QImage page = LoadFile(file, second).bitmap.Pixels();
    EngineInstance lead;
    lead.Load(file, 0, 0);
    quillane::Bitmap changed = lead.Bitmap();
    changed.Pixels().invertPixels();
    lead.SetBitmap(changed);
    lead.Save(file, lead.InfoFormat(), lead.InfoBits(), 2, 0);
    EXPECT_EQ(ProbeFile(file).pages, 3);
    EXPECT_EQ(LoadFile(file).bitmap.Pixels(), changed.Pixels());
    EXPECT_EQ(LoadFile(file, second).bitmap.Pixels(), page);
}

TEST_F(SaveTest, AProcessedPictureIsNoMereViewOfItsFileAndIsSavedOverIt)
{
    struct Step {
        const char* name;
        void (*process)(EngineInstance& lead);
    };
    constexpr Step kSteps[] = {
        {"invert", [](EngineInstance& lead) { lead.Invert(); }},
        {"flip", [](EngineInstance& lead) { lead.Flip(); }},
        {"turn", [](EngineInstance& lead) { lead.Rotate(9000, 1, 0); }},
        {"trim", [](EngineInstance& lead) { lead.Trim(2, 3, 40, 30); }},
        {"resize", [](EngineInstance& lead) { lead.Resize(50, 40, kResizeResample); }},
        {"text", [](EngineInstance& lead) { lead.DrawText(QStringLiteral("A"), 0, 0); }},
    };
    for (const char* sample : {"AST_0102.JPG", "petals.png", "CHART.TIF", "chart.BMP"}) {
        for (const Step& step : kSteps) {
            SCOPED_TRACE(std::string(sample) + " " + step.name);
            const QString file = Copy(QLatin1String(sample));
            EngineInstance lead;
            lead.Load(file, 0, 0);
            step.process(lead);
            EXPECT_EQ(lead.Save(file, lead.InfoFormat(), 0, 2, 0), 0);
            const LoadedImage again = LoadFile(file);
            EXPECT_EQ(again.bitmap.Pixels().size(), lead.Bitmap().Pixels().size());
            // And once more: what was written is as good a file as the one before.
            lead.Invert();
            EXPECT_EQ(lead.Save(file, lead.InfoFormat(), 0, 2, 0), 0);
        }
    }
}

TEST_F(SaveTest, SamplesThatAreOnlyShownAreNotLostByAChangedPicture)
{
    const QString file = Copy(QStringLiteral("PHANTOM.DIC"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    ASSERT_FALSE(lead.Bitmap().IsExact());
    const QByteArray before = Bytes(file);
    lead.Invert();
    QString words;
    EXPECT_EQ(FailureOf(lead, file, lead.InfoFormat(), words), kFailureGeneral);
    EXPECT_EQ(words,
              QStringLiteral("\"PHANTOM.DIC\" holds samples that the program only shows, "
                             "and they would be lost. Save under another name."));
    EXPECT_EQ(Bytes(file), before);
}

TEST_F(SaveTest, APartOfAPictureIsAWholeFileUnderAnotherName)
{
    for (const char* sample : {"chart.BMP", "chart.gif", "petals.png"}) {
        SCOPED_TRACE(sample);
        const QString file = Copy(QLatin1String(sample));
        const QByteArray cut = Bytes(file).left(Bytes(file).size() * 3 / 5);
        WriteWholeFile(file, cut);
        EngineInstance lead;
        lead.Load(file, 0, 0);
        ASSERT_TRUE(lead.Bitmap().IsPartial());
        const QString other = file + QStringLiteral(".saved");
        EXPECT_EQ(lead.Save(other, lead.InfoFormat(), lead.InfoBits(), 2, 0), 0);
        const LoadedImage again = LoadFile(other);
        EXPECT_FALSE(again.bitmap.IsPartial());
        EXPECT_EQ(again.bitmap.ToDisplay().size(), lead.Bitmap().ToDisplay().size());
        QString words;
        EXPECT_EQ(FailureOf(lead, file, lead.InfoFormat(), words), kFailureUnreadable);
        EXPECT_TRUE(words.contains(QStringLiteral("Save under another name"))) << sample;
        EXPECT_EQ(Bytes(file), cut);
    }
}

TEST_F(SaveTest, UndoByAssignmentStillKnowsTheLoadedFile)
{
    const QString file = Copy(QStringLiteral("petals.png"));
    EngineInstance lead, undo;
    lead.Load(file, 0, 0);
    undo.SetBitmap(lead.Bitmap());
    quillane::Bitmap changed = lead.Bitmap();
    changed.Pixels().invertPixels();
    lead.SetBitmap(changed);
    lead.SetBitmap(undo.Bitmap());
    CopyComments(lead, file);
    const QByteArray before = Bytes(file);
    lead.Save(file, lead.InfoFormat(), lead.InfoBits(), 2, 0);
    // Nothing is different, so nothing is encoded: the very bytes are written again.
    EXPECT_EQ(Bytes(file), before);
}

TEST_F(SaveTest, AStampFitsItsBoxAndKeepsTheShape)
{
    const QString file = Copy(QStringLiteral("AST_0101.JPG"));
    const QString other = mFolder.filePath(QStringLiteral("stamped.jpg"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    CopyComments(lead, file);
    for (const qint32 bits : {8, 24}) {
        lead.SaveWithThumbnail(other, 98, 24, 2, 120, 120, bits);
        FileSource source(other);
        const QByteArray preview = ReadEmbeddedPreview(source);
        ASSERT_FALSE(preview.isEmpty());
        MemorySource memory(preview);
        const ImageFacts facts = FindCodec(memory.Head(512), u"JPG")->probe(memory);
        EXPECT_EQ(facts.width, 120);
        EXPECT_EQ(facts.height, 90);
        EXPECT_EQ(facts.bits, bits);
    }
}

TEST_F(SaveTest, AFormatWithoutStampsSaysSo)
{
    const QString file = Copy(QStringLiteral("petals.png"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    EXPECT_THROW(
        lead.SaveWithThumbnail(mFolder.filePath(QStringLiteral("a.bmp")), 6, 24, 2, 64, 64, 24),
        Failure);
    EXPECT_EQ(StatPath(mFolder.filePath(QStringLiteral("a.bmp"))).type, FileType::Missing);
}

TEST_F(SaveTest, APictureTurnedForTheEyeIsSavedUpright)
{
    QStringList names;
    ListFolder(QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples"), [&](DirEntry&& entry) {
        if (entry.name.endsWith(QStringLiteral(".JPG"))) {
            names.append(entry.name);
        }
        return true;
    });
    int turned = 0;
    for (const QString& name : names) {
        const QString file = Copy(name);
        const ImageFacts facts = ProbeFile(file);
        if (facts.orientation <= 1) {
            continue;
        }
        ++turned;
        EngineInstance lead;
        lead.Load(file, 0, 0);
        const QSize upright(lead.BitmapWidth(), lead.BitmapHeight());
        CopyComments(lead, file);
        lead.Save(file, lead.InfoFormat(), lead.InfoBits(), 2, 0);
        const ImageFacts after = ProbeFile(file);
        EXPECT_EQ(after.orientation, 1) << name.toStdString();
        EXPECT_EQ(QSize(after.width, after.height), upright) << name.toStdString();
    }
    EXPECT_GT(turned, 0) << "no sample picture lies on its side";
}

TEST_F(SaveTest, ABmpOfACamerasJpegIsWrittenAndDropsWhatItCannotHold)
{
    const QString file = Copy(QStringLiteral("AST_0101.JPG"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    lead.SetMethodErrors(false);
    CopyComments(lead, file);
    lead.SetComment(kDescriptionSlot, QStringLiteral("City=Rome\r\n"));
    lead.SetMethodErrors(true);
    int pending = 0;
    for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
        pending += lead.Comment(slot).IsEmpty() ? 0 : 1;
    }
    EXPECT_GT(pending, 20);
    const QString bmp = mFolder.filePath(QStringLiteral("a.bmp"));
    EXPECT_EQ(lead.Save(bmp, 6, 24, 2, kSaveReplace), 0);
    const LoadedImage written = LoadFile(bmp);
    EXPECT_EQ(written.facts.format, 6);
    EXPECT_EQ(written.bitmap.Pixels(), lead.Bitmap().Pixels());
    EXPECT_EQ(ReadComments(bmp), CommentSet());
    // What was not written stays pending for a format that holds it.
    const QString tif = mFolder.filePath(QStringLiteral("a.tif"));
    EXPECT_EQ(lead.Save(tif, 96, 24, 2, kSaveReplace), 0);
    const CommentSet held = ReadComments(tif);
    for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
        const CommentSlot* field = FindSlot(slot);
        const bool camera = field
            && (field->home == SlotHome::TiffDirectory || field->home == SlotHome::ExifDirectory
                || field->home == SlotHome::GpsDirectory);
        if (camera) {
            EXPECT_EQ(held.At(slot), lead.Comment(slot)) << slot;
        }
    }
}

TEST_F(SaveTest, APngIsTheSameWhateverTheQuality)
{
    const QString file = Copy(QStringLiteral("petals.png"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    lead.Invert();
    QByteArray first;
    for (const qint32 quality : {2, 90, 255}) {
        const QString other = mFolder.filePath(QStringLiteral("q%1.png").arg(quality));
        EXPECT_EQ(lead.Save(other, 75, lead.InfoBits(), quality, kSaveReplace), 0);
        EXPECT_EQ(LoadFile(other).bitmap.Pixels(), lead.Bitmap().Pixels());
        first = first.isNull() ? Bytes(other) : first;
        EXPECT_EQ(Bytes(other), first);
    }
}

TEST_F(SaveTest, AcrossFormatsTheTextGoesAlong)
{
    const QString file = Copy(QStringLiteral("AST_0101.JPG"));
    const QString text = ReadComments(file).At(kDescriptionSlot).Text();
    struct Target {
        const char* name;
        qint16 format;
    };
    for (const Target& target :
         {Target{"a.png", 75}, {"a.tif", 3}, {"b.tif", 96}, {"b.jpg", 10}, {"a.dic", 90}}) {
        EngineInstance lead;
        lead.Load(file, 0, 0);
        CopyComments(lead, file);
        const QString to = mFolder.filePath(QLatin1String(target.name));
        lead.Save(to, target.format, 24, 2, 0);
        EXPECT_EQ(ReadComments(to).At(kDescriptionSlot).Text(), text) << target.name;
        EXPECT_EQ(ProbeFile(to).format, target.format) << target.name;
    }
}

} // namespace
} // namespace quillane
