// The program on a desktop, driven by mouse and keys, and what other programs get from it.
#include "e2e/e2e_support.h"
#include <QTemporaryDir>
#include <filesystem>
#include <gtest/gtest.h>

namespace quillane::test {

namespace {

class OnADesktop : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mFolder.isValid());
        std::filesystem::create_directories(Path("bin").toStdString());
        std::filesystem::create_directories(Path("my pictures").toStdString());
        for (const char* name : {"AST_0101.JPG", "AST_0102.JPG"}) {
            std::filesystem::copy_file(std::string(QUILLANE_SOURCE_FOLDER "/samples/") + name,
                                       Path("my pictures/").toStdString() + name);
        }
        // Each writes down how it was called, one line a call.
        for (const char* program : {"xdg-email", "gsettings", "plasma-apply-wallpaperimage",
                                    "xfconf-query", "feh", "paint"}) {
            WriteScript(Path("bin/") + QLatin1String(program),
                        "{ printf '%s' \"$(basename \"$0\")\"; for word in \"$@\"; do printf "
                        "'|%s' \"$word\"; done; echo; } >> '"
                            + Path("calls") + "'\n");
        }
        mEnvironment = QProcessEnvironment::systemEnvironment();
        mEnvironment.insert("PATH", Path("bin") + ":" + mEnvironment.value("PATH"));
        mEnvironment.insert("SIZE", "1024x700");
    }
    QString Path(const QString& name) const { return mFolder.filePath(name); }
    /// Shows the program and does the steps in it.
    void Drive(const QStringList& steps, const QString& settings = {})
    {
        mEnvironment.insert("GLOBALS", settings);
        const ScriptResult shown =
            RunScript(QStringLiteral(QUILLANE_SOURCE_FOLDER "/scripts/show_headless"),
                      QStringList{QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane"),
                                  Path("my pictures"), Path("picture.png")}
                          + steps,
                      mEnvironment);
        EXPECT_EQ(shown.status, 0) << shown.err.toStdString();
    }
    QStringList Calls() const { return ReadText(Path("calls")).split(u'\n', Qt::SkipEmptyParts); }

    QTemporaryDir mFolder;
    QProcessEnvironment mEnvironment;
};

} // namespace

TEST_F(OnADesktop, MailWallpaperAndToolReachTheProgramsInPath)
{
    Drive({"key ctrl+a", "mousemove 234 58 click 1", // Send... in the tool bar
           "mousemove 400 140 click 1", "key Menu", "key Down Down Down Down Down Down Down Return",
           "key Home Return"},
          QStringLiteral("gsImageTool=2\n[CustomToolPrefs]\nchkCustomTool(0).value=1\n"
                         "txtCustomTool(0).Text=Paint\ntxtCustomToolPath(0).Text=%1\n")
              .arg(Path("bin/paint")));
    const QStringList calls = Calls();
    const QString first = Path("my pictures/AST_0101.JPG");
    ASSERT_EQ(calls.size(), 4) << calls.join(u'\n').toStdString();
    EXPECT_EQ(calls[0],
              "xdg-email|--attach|" + first + "|--attach|" + Path("my pictures/AST_0102.JPG"));
    EXPECT_TRUE(calls[1].startsWith("gsettings|set|org.gnome.desktop.background|picture-uri|"));
    EXPECT_TRUE(calls[1].endsWith("/quillane/Wallpaper.bmp"));
    EXPECT_TRUE(calls[2].startsWith("gsettings|set|org.gnome.desktop.background|picture-uri-dark"));
    EXPECT_EQ(calls[3], "paint|" + QString(first).replace(u' ', u'|')) << "nothing is quoted";
}

} // namespace quillane::test
