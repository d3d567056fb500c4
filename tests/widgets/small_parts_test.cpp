#include "core/native_path.h"
#include "core/temp_folder.h"
#include "widgets/file_tip.h"
#include "widgets/label_lines.h"
#include "widgets/mounted_volumes.h"
#include "widgets/thumbnail_store.h"
#include "widgets/type_ahead.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

namespace quillane {

namespace {

class TypeAheadTest : public testing::Test {
protected:
    int Type(const QString& text, qint64 now, int current)
    {
        return mTyping.Typed(text, now, 400, current, int(mNames.size()),
                             [this](int item, const QString& beginning) {
                                 return mNames[item].startsWith(beginning, Qt::CaseInsensitive);
                             });
    }
    TypeAhead mTyping;
    QStringList mNames{"apple", "Banana", "blue berry", "Blueprint", "cherry", "aardvark"};
};

TEST_F(TypeAheadTest, LettersInSuccessionAreOneWord)
{
    EXPECT_EQ(Type("b", 0, -1), 1);
    EXPECT_EQ(Type("l", 100, 1), 2);
    EXPECT_EQ(Type("ueP", 200, 2), 3);
}

TEST_F(TypeAheadTest, APauseBeginsANewWord)
{
    EXPECT_EQ(Type("b", 0, -1), 1);
    EXPECT_EQ(Type("c", 500, 1), 4);
}

TEST_F(TypeAheadTest, TheSameLetterStepsThroughItsItemsAndRoundAgain)
{
    EXPECT_EQ(Type("b", 0, -1), 1);
    EXPECT_EQ(Type("b", 100, 1), 2);
    EXPECT_EQ(Type("b", 200, 2), 3);
    EXPECT_EQ(Type("b", 300, 3), 1);
}

TEST_F(TypeAheadTest, ADoubledLetterMayBeginAName)
{
    EXPECT_EQ(Type("a", 0, 0), 5);
    EXPECT_EQ(Type("a", 100, 5), 5) << "aardvark begins with it";
}

TEST_F(TypeAheadTest, ABlankBelongsToAWordBeingTyped)
{
    EXPECT_FALSE(mTyping.IsTyping(0));
    Type("blue", 0, -1);
    EXPECT_TRUE(mTyping.IsTyping(300));
    EXPECT_EQ(Type(" ", 300, 2), 2);
    EXPECT_FALSE(mTyping.IsTyping(900));
}

TEST_F(TypeAheadTest, NothingFitsMeansNoMove)
{
    EXPECT_EQ(Type("x", 0, 2), -1);
    mNames.clear();
    EXPECT_EQ(Type("a", 1000, -1), -1);
}

QPixmap Square(int side)
{
    QPixmap picture(side, side);
    picture.fill(Qt::red);
    return picture;
}

TEST(ThumbnailStore, DropsWhatWasNotUsedForLongest)
{
    ThumbnailStore store(3 * 100 * 100 * 4);
    for (const quint32 number : {1u, 2u, 3u}) {
        EXPECT_TRUE(store.Put(number, Square(100)));
    }
    EXPECT_NE(store.Use(1), nullptr);
    store.Put(4, Square(100));
    EXPECT_TRUE(store.Has(1));
    EXPECT_FALSE(store.Has(2));
    EXPECT_TRUE(store.Has(3));
    EXPECT_LE(store.Bytes(), store.Budget());
}

TEST(ThumbnailStore, KeepsNothingLargerThanItsBudget)
{
    ThumbnailStore store(1000);
    EXPECT_FALSE(store.Put(1, Square(100)));
    EXPECT_EQ(store.Count(), 0);
}

TEST(ThumbnailStore, WhatIsAskedForAheadFitsTheBudgetWithWhatIsInSight)
{
    EXPECT_EQ(ThumbnailsAhead(48 << 20, 100 * 100 * 4, 30, 180), 180);
    EXPECT_EQ(ThumbnailsAhead(48 << 20, 512 * 512 * 4, 30, 180), 18);
    EXPECT_EQ(ThumbnailsAhead(10, 512 * 512 * 4, 30, 180), 0);
}

TEST(LabelLines, AShortNameIsOneLine)
{
    const QFontMetrics metrics(QGuiApplication::font());
    EXPECT_EQ(LabelLines("a.jpg", metrics, 200), QStringList{"a.jpg"});
    EXPECT_EQ(LabelLines("", metrics, 200), QStringList{""});
}

TEST(LabelLines, ALongNameTakesTwoLinesThatFitAndShowItsExtension)
{
    const QFontMetrics metrics(QGuiApplication::font());
    for (const QString& name :
         {QStringLiteral("Holiday at the lake with everybody in the evening 0012.jpeg"),
          QStringLiteral("x").repeated(90) + QStringLiteral(".jpeg"),
          QStringLiteral("ab_").repeated(3000) + QStringLiteral(".jpeg"),
          QString(200, QChar(0x65E5)) + QStringLiteral(".jpeg")}) {
        const QStringList lines = LabelLines(name, metrics, 112);
        ASSERT_EQ(lines.size(), 2);
        EXPECT_LE(metrics.horizontalAdvance(lines[0]), 112);
        EXPECT_LE(metrics.horizontalAdvance(lines[1]), 112);
        EXPECT_TRUE(lines[1].endsWith(QLatin1String(".jpeg"))) << lines[1].toStdString();
        EXPECT_FALSE(lines[0].isEmpty());
    }
}

TEST(LabelLines, NothingThatIsNoCharacterReachesTheScreen)
{
    EXPECT_EQ(DisplayName(PathFromBytes("a\xff\nb\t\x01.jpg")),
              QStringLiteral("a\uFFFD\uFFFDb\uFFFD\uFFFD.jpg"));
    const QString pair = QString::fromUcs4(U"\U0001F4F7.jpg");
    EXPECT_EQ(DisplayName(pair), pair);
    EXPECT_EQ(DisplayName(pair.left(1)), QString(QChar::ReplacementCharacter));
}

TEST(FileTip, TellsNameSizeAndReasonWithoutTrustingTheName)
{
    const TempFolder folder;
    folder.Write("<b>&.jpg", QByteArray(2048, 'x'));
    const QString tip = FileTip(folder.Path("<b>&.jpg"), QSize(40, 30), "It ends <early>.");
    EXPECT_TRUE(tip.contains("&lt;b&gt;&amp;.jpg")) << tip.toStdString();
    EXPECT_TRUE(tip.contains(QStringLiteral("40 \u00d7 30")));
    EXPECT_TRUE(tip.contains("It ends &lt;early&gt;."));
    EXPECT_TRUE(FileTip(folder.Path("gone"), {}, {}).contains("not there any more"));
}

TEST(MountedVolumes, AreThoseThatAPersonConnects)
{
    const QByteArray table = "proc /proc proc rw 0 0\n"
                             "/dev/sda1 / ext4 rw 0 0\n"
                             "/dev/sdb1 /media/anna/My\\040Card vfat rw 0 0\n"
                             "srv:/x /mnt/pictures nfs rw 0 0\n"
                             "/dev/sdb1 /media/anna/My\\040Card vfat rw 0 0\n"
                             "/dev/sdc1 /run/media/anna/\\303\\226l vfat rw 0 0\n"
                             "tmpfs /mntx tmpfs rw 0 0\n"
                             "broken\n\\ \\04 \\\n";
    EXPECT_EQ(VolumesOf(table),
              (QStringList{"/media/anna/My Card", "/mnt/pictures",
                           QStringLiteral("/run/media/anna/\u00d6l")}));
    EXPECT_TRUE(VolumesOf({}).isEmpty());
}

} // namespace

} // namespace quillane
