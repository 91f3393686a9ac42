// Which mounts keep the protection of a file, read from tables as the system writes them.
#include <gtest/gtest.h>

#include "Mounts.h"

using dcfctl::FindMount;
using dcfctl::IgnoresProtection;
using dcfctl::Mount;

namespace {

constexpr const char* kTable =
    "22 28 0:20 / /proc rw,nosuid shared:5 - proc proc rw\n"
    "28 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw,discard\n"
    "41 28 8:1 / /media/card rw,relatime shared:20 - vfat /dev/sda1 rw,fmask=0022,dmask=0022,codepage=437\n"
    "42 28 8:17 / /media/my\\040card rw,relatime - exfat /dev/sdb1 rw,fmask=0000,dmask=0000,iocharset=utf8\n"
    "43 28 8:33 / /media/fuse rw,nosuid,nodev,relatime shared:9 master:1 - fuseblk /dev/sdc1 rw,user_id=0\n"
    "44 28 8:1 / /media/card rw,relatime - vfat /dev/sdd1 rw,fmask=0111,dmask=0000\n"
    "damaged line\n";

TEST(Mounts, AreFoundByTheLongestMountPoint) {
    EXPECT_EQ("/", FindMount(kTable, "/home/me/x.jpg")->point);
    EXPECT_EQ("ext4", FindMount(kTable, "/media/cardboard")->type);
    EXPECT_EQ("exfat", FindMount(kTable, "/media/my card/DCIM/100PHOTO/A.JPG")->type);
    EXPECT_EQ("/media/my card", FindMount(kTable, "/media/my card")->point);
    EXPECT_EQ("fuseblk", FindMount(kTable, "/media/fuse/DCIM")->type);
    EXPECT_FALSE(FindMount("", "/home").has_value());
}

TEST(Mounts, ALaterMountLiesOverAnEarlierOne) {
    const auto mount = FindMount(kTable, "/media/card/DCIM");
    ASSERT_TRUE(mount.has_value());
    EXPECT_EQ("rw,relatime,rw,fmask=0111,dmask=0000", mount->options);
}

TEST(Mounts, OfFatKeepProtectionOnlyWhereTheOwnerAloneMayWrite) {
    struct Row {
        const char* type;
        const char* options;
        bool ignores;
        const char* why;
    };
    const Row rows[] = {
        {"vfat", "rw,fmask=0022,dmask=0022", false, "the default: the owner's permission is all there is"},
        {"vfat", "rw,fmask=0133,dmask=0022", false, "likewise"},
        {"vfat", "rw,fmask=0077", false, "likewise"},
        {"vfat", "rw,fmask=0000,dmask=0000", true, "all may write: taking it from the owner alone is ignored"},
        {"vfat", "rw,fmask=0111,dmask=0000", true, "likewise"},
        {"vfat", "rw,fmask=0002", true, "the group may write too"},
        {"vfat", "rw,fmask=0222", true, "nobody may write at all"},
        {"vfat", "rw", true, "no mask at all"},
        {"msdos", "rw,fmask=0000", true, "the same driver"},
        {"exfat", "rw,fmask=0022,dmask=0022", false, "exFAT does as FAT"},
        {"exfat", "rw,fmask=0000,dmask=0000", true, "exFAT does as FAT"},
        {"ext4", "rw", false, "no mask"},
        {"fuseblk", "rw,fmask=0000", false, "nothing is known of it"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.ignores, IgnoresProtection({"/m", row.type, row.options})) << row.options << ": " << row.why;
    }
}

TEST(Mounts, OfThisMachineCanBeRead) {
    const auto mount = dcfctl::MountOf("/proc/self");
    ASSERT_TRUE(mount.has_value());
    EXPECT_EQ("proc", mount->type);
    EXPECT_FALSE(dcfctl::MountOf("/no/such/path").has_value());
}

} // namespace
