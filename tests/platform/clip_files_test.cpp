#include "platform/clip_files.h"

#include "core/temp_folder.h"
#include "platform/file_list_mime.h"

namespace quillane {

namespace {

QStringList NamesOf(const cClipFiles& files)
{
    QStringList names;
    for (const cFileInfo& file : files) {
        names.append(file.Name());
    }
    return names;
}

TEST(ClipFiles, ARecordReadsTheFileWhenItsNameIsSet)
{
    const TempFolder folder;
    folder.Write("a.b.JPG", "12345");
    cFileInfo info;
    info.SetName(folder.Path("a.b.JPG"));
    EXPECT_EQ(info.Size(), 5);
    EXPECT_TRUE(info.Modified().isValid());
    EXPECT_EQ(info.Extension(), "JPG");
    folder.MakeFolder("two.parts");
    folder.Write("two.parts/none");
    info.SetName(folder.Path("two.parts/none"));
    EXPECT_EQ(info.Extension(), "parts/none"); // behind the last one of the whole path
    cFileInfo missing;
    missing.SetName(folder.Path("gone.jpg"));
    EXPECT_EQ(missing.Name(), folder.Path("gone.jpg"));
    EXPECT_EQ(missing.Size(), 0);
    EXPECT_EQ(missing.Extension(), "");
}

TEST(ClipFiles, AListIsReadInOrderAndReplacesTheOldOne)
{
    cClipFiles files;
    const std::unique_ptr<QMimeData> first(FileListMimeData({"/p/b.jpg", "/p/a.jpg"}));
    EXPECT_TRUE(files.GetFiles(*first));
    EXPECT_EQ(NamesOf(files), (QStringList{"/p/b.jpg", "/p/a.jpg"}));
    EXPECT_EQ(files.Count(), 2);
    EXPECT_FALSE(files.IsCut());
    files.Clear();
    EXPECT_EQ(files.Count(), 0);
    QMimeData none;
    none.setText("hello");
    EXPECT_TRUE(files.GetFiles(*first));
    EXPECT_FALSE(files.GetFiles(none));
    EXPECT_EQ(files.Count(), 0);
}

TEST(ClipFiles, AListOfNoFilesIsAList)
{
    QMimeData data;
    data.setData("text/uri-list", "");
    data.setData("x-special/gnome-copied-files", "copy");
    cClipFiles files;
    EXPECT_TRUE(files.GetFiles(data));
    EXPECT_EQ(files.Count(), 0);
}

TEST(ClipFiles, AddressesOfOtherMachinesAreLeftOut)
{
    QMimeData data;
    data.setData("text/uri-list",
                 "# a note\r\nsmb://server/a.jpg\r\nfile:///p/a.jpg\r\n"
                 "https://example.org/b.jpg\r\nfile://elsewhere/p/c.jpg\r\n"
                 "file://localhost/p/d.jpg\r\n");
    cClipFiles files;
    EXPECT_TRUE(files.GetFiles(data));
    EXPECT_EQ(NamesOf(files), (QStringList{"/p/a.jpg", "/p/d.jpg"}));
    QMimeData remote;
    remote.setData("text/uri-list", "smb://server/a.jpg\r\n");
    EXPECT_TRUE(files.GetFiles(remote));
    EXPECT_EQ(files.Count(), 0);
}

TEST(ClipFiles, ACutIsKnownByBothMarks)
{
    QMimeData one;
    one.setData("x-special/gnome-copied-files", "cut\nfile:///p/a.jpg");
    cClipFiles files;
    EXPECT_TRUE(files.GetFiles(one));
    EXPECT_TRUE(files.IsCut());
    EXPECT_EQ(NamesOf(files), QStringList("/p/a.jpg"));
    QMimeData other;
    other.setData("text/uri-list", "file:///p/a.jpg");
    other.setData("application/x-kde-cutselection", "1");
    EXPECT_TRUE(files.GetFiles(other));
    EXPECT_TRUE(files.IsCut());
}

TEST(ClipFiles, PlainPathsAreAListAndProseIsNone)
{
    cClipFiles files;
    QMimeData paths;
    paths.setText("/p/a.jpg\n/p/b c.jpg\nhttps://example.org/d.jpg\n");
    EXPECT_TRUE(files.GetFiles(paths));
    EXPECT_EQ(NamesOf(files), (QStringList{"/p/a.jpg", "/p/b c.jpg"}));
    QMimeData prose;
    prose.setText("Look at\n/p/a.jpg");
    EXPECT_FALSE(files.GetFiles(prose));
    EXPECT_EQ(files.Count(), 0);
}

} // namespace

} // namespace quillane
