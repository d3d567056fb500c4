// Metadata of a TIFF: changed at its end, or carried around new pixels.
#include "carry_support_for_tests.h"
#include "imaging/exif/tiff_structure.h"
#include "tiff_maker.h"

#include <iostream>

namespace quillane {

namespace {

using making::ExifMaker;
using making::PlanOf;
using making::TextOf;
using test::TiffMaker;

const QByteArray kNote = QByteArray("NOTE\0\1", 6) + QByteArray(250, 'n') + "end";
const QByteArray kGap = "bytes that no field names";

/// A TIFF with three directories, a MakerNote, foreign fields, one strip of 20 x 10 grey pixels
/// whose value is `grey`, and a second page of 8 x 8.
QByteArray TwoPages(bool big = false, bool wide = false, char grey = 'g')
{
    const auto build = [&](qint64 stripAt, QByteArray* block) {
        ExifMaker maker(big, wide);
        maker.Long(ExifMaker::Tiff, 0x0100, {20})
            .Long(ExifMaker::Tiff, 0x0101, {10})
            .Short(ExifMaker::Tiff, 0x0102, {8})
            .Short(ExifMaker::Tiff, 0x0103, {1})
            .Short(ExifMaker::Tiff, 0x0106, {1})
            .Ascii(ExifMaker::Tiff, 0x010e, "the old description")
            .Long(ExifMaker::Tiff, 0x0111, {stripAt})
            .Short(ExifMaker::Tiff, 0x0112, {1})
            .Short(ExifMaker::Tiff, 0x0115, {1})
            .Long(ExifMaker::Tiff, 0x0116, {10})
            .Long(ExifMaker::Tiff, 0x0117, {200})
            .Bytes(ExifMaker::Tiff, 0x83bb, "IPTC-IPTC-IPTC")
            .Bytes(ExifMaker::Tiff, 0x8649, "8BIM-8BIM-8BIM")
            .Bytes(ExifMaker::Tiff, 0xfde8, "private value")
            .Ascii(ExifMaker::Exif, 0x9003, "2003:01:05 13:07:09")
            .Bytes(ExifMaker::Exif, 0x927c, kNote)
            .Long(ExifMaker::Exif, 0xa002, {20});
        *block = maker.Block();
    };
    QByteArray file;
    build(0, &file);
    const qsizetype stripAt = file.size() + file.size() % 2;
    build(stripAt, &file);
    file.resize(stripAt, '\0');
    file += QByteArray(200, grey) + kGap;
    if (!wide) {
        file.resize(file.size() + file.size() % 2, '\0');
        TiffMaker page(big);
        page.Picture(8, 8, {8}, 1, 8).Chunk(QByteArray(64, 'p'));
        const QByteArray second = page.Page(quint32(file.size()));
        const auto structure = exif::TiffStructure::Open(file);
        const auto first = structure->ReadDirectory(structure->FirstDirectory());
        const QByteArray next = structure->BytesOf(page.DirectoryAt(), 4);
        file.replace(first.table.to - 4, 4, next);
        file += second;
    }
    return file;
}

/// A picture as an encoder leaves it.
QByteArray Encoded(quint32 width, quint32 height, char grey, int strips = 1)
{
    TiffMaker maker;
    maker.Picture(width, height, {8}, 1, height / quint32(strips));
    for (int i = 0; i < strips; ++i) {
        maker.Chunk(QByteArray(qsizetype(width * height / quint32(strips)), grey));
    }
    return maker.File();
}

QByteArray ReplaceText(const QByteArray& file, const QString& text)
{
    MemorySource source(file);
    const CommentChange change{kDescriptionSlot, text.isEmpty() ? CommentValue() : text};
    return ReplaceCommentsInTiff(source, {&change, 1});
}

CommentSet SlotsOf(const QByteArray& file)
{
    MemorySource source(file);
    CommentSet set;
    ReadTiffComments(source, set);
    return set;
}

class CarryTiff : public test::WorkerTest {
protected:
    QImage Page(const QByteArray& file, int page = 0)
    {
        DecodeRequest request;
        request.page = page;
        return Decode(Write(QStringLiteral("page.tif"), file), "TIFF", request)
            .Pixels()
            .convertToFormat(QImage::Format_RGBA64);
    }
    ImageFacts Facts(const QByteArray& file)
    {
        return Probe(Write(QStringLiteral("facts.tif"), file), "TIFF");
    }
    /// Whether libtiff's own tool reads it without a word of complaint.
    void ExpectSound(const QByteArray& file)
    {
        const QString path = Write(QStringLiteral("sound.tif"), file);
        if (test::HasTool(QStringLiteral("tiffinfo"))) {
            EXPECT_TRUE(test::RunTool(QStringLiteral("tiffinfo"), {"-D", path}).has_value());
        }
        if (test::HasTool(QStringLiteral("exiv2"))) {
            EXPECT_TRUE(test::RunTool(QStringLiteral("exiv2"), {"-pa", path}).has_value());
        }
    }
};

TEST_F(CarryTiff, ChangedTextLeavesEverythingElseInItsPlace)
{
    for (const bool big : {false, true}) {
        for (const bool wide : {false, true}) {
            const QByteArray before = TwoPages(big, wide);
            const QByteArray after = ReplaceText(before, QString(100, u'x'));
            ASSERT_EQ(TextOf(SlotsOf(after), 3), QString(100, u'x'));
            EXPECT_FALSE(after.contains("old description"));
            for (const QByteArray& stays :
                 {kNote, kGap, QByteArray(200, 'g'), QByteArray("IPTC-IPTC-IPTC"),
                  QByteArray("8BIM-8BIM-8BIM"), QByteArray("private value")}) {
                EXPECT_EQ(after.indexOf(stays), before.indexOf(stays)) << stays.constData();
            }
            EXPECT_EQ(Page(after), Page(before));
            EXPECT_EQ(Facts(after).pages, wide ? 1 : 2);
            if (!wide) {
                EXPECT_EQ(Page(after, 1), Page(before, 1));
                ExpectSound(after);
            }
            EXPECT_LE(after.size(), before.size() + 120);
            const QByteArray gone = ReplaceText(after, {});
            EXPECT_TRUE(SlotsOf(gone).At(3).IsEmpty());
            EXPECT_FALSE(gone.contains("xxxx"));
            EXPECT_LE(gone.size(), before.size() + 1); // a new directory begins at an even byte
            EXPECT_EQ(ReplaceText(before, QStringLiteral("the old description")), before);
        }
    }
}

TEST_F(CarryTiff, FiftyChangesOfTextDoNotGrowTheFile)
{
    QByteArray file = TwoPages();
    qsizetype settled = 0;
    for (int round = 0; round < 50; ++round) {
        file = ReplaceText(file, QString(80 + round % 3, QChar(u'a' + round % 26)));
        settled = round == 3 ? file.size() : settled;
        EXPECT_TRUE(round < 3 || file.size() <= settled + 4) << round;
    }
    EXPECT_EQ(file.indexOf(kNote), TwoPages().indexOf(kNote));
}

TEST_F(CarryTiff, EverySlotIsReadBack)
{
    std::vector<CommentChange> changes;
    for (const CommentSlot& slot : CommentSlots()) {
        changes.push_back({slot.slot, making::ValueFor(slot)});
    }
    for (const bool wide : {false, true}) {
        MemorySource source(TwoPages(true, wide));
        const CommentSet read = SlotsOf(ReplaceCommentsInTiff(source, changes));
        for (const CommentSlot& slot : CommentSlots()) {
            EXPECT_EQ(read.At(slot.slot),
                      making::IsInExifBlock(slot) ? making::ValueFor(slot) : CommentValue())
                << slot.field;
        }
    }
}

TEST_F(CarryTiff, NewPixelsStandAroundWhatMustNotMove)
{
    for (const bool big : {false, true}) {
        const QByteArray before = TwoPages(big);
        PlanOf with(before, ReadTiffComments);
        with.plan.wanted.Set(3, QStringLiteral("a new description"));
        for (const auto& [width, height, strips] :
             {std::tuple{20u, 10u, 1}, std::tuple{100u, 100u, 4}, std::tuple{4u, 4u, 1}}) {
            with.plan.width = qint32(width);
            with.plan.height = qint32(height);
            const QByteArray encoded = Encoded(width, height, 'z', strips);
            const QByteArray after = CarryIntoTiff(encoded, with.plan);
            EXPECT_EQ(after.indexOf(kNote), before.indexOf(kNote));
            EXPECT_EQ(after.indexOf(kGap), before.indexOf(kGap));
            EXPECT_TRUE(after.contains("IPTC-IPTC-IPTC") && after.contains("8BIM-8BIM-8BIM")
                        && after.contains("private value"));
            EXPECT_FALSE(after.contains("gggg"));
            EXPECT_EQ(Page(after), Page(encoded));
            EXPECT_EQ(Page(after, 1), Page(before, 1));
            EXPECT_EQ(Facts(after).pages, 2);
            EXPECT_EQ(TextOf(SlotsOf(after), 3), QStringLiteral("a new description"));
            EXPECT_EQ(TextOf(SlotsOf(after), 22), QStringLiteral("2003:01:05 13:07:09"));
            EXPECT_LE(after.size(), before.size() + encoded.size());
            ExpectSound(after);
            if (test::HasTool(QStringLiteral("exiftool"))) {
                EXPECT_EQ(making::ExifTool(after, "a.tif", {"-s3", "-ExifImageWidth"}),
                          QString::number(width));
            }
            if (width == 20) {
                EXPECT_LE(after.size(), before.size() + 8);
            }
        }
    }
}

TEST_F(CarryTiff, RepeatedSavesOfNewPixelsDoNotPileUp)
{
    QByteArray file = TwoPages();
    qsizetype most = 0;
    for (int round = 0; round < 30; ++round) {
        PlanOf with(file, ReadTiffComments);
        with.plan.wanted.Set(3, QString(40 + round % 5, u'd'));
        file = CarryIntoTiff(Encoded(60, 60, char('a' + round % 20), 3), with.plan);
        most = round < 5 ? std::max(most, file.size()) : most;
        EXPECT_TRUE(round < 5 || file.size() <= most + 64) << round << ' ' << file.size();
    }
}

TEST_F(CarryTiff, SixteenBitsAreTurnedOrRefused)
{
    TiffMaker little;
    little.Picture(2, 1, {16}, 1, 1).Chunk(QByteArray("\x34\x12\x78\x56", 4));
    PlanOf with(TwoPages(true), ReadTiffComments);
    const QByteArray after = CarryIntoTiff(little.File(), with.plan);
    EXPECT_EQ(Page(after), Page(little.File()));
    TiffMaker packed;
    packed.Picture(2, 1, {16}, 1, 1)
        .Compression(32773)
        .Chunk(QByteArray("\x03\x34\x12\x78\x56", 5));
    EXPECT_EQ(test::FailureOf([&] { CarryIntoTiff(packed.File(), with.plan); }).Number(),
              kFailureGeneral);
    PlanOf same(TwoPages(false), ReadTiffComments);
    EXPECT_EQ(Page(CarryIntoTiff(packed.File(), same.plan)), Page(packed.File()));
}

TEST_F(CarryTiff, PreviewHangsOnTheFirstDirectoryAndIsRenewed)
{
    making::JpegMake make;
    make.width = 16;
    make.height = 8;
    const QByteArray one = making::MakeJpeg(make);
    make.channels = 1;
    const QByteArray two = making::MakeJpeg(make);
    CarryPlan fresh;
    fresh.exif = false;
    fresh.preview = one;
    const QByteArray with = CarryIntoTiff(Encoded(30, 30, 'e'), fresh);
    EXPECT_EQ(with.count(one), 1);
    EXPECT_EQ(Facts(with).pages, 1);
    EXPECT_EQ(Page(with), Page(Encoded(30, 30, 'e')));
    ExpectSound(with);
    const auto preview = [&](const QByteArray& file) {
        const auto structure = exif::TiffStructure::Open(file);
        const auto first = structure->ReadDirectory(structure->FirstDirectory());
        const exif::TiffField* list = exif::FindField(first, exif::kTagSubDirectories);
        if (!list) {
            return QByteArray();
        }
        const auto directory = structure->ReadDirectory(qint64(*structure->Number(*list)));
        EXPECT_EQ(*structure->Number(*exif::FindField(directory, exif::kTagImageWidth)), 16u);
        const auto at = *structure->Number(*exif::FindField(directory, exif::kTagStripOffsets));
        const auto size =
            *structure->Number(*exif::FindField(directory, exif::kTagStripByteCounts));
        return file.mid(qsizetype(at), qsizetype(size));
    };
    EXPECT_EQ(preview(with), one);
    MemorySource holding(with);
    EXPECT_TRUE(HoldsPreview(holding));
    MemorySource lacking(Encoded(30, 30, 'e'));
    EXPECT_FALSE(HoldsPreview(lacking));
    EXPECT_EQ(preview(ReplaceText(with, QString(50, u't'))), one);
    PlanOf again(with, ReadTiffComments);
    again.plan.exif = false;
    again.plan.preview = two;
    const QByteArray renewed = CarryIntoTiff(Encoded(30, 30, 'f'), again.plan);
    EXPECT_EQ(preview(renewed), two);
    EXPECT_FALSE(renewed.contains(one));
    again.plan.preview.clear();
    const QByteArray without = CarryIntoTiff(Encoded(30, 30, 'f'), again.plan);
    EXPECT_EQ(preview(without), QByteArray());
    EXPECT_FALSE(without.contains(one));
    again.plan.keepPreview = true;
    EXPECT_EQ(preview(CarryIntoTiff(Encoded(30, 30, 'f'), again.plan)), one);
}

TEST_F(CarryTiff, TheKindDecidesOnAnExifDirectory)
{
    TiffMaker rgb;
    rgb.Picture(2, 1, {8, 8, 8}, 2, 1).Chunk("abcdef");
    CarryPlan plan;
    plan.wanted.Set(3, QStringLiteral("text"));
    plan.wanted.Set(22, QStringLiteral("2003:01:05 13:07:09"));
    EXPECT_EQ(Facts(CarryIntoTiff(rgb.File(), plan)).format, 96);
    plan.exif = false;
    const QByteArray plain = CarryIntoTiff(rgb.File(), plan);
    EXPECT_EQ(Facts(plain).format, 3);
    EXPECT_EQ(TextOf(SlotsOf(plain), 3), QStringLiteral("text"));
    EXPECT_TRUE(SlotsOf(plain).At(22).IsEmpty());
    // Other kinds keep the date, whatever they are called.
    const QByteArray grey = CarryIntoTiff(Encoded(4, 4, 'a'), plan);
    EXPECT_EQ(TextOf(SlotsOf(grey), 22), QStringLiteral("2003:01:05 13:07:09"));
    // A directory that the original has goes when another kind of file is asked for.
    PlanOf with(TwoPages(), ReadTiffComments);
    with.plan.exif = false;
    const QByteArray dropped = CarryIntoTiff(rgb.File(), with.plan);
    EXPECT_EQ(Facts(dropped).format, 3);
    EXPECT_FALSE(dropped.contains("NOTE"));
    EXPECT_EQ(Facts(dropped).pages, 2);
}

TEST_F(CarryTiff, XmpIsKeptInStep)
{
    const QByteArray xmp =
        "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" "
        "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
        "xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\"><rdf:Description tiff:Orientation=\"6\" "
        "dc:description=\"the old description\"/></rdf:RDF>";
    TiffMaker maker;
    maker.Picture(4, 4, {8}, 1, 4).Chunk(QByteArray(16, 'x')).Bytes(700, xmp);
    maker.Bytes(0x010e, "unused");
    const QByteArray old = ReplaceText(maker.File(), QStringLiteral("the old description"));
    EXPECT_TRUE(old.contains("tiff:Orientation=\"6\"")); // pixels lie as they lay
    EXPECT_TRUE(ReplaceText(old, QStringLiteral("x & y")).contains("\"x &amp; y\""));
    PlanOf with(old, ReadTiffComments);
    with.plan.wanted.Set(3, QStringLiteral("new"));
    const QByteArray after = CarryIntoTiff(Encoded(4, 4, 'y'), with.plan);
    EXPECT_TRUE(after.contains("tiff:Orientation=\"1\" dc:description=\"new\""));
}

TEST_F(CarryTiff, SamplesKeepTheirPagesAndFields)
{
    int seen = 0;
    for (const char* folder : {"formats/", "exif/"}) {
        for (const test::Sample& sample : test::Samples(QLatin1String(folder), {"tif"})) {
            SCOPED_TRACE(sample.file.toStdString());
            ++seen;
            const QByteArray original = ReadWholeFile(sample.path, 8 << 20);
            QByteArray file = original;
            qsizetype settled = 0;
            for (int round = 0; round < 50; ++round) {
                file = ReplaceText(file, QString(300, QChar(u'a' + round % 26)));
                settled = round == 1 ? file.size() : settled;
                ASSERT_TRUE(round < 1 || file.size() == settled) << round;
            }
            const int pages = std::min(sample.frames, 3);
            for (int page = 0; page < pages; ++page) {
                EXPECT_EQ(Page(file, page), Page(original, page));
            }
            EXPECT_EQ(Facts(file).pages, sample.frames);
            // The picture that is put in place of the first one is the first one itself.
            if (sample.file.contains("old_jpeg")) {
                continue; // its tables are found by their places, and no encoder writes it
            }
            PlanOf with(file, ReadTiffComments);
            with.plan.exif = !with.before.At(kDateTakenSlot).IsEmpty();
            const QByteArray carried = CarryIntoTiff(original, with.plan);
            for (int page = 0; page < pages; ++page) {
                EXPECT_EQ(Page(carried, page), Page(original, page));
            }
            EXPECT_LE(carried.size(), original.size() + 2000);
            if (test::HasTool(QStringLiteral("exiftool"))) {
                const QStringList what{"-a",
                                       "-G1",
                                       "-s",
                                       "-XMP:all",
                                       "-IPTC:all",
                                       "-ExifIFD:all",
                                       "-Photoshop:all",
                                       "-ICC_Profile:all",
                                       "-GPS:all"};
                const QString before = making::ExifTool(original, "a.tif", what);
                const QString after = making::ExifTool(carried, "a.tif", what);
                for (const QString& line : before.split(u'\n')) {
                    EXPECT_TRUE(after.contains(line) || line.contains("Description")
                                || line.contains("ExifImage"))
                        << line.toStdString();
                }
            }
        }
    }
    std::cout << seen << " TIFF files\n";
    EXPECT_EQ(seen > 10, test::HasSamples());
}

TEST_F(CarryTiff, HostileFilesAreRefusedOrChanged)
{
    int seen = 0;
    for (const QString& file : test::HasSamples()
             ? QStringList{"crash-0da013a1.tif", "crash-86214e58.tif", "ifd_loop.tif",
                           "libtiff_segfault.tif", "oom-225817ca.tif"}
             : QStringList()) {
        const QByteArray bytes = ReadWholeFile(
            QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/hostile/") + file, 8 << 20);
        const Failure failure =
            test::FailureOf([&] { ReplaceText(bytes, QStringLiteral("text")); });
        EXPECT_TRUE(failure.Number() == 0 || failure.Number() == kFailureUnreadable)
            << file.toStdString() << failure.what();
        const Failure carried = test::FailureOf([&] {
            PlanOf with(bytes, ReadTiffComments);
            CarryIntoTiff(Encoded(4, 4, 'h'), with.plan);
        });
        EXPECT_TRUE(carried.Number() == 0 || carried.Number() == kFailureUnreadable)
            << file.toStdString() << carried.what();
        ++seen;
    }
    EXPECT_EQ(seen > 0, test::HasSamples());
}

} // namespace

} // namespace quillane
