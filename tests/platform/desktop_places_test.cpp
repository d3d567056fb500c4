#include "platform/desktop/desktop_places.h"

#include "core/native_path.h"
#include "core/temp_folder.h"
#include "platform/scoped_environment.h"
#include <QCoreApplication>
#include <gtest/gtest.h>
#include <pwd.h>

namespace quillane {

/// A home without anything in it.
class PlacesInAnEmptyHome : public testing::Test {
protected:
    TempFolder home;
    ScopedEnvironment homeVariable{"HOME", home.Bytes("me")};
    ScopedEnvironment config{"XDG_CONFIG_HOME"}, data{"XDG_DATA_HOME"}, cache{"XDG_CACHE_HOME"};
    ScopedEnvironment runtime{"XDG_RUNTIME_DIR"};
    DesktopPlaces places;

    PlacesInAnEmptyHome() { home.MakeFolder("me"); }
    quint32 ModeOf(const QByteArray& name) const { return StatPath(home.Path(name)).mode & 0777; }
};

TEST_F(PlacesInAnEmptyHome, FollowTheUsualFolders)
{
    EXPECT_EQ(places.Home(), home.Path("me/"));
    EXPECT_EQ(places.Pictures(), home.Path("me/"));
    EXPECT_EQ(places.SettingsFile(), home.Path("me/.config/quillane/quillane.ini"));
    EXPECT_EQ(places.ThumbnailCache(), home.Path("me/.cache/thumbnails"));
    EXPECT_EQ(places.Wallpaper(), home.Path("me/.local/share/quillane/Wallpaper.bmp"));
    EXPECT_EQ(places.PrintCopy(), home.Path("me/.cache/quillane/TPrinter2Image.jpg"));
    EXPECT_EQ(places.Capture(), home.Path("me/Capture.avi"));
    EXPECT_EQ(places.CaptureLower(), home.Path("me/capture.avi"));
    EXPECT_EQ(places.Programs(), "/usr/bin");
}

TEST_F(PlacesInAnEmptyHome, PrivateFoldersAreMadeForTheirOwnerAlone)
{
    places.Wallpaper();
    places.PrintCopy();
    EXPECT_EQ(ModeOf("me/.local/share/quillane"), 0700u);
    EXPECT_EQ(ModeOf("me/.cache/quillane"), 0700u);
}

TEST_F(PlacesInAnEmptyHome, AskingForTheSettingsMakesNothing)
{
    places.SettingsFile();
    places.ThumbnailCache();
    EXPECT_EQ(StatPath(home.Path("me/.config")).type, FileType::Missing);
    EXPECT_EQ(StatPath(home.Path("me/.cache")).type, FileType::Missing);
}

TEST_F(PlacesInAnEmptyHome, EnvironmentMovesTheFolders)
{
    const ScopedEnvironment elsewhere("XDG_CONFIG_HOME", home.Bytes("c"));
    const ScopedEnvironment cached("XDG_CACHE_HOME", home.Bytes("k/"));
    const ScopedEnvironment stored("XDG_DATA_HOME", home.Bytes("d"));
    EXPECT_EQ(places.SettingsFile(), home.Path("c/quillane/quillane.ini"));
    EXPECT_EQ(places.ThumbnailCache(), home.Path("k/thumbnails"));
    EXPECT_EQ(places.Wallpaper(), home.Path("d/quillane/Wallpaper.bmp"));
}

TEST_F(PlacesInAnEmptyHome, RelativeFoldersOfTheEnvironmentAreIgnored)
{
    const ScopedEnvironment relative("XDG_CONFIG_HOME", "here");
    EXPECT_EQ(places.SettingsFile(), home.Path("me/.config/quillane/quillane.ini"));
}

TEST_F(PlacesInAnEmptyHome, PrintCopyLiesInTheRuntimeFolderWhereThereIsOne)
{
    home.MakeFolder("run");
    {
        const ScopedEnvironment there("XDG_RUNTIME_DIR", home.Bytes("run"));
        EXPECT_EQ(places.PrintCopy(), home.Path("run/quillane/TPrinter2Image.jpg"));
        EXPECT_EQ(ModeOf("run/quillane"), 0700u);
    }
    const ScopedEnvironment gone("XDG_RUNTIME_DIR", home.Bytes("missing"));
    EXPECT_EQ(places.PrintCopy(), home.Path("me/.cache/quillane/TPrinter2Image.jpg"));
}

TEST_F(PlacesInAnEmptyHome, PicturesAndVideosAreTheUsersOwnWhereTheyExist)
{
    home.MakeFolder("me/.config");
    home.Write("me/.config/user-dirs.dirs",
               "XDG_PICTURES_DIR=\"$HOME/Bilder\"\nXDG_VIDEOS_DIR=\"$HOME/Filme\"\n");
    EXPECT_EQ(places.Pictures(), home.Path("me/"));
    EXPECT_EQ(places.Capture(), home.Path("me/Capture.avi"));
    home.MakeFolder("me/Bilder");
    home.MakeFolder("me/Filme");
    EXPECT_EQ(places.Pictures(), home.Path("me/Bilder/"));
    EXPECT_EQ(places.Capture(), home.Path("me/Filme/Capture.avi"));
    EXPECT_EQ(places.CaptureLower(), home.Path("me/Filme/capture.avi"));
}

TEST_F(PlacesInAnEmptyHome, HomeIsBytes)
{
    const ScopedEnvironment odd("HOME", home.Bytes("\xff home"));
    EXPECT_EQ(BytesFromPath(places.Home()), home.Bytes("\xff home/"));
    EXPECT_EQ(BytesFromPath(places.SettingsFile()),
              home.Bytes("\xff home/.config/quillane/quillane.ini"));
}

TEST_F(PlacesInAnEmptyHome, WithoutAHomeTheAccountsIsTaken)
{
    const passwd* const account = getpwuid(getuid());
    const QByteArray expected = account ? QByteArray(account->pw_dir) : QByteArray("/");
    for (const QByteArray& given : {QByteArray(), QByteArray("relative")}) {
        const ScopedEnvironment none("HOME", given);
        EXPECT_TRUE(places.Home().startsWith(PathFromBytes(expected)));
        EXPECT_TRUE(places.Home().endsWith('/'));
    }
}

TEST(ProgramsPlaces, AreBesideTheExecutable)
{
    const DesktopPlaces places;
    EXPECT_EQ(places.ApplicationFolder(), QCoreApplication::applicationDirPath() + "/");
    EXPECT_EQ(places.CodecWorker(), places.ApplicationFolder() + "quillane-codec");
    EXPECT_EQ(places.ScanHelper(), places.ApplicationFolder() + "quillane-scan");
}

TEST(ProgramsPlaces, AreThoseOfAnInstallationElse)
{
    const TempFolder prefix;
    for (const char* folder : {"bin", "libexec", "libexec/quillane", "share", "share/doc",
                               "share/doc/quillane", "share/doc/quillane/help"}) {
        prefix.MakeFolder(folder);
    }
    const DesktopPlaces places(prefix.Path("bin"));
    EXPECT_EQ(places.CodecWorker(), prefix.Path("bin/quillane-codec"));
    EXPECT_EQ(places.HelpFile(), prefix.Path("bin/help/index.html"));
    prefix.Write("libexec/quillane/quillane-codec");
    prefix.Write("share/doc/quillane/help/index.html");
    EXPECT_EQ(places.CodecWorker(), prefix.Path("bin/../libexec/quillane/quillane-codec"));
    EXPECT_EQ(places.HelpFile(), prefix.Path("bin/../share/doc/quillane/help/index.html"));
    prefix.Write("libexec/quillane/quillane-scan");
    EXPECT_EQ(places.ScanHelper(), prefix.Path("bin/../libexec/quillane/quillane-scan"));
    prefix.Write("bin/quillane-codec");
    EXPECT_EQ(places.CodecWorker(), prefix.Path("bin/quillane-codec"));
}

} // namespace quillane
