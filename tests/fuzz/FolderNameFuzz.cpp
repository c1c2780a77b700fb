// SPDX-License-Identifier: Apache-2.0
// Any bytes as a name in the list: its folder has one component, no control bytes, is the same when it is
// made safe again, and its photos are found by their number in it and nowhere else.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/base/PathText.h"
#include "core/base/Text.h"
#include "core/capture/FileNames.h"
#include "core/capture/NumberedFolder.h"

using namespace ambrel;

namespace {

void require(bool held) {
  if (!held) std::abort();
}

bool isReserved(char c) {
  return static_cast<unsigned char>(c) < 0x20 ||
         std::string_view("\"*/:<>?\\|").find(c) != std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view name(reinterpret_cast<const char*>(data), size);
  const std::string safe = sanitize_filename(name);
  require(!safe.empty() && std::none_of(safe.begin(), safe.end(), isReserved));
  require(safe.front() != ' ' && safe.back() != ' ');
  require(sanitize_filename(safe) == safe);
  require(safe.size() <= std::max(name.size(), std::string_view("untitled").size()));

  const QString folderName = std_to_ns(safe);
  if (folderName.isEmpty()) return 0;  // no valid text: filed as untitled
  const QString file = photoFileName(folderName, 7, QStringLiteral("JPG"));
  require(file == folderName + QStringLiteral("_0007.JPG") && isImageFileName(file));
  require(pathExtension(file) == QStringLiteral("JPG") && !file.contains(QLatin1Char('/')));
  const NumberedFolder folder(QStringLiteral("/nowhere at all"), folderName, QStringLiteral("JPG"));
  require(folder.pathOfNumber(7) ==
          QStringLiteral("/nowhere at all/") + folderName + QLatin1Char('/') + file);
  require(folder.firstFreeFrom(7) == 7);
  require(path_to_ns(ns_to_path(folderName)) == folderName);
  return 0;
}
