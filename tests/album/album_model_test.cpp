#include "album/album_menu.h"
#include "album/album_model.h"
#include "core/settings_table.h"

#include <QMimeData>
#include <QUrl>
#include <gtest/gtest.h>

namespace quillane {

namespace {

using Paths = QList<QString>;

AlbumFileFacts Found(qint64 size = 1)
{
    return {AlbumFileState::Found, size, 0, {}};
}
const AlbumFileFacts kNone{AlbumFileState::Missing, 0, 0, {}};

class AlbumModelTest : public testing::Test {
protected:
    AlbumModelTest() : model(list)
    {
        model.SetDateText([](const QDateTime& when) { return when.toUTC().toString(Qt::ISODate); });
    }
    QString Text(int row, int column) const { return model.index(row, column).data().toString(); }
    Paths list;
    AlbumModel model;
    const Paths abc{QStringLiteral("/a"), QStringLiteral("/b"), QStringLiteral("/c")};
};

TEST(AlbumModel, LineEndsInANameAreSeen)
{
    EXPECT_EQ(ShortPath(QStringLiteral("/p/a\nb\tc.jpg")),
              QStringLiteral("/p/a%1b%1c.jpg").arg(QChar(QChar::ReplacementCharacter)));
    EXPECT_EQ(ShortPath(QStringLiteral("/p/é ü.jpg")), QStringLiteral("/p/é ü.jpg"));
}

} // namespace

TEST_F(AlbumModelTest, ColumnsAreFilenameSizeAndModified)
{
    ASSERT_EQ(model.columnCount(), 3);
    const char* const captions[] = {"Filename", "Size", "Modified"};
    for (int column = 0; column < 3; ++column) {
        EXPECT_EQ(model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(),
                  captions[column]);
    }
}

TEST_F(AlbumModelTest, FoundRowShowsBytesAndTimeAndMissingOneSaysSo)
{
    model.Append(abc, AlbumFeed::File);
    EXPECT_EQ(Text(0, 0), "/a");
    EXPECT_EQ(Text(0, 1) + Text(0, 2), "");
    model.Settle({{AlbumFileState::Found, 12345, 86400, {}}, kNone});
    EXPECT_EQ(Text(0, 1), "12345");
    EXPECT_EQ(Text(0, 2), "1970-01-02T00:00:00Z");
    EXPECT_EQ(Text(1, 0), "/b");
    EXPECT_EQ(Text(1, 1), "    ");
    EXPECT_EQ(Text(1, 2), "File Not Found");
    EXPECT_EQ(model.Settled(), 2);
}

TEST_F(AlbumModelTest, PathsOfAFileJoinTheListWhenTheyAreFound)
{
    model.Append(abc, AlbumFeed::File);
    EXPECT_TRUE(list.isEmpty());
    EXPECT_TRUE(model.IsWaiting());
    model.Settle({Found(), kNone});
    EXPECT_EQ(list, Paths{QStringLiteral("/a")});
    model.Settle({Found()});
    EXPECT_EQ(list, (Paths{QStringLiteral("/a"), QStringLiteral("/c")}));
    EXPECT_FALSE(model.IsWaiting());
    EXPECT_EQ(model.Count(), 3);
    EXPECT_EQ(model.FoundPaths(), list);
}

TEST_F(AlbumModelTest, PastedFilesJoinAtOnceTestedForNothing)
{
    model.Append(abc, AlbumFeed::Added);
    model.Append({QStringLiteral("/a")}, AlbumFeed::Added);
    EXPECT_EQ(list, abc + Paths{QStringLiteral("/a")});
    model.Settle({kNone, kNone, kNone, kNone});
    EXPECT_EQ(list.size(), 4);
}

TEST_F(AlbumModelTest, PastedFilesStandBehindThoseOfAFileThatAreStillLookedFor)
{
    model.Append(abc, AlbumFeed::File);
    model.Append({QStringLiteral("/pasted")}, AlbumFeed::Added);
    EXPECT_TRUE(list.isEmpty());
    model.Settle({Found(), Found(), kNone, kNone});
    EXPECT_EQ(list, (Paths{QStringLiteral("/a"), QStringLiteral("/b"), QStringLiteral("/pasted")}));
}

TEST_F(AlbumModelTest, RowsOfTheListItselfLeaveItAlone)
{
    list = abc;
    model.Append(list, AlbumFeed::List);
    model.Settle({Found(), kNone, Found()});
    EXPECT_EQ(list, abc);
    EXPECT_FALSE(model.TakeNewExports());
}

TEST_F(AlbumModelTest, PathsThatOthersAddToTheListBecomeRows)
{
    model.Append(abc, AlbumFeed::Added);
    list.append(QStringLiteral("/new"));
    EXPECT_TRUE(model.TakeNewExports());
    EXPECT_EQ(model.Count(), 4);
    EXPECT_EQ(model.Path(3), "/new");
    EXPECT_EQ(list.size(), 4);
    EXPECT_FALSE(model.TakeNewExports());
}

TEST_F(AlbumModelTest, EightBitPathIsShownAndListedWhereTheFileIs)
{
    model.Append({QStringLiteral("/raw")}, AlbumFeed::File);
    model.Settle({{AlbumFileState::Found, 1, 0, QStringLiteral("/utf8")}});
    EXPECT_EQ(model.Path(0), "/utf8");
    EXPECT_EQ(list, Paths{QStringLiteral("/utf8")});
}

TEST_F(AlbumModelTest, ClearEmptiesRowsAndList)
{
    model.Append(abc, AlbumFeed::Added);
    model.Clear();
    EXPECT_EQ(model.Count(), 0);
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(model.Settled(), 0);
    EXPECT_FALSE(model.TakeNewExports());
}

TEST_F(AlbumModelTest, RemovingTakesRowAndEntryOfTheSamePosition)
{
    model.Append(abc, AlbumFeed::Added);
    model.RemoveSteps({2, 0, 7});
    EXPECT_EQ(model.Paths(), Paths{QStringLiteral("/b")});
    EXPECT_EQ(list, Paths{QStringLiteral("/b")});
}

TEST_F(AlbumModelTest, RemovingBehindAMissingFileTakesThePositionOfTheListNotThePath)
{
    model.Append(abc, AlbumFeed::File);
    model.Settle({kNone, Found(), Found()});
    model.RemoveSteps({1});
    EXPECT_EQ(model.Paths(), (Paths{QStringLiteral("/a"), QStringLiteral("/c")}));
    EXPECT_EQ(list, Paths{QStringLiteral("/b")});
}

TEST_F(AlbumModelTest, RemovingWhileFilesAreLookedForKeepsTheRestInOrder)
{
    model.Append(abc, AlbumFeed::File);
    model.Settle({Found()});
    model.RemoveSteps({1});
    EXPECT_EQ(model.Unsettled(10), Paths{QStringLiteral("/c")});
    model.Settle({Found()});
    EXPECT_EQ(list, (Paths{QStringLiteral("/a"), QStringLiteral("/c")}));
    EXPECT_FALSE(model.IsWaiting());
}

TEST_F(AlbumModelTest, ManyRowsGoAtOnce)
{
    Paths many;
    for (int i = 0; i < 1000; ++i) {
        many.append(QString::number(i));
    }
    model.Append(many, AlbumFeed::Added);
    model.RemoveSteps(AlbumRemovalSteps(QVector<bool>(1000, true), {}));
    EXPECT_EQ(model.Count(), 0);
    EXPECT_TRUE(list.isEmpty());
}

TEST_F(AlbumModelTest, AnswersForMoreRowsThanThereAreAreDropped)
{
    model.Append({QStringLiteral("/a")}, AlbumFeed::File);
    model.Settle({Found(), Found()});
    EXPECT_EQ(list.size(), 1);
}

TEST_F(AlbumModelTest, DraggedRowsAreFilesInTheirOrder)
{
    model.Append(abc, AlbumFeed::Added);
    model.Settle({Found(), kNone, Found()});
    const std::unique_ptr<QMimeData> data(model.mimeData(
        {model.index(2, 0), model.index(1, 0), model.index(0, 0), model.index(0, 1)}));
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->urls(),
              (QList<QUrl>{QUrl(QStringLiteral("file:///a")), QUrl(QStringLiteral("file:///c"))}));
}

