// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "core/list/ByteSearch.h"

namespace ambrel {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

TEST(FindBytes, FindsTheFirstPlaceAtOrAfterTheStart) {
  const std::string bytes = std::string(200, '.') + "anna" + std::string(200, '.') + "anna";
  EXPECT_EQ(find_bytes(bytes, "anna", 0), 200u);
  EXPECT_EQ(find_bytes(bytes, "anna", 200), 200u);
  EXPECT_EQ(find_bytes(bytes, "anna", 201), 404u);
  EXPECT_EQ(find_bytes(bytes, "anna", 405), kNone);
}

TEST(FindBytes, ReadsNothingBehindTheEnd) {
  for (std::size_t length = 0; length < 200; ++length) {
    // Memory of exactly that length, so that a sanitizer sees a step too far.
    const std::vector<char> bytes(length, 'a');
    const std::string_view view(bytes.data(), bytes.size());
    EXPECT_EQ(find_bytes(view, "ab", 0), kNone);
    EXPECT_EQ(find_bytes(view, "a", 0), length == 0 ? kNone : 0);
    EXPECT_EQ(find_bytes(view, std::string(length, 'a'), 0), 0u);
    EXPECT_EQ(find_bytes(view, std::string(length + 1, 'a'), 0), kNone);
  }
}

TEST(FindBytes, TakesAnyByteAndAnEmptyNeedleAsAStringWould) {
  const std::string bytes(100, '\0');
  EXPECT_EQ(find_bytes(bytes, std::string_view("\0", 1), 7), 7u);
  EXPECT_EQ(find_bytes(bytes + '\xff', "\xff", 0), 100u);
  EXPECT_EQ(find_bytes(bytes, "", 5), 5u);
  EXPECT_EQ(find_bytes(bytes, "", 100), 100u);
  EXPECT_EQ(find_bytes(bytes, "x", 101), kNone);
}

TEST(FindBytes, FindsWhatAStringFindsInRandomBytes) {
  std::mt19937 random(5);
  const auto text = [&random](std::size_t length, unsigned letters) {
    std::string bytes(length, '\0');
    for (char& byte : bytes)
      byte = static_cast<char>('a' + static_cast<int>(random() % letters));
    return bytes;
  };
  for (int round = 0; round < 20'000; ++round) {
    const unsigned letters = 1 + random() % 4;
    const std::string bytes = text(random() % 300, letters);
    const std::string needle = text(1 + random() % 9, letters);
    const std::size_t from = random() % 310;
    ASSERT_EQ(find_bytes(bytes, needle, from), bytes.find(needle, from))
        << needle << " in " << bytes << " from " << from;
  }
}

}  // namespace
}  // namespace ambrel
