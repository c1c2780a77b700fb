// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "core/base/PathText.h"

namespace ambrel {
namespace {

TEST(PathText, AValidPathIsItsOwnText) {
  for (const char* path : {"", "/Photos/Ann", "/Photos/Jos\xc3\xa9/\xf0\x9f\x93\xb7.jpg", "/a\nb"}) {
    EXPECT_EQ(path_to_ns(path), QString::fromUtf8(path));
    EXPECT_EQ(ns_to_path(QString::fromUtf8(path)), path);
  }
}

TEST(PathText, ABytewithoutACharacterHasATextOfItsOwn) {
  EXPECT_NE(path_to_ns("/\xff"), path_to_ns("/\xfe"));
  EXPECT_EQ(path_to_ns("a\xff"
                       "b")
                .size(),
            3);
}

TEST(PathText, EveryPathComesBackFromItsText) {
  const std::vector<std::string> paths = {
      "/Ann_\xff.jpg", "\xe9t\xe9",    "\xc3",     "\xc3\xc3\xa9",
      "\xf0\x9f\x93",  "\xed\xb2\x80", "\xc0\xaf", "\x80\xf0\x9f\x93\xb7\xff"};
  for (const std::string& path : paths)
    EXPECT_EQ(ns_to_path(path_to_ns(path)), path);
}

TEST(PathText, RandomBytesComeBackFromTheirText) {
  std::mt19937 random(99);
  for (int round = 0; round < 2000; ++round) {
    std::string path(1 + random() % 12, ' ');
    for (char& c : path)
      c = static_cast<char>(1 + random() % 255);
    ASSERT_EQ(ns_to_path(path_to_ns(path)), path);
  }
}

TEST(PathText, ALoneSurrogateThatStandsForNoByteNamesNoOtherFile) {
  const std::string path = ns_to_path(QString(QChar(0xD800)) + QStringLiteral("a"));
  EXPECT_NE(path, "a");
  EXPECT_FALSE(path.empty());
}

TEST(PathText, NamesTheLastPartOfAPathAndGivesItAnother) {
  EXPECT_EQ(nameOf("/Photos/Ann_\xff"), "Ann_\xff");
  EXPECT_EQ(renamedPath("/Photos/Ann_\xff", "Ben"), "/Photos/Ben");
  EXPECT_EQ(renamedPath("/Photos", "Ben"), "/Ben");
}

}  // namespace
}  // namespace ambrel