TEST(AlbumRemoval, SelectedRowsGoFromTheLastToTheFirst)
{
    EXPECT_EQ(AlbumRemovalSteps({true, false, true}, {false, false, false}), (QVector<int>{2, 0}));
}

TEST(AlbumRemoval, SelectionOfTheGridCountsAsWell)
{
    EXPECT_EQ(AlbumRemovalSteps({false, false, false}, {false, true, true}), (QVector<int>{2, 1}));
    EXPECT_EQ(AlbumRemovalSteps({false, true}, {true, false}), (QVector<int>{1, 0}));
}

TEST(AlbumRemoval, RowAndCellSelectedTogetherGoOnce)
{
    EXPECT_EQ(AlbumRemovalSteps({false, true, false}, {false, true, false}), QVector<int>{1});
}

TEST(AlbumRemoval, FewerCellsThanRowsAreNoTrouble)
{
    EXPECT_EQ(AlbumRemovalSteps({true, true, true}, {true}), (QVector<int>{2, 1, 0}));
    EXPECT_TRUE(AlbumRemovalSteps({}, {true}).isEmpty());
    EXPECT_TRUE(AlbumRemovalSteps({false}, {}).isEmpty());
}

TEST(AlbumMenu, HoldsEveryEntryInItsOrder)
{
    struct Wanted {
        const char* name;
        const char16_t* caption;
    };
    const Wanted wanted[] = {
        {"mnuOpen", u"&Open"},
        {"mnuSave", u"&Save"},
        {"mnuPrint", u"&Print"},
        {"mnuPrintSetup", u"&P&rinter Setup"},
        {"mnuSend", u"Send..."},
        {"mnuPaste", u"P&aste"},
        {"mnuTileImages", u"&Tile Images in Browser"},
        {"mnuRemoveSelected", u"Remove Selected..."},
        {"mnuClearALL", u"Clear ALL"},
        {"mnuExit", u"&Exit"},
        {"mnuViewThumbnails", u"Images by Thumbnails"},
        {"nmuViewFilename", u"Images by Filename"},
    };
    size_t next = 0;
    for (const MenuEntry& entry : AlbumMenu()) {
        if (entry.kind == EntryKind::Entry || entry.kind == EntryKind::Check) {
            ASSERT_LT(next, std::size(wanted));
            EXPECT_STREQ(entry.name, wanted[next].name);
            EXPECT_EQ(QString::fromUtf16(entry.caption), QString::fromUtf16(wanted[next].caption));
            ++next;
        }
    }
    EXPECT_EQ(next, std::size(wanted));
}

TEST(AlbumSettings, KeysAreSpelledAsStored)
{
    ASSERT_EQ(std::size(kAlbumSettings), 2U);
    for (const SettingKey& key : kAlbumSettings) {
        EXPECT_STREQ(key.section, "PhotoAlbum");
        EXPECT_EQ(key.type, SettingType::Boolean);
    }
    EXPECT_STREQ(kAlbumSettings[0].key, "nmuViewFilename.CHECKED");
    EXPECT_STREQ(kAlbumSettings[1].key, "mnuViewThumbnails.CHECKED");
}

} // namespace quillane
