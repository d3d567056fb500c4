#include "core/expect_failure.h"
#include "core/native_path.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include <gtest/gtest.h>

namespace quillane {

TEST(RenamePath, GivesAFileOrFolderAnotherName)
{
    TempFolder folder;
    folder.Write("a \xFF", "content");
    folder.MakeFolder("sub");
    RenamePath(folder.Path("a \xFF"), folder.Path("sub/\xCE\xB1\n"));
    EXPECT_EQ(folder.Content("sub/\xCE\xB1\n"), "content");
    RenamePath(folder.Path("sub"), folder.Path("other"));
    EXPECT_EQ(folder.Content("other/\xCE\xB1\n"), "content");
    EXPECT_EQ(folder.Entries(), QStringList{"other"});
}

TEST(RenamePath, NeverReplacesWhatIsThere)
{
    TempFolder folder;
    folder.Write("from", "new");
    folder.Write("file", "old");
    folder.MakeFolder("sub");
    folder.Link("gone", "dangling");
    for (const char* name : {"file", "sub", "dangling", "from"}) {
        EXPECT_EQ(FailureOf([&] { RenamePath(folder.Path("from"), folder.Path(name)); }),
                  kFailureIo)
            << name;
    }
    EXPECT_EQ(folder.Content("from"), "new");
    EXPECT_EQ(folder.Content("file"), "old");
    EXPECT_EQ(folder.Entries(), (QStringList{"dangling", "file", "from", "sub"}));
}

TEST(RenamePath, TellsWhyItFails)
{
    TempFolder folder;
    folder.Write("a");
    folder.MakeFolder("closed");
    const auto rename = [&](const QString& from, const QString& to) {
        return FailureOf([&] { RenamePath(from, to); });
    };
    EXPECT_EQ(rename(folder.Path("missing"), folder.Path("b")), kFailureNoFile);
    EXPECT_EQ(rename(folder.Path("a"), folder.Path("missing/b")), kFailureNoFile);
    EXPECT_EQ(rename({}, folder.Path("b")), kFailureNoFile);
    EXPECT_EQ(rename(folder.Path("a"), {}), kFailureNoFile);
    EXPECT_EQ(rename(folder.Path("a"), folder.Path("b") + QChar(u'\0')), kFailureNoFile);
    folder.Chmod("closed", 0555);
    {
        const Unprivileged now;
        EXPECT_EQ(rename(folder.Path("a"), folder.Path("closed/a")), kFailureDenied);
    }
    folder.Chmod("closed", 0755);
    EXPECT_EQ(folder.Content("a"), "x");
}

} // namespace quillane
