#pragma once
// Folders one in the other, deeper than the system takes a path for; a file lies in the last.
#include "core/temp_folder.h"

namespace quillane {

class DeepFolder {
public:
    DeepFolder(int levels, const QByteArray& name) : mLevels(levels), mName(name)
    {
        FileHandle at(open(mTop.Bytes().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int level = 0; level < levels; ++level) {
            EXPECT_EQ(mkdirat(at.Fd(), name.constData(), 0755), 0);
            at = FileHandle(openat(at.Fd(), name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            EXPECT_TRUE(at.IsOpen());
        }
        const FileHandle file(
            openat(at.Fd(), "at the bottom", O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
        EXPECT_EQ(write(file.Fd(), "12345", 5), 5);
        mBottom = std::move(at);
    }
    ~DeepFolder()
    {
        EXPECT_EQ(unlinkat(mBottom.Fd(), "at the bottom", 0), 0);
        for (int level = 0; level < mLevels; ++level) {
            mBottom = FileHandle(openat(mBottom.Fd(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            EXPECT_EQ(unlinkat(mBottom.Fd(), mName.constData(), AT_REMOVEDIR), 0);
        }
    }
    DeepFolder(const DeepFolder&) = delete;
    DeepFolder& operator=(const DeepFolder&) = delete;

    /// The folder at the top, with its separator.
    QString Top() const { return mTop.Path(); }
    /// The last folder, with its separator.
    QString Path() const { return mTop.Path() + PathFromBytes((mName + '/').repeated(mLevels)); }

private:
    TempFolder mTop;
    int mLevels;
    QByteArray mName;
    FileHandle mBottom;
};

} // namespace quillane
