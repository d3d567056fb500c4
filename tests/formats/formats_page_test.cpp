// The page of formats says what the tables say, and the tables leave nothing out.
#include "core/native_path.h"
#include "formats/formats_page.h"
#include "imaging/codec.h"
#include "imaging/format_facts.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"
#include "imaging/worker/worker_host.h"
#include <cstdio>
#include <gtest/gtest.h>
#include <set>

namespace quillane {

TEST(FormatsPage, TheFileIsWhatTheTablesSay)
{
    const QString file = QString::fromUtf8(
        ReadWholeFile(QStringLiteral(QUILLANE_SOURCE_FOLDER "/FORMATS.md"), 1 << 20));
    const QStringList stands = file.split(u'\n');
    const QStringList wanted = FormatsPage().split(u'\n');
    for (qsizetype i = 0; i < qMin(stands.size(), wanted.size()); ++i) {
        ASSERT_EQ(stands[i].toStdString(), wanted[i].toStdString())
            << "FORMATS.md, line " << i + 1 << ": run scripts/make_formats";
    }
    EXPECT_EQ(stands.size(), wanted.size()) << "run scripts/make_formats";
}

TEST(FormatsPage, EveryBrowsedExtensionAndEveryCodeHasItsRow)
{
    const QString page = FormatsPage();
    const QStringList mask = BrowsedPictures();
    EXPECT_EQ(mask.size(), 40);
    for (const QString& extension : mask) {
        EXPECT_TRUE(page.contains(QStringLiteral("\n| %1 | ").arg(extension)))
            << extension.toStdString();
    }
    for (const FormatRow& row : FormatTable()) {
        EXPECT_EQ(page.count(QStringLiteral("\n| %1 | ").arg(row.code)), 1) << row.code;
    }
    EXPECT_FALSE(page.contains(QLatin1String("|  |  |  |  |  |  |  |"))) << "a codec without facts";
}

TEST(FormatFacts, EveryCodecSaysWhoReadsItOrWhyNobodyDoes)
{
    for (const Codec& codec : AllCodecs()) {
        const ReadFacts* facts = FindReadFacts(codec.name);
        ASSERT_NE(facts, nullptr) << codec.name << " has no row in imaging/format_facts.cpp";
        EXPECT_NE(facts->refused == nullptr, facts->reader == nullptr) << codec.name;
        EXPECT_EQ(facts->refused == nullptr, facts->depths != nullptr) << codec.name;
        if (!codec.inWorker && !codec.probe) {
            EXPECT_NE(facts->refused, nullptr) << codec.name << " cannot be read";
        }
    }
    std::set<std::string> names;
    for (const ReadFacts& facts : AllReadFacts()) {
        EXPECT_TRUE(names.insert(facts.codec).second) << facts.codec << " stands twice";
    }
}

TEST(FormatFacts, EveryCodeSaysHowItIsPackedOrWhyItIsNotWritten)
{
    for (const FormatRow& row : FormatTable()) {
        const bool written = FindSaveVariant(row.code) != nullptr;
        if (written) {
            EXPECT_NE(FindWriteFacts(row.code), nullptr)
                << row.code << " has no row in imaging/format_facts.cpp";
        }
        EXPECT_EQ(WhyNotWritten(row.code).isEmpty(), written)
            << row.code << ": a row with a reason stands exactly where a code is not written";
    }
    std::set<qint16> codes;
    for (const WriteRefusal& refusal : AllWriteRefusals()) {
        EXPECT_TRUE(codes.insert(refusal.format).second) << refusal.format << " stands twice";
        EXPECT_FALSE(FormatDescription(refusal.format).isEmpty()) << refusal.format;
    }
    codes.clear();
    for (const WriteFacts& facts : AllWriteFacts()) {
        EXPECT_TRUE(codes.insert(facts.format).second) << facts.format << " stands twice";
        EXPECT_FALSE(FormatDescription(facts.format).isEmpty()) << facts.format;
    }
}

namespace {

/// Paths of the sample pictures, and of those beside the project where there are any.
QStringList SamplePaths()
{
    QStringList paths;
    for (const char* folder : {"/samples", "/../shared/samples/formats", "/../shared/samples/exif",
                               "/../shared/samples/dicom", "/../shared/samples/media"}) {
        const QString path = QLatin1String(QUILLANE_SOURCE_FOLDER) + QLatin1String(folder);
        if (StatPath(path).type != FileType::Folder) {
            continue;
        }
        ListFolder(path, [&](DirEntry&& entry) {
            if (entry.type == FileType::Regular) {
                paths.append(path + u'/' + entry.name);
            }
            return true;
        });
    }
    return paths;
}

/// Whether the words are a list of numbers without this one.
bool LacksDepth(const QString& depths, int bits)
{
    bool numbers = true, found = false;
    for (const QString& depth : depths.split(QStringLiteral(", "))) {
        bool number = false;
        found = depth.toInt(&number) == bits || found;
        numbers = numbers && number;
    }
    return numbers && !found;
}

} // namespace

TEST(FormatFacts, HoldForEverySamplePicture)
{
    worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
    int seen = 0, read = 0;
    for (const QString& path : SamplePaths()) {
        SCOPED_TRACE(path.toStdString());
        FileSource source(path);
        const Codec* codec = FindCodec(source.Head(512), path.section(u'.', -1));
        if (!codec) {
            continue;
        }
        ++seen;
        const ReadFacts* facts = FindReadFacts(codec->name);
        ASSERT_NE(facts, nullptr);
        if (facts->refused) {
            EXPECT_THROW(ProbeFile(path), Failure);
            continue;
        }
        ImageFacts found;
        if (!ResumeNext([&] { found = ProbeFile(path); })) {
            continue; // damaged, or of a kind that the notes name
        }
        ++read;
        EXPECT_FALSE(LacksDepth(QString::fromUtf8(facts->depths), found.bits)) << found.bits;
        EXPECT_TRUE(found.pages == 1 || facts->pages == PagesRead::FirstCounted
                    || facts->pages == PagesRead::Any)
            << found.pages;
    }
    std::printf("%d samples of known formats, %d of them read\n", seen, read);
    EXPECT_GE(read, 20);
    EXPECT_GE(read * 10, seen * 9);
}

} // namespace quillane
