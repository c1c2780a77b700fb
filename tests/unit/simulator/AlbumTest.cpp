// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "simulator/Album.h"
#include "simulator/Sha256.h"

namespace ambrel::simulator {
namespace {

PhotoSpec spec(std::uint32_t shot, std::size_t size = 0) {
  return {1, shot, FileKind::jpeg, 160, 120, size};
}

std::size_t add(Album& album, const PhotoSpec& wanted) {
  return album.add(wanted, "IMG.JPG", Place::card, make_photo(wanted).value());
}

TEST(Album, RemembersSizeAndChecksum) {
  Album album;
  const std::size_t index = add(album, spec(1));
  const TakenPhoto& photo = album.photos()[index];
  EXPECT_EQ(photo.name, "IMG.JPG");
  EXPECT_EQ(photo.size, album.bytes(index)->size());
  EXPECT_EQ(photo.sha256, sha256_hex(*album.bytes(index)));
  EXPECT_EQ(photo.spec.shot, 1U);
}

TEST(Album, GivesTheSameBytesWhenThePhotoHasLeftTheCache) {
  constexpr std::size_t kQuarter = 50'000;
  Album album(4 * kQuarter);
  for (std::uint32_t shot = 1; shot <= 6; ++shot) {
    add(album, spec(shot, kQuarter));
  }
  for (const std::size_t index : {0U, 5U, 1U}) {
    const std::shared_ptr<const Bytes> bytes = album.bytes(index);
    ASSERT_EQ(bytes->size(), kQuarter);
    EXPECT_EQ(sha256_hex(*bytes), album.photos()[index].sha256) << index;
  }
}

TEST(Album, KeepsAPhotoThatIsLargerThanTheCacheWhileItIsTheLatest) {
  Album album(1000);
  const std::size_t index = add(album, spec(1));
  EXPECT_EQ(album.bytes(index).get(), album.bytes(index).get());
}

}  // namespace
}  // namespace ambrel::simulator
