// Files that nobody would search: what hangs, what is damaged, what is hostile.
#include "core/failure.h"
#include "core/native_path.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include "search/evaluation.h"
#include "search/tagged_gif.h"

#include <gtest/gtest.h>
#include <random>

namespace quillane {

namespace {

SearchQuestion QuestionOfIso(qint16 value)
{
    SearchQuestion question;
    question.criteria.searchNumeric[0] = {value, kNoBound, QStringLiteral("ISO"), {}, kTrue};
    return question;
}

/// A GIF with a comment of any length.
QByteArray GifWithComment(const QByteArray& comment)
{
    const QByteArray plain = TaggedGif({});
    QByteArray gif = plain.first(19) + QByteArray("\x21\xfe", 2);
    for (qsizetype from = 0; from < comment.size(); from += 255) {
        const QByteArray piece = comment.mid(from, 255);
        gif += char(piece.size()) + piece;
    }
    return gif + char(0) + plain.sliced(19);
}

class BadFileSearchTest : public testing::Test {
protected:
    TempFolder folder;
};

} // namespace

TEST_F(BadFileSearchTest, APipeOrADeviceIsRefusedAndNotWaitedFor)
{
    ASSERT_EQ(mkfifo(folder.Bytes("pipe.jpg").constData(), 0600), 0);
    folder.Link("/dev/zero", "endless.jpg");
    folder.MakeFolder("folder.jpg");
    folder.Link("circle.jpg", "circle.jpg");
    for (const char* name : {"pipe.jpg", "endless.jpg", "folder.jpg", "circle.jpg", "gone.jpg"}) {
        EXPECT_THROW(FileMatchesSearch(folder.Path(name), QuestionOfIso(5)), Failure) << name;
    }
}

TEST_F(BadFileSearchTest, AFileThatMayNotBeReadIsAFailure)
{
    folder.Write("a.gif", TaggedGif("ISO=5"));
    folder.Chmod("a.gif", 0);
    const Unprivileged unprivileged;
    EXPECT_THROW(FileMatchesSearch(folder.Path("a.gif"), QuestionOfIso(5)), Failure);
}

TEST_F(BadFileSearchTest, NamesThatAreNoTextOrDifferInCaseAloneAreFilesOfTheirOwn)
{
    folder.Write("\xFF\xFE.gif", TaggedGif("ISO=5"));
    folder.Write("a.gif", TaggedGif("ISO=5"));
    folder.Write("A.GIF", TaggedGif("ISO=6"));
    EXPECT_EQ(FileMatchesSearch(folder.Path("\xFF\xFE.gif"), QuestionOfIso(5)), -1);
    EXPECT_EQ(FileMatchesSearch(folder.Path("a.gif"), QuestionOfIso(5)), -1);
    EXPECT_EQ(FileMatchesSearch(folder.Path("A.GIF"), QuestionOfIso(5)), 0);
}

TEST_F(BadFileSearchTest, AFileCutOffAnywhereNeverDoesMoreThanFail)
{
    const QByteArray whole = TaggedGif("Name=Ann\r\nISO=5\r\n");
    for (const char* name : {"a.gif", "a.jpg", "a.png", "a.tif", "a.dic"}) {
        for (qsizetype size = 0; size <= whole.size(); ++size) {
            folder.Write(name, whole.first(size));
            qint16 answer = kFalse;
            ResumeNext([&] { answer = FileMatchesSearch(folder.Path(name), QuestionOfIso(5)); });
            EXPECT_TRUE(size < whole.size() || answer == kTrue) << name;
        }
    }
}

TEST_F(BadFileSearchTest, SamplesWithDamagedBytesNeverDoMoreThanFail)
{
    std::mt19937 chance(5);
    int files = 0;
    const QString samples = QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/");
    ListFolder(samples, [&](DirEntry&& entry) {
        if (entry.type != FileType::Regular || IsImageFile(samples + entry.name) != kTrue) {
            return true;
        }
        const QByteArray whole = ReadWholeFile(samples + entry.name, 64 << 20);
        const QByteArray name = BytesFromPath(entry.name);
        for (int round = 0; round < 40; ++round) {
            QByteArray damaged = whole;
            // The head is where the directories are.
            std::uniform_int_distribution<qsizetype> anywhere(
                0, std::min<qsizetype>(damaged.size(), 8192) - 1);
            for (int byte = 0; byte < 8; ++byte) {
                damaged[anywhere(chance)] = char(chance());
            }
            folder.Write(name, damaged);
            ResumeNext([&] { FileMatchesSearch(folder.Path(name), QuestionOfIso(5)); });
        }
        ++files;
        return true;
    });
    EXPECT_GT(files, 0);
}

TEST_F(BadFileSearchTest, ADescriptionOfMillionsOfLinesIsReadOncePerRow)
{
    folder.Write("a.gif", GifWithComment(QByteArray("\n").repeated(3'000'000) + "ISO=5\n"));
    folder.Write("b.gif", GifWithComment(QByteArray("ISO=6\n").repeated(500'000)));
    folder.Write("c.gif", GifWithComment(QByteArray(3'000'000, '=')));
    SearchQuestion question = QuestionOfIso(5);
    for (SearchCriterion& row : question.criteria.searchNumeric) {
        row = question.criteria.searchNumeric[0];
    }
    // Found, or beyond what is read of a comment: it comes to an end either way.
    for (const char* name : {"a.gif", "b.gif", "c.gif"}) {
        qint16 answer = kFalse;
        ResumeNext([&] { answer = FileMatchesSearch(folder.Path(name), question); });
        EXPECT_TRUE(answer == kFalse || *name == 'a') << name;
    }
}

} // namespace quillane
