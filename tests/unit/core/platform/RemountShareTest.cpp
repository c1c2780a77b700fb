// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/platform/RemountShare.h"
#include "support/Printing.h"

using namespace ambrel;

namespace {

const QByteArray kTable =
    "# <file system> <mount point> <type> <options> <dump> <pass>\n"
    "UUID=1234 / ext4 user 0 1\n"
    "//nas/photos\t/mnt/nas  cifs  noauto,user,credentials=/etc/nas 0 0\n"
    "//nas/admin /mnt/admin cifs noauto,credentials=/etc/nas 0 0\n"
    "nas:/export /mnt/nas/export nfs users,noauto 0 0\n"
    "//nas/my\\040photos /mnt/my\\040photos cifs user 0 0\n"
    "//nas/odd /mnt/odd cifs nouser 0 0\n"
    "#//nas/off /mnt/off cifs user 0 0\n"
    "none swap\n";

QString asUser(const QString& folder) {
  return mountPointInTable(kTable, folder, false);
}

}  // namespace

TEST(RemountShare, FindsTheInnermostEntryThatTheUserMayMount) {
  EXPECT_EQ(asUser("/mnt/nas"), "/mnt/nas");
  EXPECT_EQ(asUser("/mnt/nas/2026/June/"), "/mnt/nas");
  EXPECT_EQ(asUser("/mnt/nas/export/a"), "/mnt/nas/export");
  EXPECT_EQ(asUser("/mnt/my photos/a"), "/mnt/my photos");
}

TEST(RemountShare, LeavesOutWhatOnlyTheAdministratorMayMount) {
  EXPECT_EQ(asUser("/mnt/admin/a"), "");
  EXPECT_EQ(asUser("/mnt/odd"), "");
  EXPECT_EQ(mountPointInTable(kTable, "/mnt/admin/a", true), "/mnt/admin");
}

TEST(RemountShare, FindsNothingForFoldersElsewhere) {
  EXPECT_EQ(asUser("/home/me/Copies"), "");
  EXPECT_EQ(asUser("/mnt/nas2"), "");
  EXPECT_EQ(asUser("/mnt/off"), "");
  EXPECT_EQ(mountPointInTable("", "/mnt/nas", true), "");
}

TEST(RemountShare, FailsForAShareThatNobodyCanMount) {
  EXPECT_FALSE(remountShare("no-such-scheme://nowhere/x", "/no/such/folder"));
}
