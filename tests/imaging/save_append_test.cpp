// Saving a picture as a further page of a file that is there.
#include "core/save_support.h"
#include "imaging/comments/slots.h"
#include "imaging/engine.h"
#include "imaging/format_table.h"
#include "tiff_pages_for_tests.h"
#include "worker_support.h"

namespace quillane {
namespace {

using test::Directories;
using test::SlotsOfPage;
using test::Strips;
using test::TiffMaker;

class SaveAppend : public test::WorkerTest {
protected:
    QString Copy(const char* sample, const QString& name) const
    {
        const QString path = mFolder.filePath(name);
        WriteWholeFile(path, Sample(sample));
        return path;
    }
    static QByteArray Sample(const char* sample)
    {
        return ReadWholeFile(
            QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/") + QLatin1String(sample), 1 << 26);
    }
    static QByteArray Bytes(const QString& path) { return ReadWholeFile(path, 1 << 26); }
    static QImage Page(const QString& path, int page)
    {
        DecodeRequest request;
        request.page = page;
        return LoadFile(path, request).bitmap.Pixels();
    }
    static void CopyComments(EngineInstance& lead, const QString& file)
    {
        for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
            lead.SetComment(slot, lead.ReadComment(file, 0, slot));
        }
    }
    static Failure FailureOfSave(EngineInstance& lead, const QString& file, qint16 format,
                                 qint32 bits, qint32 mode = kSaveAppend)
    {
        return test::FailureOf([&] { lead.Save(file, format, bits, 2, mode); });
    }
    /// Every byte of the old file in its place but for the offset of the new page.
    static void ExpectOldPagesUntouched(const QByteArray& before, const QByteArray& after)
    {
        ASSERT_GT(after.size(), before.size());
        const auto structure = exif::TiffStructure::Open(before);
        const exif::TiffDirectory last = Directories(before).back();
        QByteArray old = after.left(before.size());
        const int width = structure->OffsetBytes();
        EXPECT_NE(old.mid(last.table.to - width, width), QByteArray(width, '\0'));
        old.replace(last.table.to - width, width, QByteArray(width, '\0'));
        EXPECT_EQ(old, before);
    }
    /// How many directories libtiff's own tool sees, and that it complains of nothing.
    void ExpectPages(const QString& path, int pages)
    {
        EXPECT_EQ(ProbeFile(path).pages, pages);
        const std::optional<QByteArray> said =
            test::RunTool(QStringLiteral("tiffinfo"), {QStringLiteral("-D"), path});
        ASSERT_TRUE(said.has_value()) << "tiffinfo is not installed or refuses the file";
        EXPECT_EQ(said->count("Image Width"), pages) << said->constData();
    }
};

TEST_F(SaveAppend, WhereThereIsNoFileOneIsMade)
{
    const QString file = Copy("three_pages.tif", QStringLiteral("from.tif"));
    const QString other = mFolder.filePath(QStringLiteral("new.tif"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    EXPECT_EQ(FailureOfSave(lead, other, lead.InfoFormat(), 0).Number(), 0);
    EXPECT_EQ(ProbeFile(other).width, lead.InfoWidth());
}

TEST_F(SaveAppend, AFileThatCameMeanwhileIsNotReplaced)
{
    const QString other = mFolder.filePath(QStringLiteral("new.png"));
    SaveJob job;
    job.path = other;
    QImage white(4, 4, QImage::Format_RGB32);
    white.fill(Qt::white);
    job.picture = Bitmap(white, ColourModel::Rgb, 24);
    job.request.format = 75;
    job.mode = kSaveAppend;
    bool came = false;
    job.probe = [&](SaveStep step, qint64&) {
        if (step == SaveStep::Write && !came) {
            came = true;
            WriteWholeFile(other, "somebody else's");
        }
        return 0;
    };
    EXPECT_NE(test::FailureOf([&] { SavePicture(job); }).Number(), 0);
    EXPECT_EQ(Bytes(other), QByteArray("somebody else's"));
}

TEST_F(SaveAppend, EveryOrderAndWidthTakesAPageAndKeepsTheOldOnes)
{
    const QString png = Copy("petals.png", QStringLiteral("petals.png"));
    const QString source = Copy("three_pages.tif", QStringLiteral("three.tif"));
    for (const QStringList& kind : {QStringList{"-L"}, {"-B"}, {"-8", "-L"}, {"-8", "-B"}}) {
        for (const qint32 mode : {qint32(kSaveAppend), -1}) {
            SCOPED_TRACE(kind.join(u' ').toStdString());
            const QString file = mFolder.filePath(QStringLiteral("target.tif"));
            ASSERT_TRUE(
                test::RunTool(QStringLiteral("tiffcp"), QStringList(kind) << source << file));
            const QByteArray before = Bytes(file);
            const int old = int(Directories(before).size());
            ASSERT_EQ(old, 3);
            EngineInstance lead;
            lead.Load(png, 0, 0);
            const QImage picture = lead.Bitmap().Pixels();
            // Without loss: no compression, LZW, PackBits.
            int pages = old;
            for (const qint16 format : {3, 17, 87, 96}) {
                const QByteArray earlier = Bytes(file);
                lead.SetComment(kDescriptionSlot, QStringLiteral("Page=%1").arg(pages));
                ASSERT_EQ(lead.Save(file, format, 24, 2, mode), 0);
                ++pages;
                const QByteArray after = Bytes(file);
                ExpectOldPagesUntouched(earlier, after);
                ExpectPages(file, pages);
                EXPECT_EQ(Page(file, pages - 1).convertToFormat(QImage::Format_RGB32),
                          picture.convertToFormat(QImage::Format_RGB32));
                EXPECT_EQ(SlotsOfPage(after, pages - 1).At(kDescriptionSlot).Text(),
                          QStringLiteral("Page=%1").arg(pages - 1));
            }
            const QByteArray after = Bytes(file);
            const auto pagesOfOld = Directories(before);
            const auto pagesOfNew = Directories(after);
            for (size_t page = 0; page < pagesOfOld.size(); ++page) {
                const auto strips = Strips(before, pagesOfOld[page]);
                EXPECT_FALSE(strips.empty());
                EXPECT_EQ(Strips(after, pagesOfNew[page]), strips);
                EXPECT_EQ(Page(file, int(page)), Page(source, int(page)));
            }
        }
    }
}

TEST_F(SaveAppend, SixteenBitsAreTurnedIntoTheFilesOrderOrRefused)
{
    const QString source = Copy("three_pages.tif", QStringLiteral("three.tif"));
    QImage deep(7, 5, QImage::Format_RGBX64);
    for (int y = 0; y < deep.height(); ++y) {
        for (int x = 0; x < deep.width(); ++x) {
            deep.setPixelColor(
                x, y,
                QColor::fromRgba64(quint16(x * 9001), quint16(y * 12007), quint16(x * y * 1811)));
        }
    }
    for (const char* order : {"-L", "-B"}) {
        const QString file = mFolder.filePath(QStringLiteral("target.tif"));
        ASSERT_TRUE(test::RunTool(QStringLiteral("tiffcp"),
                                  {QStringLiteral("-8"), QLatin1String(order), source, file}));
        EngineInstance lead;
        lead.SetBitmap(Bitmap(deep, ColourModel::Rgb, 48));
        ASSERT_EQ(lead.Save(file, 3, 48, 2, kSaveAppend), 0);
        EXPECT_EQ(Page(file, 3).convertToFormat(QImage::Format_RGBX64), deep);
        const QByteArray before = Bytes(file);
        const Failure failure = FailureOfSave(lead, file, 17, 48);
        if (QLatin1String(order) == QLatin1String("-B")) {
            EXPECT_EQ(failure.Number(), kFailureGeneral);
            EXPECT_TRUE(failure.Description().contains(QStringLiteral("order of bytes")));
            EXPECT_EQ(Bytes(file), before);
        } else {
            EXPECT_EQ(Page(file, 4).convertToFormat(QImage::Format_RGBX64), deep);
        }
        // The order of bytes is no matter inside a codestream.
        ASSERT_EQ(lead.Save(file, 166, 48, 2, kSaveAppend), 0);
        EXPECT_EQ(Page(file, ProbeFile(file).pages - 1).convertToFormat(QImage::Format_RGBX64),
                  deep);
    }
}

TEST_F(SaveAppend, EveryPageHasItsOwnComments)
{
    const QString file = Copy("CHART.TIF", QStringLiteral("chart.tif"));
    const QString photo = Copy("AST_0101.JPG", QStringLiteral("photo.jpg"));
    const CommentSet first = ReadComments(file);
    EngineInstance lead;
    lead.Load(photo, 0, 0);
    CopyComments(lead, photo);
    lead.SetComment(kDescriptionSlot, QStringLiteral("City=Rome\r\n"));
    ASSERT_EQ(lead.Save(file, 96, 24, 2, kSaveAppend), 0);
    EXPECT_EQ(ReadComments(file), first);
    const QByteArray bytes = Bytes(file);
    EXPECT_EQ(SlotsOfPage(bytes, 0), first);
    const CommentSet second = SlotsOfPage(bytes, 1);
    const CommentSet wanted = ReadComments(photo);
    int filled = 0;
    for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
        if (slot == kDescriptionSlot) {
            EXPECT_EQ(second.At(slot).Text(), QStringLiteral("City=Rome\r\n"));
        } else if (!second.At(slot).IsEmpty() && !wanted.At(slot).IsEmpty()) {
            EXPECT_EQ(second.At(slot), wanted.At(slot)) << slot;
            ++filled;
        }
    }
    EXPECT_GT(filled, 5);
    // Another reader finds them at the second directory too.
    const std::optional<QByteArray> said = test::RunTool(
        QStringLiteral("exiftool"), {"-s3", "-IFD1:ImageDescription", "-IFD1:PageNumber", file});
    ASSERT_TRUE(said.has_value());
    EXPECT_TRUE(said->contains("City=Rome")) << said->constData();
    EXPECT_TRUE(said->contains("1 0")) << said->constData();
}

TEST_F(SaveAppend, PixelsThatWereNotChangedAndWhatNoSlotNamesGoAlongAsTheyLie)
{
    const QByteArray xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'></x:xmpmeta>";
    for (const bool big : {false, true}) {
        TiffMaker maker;
        const QByteArray strip(60, 's');
        maker.Picture(10, 6, {8}, 1, 6).Chunk(strip).Bytes(700, xmp).Bytes(0x83bb, "IPTC-IPTC");
        maker.Short(297, {4, 9}).Short(0xfde8, {0x1234, 0x5678, 0x9abc});
        const QString from = Write(QStringLiteral("from.tif"), maker.File());
        const QString to = Write(QStringLiteral("to.tif"), test::GreyTiff(8, 8, 'o', big));
        EngineInstance lead;
        lead.Load(from, 0, 0);
        CopyComments(lead, from);
        ASSERT_EQ(lead.Save(to, lead.InfoFormat(), 8, 2, kSaveAppend), 0);
        const QByteArray after = Bytes(to);
        const auto structure = exif::TiffStructure::Open(after);
        const exif::TiffDirectory page = Directories(after).at(1);
        const auto value = [&](quint16 tag) {
            const exif::TiffField* field = exif::FindField(page, tag);
            return field ? structure->Value(*field).toByteArray() : QByteArray();
        };
        const std::vector<exif::ByteRange> strips = Strips(after, page);
        ASSERT_EQ(strips.size(), 1u);
        EXPECT_EQ(after.mid(strips[0].from, strips[0].Size()), strip);
        EXPECT_EQ(value(700), xmp);
        EXPECT_EQ(value(0x83bb), QByteArray("IPTC-IPTC"));
        const exif::TiffField* numbers = exif::FindField(page, 0xfde8);
        ASSERT_TRUE(numbers);
        EXPECT_EQ(structure->Number(*numbers, 2), 0x9abcu);
        // Its place among the pages is told anew.
        const exif::TiffField* number = exif::FindField(page, 297);
        ASSERT_TRUE(number);
        EXPECT_EQ(structure->Number(*number, 0), 1u);
        EXPECT_EQ(structure->Number(*number, 1), 0u);
        EXPECT_EQ(structure->Number(*exif::FindField(page, 254)), 2u);
    }
}

TEST_F(SaveAppend, ThePictureStaysThatOfTheFirstPageAndCanBeSavedAfterwards)
{
    const QString file = Copy("three_pages.tif", QStringLiteral("three.tif"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    CopyComments(lead, file);
    ASSERT_EQ(lead.Save(file, lead.InfoFormat(), lead.InfoBits(), 2, kSaveAppend), 0);
    ExpectPages(file, 4);
    EXPECT_EQ(Page(file, 3), Page(file, 0));
    lead.SetComment(kDescriptionSlot, QStringLiteral("On=first"));
    ASSERT_EQ(lead.Save(file, lead.InfoFormat(), lead.InfoBits(), 2, kSaveReplace), 0);
    ExpectPages(file, 4);
    const QByteArray bytes = Bytes(file);
    EXPECT_EQ(SlotsOfPage(bytes, 0).At(kDescriptionSlot).Text(), QStringLiteral("On=first"));
    EXPECT_NE(SlotsOfPage(bytes, 3).At(kDescriptionSlot), lead.Comment(kDescriptionSlot));
}

TEST_F(SaveAppend, TheLoadedFileChangedByOthersTakesNoPage)
{
    const QString file = Copy("three_pages.tif", QStringLiteral("three.tif"));
    EngineInstance lead;
    lead.Load(file, 0, 0);
    const QByteArray changed = test::GreyTiff(8, 8, 'c');
    WriteWholeFile(mFolder.filePath(QStringLiteral("other.tif")), changed);
    // Written into, as some programs do; the name stands for the same file.
    FILE* into = std::fopen(BytesFromPath(file).constData(), "r+b");
    ASSERT_TRUE(into);
    EXPECT_EQ(std::fwrite(changed.constData(), 1, size_t(changed.size()), into),
              size_t(changed.size()));
    std::fclose(into);
    const QByteArray before = Bytes(file);
    const Failure failure = FailureOfSave(lead, file, 3, 24);
    EXPECT_EQ(failure.Number(), kFailureIo);
    EXPECT_TRUE(failure.Description().contains(QStringLiteral("changed by another program")));
    EXPECT_EQ(Bytes(file), before);
}

TEST_F(SaveAppend, WhatTakesNoFurtherPageIsRefusedInWords)
{
    const QString tiff = Copy("CHART.TIF", QStringLiteral("chart.tif"));
    const QString photo = Copy("AST_0101.JPG", QStringLiteral("photo.jpg"));
    EngineInstance lead;
    lead.Load(tiff, 0, 0);
    int refused = 0;
    for (const SaveVariant& variant : SaveVariants()) {
        if (std::strcmp(variant.codec, "TIFF") == 0) {
            continue;
        }
        const QByteArray before = Bytes(tiff);
        const Failure failure = FailureOfSave(lead, tiff, variant.format, 0);
        EXPECT_EQ(failure.Number(), kFailureGeneral) << variant.format;
        EXPECT_TRUE(failure.Description().contains(FormatDescription(variant.format)))
            << failure.Description().toStdString();
        EXPECT_TRUE(failure.Description().contains(QStringLiteral("\"chart.tif\"")));
        EXPECT_EQ(Bytes(tiff), before);
        ++refused;
    }
    EXPECT_GT(refused, 40);
    for (const char* sample :
         {"AST_0101.JPG", "petals.png", "sunrise.gif", "chart.BMP", "flower.ico", "PHANTOM.DIC"}) {
        // The content tells what a file is, whatever it is called.
        const QString file = Copy(sample, QStringLiteral("other.tif"));
        const Failure failure = FailureOfSave(lead, file, 3, 24);
        EXPECT_EQ(failure.Number(), kFailureGeneral) << sample;
        EXPECT_TRUE(failure.Description().contains(QStringLiteral("\"other.tif\" is no TIFF")))
            << failure.Description().toStdString();
        EXPECT_EQ(Bytes(file), Sample(sample));
    }
}

/// A file of two pages in which something is changed.
struct DamagedPages {
    const char* what;
    std::function<void(QByteArray& file, const exif::TiffDirectory& last)> damage;
};

TEST_F(SaveAppend, DamagedPagesAreRefusedAndLeftAlone)
{
    const auto put = [](QByteArray& file, qint64 at, quint32 value) {
        for (int i = 0; i < 4; ++i) {
            file[at + i] = char(value >> 8 * i);
        }
    };
    const auto entry = [](const exif::TiffDirectory& page, quint16 tag) {
        for (size_t i = 0; i < page.fields.size(); ++i) {
            if (page.fields[i].tag == tag) {
                return page.table.from + 2 + qint64(i) * 12;
            }
        }
        return qint64(-1);
    };
    const DamagedPages rows[] = {
        {"the chain leads back to the last page",
         [&](QByteArray& file, const auto& last) {
             put(file, last.table.to - 4, quint32(last.at));
         }},
        {"the chain leads back to the first page",
         [&](QByteArray& file, const auto& last) {
             put(file, last.table.to - 4, quint32(Directories(file).front().at));
         }},
        {"the chain leaves the file",
         [&](QByteArray& file, const auto& last) {
             put(file, last.table.to - 4, quint32(file.size() + 2));
         }},
        {"the chain leads to the last bytes",
         [&](QByteArray& file, const auto& last) {
             put(file, last.table.to - 4, quint32(file.size() - 1));
         }},
        {"the chain leads into the header",
         [&](QByteArray& file, const auto& last) { put(file, last.table.to - 4, 4); }},
        {"a strip lies beyond the end",
         [&](QByteArray& file, const auto& last) {
             put(file, entry(last, 273) + 8, quint32(file.size() - 3));
         }},
        {"a strip is longer than the file",
         [&](QByteArray& file, const auto& last) { put(file, entry(last, 279) + 8, 0xffff'ff00); }},
        {"a value lies beyond the end",
         [&](QByteArray& file, const auto& last) {
             put(file, entry(last, 270) + 8, quint32(file.size()));
         }},
        {"the last directory is cut off",
         [&](QByteArray& file, const auto& last) { file.truncate(last.table.to - 6); }},
        {"the last offset is cut off",
         [&](QByteArray& file, const auto& last) { file.truncate(last.table.to - 1); }},
        {"a directory hangs beyond the end",
         [&](QByteArray& file, const auto& last) {
             const qint64 at = entry(last, 0x8769);
             put(file, at + 8, quint32(file.size() + 8));
         }},
    };
    TiffMaker one;
    one.Picture(8, 8, {8}, 1, 8).Chunk(QByteArray(64, '1'));
    const QByteArray first = one.Page(8);
    TiffMaker two;
    two.Picture(8, 8, {8}, 1, 8).Chunk(QByteArray(64, '2')).Bytes(270, "a description");
    two.Long(0x8769, {8});
    const QByteArray second = two.Page(quint32(8 + first.size()));
    const quint32 next = two.DirectoryAt();
    TiffMaker again;
    again.Picture(8, 8, {8}, 1, 8).Chunk(QByteArray(64, '1'));
    const QByteArray chained = again.Page(8, next);
    const QByteArray whole = again.Head(again.DirectoryAt()) + chained + second;
    ASSERT_EQ(Directories(whole).size(), 2u);
    QImage white(4, 4, QImage::Format_RGB32);
    white.fill(Qt::white);
    EngineInstance lead;
    lead.SetBitmap(Bitmap(white, ColourModel::Rgb, 24));
    const QString sound = Write(QStringLiteral("sound.tif"), whole);
    ASSERT_EQ(FailureOfSave(lead, sound, 3, 24).Number(), 0);
    EXPECT_EQ(ProbeFile(sound).pages, 3);
    for (const DamagedPages& row : rows) {
        SCOPED_TRACE(row.what);
        QByteArray damaged = whole;
        row.damage(damaged, Directories(whole).back());
        ASSERT_NE(damaged, whole);
        const QString file = Write(QStringLiteral("damaged.tif"), damaged);
        const Failure failure = FailureOfSave(lead, file, 3, 24);
        EXPECT_EQ(failure.Number(), kFailureUnreadable) << failure.Description().toStdString();
        EXPECT_TRUE(failure.Description().contains(QStringLiteral("damaged")))
            << failure.Description().toStdString();
        EXPECT_EQ(Bytes(file), damaged);
    }
}

TEST_F(SaveAppend, AtEveryStepThatFailsAndAtEveryMomentTheOldFileOrTheNewOneIsWhole)
{
    const SavePlace place(QuickFolder());
    place.Write("a", Sample("three_pages.tif"));
    const QByteArray before = place.Content("a");
    SaveJob job;
    job.path = place.Path("a");
    QImage white(4, 4, QImage::Format_RGB32);
    white.fill(Qt::white);
    job.picture = Bitmap(white, ColourModel::Rgb, 24);
    job.request.format = 3;
    job.request.bits = 24;
    job.mode = kSaveAppend;
    int steps = 0;
    std::vector<QByteArray> seen;
    job.probe = [&](SaveStep, qint64&) {
        ++steps;
        seen.push_back(place.Content("a")); // what a kill would leave
        return 0;
    };
    SavePicture(job);
    const QByteArray after = place.Content("a");
    ExpectOldPagesUntouched(before, after);
    ASSERT_GE(steps, 4);
    for (const QByteArray& content : seen) {
        EXPECT_TRUE(content == before || content == after);
    }
    for (int failing = 0; failing < steps; ++failing) {
        for (const int error : {ENOSPC, EIO}) {
            SCOPED_TRACE(failing);
            place.Write("a", before);
            int step = 0;
            job.probe = [&](SaveStep, qint64&) { return step++ == failing ? error : 0; };
            const Failure failure = test::FailureOf([&] { SavePicture(job); });
            CleanUpAfterCrash();
            EXPECT_EQ(place.Content("a"), failure.Number() == 0 ? after : before);
            EXPECT_EQ(place.Entries(), QStringList{"a"});
        }
    }
}

TEST_F(SaveAppend, WhatSomebodyWroteWhileThePageWasMadeStays)
{
    const QString file = Copy("three_pages.tif", QStringLiteral("three.tif"));
    SaveJob job;
    job.path = file;
    QImage white(4, 4, QImage::Format_RGB32);
    white.fill(Qt::white);
    job.picture = Bitmap(white, ColourModel::Rgb, 24);
    job.request.format = 3;
    job.mode = kSaveAppend;
    bool came = false;
    job.probe = [&](SaveStep step, qint64&) {
        if (step == SaveStep::Write && !came) {
            came = true;
            WriteWholeFile(file, "somebody else's");
        }
        return 0;
    };
    EXPECT_NE(test::FailureOf([&] { SavePicture(job); }).Number(), 0);
    EXPECT_EQ(Bytes(file), QByteArray("somebody else's"));
}

} // namespace
} // namespace quillane
