// What a folder named by QUILLANE_EXTRA_TESTS may use: every library, the fakes and the windows.
#include "browser/menu_table.h"
#include "core/session.h"
#include "imaging/engine.h"
#include "metadata/ui/frmToolTagEdit.h"
#include "platform/fake/fake_platform.h"
#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace quillane {

TEST(ExtraTests, ReachEveryLibraryAndItsWindows)
{
    const QTemporaryDir home;
    FakePlatform fakes(home.path());
    Session session;
    const frmToolTagEdit editor(session, fakes.Services());
    EXPECT_NE(editor.findChild<QWidget*>(QStringLiteral("txtTags")), nullptr);
    EXPECT_FALSE(MainMenu().empty());
    EXPECT_FALSE(EngineInstance().HasBitmap());
    EXPECT_EQ(QGuiApplication::platformName(), QStringLiteral("offscreen"));
}

} // namespace quillane
