// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/backup/ShareAddress.h"
#include "support/Printing.h"

using namespace ambrel;

TEST(ShareAddress, TakesASourceWithTwoSlashesForANetworkShare) {
  EXPECT_TRUE(isNetworkShare({"//nas/photos", "cifs"}));
  EXPECT_FALSE(isNetworkShare({"/dev/sda1", "ext4"}));
  EXPECT_FALSE(isNetworkShare({"nas:/photos", "nfs"}));
  EXPECT_FALSE(isNetworkShare({"", "tmpfs"}));
}

TEST(ShareAddress, CallsEveryShareSmbButAppleShares) {
  EXPECT_EQ(shareUrl({"//guest@server:445/Photos", "smbfs"}), "smb://guest@server:445/Photos");
  EXPECT_EQ(shareUrl({"//guest@server:445/Photos", "afpfs"}), "afp://guest@server:445/Photos");
  EXPECT_EQ(shareUrl({"//nas/export", "nfs"}), "smb://nas/export");
  EXPECT_EQ(shareUrl({"//nas/export", "afpfs2"}), "smb://nas/export");
}

TEST(ShareAddress, CutsTheServerOutOfTheSource) {
  EXPECT_EQ(shareHost("//guest@server:445/Photos"), "server");
  EXPECT_EQ(shareHost("//server"), "server");
  EXPECT_EQ(shareHost("//server/"), "server");
  EXPECT_EQ(shareHost("//DOMAIN;user@mail@server/share@home"), "server");
  EXPECT_EQ(shareHost("//192.168.1.20:139/x"), "192.168.1.20");
  EXPECT_EQ(shareHost("///share"), "");
  EXPECT_EQ(shareHost("//user@/share"), "");
}

TEST(ShareAddress, EncodesEverythingButTheCharactersThatAddressesAreMadeOf) {
  EXPECT_EQ(percentEncodedShare("smb://me@nas.local:445/My Photos"), "smb://me@nas.local:445/My%20Photos");
  EXPECT_EQ(percentEncodedShare("smb://nas/100%"), "smb://nas/100%25");
  EXPECT_EQ(percentEncodedShare("smb://nas/%20"), "smb://nas/%2520");
  EXPECT_EQ(percentEncodedShare("smb://nas/é;?#[]+&=!$'()*,"),
            "smb://nas/%C3%A9%3B%3F%23%5B%5D%2B%26%3D%21%24%27%28%29%2A%2C");
  const QString kept = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:/@";
  EXPECT_EQ(percentEncodedShare(kept), kept);
}
