#include "comment_files.h"
#include "core/temp_folder.h"
#include "imaging/comments/comment_reader.h"
#include "imaging/comments/slots.h"

#include <gtest/gtest.h>

namespace quillane {

class CommentReaderTest : public testing::Test {
protected:
    QString Make(const QByteArray& name, const QByteArray& description)
    {
        mFolder.Write(name, making::JpegWith(making::JpegSegment(0xfe, description)));
        return mFolder.Path(name);
    }
    QString Description(const QString& file)
    {
        return mReader.ReadComment(file, 0, kDescriptionSlot).Text();
    }
    /// Stats and parses that a step costs.
    template <typename Step> std::pair<qint64, qint64> CostOf(Step&& step)
    {
        const qint64 stats = PathCallCount().stats, parses = CommentParseCount();
        step();
        return {PathCallCount().stats - stats, CommentParseCount() - parses};
    }
    using Cost = std::pair<qint64, qint64>;
    TempFolder mFolder;
    CommentReader mReader;
};

TEST_F(CommentReaderTest, AllSlotsOfAFileCostOneLookAndOneParse)
{
    const QString file = Make("a.jpg", "text");
    const Cost cost = CostOf([&] {
        for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
            EXPECT_EQ(mReader.ReadComment(file, 0, slot).IsEmpty(), slot != kDescriptionSlot);
        }
    });
    EXPECT_EQ(cost, Cost(1, 1));
}

TEST_F(CommentReaderTest, AfterRevalidateOneLookIsEnoughForAnUnchangedFile)
{
    const QString file = Make("a.jpg", "text");
    Description(file);
    mReader.Revalidate();
    EXPECT_EQ(CostOf([&] { Description(file); }), Cost(1, 0));
    EXPECT_EQ(CostOf([&] { Description(file); }), Cost(0, 0));
}

TEST_F(CommentReaderTest, ChangeShowsAfterRevalidate)
{
    const QString file = Make("a.jpg", "old");
    EXPECT_EQ(Description(file), QStringLiteral("old"));
    Make("a.jpg", "newer");
    EXPECT_EQ(Description(file), QStringLiteral("old"));
    mReader.Revalidate();
    EXPECT_EQ(Description(file), QStringLiteral("newer"));
}

TEST_F(CommentReaderTest, FileThatWentFailsAfterRevalidate)
{
    const QString file = Make("a.jpg", "text");
    Description(file);
    ASSERT_TRUE(RemoveFile(file));
    mReader.Revalidate();
    EXPECT_THROW(Description(file), Failure);
    EXPECT_THROW(Description(file), Failure);
}

TEST_F(CommentReaderTest, LastFewFilesAreKept)
{
    const QString first = Make("a.jpg", "a"), second = Make("b.jpg", "b");
    EXPECT_EQ(Description(first) + Description(second), QStringLiteral("ab"));
    EXPECT_EQ(CostOf([&] { EXPECT_EQ(Description(first) + Description(second), "ab"); }),
              Cost(0, 0));
    for (int i = 0; i < 8; ++i) {
        Description(Make(QByteArray::number(i) + ".jpg", "x"));
    }
    EXPECT_EQ(CostOf([&] { Description(first); }), Cost(1, 1));
}

TEST_F(CommentReaderTest, AdoptedSetIsBelievedUntilRevalidate)
{
    const QString file = Make("a.jpg", "file");
    CommentSet set;
    set.Set(kDescriptionSlot, QStringLiteral("adopted"));
    mReader.Adopt(file, StatPath(file), std::make_shared<const CommentSet>(set));
    EXPECT_EQ(CostOf([&] { EXPECT_EQ(Description(file), QStringLiteral("adopted")); }), Cost(0, 0));
    mReader.Revalidate();
    EXPECT_EQ(Description(file), QStringLiteral("adopted"));
    mReader.Adopt(file, FileStat(), std::make_shared<const CommentSet>(set));
    mReader.Revalidate();
    EXPECT_EQ(Description(file), QStringLiteral("file"));
}

TEST_F(CommentReaderTest, OtherPagesAreRefused)
{
    const QString file = Make("a.jpg", "text");
    EXPECT_THROW(mReader.ReadComment(file, 1, kDescriptionSlot), Failure);
}

TEST_F(CommentReaderTest, AbsentFieldsAndSlotsOutsideTheTableAreEmpty)
{
    const QString file = Make("a.jpg", "text");
    for (const qint16 slot : {-1, 0, 28, 179, 32767}) {
        EXPECT_TRUE(mReader.ReadComment(file, 0, slot).IsEmpty()) << slot;
    }
}

} // namespace quillane
