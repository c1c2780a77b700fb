// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/update/Version.h"

namespace ambrel {
namespace {

struct Case {
  const char* a;
  const char* b;
  int order;
};

TEST(Version, ComparesComponentByComponentAsNumbers) {
  const Case cases[] = {
      {"v7.10", "7.9", 1},               // numbers, not text
      {"7.04", "7.4", 0},                // 4 on both sides
      {"7.1", "7.1.0", 0},               // a missing component is 0
      {"7.1.0.1", "7.1", 1},             //
      {"7", "7.0.1", -1},                //
      {"8", "7.99", 1},                  //
      {"", "", 0},                       //
      {"", "0.0", 0},                    //
      {"", "0.1", -1},                   //
      {"7.x", "7.0", 0},                 // no leading digits count 0
      {"7.4beta", "7.4", 0},             // leading digits count
      {"vv7", "7", -1},                  // one leading "v" only
      {"V7", "7", -1},                   // and a small one
      {"7..1", "7.0.1", 0},              //
      {"99999999999", "2147483647", 0},  // as large as 32 bits hold
  };
  for (const Case& c : cases) {
    EXPECT_EQ(compare_versions(QString::fromLatin1(c.a), QString::fromLatin1(c.b)), c.order)
        << c.a << " " << c.b;
    EXPECT_EQ(compare_versions(QString::fromLatin1(c.b), QString::fromLatin1(c.a)), -c.order)
        << c.b << " " << c.a;
  }
}

TEST(Version, TakesAVersionWithASuffixForOlderThanTheSameWithout) {
  const Case cases[] = {
      {"7.1", "7.1-rc1", 1},          //
      {"7.1-beta2", "7.1-beta1", 0},  // suffixes are never compared
      {"7.2-rc1", "7.1", 1},          // the numbers come first
      {"7.1-rc-2.9", "7.1-rc1", 0},   // the suffix begins at the first "-"
      {"-rc1", "0", -1},              //
      {"7.1-", "7.1", -1},            //
  };
  for (const Case& c : cases) {
    EXPECT_EQ(compare_versions(QString::fromLatin1(c.a), QString::fromLatin1(c.b)), c.order)
        << c.a << " " << c.b;
    EXPECT_EQ(compare_versions(QString::fromLatin1(c.b), QString::fromLatin1(c.a)), -c.order)
        << c.b << " " << c.a;
  }
}

TEST(Version, TakesAMissingTextForAnEmptyOne) {
  EXPECT_EQ(compare_versions(QString(), QString()), 0);
  EXPECT_EQ(compare_versions(QStringLiteral("v1"), QString()), 1);
}

TEST(Version, DropsOneLeadingVOfATag) {
  EXPECT_EQ(version_of_tag(QStringLiteral("v7.10")), QStringLiteral("7.10"));
  EXPECT_EQ(version_of_tag(QStringLiteral("7.10")), QStringLiteral("7.10"));
}

}  // namespace
}  // namespace ambrel
