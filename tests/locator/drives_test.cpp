#include "locator/drives.h"

#include <gtest/gtest.h>

namespace quillane {
namespace {

TEST(LocatorDrives, AreTheRootAndMountedVolumes)
{
    EXPECT_EQ(LocatorDrives("/dev/sda1 / ext4 rw 0 0\nproc /proc proc rw 0 0\n"
                            "/dev/sdb1 /media/me/My\\040Card vfat rw 0 0\n"
                            "/dev/sdc1 /mnt/disk ext4 rw 0 0\n"),
              QStringList({"/", "/media/me/My Card", "/mnt/disk"}));
    EXPECT_EQ(LocatorDrives({}), QStringList{"/"});
}

TEST(DriveOf, IsTheInnermost)
{
    const QStringList drives{"/", "/mnt/disk", "/mnt/disk/inner"};
    EXPECT_EQ(DriveOf(drives, "/home/me/"), 0);
    EXPECT_EQ(DriveOf(drives, "/mnt/disk"), 1);
    EXPECT_EQ(DriveOf(drives, "/mnt/disk/"), 1);
    EXPECT_EQ(DriveOf(drives, "/mnt/diskette/"), 0);
    EXPECT_EQ(DriveOf(drives, "/mnt/disk/inner/x/"), 2);
    EXPECT_EQ(DriveOf(drives, ""), 0);
}

} // namespace
} // namespace quillane
