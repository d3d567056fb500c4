#pragma once
// A folder that a test fills and that goes with it. Names are bytes here, as the system has them.
#include "core/native_path.h"
#include <QByteArray>
#include <QDir>
#include <QString>
#include <QStringList>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <ftw.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

class TempFolder {
public:
    /// In the folder of temporary files, or in another.
    explicit TempFolder(const QByteArray& in = QDir::tempPath().toUtf8())
        : mFolder(in + "/quillane-test-XXXXXX")
    {
        EXPECT_NE(mkdtemp(mFolder.data()), nullptr);
    }
    // Qt's own folder leaves those behind that hold names which are no UTF-8.
    ~TempFolder()
    {
        const auto remove = [](const char* path, const struct stat*, int, FTW*) {
            return ::remove(path);
        };
        EXPECT_EQ(nftw(mFolder.constData(), remove, 64, FTW_DEPTH | FTW_PHYS), 0);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// Full path of a name, as the system's bytes.
    QByteArray Bytes(const QByteArray& name = {}) const { return mFolder + '/' + name; }
    /// Full path of a name, as text; the folder with its separator when the name is empty.
    QString Path(const QByteArray& name = {}) const { return PathFromBytes(Bytes(name)); }

    void Write(const QByteArray& name, const QByteArray& content = "x") const
    {
        const FileHandle file(
            open(Bytes(name).constData(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0644));
        ASSERT_TRUE(file.IsOpen()) << name.constData();
        ASSERT_EQ(write(file.Fd(), content.constData(), size_t(content.size())), content.size());
    }
    void MakeFolder(const QByteArray& name) const
    {
        ASSERT_EQ(mkdir(Bytes(name).constData(), 0755), 0) << name.constData();
    }
    void Link(const QByteArray& target, const QByteArray& name) const
    {
        ASSERT_EQ(symlink(target.constData(), Bytes(name).constData()), 0) << name.constData();
    }
    void Chmod(const QByteArray& name, mode_t mode) const
    {
        ASSERT_EQ(chmod(Bytes(name).constData(), mode), 0) << name.constData();
    }
    QByteArray Content(const QByteArray& name) const { return ReadWholeFile(Path(name), 1 << 20); }
    /// Names of all entries, ordered, as text.
    QStringList Entries() const
    {
        QStringList names;
        ListFolder(Path(), [&](DirEntry&& entry) {
            names.append(entry.name);
            return true;
        });
        names.sort();
        return names;
    }

private:
    QByteArray mFolder;
};

} // namespace quillane
