// ./run on a machine without a display.
#include "e2e/e2e_support.h"
#include <QImage>
#include <QSet>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace quillane::test {

namespace {

class RunWithoutDisplay : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mFolder.isValid());
        std::filesystem::create_directory(Path("home").toStdString());
        mEnvironment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "XDG_CONFIG_HOME", "XDG_CACHE_HOME",
                                 "XDG_DATA_HOME", "XDG_RUNTIME_DIR", "QT_QPA_PLATFORM"}) {
            mEnvironment.remove(QLatin1String(name));
        }
        mEnvironment.insert("HOME", Path("home"));
        mEnvironment.insert("QUILLANE_BUILD", QStringLiteral(QUILLANE_BINARY_FOLDER));
        mEnvironment.insert("QUILLANE_SCREENSHOT", Path("window.png"));
    }

    QString Path(const QString& name) const { return mFolder.filePath(name); }
    ScriptResult Run() const
    {
        return RunScript(QStringLiteral(QUILLANE_SOURCE_FOLDER "/run"), {}, mEnvironment);
    }
    /// Processes that were started with this test's folder in their environment.
    int LeftBehind() const
    {
        int count = 0;
        const std::string mark = mFolder.path().toStdString();
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            if (entry.path().filename().string().find_first_not_of("0123456789")
                != std::string::npos) {
                continue;
            }
            std::ifstream file(entry.path() / "environ");
            const std::string text((std::istreambuf_iterator<char>(file)),
                                   std::istreambuf_iterator<char>());
            count += text.find(mark) != std::string::npos;
        }
        return count;
    }

    QTemporaryDir mFolder;
    QProcessEnvironment mEnvironment;
};

int CountPixels(const QImage& image, QRgb wanted)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const auto near = [](int a, int b) { return std::abs(a - b) <= 6; };
            count += near(qRed(line[x]), qRed(wanted)) && near(qGreen(line[x]), qGreen(wanted))
                && near(qBlue(line[x]), qBlue(wanted));
        }
    }
    return count;
}

TEST_F(RunWithoutDisplay, ShowsTheSamplesInAScreenshotAndAnswersZero)
{
    const ScriptResult result = Run();
    ASSERT_EQ(result.status, 0) << result.out.toStdString() << result.err.toStdString();
    EXPECT_EQ(result.out.trimmed().section('\n', -1), Path("window.png"));

    QImage shot;
    ASSERT_TRUE(shot.load(Path("window.png")));
    shot = shot.convertToFormat(QImage::Format_RGB32);
    EXPECT_GE(shot.width(), 800);
    EXPECT_GE(shot.height(), 500);
    QSet<QRgb> colours;
    for (int y = 0; y < shot.height(); ++y) {
        for (int x = 0; x < shot.width(); ++x) {
            colours.insert(shot.pixel(x, y));
        }
    }
    // A window without thumbnails has a few hundred colours; photographs bring tens of thousands.
    EXPECT_GT(colours.size(), 10'000);
    // The magenta bar of the test charts: nothing of a window has that colour.
    EXPECT_GT(CountPixels(shot, qRgb(235, 16, 235)), 200);
}

TEST_F(RunWithoutDisplay, LeavesTheHomeAloneAndNothingRunning)
{
    ASSERT_EQ(Run().status, 0);
    EXPECT_EQ(FilesUnder(Path("home")), QStringList());
    EXPECT_EQ(LeftBehind(), 0);
}

TEST_F(RunWithoutDisplay, TellsThatTheProgramDidNotStart)
{
    std::filesystem::create_directories(Path("broken/bin").toStdString());
    WriteScript(Path("broken/bin/quillane"), "echo 'cannot go on' >&2; exit 3\n");
    mEnvironment.insert("QUILLANE_BUILD", Path("broken"));
    const ScriptResult result = Run();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains("cannot go on")) << result.err.toStdString();
    EXPECT_FALSE(std::filesystem::exists(Path("window.png").toStdString()));
    EXPECT_EQ(LeftBehind(), 0);
}

} // namespace

} // namespace quillane::test
