#include "widgets/file_rows.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

struct KindRow {
    const char* path;
    FileKind kind;
    const char* big;
    const char* small;
};
constexpr KindRow kKindRows[] = {
    {"/p/a.jpg", FileKind::Picture, "colorBig", "color"},
    {"/p/a.ifl", FileKind::Album, "iflBig", "ifl"},
    {"/p/a.LY2", FileKind::PrintSetting, "PrintSetupBig", "PrintSetup"},
    {"/p/a.Avi", FileKind::Video, "VideoBig", "Video"},
    {"/p/a.mpg", FileKind::Video, "VideoBig", "Video"},
    {"/p/a", FileKind::Picture, "colorBig", "color"},
    {"/p.ifl/a.ly2", FileKind::Album, "iflBig", "ifl"}, // the album is tested first
    {"/p.ly2/a.avi", FileKind::PrintSetting, "PrintSetupBig", "PrintSetup"},
};

TEST(FileRows, KindsHaveTheirIconKeys)
{
    for (const KindRow& row : kKindRows) {
        const FileKind kind = FileKindOf(QLatin1String(row.path));
        EXPECT_EQ(kind, row.kind) << row.path;
        EXPECT_EQ(BigIconKey(kind), QLatin1String(row.big)) << row.path;
        EXPECT_EQ(SmallIconKey(kind), QLatin1String(row.small)) << row.path;
    }
}

TEST(FileRows, RowsKeepWhatTheyWereGiven)
{
    FileRows rows;
    rows.Append({"/p/a.jpg", 12, 34, {"x", "", "y", ""}});
    rows.Append({"/p/b.avi", -1, -1, {}});
    EXPECT_EQ(rows.Count(), 2);
    EXPECT_EQ(rows.Path(0), "/p/a.jpg");
    EXPECT_EQ(rows.Size(0), 12);
    EXPECT_EQ(rows.ModifiedSeconds(0), 34);
    EXPECT_EQ(rows.Tag(0, 2), "y");
    EXPECT_EQ(rows.Tag(0, 4), "");
    EXPECT_EQ(rows.Tag(1, 0), "");
    EXPECT_EQ(rows.Kind(1), FileKind::Video);
    EXPECT_EQ(rows.Path(2), "");
    EXPECT_EQ(rows.Size(-1), -1);
}

TEST(FileRows, TagsOfARemovedRowDoNotShowUpElsewhere)
{
    FileRows rows;
    rows.Append({"/p/a", 1, 1, {"a", "", "", ""}});
    rows.Append({"/p/b", 1, 1, {"b", "", "", ""}});
    rows.RemoveAt(0);
    EXPECT_EQ(rows.Tag(0, 0), "b");
    rows.InsertAt(0, {"/p/c", 1, 1, {}});
    EXPECT_EQ(rows.Tag(0, 0), "");
    rows.SetTags(0, {"c", "", "", "d"});
    EXPECT_EQ(rows.Tag(0, 3), "d");
    EXPECT_EQ(rows.Tag(1, 0), "b");
    rows.SetTags(0, {});
    EXPECT_EQ(rows.Row(0).tags, TagTexts{});
}

TEST(FileRows, ANewNameMayHaveAnotherKind)
{
    FileRows rows;
    rows.Append({"/p/a.jpg", 1, 1, {}});
    rows.SetPath(0, "/p/a.avi");
    EXPECT_EQ(rows.Kind(0), FileKind::Video);
}

TEST(FileRows, APermutationMovesWholeRows)
{
    FileRows rows;
    rows.Append({"/p/a", 1, 10, {"a", "", "", ""}});
    rows.Append({"/p/b", 2, 20, {}});
    rows.Append({"/p/c", 3, 30, {"c", "", "", ""}});
    rows.Permute({2, 0, 1});
    EXPECT_EQ(rows.Path(0), "/p/c");
    EXPECT_EQ(rows.Tag(0, 0), "c");
    EXPECT_EQ(rows.Size(1), 1);
    EXPECT_EQ(rows.Tag(2, 0), "");
    rows.Permute({0}); // not of these rows
    EXPECT_EQ(rows.Path(0), "/p/c");
}

TEST(FileRows, ARowWithoutTagsIsSmall)
{
    // The path's text is shared with whoever else holds it.
    FileRows rows;
    const QString path = QStringLiteral("/p/a.jpg").repeated(1);
    rows.Append({path, 1, 1, {}});
    EXPECT_EQ(rows.Path(0).constData(), path.constData());
}

} // namespace

} // namespace quillane
