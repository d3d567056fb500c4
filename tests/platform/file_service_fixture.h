#pragma once
// The real service for files, with two folders and a trash of the test's.
#include "core/temp_folder.h"
#include "platform/desktop/file_service.h"
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quillane {

class FileServiceTest : public testing::Test {
protected:
    FileServiceTest() : service(folder.Path("Trash"))
    {
        folder.MakeFolder("a");
        folder.MakeFolder("b");
    }
    QString Path(const char* name) const { return folder.Path(name); }
    struct stat Stat(const QByteArray& name) const
    {
        struct stat found { };
        EXPECT_EQ(lstat(folder.Bytes(name).constData(), &found), 0) << name.constData();
        return found;
    }
    bool Exists(const QByteArray& name) const
    {
        struct stat found { };
        return lstat(folder.Bytes(name).constData(), &found) == 0;
    }
    QStringList Names(const char* in) const
    {
        QStringList names;
        ListFolder(Path(in), [&](DirEntry&& entry) {
            names.append(entry.name);
            return true;
        });
        names.sort();
        return names;
    }

    TempFolder folder;
    DesktopFileService service;
};

} // namespace quillane
