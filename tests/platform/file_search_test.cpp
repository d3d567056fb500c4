#include "platform/desktop/file_search.h"

#include "core/temp_folder.h"
#include "platform/scoped_environment.h"
#include <gtest/gtest.h>

namespace quillane {

/// A desktop with no programs and no defaults but those a test gives it.
class DesktopSearch : public testing::Test {
protected:
    DesktopSearch()
    {
        for (const char* folder :
             {"bin", "config", "etc", "data", "data/applications", "share", "share/applications"}) {
            root.MakeFolder(folder);
        }
    }
    void Install(const QByteArray& program) const
    {
        root.Write("bin/" + program);
        root.Chmod("bin/" + program, 0755);
    }
    void UseManager(const QByteArray& desktopFile, const QByteArray& list = "config/mimeapps.list")
    {
        root.Write(list,
                   "[Added Associations]\ninode/directory=added.desktop\n\n"
                   "[Default Applications]\nimage/png=viewer.desktop\n"
                   "inode/directory="
                       + desktopFile + ";other.desktop\n");
    }

    TempFolder root;
    ScopedEnvironment path{"PATH", root.Bytes("bin")};
    ScopedEnvironment config{"XDG_CONFIG_HOME", root.Bytes("config")};
    ScopedEnvironment etc{"XDG_CONFIG_DIRS", root.Bytes("etc")};
    ScopedEnvironment data{"XDG_DATA_HOME", root.Bytes("data")};
    ScopedEnvironment share{"XDG_DATA_DIRS", root.Bytes("share")};
    ScopedEnvironment desktop{"XDG_CURRENT_DESKTOP"};
};

TEST_F(DesktopSearch, NothingInstalledGivesNothing)
{
    EXPECT_FALSE(FileSearchIn("/pictures/").has_value());
    EXPECT_EQ(DefaultFileManager(), "");
}

struct ManagersSearch {
    const char* manager;
    const char* program;
    QList<QByteArray> arguments;
};

class EverySearch : public DesktopSearch, public testing::WithParamInterface<ManagersSearch> { };

TEST_P(EverySearch, BelongsToItsFileManager)
{
    for (const char* program : {"kfind", "catfish", "mate-search-tool", "gnome-search-tool",
                                "pcmanfm-qt", "pcmanfm", "spacefm"}) {
        Install(program);
    }
    UseManager(GetParam().manager);
    EXPECT_EQ(DefaultFileManager(), GetParam().manager);
    const auto search = FileSearchIn("/my pictures/");
    ASSERT_TRUE(search.has_value());
    EXPECT_EQ(search->program, root.Path("bin/") + GetParam().program);
    EXPECT_EQ(search->arguments, GetParam().arguments);
}

INSTANTIATE_TEST_SUITE_P(
    Managers, EverySearch,
    testing::Values(
        ManagersSearch{"org.kde.dolphin.desktop", "kfind", {"/my pictures/"}},
        ManagersSearch{"thunar.desktop", "catfish", {"--path=/my pictures/"}},
        ManagersSearch{"caja-folder-handler.desktop", "mate-search-tool", {"--path=/my pictures/"}},
        ManagersSearch{"org.gnome.Nautilus.desktop", "gnome-search-tool", {"--path=/my pictures/"}},
        ManagersSearch{"pcmanfm-qt.desktop", "pcmanfm-qt", {"--find-files", "/my pictures/"}},
        ManagersSearch{"pcmanfm.desktop", "pcmanfm", {"--find-files", "/my pictures/"}},
        ManagersSearch{"spacefm.desktop", "spacefm", {"--find-files", "/my pictures/"}}));

TEST_F(DesktopSearch, AnotherSearchIsTakenWhereTheManagersOwnIsMissing)
{
    UseManager("org.kde.dolphin.desktop");
    Install("catfish");
    const auto search = FileSearchIn("/pictures/");
    ASSERT_TRUE(search.has_value());
    EXPECT_EQ(search->program, root.Path("bin/catfish"));
}

TEST_F(DesktopSearch, AFileManagerIsNotStartedUnderAnother)
{
    UseManager("org.kde.dolphin.desktop");
    Install("pcmanfm-qt");
    EXPECT_FALSE(FileSearchIn("/pictures/").has_value());
}

TEST_F(DesktopSearch, FolderNamesStayBytes)
{
    Install("kfind");
    const auto search = FileSearchIn(PathFromBytes("/\xff\n/"));
    ASSERT_TRUE(search.has_value());
    EXPECT_EQ(search->arguments, QList<QByteArray>({"/\xff\n/"}));
}

TEST_F(DesktopSearch, TheNearestListOfDefaultsDecides)
{
    const ScopedEnvironment running("XDG_CURRENT_DESKTOP", "Budgie:GNOME");
    UseManager("share.desktop", "share/applications/mimeapps.list");
    EXPECT_EQ(DefaultFileManager(), "share.desktop");
    UseManager("data.desktop", "data/applications/mimeapps.list");
    EXPECT_EQ(DefaultFileManager(), "data.desktop");
    UseManager("etc.desktop", "etc/mimeapps.list");
    EXPECT_EQ(DefaultFileManager(), "etc.desktop");
    UseManager("config.desktop");
    EXPECT_EQ(DefaultFileManager(), "config.desktop");
    UseManager("gnome.desktop", "config/gnome-mimeapps.list");
    EXPECT_EQ(DefaultFileManager(), "gnome.desktop");
    UseManager("budgie.desktop", "config/budgie-mimeapps.list");
    EXPECT_EQ(DefaultFileManager(), "budgie.desktop");
}

TEST_F(DesktopSearch, DamagedListsArePassedOver)
{
    root.Write("config/mimeapps.list", QByteArray(3 << 20, 'x'));
    root.Write("etc/mimeapps.list",
               "[Default Applications]\ninode/directory\ninode/directoryx=a\n");
    UseManager("data.desktop", "data/applications/mimeapps.list");
    EXPECT_EQ(DefaultFileManager(), "data.desktop");
}

} // namespace quillane
