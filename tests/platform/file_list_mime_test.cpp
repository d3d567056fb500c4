#include "platform/file_list_mime.h"

#include "core/native_path.h"

#include <QUrl>
#include <gtest/gtest.h>

namespace quillane {

namespace {

TEST(FileListMime, HasTheThreeFormsThatProgramsRead)
{
    const std::unique_ptr<QMimeData> data(FileListMimeData({"/p/a b.jpg", "/p/c#1.jpg"}));
    EXPECT_EQ(data->data("text/uri-list"), "file:///p/a%20b.jpg\r\nfile:///p/c%231.jpg\r\n");
    EXPECT_EQ(data->data("x-special/gnome-copied-files"),
              "copy\nfile:///p/a%20b.jpg\nfile:///p/c%231.jpg");
    EXPECT_EQ(data->text(), "/p/a b.jpg\n/p/c#1.jpg");
    EXPECT_EQ(data->urls(),
              (QList<QUrl>{QUrl::fromLocalFile("/p/a b.jpg"), QUrl::fromLocalFile("/p/c#1.jpg")}));
}

TEST(FileListMime, AnyNameComesBack)
{
    const QStringList paths{PathFromBytes("/p/\xff\xfe.jpg"),
                            "/p/new\nline.jpg",
                            "/p/100%.jpg",
                            QStringLiteral("/p/\u05e9\u05dc\u05d5\u05dd.jpg"),
                            QStringLiteral("/p/\u0395\u03bb.jpg"),
                            "/p/?&=+;,#.jpg"};
    const std::unique_ptr<QMimeData> data(FileListMimeData(paths));
    EXPECT_EQ(FilesOfMimeData(*data), paths);
    data->removeFormat("text/uri-list");
    EXPECT_EQ(FilesOfMimeData(*data), paths);
}

TEST(FileListMime, ReadsWhatOthersWrite)
{
    QMimeData data;
    EXPECT_TRUE(FilesOfMimeData(data).isEmpty());
    data.setData("text/uri-list",
                 "# a comment\r\nfile://localhost/p/a.jpg\r\nFILE:/p/b.jpg\r\n"
                 "http://host/c.jpg\r\nfile://host/d.jpg\r\nfile:relative\r\n");
    EXPECT_EQ(FilesOfMimeData(data), (QStringList{"/p/a.jpg", "/p/b.jpg"}));
    data.clear();
    data.setData("x-special/gnome-copied-files", "cut\nfile:///p/a.jpg");
    EXPECT_EQ(FilesOfMimeData(data), QStringList{"/p/a.jpg"});
    data.clear();
    data.setText("/p/a.jpg\n/p/b.jpg\n");
    EXPECT_EQ(FilesOfMimeData(data), (QStringList{"/p/a.jpg", "/p/b.jpg"}));
}

} // namespace

} // namespace quillane
