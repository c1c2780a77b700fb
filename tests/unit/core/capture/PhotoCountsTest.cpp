// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>

#include "core/capture/PhotoCounts.h"

namespace ambrel {
namespace {

using Folders = std::vector<PhotoCounts::Folder>;

// The rule as it is said, folder by folder.
std::int64_t countedOneByOne(const Folders& folders, const std::string& name) {
  std::int64_t photos = 0;
  for (const PhotoCounts::Folder& folder : folders) {
    const bool belongs = folder.name == name || folder.name.starts_with(name + "_");
    if (!name.empty() && belongs) photos += folder.photos;
  }
  return photos;
}

TEST(PhotoCounts, AddsUpThePlainFolderAndItsTaggedVariants) {
  const PhotoCounts counts(Folders{{"Ann_Lee", 4}, {"Ann", 3}, {"Ann_FR", 2}, {"Anna", 50}, {"An", 70}});
  EXPECT_EQ(counts.ofName("Ann"), 9);
  EXPECT_EQ(counts.ofName("Ann Lee"), 0);
}

TEST(PhotoCounts, ATagWithoutAnUnderscoreIsNotFound) {
  EXPECT_EQ(PhotoCounts(Folders{{"AnnFR", 4}}).ofName("Ann"), 0);
}

TEST(PhotoCounts, ComparesExactly) {
  const PhotoCounts counts(Folders{{"ann", 1}, {"ANN_FR", 2}, {"Ann ", 4}, {"u\xcc\x88", 8}});
  EXPECT_EQ(counts.ofName("Ann"), 0);
  EXPECT_EQ(counts.ofName("\xc3\xbc"), 0);
}

TEST(PhotoCounts, AVariantNeedNotHaveAPlainFolder) {
  EXPECT_EQ(PhotoCounts(Folders{{"Ann_FR", 2}}).ofName("Ann"), 2);
}

TEST(PhotoCounts, AnEmptyNameHasNoPhotos) {
  EXPECT_EQ(PhotoCounts(Folders{{"_", 2}, {"_FR", 3}}).ofName(""), 0);
  EXPECT_EQ(PhotoCounts().ofName("Ann"), 0);
}

TEST(PhotoCounts, CountsVariantsWhoseNamesAreNotText) {
  const PhotoCounts counts(Folders{{"Ann_\xff\xff", 2}, {"Ann`", 10}, {"Ann\xff", 20}, {"Ann_", 5}});
  EXPECT_EQ(counts.ofName("Ann"), 7);
}

TEST(PhotoCounts, AgreesWithTheRuleFolderByFolderForRandomNames) {
  std::mt19937 random(4711);
  // Few letters, so that names are often equal or begin with one another.
  const std::string letters = "A_ab`^\xff";
  const auto anyName = [&](std::size_t shortest) {
    std::string name(shortest + random() % 4, ' ');
    for (char& c : name)
      c = letters[random() % letters.size()];
    return name;
  };
  std::int64_t found = 0;
  for (int round = 0; round < 300; ++round) {
    std::map<std::string, std::int64_t> onDisk;
    for (std::size_t i = random() % 60; i > 0; --i)
      onDisk[anyName(1)] = static_cast<std::int64_t>(random() % 5);
    Folders folders;
    for (const auto& [name, photos] : onDisk)
      folders.push_back({name, photos});
    std::shuffle(folders.begin(), folders.end(), random);
    const PhotoCounts counts(folders);
    for (int row = 0; row < 60; ++row) {
      const std::string name = anyName(0);
      ASSERT_EQ(counts.ofName(name), countedOneByOne(folders, name))
          << "name " << name << ", round " << round;
      found += counts.ofName(name);
    }
  }
  EXPECT_GT(found, 1000) << "hardly a name had a folder";
}

}  // namespace
}  // namespace ambrel
