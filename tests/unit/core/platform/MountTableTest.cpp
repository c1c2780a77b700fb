// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/platform/MountTable.h"
#include "support/Printing.h"

using namespace ambrel;

namespace {

const QByteArray kTable =
    "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw\n"
    "40 27 0:40 / /mnt/nas rw,relatime shared:5 - cifs //me@nas/photos rw,vers=3.1.1\n"
    "41 40 8:1 / /mnt/nas/stick rw - vfat /dev/sdb1 rw\n"
    "42 27 0:41 / /mnt/My\\040Share rw shared:7 master:1 - smb3 //server/My\\040Photos rw\n"
    "43 27 0:42 / /mnt/nfs rw - nfs4 nas.local:/export/photos rw,vers=4.2\n"
    "44 27 0:43 / /run/user/1000/gvfs rw,nosuid - fuse.gvfsd-fuse gvfsd-fuse rw\n"
    "45 27 0:44 / /mnt/covered rw - ext4 /dev/sdc1 rw\n"
    "46 45 0:45 / /mnt/covered rw - cifs //late/share rw\n"
    "a line that is none\n";

std::optional<MountedVolume> in(const QString& folder) {
  return volumeInMountTable(kTable, folder);
}

}  // namespace

TEST(MountTable, FindsTheInnermostVolumeOfAFolder) {
  EXPECT_EQ(in("/home/me/Copies"), (MountedVolume{"/dev/vda", "ext4"}));
  EXPECT_EQ(in("/mnt/nas"), (MountedVolume{"//me@nas/photos", "cifs"}));
  EXPECT_EQ(in("/mnt/nas/2026/June"), (MountedVolume{"//me@nas/photos", "cifs"}));
  EXPECT_EQ(in("/mnt/nas/stick/x"), (MountedVolume{"/dev/sdb1", "vfat"}));
  EXPECT_EQ(in("/"), (MountedVolume{"/dev/vda", "ext4"}));
}

TEST(MountTable, IsNotFooledByNamesThatBeginAlike) {
  EXPECT_EQ(in("/mnt/nas2"), (MountedVolume{"/dev/vda", "ext4"}));
}

TEST(MountTable, TakesTheLaterOfTwoMountsInOnePlace) {
  EXPECT_EQ(in("/mnt/covered/a"), (MountedVolume{"//late/share", "cifs"}));
}

TEST(MountTable, ReadsBlanksInNames) {
  EXPECT_EQ(in("/mnt/My Share/a"), (MountedVolume{"//server/My Photos", "smb3"}));
}

TEST(MountTable, NamesAnNfsExportLikeAShare) {
  EXPECT_EQ(in("/mnt/nfs/a"), (MountedVolume{"//nas.local/export/photos", "nfs4"}));
}

TEST(MountTable, KnowsTheSharesThatTheDesktopMounts) {
  const QString desktop = "/run/user/1000/gvfs/";
  EXPECT_EQ(in(desktop + "smb-share:server=nas,share=photos/June"),
            (MountedVolume{"//nas/photos", "fuse.gvfsd-fuse"}));
  EXPECT_EQ(in(desktop + "smb-share:server=nas.local,share=my%20photos,user=bob"),
            (MountedVolume{"//bob@nas.local/my photos", "fuse.gvfsd-fuse"}));
  EXPECT_EQ(in(desktop + "sftp:host=nas/home"), (MountedVolume{"", "fuse.gvfsd-fuse"}));
}

TEST(MountTable, KnowsNothingWithoutATable) {
  EXPECT_EQ(volumeInMountTable("", "/mnt"), std::nullopt);
}

TEST(MountTable, FindsTheVolumeOfARealFolderThroughLinks) {
  const QTemporaryDir folder;
  ASSERT_TRUE(QFile::link("/proc", folder.filePath("link")));
  const auto volume = volumeOf(folder.filePath("link"));
  ASSERT_TRUE(volume);
  EXPECT_EQ(volume->fileSystem, "proc");
  EXPECT_EQ(volumeOf(folder.filePath("gone")), std::nullopt);
}
