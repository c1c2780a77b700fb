// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <string>

#include "core/list/DuplicateNames.h"

namespace ambrel {
namespace {

const QSet<QString> kAnna = {QStringLiteral("anna")};

TEST(DuplicateNames, AreThoseOfTwoOrMore) {
  DuplicateNames names(3);
  EXPECT_TRUE(names.add("Anna"));
  EXPECT_EQ(names.lowerCased(), QSet<QString>());
  EXPECT_TRUE(names.add("ANNA"));
  EXPECT_EQ(names.lowerCased(), kAnna);
  EXPECT_TRUE(names.add("anna"));
  names.remove("Anna");
  EXPECT_EQ(names.lowerCased(), kAnna);
  names.remove("anna");
  EXPECT_EQ(names.lowerCased(), QSet<QString>());
  names.remove("ANNA");
  EXPECT_TRUE(names.add("Anna"));
  EXPECT_EQ(names.lowerCased(), QSet<QString>());
}

TEST(DuplicateNames, AreNeitherEmptyNorInvalidNames) {
  DuplicateNames names(4);
  for (const char* name : {"", "", "Zo\xeb", "Zo\xeb"})
    EXPECT_TRUE(names.add(name));
  EXPECT_EQ(names.lowerCased(), QSet<QString>());
  names.remove("");
  names.remove("Zo\xeb");
  EXPECT_EQ(names.lowerCased(), QSet<QString>());
}

TEST(DuplicateNames, HaveRoomForAsManyAsAnnouncedAndForHalfAsManyMore) {
  for (const std::size_t announced : {0u, 1u, 2u, 31u, 32u, 33u, 1000u, 1024u, 1025u}) {
    DuplicateNames names(announced);
    for (std::size_t i = 0; i < announced * 3 / 2; ++i)
      ASSERT_TRUE(names.add(std::to_string(i))) << announced;
  }
}

TEST(DuplicateNames, CountNothingWhereThereIsNoRoomForAnotherName) {
  DuplicateNames names(100);
  int added = 0;
  while (names.add("Somebody " + std::to_string(added)))
    ASSERT_LT(++added, 1000);
  EXPECT_FALSE(names.add("Anna"));
  EXPECT_EQ(names.lowerCased(), QSet<QString>());
  // Those that it has still come and go.
  EXPECT_TRUE(names.add("SOMEBODY 7"));
  EXPECT_EQ(names.lowerCased(), QSet<QString>{QStringLiteral("somebody 7")});
}

}  // namespace
}  // namespace ambrel
