#include "browser/about_text.h"
#include "browser/enabling.h"
#include "browser/open_road.h"
#include "browser/thumbnail_size.h"

#include <gtest/gtest.h>

namespace quillane {

TEST(FileMenu, EntriesNeedAtLeastOneFile)
{
    Session session;
    EXPECT_FALSE(FileEntriesEnabled(session));
    session.lbFilTiffs.append(QStringLiteral("/p/a.jpg"));
    EXPECT_TRUE(FileEntriesEnabled(session));
}

TEST(UpdatePopupMenu, WallpaperIsForAnythingButAlbumsAndPrintSettings)
{
    Session session;
    for (const char* file : {"/p/a.ifl", "/p/a.LY2"}) {
        session.gsFileName = QLatin1String(file);
        EXPECT_FALSE(UpdatePopupMenu(session).setWallpaper) << file;
    }
    for (const char* file : {"", "/p/a.jpg", "/p/a.avi", "/p/a.bmp"}) {
        session.gsFileName = QLatin1String(file);
        EXPECT_TRUE(UpdatePopupMenu(session).setWallpaper) << file;
    }
}

TEST(UpdatePopupMenu, TagsAreForImageFiles)
{
    Session session;
    session.gsFileName = QStringLiteral("/p/a.bmp");
    EXPECT_FALSE(UpdatePopupMenu(session).editTags);
    session.gsFileName = QStringLiteral("/p/a.JPG");
    EXPECT_TRUE(UpdatePopupMenu(session).editTags);
}

TEST(UpdatePopupMenu, TheAlbumIsShownWhenItHoldsFiles)
{
    Session session;
    EXPECT_FALSE(UpdatePopupMenu(session).showAlbum);
    session.lbExportList.append(QStringLiteral("/p/a.jpg"));
    EXPECT_TRUE(UpdatePopupMenu(session).showAlbum);
}

TEST(OpenRoad, IsChosenByKindInOrder)
{
    EXPECT_EQ(RoadFor(QStringLiteral("/p/a.ifl"), 0), OpenRoad::Album);
    EXPECT_EQ(RoadFor(QStringLiteral("/p/a.avi.ifl"), 0), OpenRoad::Album);
    EXPECT_EQ(RoadFor(QStringLiteral("/p/a.avi"), 0), OpenRoad::OwnPlayer);
    EXPECT_EQ(RoadFor(QStringLiteral("/p/a.avi"), 1), OpenRoad::SystemOpen);
    EXPECT_EQ(RoadFor(QStringLiteral("/p/image.MP3.jpg"), 0), OpenRoad::OwnPlayer);
    EXPECT_EQ(RoadFor(QStringLiteral("/p/a.ly2"), 0), OpenRoad::PrintSettings);
    EXPECT_EQ(RoadFor(QStringLiteral("/p/a.jpg"), 0), OpenRoad::Tool);
    EXPECT_EQ(RoadFor({}, 0), OpenRoad::Tool);
}

TEST(ImageTools, AreSevenNumberedFromZero)
{
    const struct {
        const char* menu;
        const char* popup;
        const char* caption;
    } wanted[] = {
        {"mnuImage", "mnuPopImage", "View/Enhance Photo"},
        {"mnuTagEdit", "mnuPopEditTags", "Edit Photo Metadata"},
        {"mnuCustomTool1", "mnuPopCustomTool1", "Custom Tool 1"},
        {"mnuCustomTool2", "mnuPopCustomTool2", "Custom Tool 2"},
        {"mnuCustomTool3", "mnuPopCustomTool3", "Custom Tool 3"},
        {"mnuCustomTool4", "mnuPopCustomTool4", "Custom Tool 4"},
        {"mnuWindowsDefaultViewer", "mnuPopWindowsDefaultViewer", "Windows Default Photo Viewer"},
    };
    ASSERT_EQ(ImageTools().size(), std::size(wanted));
    for (size_t i = 0; i < std::size(wanted); ++i) {
        EXPECT_EQ(ImageTools()[i].number, qint32(i));
        EXPECT_STREQ(ImageTools()[i].menu, wanted[i].menu);
        EXPECT_STREQ(ImageTools()[i].popup, wanted[i].popup);
        EXPECT_EQ(QString::fromUtf16(ImageTools()[i].caption), QLatin1String(wanted[i].caption));
    }
}

TEST(ThumbnailSize, FitsWideAndTallPicturesAndASquare)
{
    EXPECT_EQ(ThumbnailSize(200, 100, 100, 100), QSizeF(100, 50));
    EXPECT_EQ(ThumbnailSize(100, 200, 100, 100), QSizeF(50, 100));
    EXPECT_EQ(ThumbnailSize(300, 300, 100, 100), QSizeF(100, 100));
}

TEST(ThumbnailSize, ASquareTakesTheWayOfATallPicture)
{
    EXPECT_EQ(ThumbnailSize(10, 10, 120, 80), QSizeF(120, 80));
    EXPECT_EQ(ThumbnailSize(200, 100, 120, 80), QSizeF(120, 40));
    EXPECT_EQ(ThumbnailSize(100, 200, 120, 80), QSizeF(60, 80));
    EXPECT_EQ(ThumbnailSize(0, 0, 100, 100), QSizeF(0, 100));
}

TEST(Caption, IsTitleVersionFifteenBlanksAndSite)
{
    EXPECT_EQ(MainCaption(QStringLiteral("Quillane"), QStringLiteral("site")),
              QStringLiteral("Quillane ") + VersionText() + QStringLiteral("               site"));
    EXPECT_EQ(VersionText().count(u'.'), 2);
}

TEST(About, SupportLinkAsksForHelpByTitle)
{
    EXPECT_EQ(AboutCaption(QStringLiteral("Quillane")), QStringLiteral("About Quillane"));
    EXPECT_EQ(SupportMailLink(QStringLiteral("Quillane")),
              QStringLiteral("mailto:") + SupportAddress()
                  + QStringLiteral("?subject=Quillane%20Help%20Request"));
}

} // namespace quillane
