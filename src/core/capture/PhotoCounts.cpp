// SPDX-License-Identifier: Apache-2.0
#include "core/capture/PhotoCounts.h"

#include <algorithm>
#include <utility>

namespace ambrel {

PhotoCounts::PhotoCounts(std::vector<Folder> folders) : _folders(std::move(folders)) {
  std::sort(_folders.begin(), _folders.end(),
            [](const Folder& a, const Folder& b) { return a.name < b.name; });
  _photosBefore.reserve(_folders.size() + 1);
  for (const Folder& folder : _folders)
    _photosBefore.push_back(_photosBefore.back() + folder.photos);
}

std::size_t PhotoCounts::firstNotBefore(std::string_view name) const {
  const auto found =
      std::lower_bound(_folders.begin(), _folders.end(), name,
                       [](const Folder& folder, std::string_view wanted) { return folder.name < wanted; });
  return static_cast<std::size_t>(found - _folders.begin());
}

std::int64_t PhotoCounts::ofName(std::string_view sanitisedName) const {
  if (sanitisedName.empty()) return 0;
  const std::size_t plain = firstNotBefore(sanitisedName);
  const bool hasPlain = plain < _folders.size() && _folders[plain].name == sanitisedName;
  // In the order of bytes the names that go on with "_" stand together, up to the byte after it.
  std::string bound(sanitisedName);
  bound.push_back('_');
  const std::size_t first = firstNotBefore(bound);
  bound.back() = '_' + 1;
  const std::size_t last = firstNotBefore(bound);
  return (hasPlain ? _folders[plain].photos : 0) + _photosBefore[last] - _photosBefore[first];
}

}  // namespace ambrel
