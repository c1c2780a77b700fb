// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ambrel {

// How many photos lie in each folder of a target folder at one moment. Names are bytes, compared exactly.
class PhotoCounts {
 public:
  struct Folder {
    std::string name;
    std::int64_t photos = 0;
    bool operator==(const Folder&) const = default;
  };

  PhotoCounts() = default;
  explicit PhotoCounts(std::vector<Folder> folders);

  // Those of a person: in the folder of this name and in all whose names go on with "_". So the folder of
  // another person whose name begins that way counts too. An empty name has none.
  std::int64_t ofName(std::string_view sanitisedName) const;
  // By name.
  const std::vector<Folder>& folders() const { return _folders; }

 private:
  std::size_t firstNotBefore(std::string_view name) const;

  std::vector<Folder> _folders;
  std::vector<std::int64_t> _photosBefore = {0};  // in the folders before each, and in all of them
};

}  // namespace ambrel
