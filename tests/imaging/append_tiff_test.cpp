// A page moved behind the last one of a TIFF.
#include "imaging/limits.h"
#include "imaging/reader.h"
#include "tiff_pages_for_tests.h"
#include "worker_support.h"

#include <iostream>

namespace quillane {
namespace {

using test::GreyTiff;
using test::TiffMaker;

class AppendToSamples : public test::WorkerTest { };

TEST(AppendTiffPage, AFileThatWouldBecomeTooLargeIsRefused)
{
    const QByteArray target = GreyTiff(8, 8, 'a');
    const QByteArray page = GreyTiff(64, 64, 'b');
    const qint64 whole = AppendTiffPage(target, page, limits::kMaxFileBytes).file.size();
    EXPECT_EQ(AppendTiffPage(target, page, whole).file.size(), whole);
    EXPECT_EQ(test::FailureOf([&] { AppendTiffPage(target, page, whole - 1); }).Number(),
              kFailureLimit);
}

TEST(AppendTiffPage, APlaceThatIsToldManyTimesDoesNotMakeTheFileGrow)
{
    TiffMaker maker;
    maker.Picture(100, 100, {8}, 1, 1);
    QList<quint32> places, sizes;
    for (quint32 i = 0; i < 100; ++i) {
        places.append(8);
        sizes.append(100);
    }
    maker.Long(273, places).Long(279, sizes);
    const QByteArray file = AppendTiffPage(GreyTiff(8, 8, 'a'), maker.File(), 1 << 20).file;
    EXPECT_LT(file.size(), 64 + maker.File().size() + 400);
    // Places that overlap and differ would.
    for (quint32 i = 0; i < 100; ++i) {
        sizes[i] = 700 + i;
    }
    TiffMaker hostile;
    hostile.Picture(100, 100, {8}, 1, 1).Long(273, places).Long(279, sizes);
    EXPECT_EQ(test::FailureOf([&] {
                  AppendTiffPage(GreyTiff(8, 8, 'a'), hostile.File(), 1 << 20);
              }).Number(),
              kFailureLimit);
}

TEST(AppendTiffPage, FieldsOfHostilePagesAreBoundedAndCirclesEnd)
{
    // A directory that hangs on itself, and one that tells its own page as its Exif directory.
    TiffMaker maker;
    maker.Picture(4, 4, {8}, 1, 4)
        .Chunk(QByteArray(16, 'x'))
        .Long(330, {8, 8, 8})
        .Long(0x8769, {8});
    QByteArray page = maker.File();
    const auto structure = exif::TiffStructure::Open(page);
    const auto first = structure->ReadDirectory(structure->FirstDirectory());
    const QByteArray own = structure->BytesOf(quint64(first.at), 4);
    for (size_t i = 0; i < first.fields.size(); ++i) {
        if (first.fields[i].tag == 0x8769) {
            page.replace(first.table.from + 2 + qint64(i) * 12 + 8, 4, own);
        }
    }
    const TiffWithPage made = AppendTiffPage(GreyTiff(8, 8, 'a'), page, 1 << 20);
    EXPECT_EQ(made.pages, 2);
    const auto after = exif::TiffStructure::Open(made.file);
    EXPECT_FALSE(exif::FindField(after->ReadDirectory(made.directory), 0x8769));
}

TEST(AppendTiffPage, ThreeHundredPagesStandInOneChain)
{
    QByteArray file = GreyTiff(8, 8, 'a', true);
    for (int i = 0; i < 300; ++i) {
        file = AppendTiffPage(file, GreyTiff(4, 4, char('a' + i % 26)), 1 << 20).file;
    }
    const std::optional<exif::TiffStructure> structure = exif::TiffStructure::Open(file);
    qint64 at = structure->FirstDirectory();
    int pages = 0;
    for (; at != 0 && pages < 1000; ++pages) {
        at = structure->ReadDirectory(at).next;
    }
    EXPECT_EQ(pages, 301);
}

TEST_F(AppendToSamples, RealFilesTakeAPageAndKeepTheirs)
{
    int seen = 0, taken = 0;
    for (const char* folder : {"formats/", "exif/"}) {
        for (const test::Sample& sample : test::Samples(QLatin1String(folder), {"tif"})) {
            SCOPED_TRACE(sample.file.toStdString());
            ++seen;
            const QByteArray original = ReadWholeFile(sample.path, 8 << 20);
            TiffWithPage made;
            const Failure failure = test::FailureOf([&] {
                made = AppendTiffPage(original, GreyTiff(16, 16, 'n'), limits::kMaxFileBytes);
            });
            if (failure.Number() != 0) {
                std::cout << sample.file.toStdString() << ": "
                          << failure.Description().toStdString() << '\n';
                EXPECT_EQ(failure.Number(), kFailureUnreadable);
                continue;
            }
            ++taken;
            EXPECT_EQ(made.pages, sample.frames + 1);
            const QString path = Write(QStringLiteral("more.tif"), made.file);
            EXPECT_EQ(Probe(path, "TIFF").pages, sample.frames + 1);
            DecodeRequest request;
            for (request.page = 0; request.page < std::min(sample.frames, 3); ++request.page) {
                EXPECT_EQ(Decode(path, "TIFF", request).Pixels(),
                          Decode(sample.path, "TIFF", request).Pixels());
            }
            request.page = sample.frames;
            EXPECT_EQ(Decode(path, "TIFF", request).Pixels().size(), QSize(16, 16));
            // And its first page as a page of another.
            if (!TiffPageCanMove(original)) {
                continue;
            }
            Failure moved = test::FailureOf([&] {
                made = AppendTiffPage(GreyTiff(16, 16, 'n'), original, limits::kMaxFileBytes);
            });
            if (moved.Number() == kFailureGeneral) {
                // Compressed samples of the other order of bytes find room in a file of theirs.
                moved = test::FailureOf([&] {
                    made = AppendTiffPage(GreyTiff(16, 16, 'n', true), original,
                                          limits::kMaxFileBytes);
                });
            }
            ASSERT_EQ(moved.Number(), 0) << moved.Description().toStdString();
            const QString other = Write(QStringLiteral("other.tif"), made.file);
            request.page = 1;
            const Bitmap back = Decode(other, "TIFF", request);
            EXPECT_EQ(back.Pixels(), Decode(sample.path, "TIFF").Pixels());
        }
    }
    std::cout << seen << " TIFF files, " << taken << " took a page\n";
    EXPECT_EQ(seen > 10, test::HasSamples());
    EXPECT_GE(taken * 10, seen * 9);
}

TEST_F(AppendToSamples, HostileFilesAreRefusedOrTakeAPage)
{
    int seen = 0;
    if (test::HasSamples()) {
        const QString folder = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples/hostile/");
        QStringList names;
        ListFolder(folder, [&](DirEntry&& entry) {
            names.append(entry.name);
            return true;
        });
        for (const QString& name : names) {
            QByteArray bytes;
            ResumeNext([&] { bytes = ReadWholeFile(folder + name, 8 << 20); });
            if (!exif::TiffStructure::Open(bytes)) {
                continue;
            }
            ++seen;
            SCOPED_TRACE(name.toStdString());
            const Failure target = test::FailureOf(
                [&] { AppendTiffPage(bytes, GreyTiff(16, 16, 'n'), limits::kMaxFileBytes); });
            EXPECT_TRUE(target.Number() == 0 || target.Number() == kFailureUnreadable
                        || target.Number() == kFailureLimit);
            const Failure page = test::FailureOf([&] {
                const bool whole = TiffPageCanMove(bytes);
                const qsizetype size =
                    AppendTiffPage(GreyTiff(16, 16, 'n'), bytes, limits::kMaxFileBytes).file.size();
                EXPECT_TRUE(!whole || size < 3 * bytes.size() + 4096);
            });
            EXPECT_TRUE(page.Number() == 0 || !page.Description().isEmpty());
        }
    }
    std::cout << seen << " hostile TIFF files\n";
    EXPECT_EQ(seen > 3, test::HasSamples());
}

} // namespace
} // namespace quillane
