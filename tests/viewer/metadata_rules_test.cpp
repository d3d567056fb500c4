#include "viewer/metadata_rules.h"

#include <gtest/gtest.h>

namespace quillane {

TEST(MetadataTabs, AreThoseOfTheKindOfFile)
{
    struct Row {
        const char* file;
        qint16 format;
        MetadataTabs tabs;
    };
    const Row rows[] = {
        {"/p/a.bmp", 6, {}},
        {"/p/a.jpg", 98, {true, true, true, false}},
        {"/p/a.JPG", 101, {true, true, true, false}},
        {"/p/a.tif", 96, {true, true, true, false}},
        {"/p/a.tif", 97, {true, true, true, false}},
        {"/p/a.jpg", 10, {}},
        {"/p/a.tif", 17, {true, false, false, false}},
        {"/p/a.png", 75, {true, false, false, false}},
        {"/p/a.gif", 2, {}},
        {"/p/a.dic", 89, {false, false, false, true}},
        {"/p/a.dic", 0, {false, false, false, true}},
        {"/p/a.bmp", 98, {}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(MetadataTabsFor(QLatin1String(row.file), row.format), row.tabs)
            << row.file << " " << row.format;
    }
}

TEST(GeneralLabels, HaveTheWordsOfTheKindOfFile)
{
    EXPECT_TRUE(HasPngWords(QStringLiteral("/p/a.png"), 75));
    EXPECT_FALSE(HasPngWords(QStringLiteral("/p/a.tif"), 17));
    EXPECT_FALSE(HasPngWords(QStringLiteral("/p/a.png"), 98));
    EXPECT_FALSE(HasPngWords(QStringLiteral("/p/a.tif.png"), 75));
    const char* const rows[][4] = {
        {"Label13", "txtModel", "Model:", "Disc. :"},
        {"Label18", "txtPage", "Page:", "Warning:"},
        {"Label16", "txtComputer", "Computer:", "Title:"},
        {"Label17", "txtDocument", "Document:", "Misc. Info:"},
    };
    ASSERT_EQ(std::size(rows), std::size(kGeneralLabels));
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_STREQ(kGeneralLabels[i].name, rows[i][0]);
        EXPECT_STREQ(kGeneralLabels[i].box, rows[i][1]);
        EXPECT_STREQ(kGeneralLabels[i].tiff, rows[i][2]);
        EXPECT_STREQ(kGeneralLabels[i].png, rows[i][3]);
    }
}

} // namespace quillane
