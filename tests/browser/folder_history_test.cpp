#include "browser/folder_history.h"
#include "browser/folder_trail.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace quillane {

namespace {

QString NumberedFolder(int number)
{
    return QStringLiteral("/pictures/%1/").arg(number);
}

} // namespace

TEST(FolderHistory, ANewFolderGoesToTheTopWhileNothingIsSelected)
{
    FolderHistory history;
    EXPECT_EQ(history.Record(QStringLiteral("/a/"), -1), 0);
    EXPECT_EQ(history.Record(QStringLiteral("/b/"), -1), 0);
    EXPECT_EQ(history.Entries(), (QStringList{QStringLiteral("/b/"), QStringLiteral("/a/")}));
}

TEST(FolderHistory, ANewFolderGoesBesideTheSelectedEntry)
{
    FolderHistory history;
    for (const char* folder : {"/c/", "/b/", "/a/"}) {
        history.Record(QLatin1String(folder), -1);
    }
    EXPECT_EQ(history.Record(QStringLiteral("/new/"), 2), 2);
    EXPECT_EQ(history.Entries().at(2), QStringLiteral("/new/"));
    EXPECT_EQ(history.Entries().at(3), QStringLiteral("/c/"));
}

TEST(FolderHistory, AKnownFolderIsNotAddedAgainAndCaseMatters)
{
    FolderHistory history;
    history.Record(QStringLiteral("/a/"), -1);
    EXPECT_EQ(history.Record(QStringLiteral("/a/"), -1), -1);
    EXPECT_EQ(history.Record(QStringLiteral("/A/"), -1), 0);
    EXPECT_EQ(history.Entries().size(), 2);
}

TEST(FolderHistory, ClearEmptiesTheTextsAndRemovesNoRow)
{
    FolderHistory history;
    history.Record(QStringLiteral("/a/"), -1);
    history.Record(QStringLiteral("/b/"), -1);
    history.Clear();
    EXPECT_EQ(history.Entries(), (QStringList{QString(), QString()}));
}

TEST(FolderHistory, ClearedThenStoredThenReadIsEmpty)
{
    const QTemporaryDir folder;
    SettingsStore store(folder.filePath(QStringLiteral("s.ini")));
    FolderHistory history;
    history.Record(QStringLiteral("/a/"), -1);
    history.Save(store);
    history.Clear();
    history.Save(store);
    FolderHistory next;
    next.Load(store);
    EXPECT_TRUE(next.Entries().isEmpty());
}

TEST(FolderHistory, OfTwelveEntriesTenSurviveInTheirOrder)
{
    const QTemporaryDir folder;
    SettingsStore store(folder.filePath(QStringLiteral("s.ini")));
    FolderHistory history;
    for (int i = 12; i >= 1; --i) {
        history.Record(NumberedFolder(i), -1);
    }
    history.Save(store);
    FolderHistory next;
    next.Load(store);
    ASSERT_EQ(next.Entries().size(), 10);
    EXPECT_EQ(next.Entries().first(), NumberedFolder(1));
    EXPECT_EQ(next.Entries().last(), NumberedFolder(10));
}

TEST(FolderHistory, AListOfThreeErasesTheOlderKeys)
{
    const QTemporaryDir folder;
    SettingsStore store(folder.filePath(QStringLiteral("s.ini")));
    FolderHistory ten;
    for (int i = 10; i >= 1; --i) {
        ten.Record(NumberedFolder(i), -1);
    }
    ten.Save(store);
    FolderHistory three;
    for (int i = 3; i >= 1; --i) {
        three.Record(NumberedFolder(i), -1);
    }
    three.Save(store);
    const QString section = QStringLiteral("MainComboDirEntries");
    EXPECT_EQ(store.GetSetting(section, QStringLiteral("cboDirPath.Text2")), NumberedFolder(3));
    for (int i = 3; i < 10; ++i) {
        EXPECT_EQ(store.GetSetting(section, QStringLiteral("cboDirPath.Text%1").arg(i)), QString());
    }
}

TEST(FolderTrail, GoesBackAndForthAndForgetsTheWayNotTaken)
{
    FolderTrail trail;
    EXPECT_FALSE(trail.CanGoBack());
    trail.Visit(QStringLiteral("/a/"));
    trail.Visit(QStringLiteral("/b/"));
    EXPECT_EQ(trail.Back(), QStringLiteral("/a/"));
    trail.Visit(QStringLiteral("/a/"));
    EXPECT_TRUE(trail.CanGoForward());
    EXPECT_EQ(trail.Forward(), QStringLiteral("/b/"));
    trail.Back();
    trail.Visit(QStringLiteral("/c/"));
    EXPECT_FALSE(trail.CanGoForward());
    EXPECT_EQ(trail.Forward(), QString());
}

} // namespace quillane
