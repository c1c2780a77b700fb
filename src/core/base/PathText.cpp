// SPDX-License-Identifier: Apache-2.0
#include "core/base/PathText.h"

#include <QFile>
#include <algorithm>

#include "core/base/Text.h"

namespace ambrel {
namespace {

constexpr char16_t kEscape = 0xDC00;  // plus the byte
constexpr std::size_t kLongestCharacter = 4;

// The length of the valid character that `bytes` begins with, 0 for none.
std::size_t firstCharacterLength(std::string_view bytes) {
  for (std::size_t length = 1; length <= std::min(kLongestCharacter, bytes.size()); ++length) {
    if (!std_to_ns(bytes.substr(0, length)).isEmpty()) return length;
  }
  return 0;
}

bool isEscapedByte(QChar c) {
  return c.unicode() >= kEscape + 0x80 && c.unicode() <= kEscape + 0xFF;
}

}  // namespace

QString path_to_ns(std::string_view bytes) {
  const QString whole = std_to_ns(bytes);
  if (!whole.isEmpty()) return whole;
  QString text;
  while (!bytes.empty()) {
    const std::size_t length = firstCharacterLength(bytes);
    if (length > 0) {
      text += std_to_ns(bytes.substr(0, length));
    } else {
      text += QChar(char16_t(kEscape + static_cast<unsigned char>(bytes.front())));
    }
    bytes.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return text;
}

std::string ns_to_path(const QString& path) {
  if (path.isValidUtf16()) return QFile::encodeName(path).toStdString();
  std::string bytes;
  for (qsizetype i = 0; i < path.size(); ++i) {
    if (isEscapedByte(path[i])) {
      bytes.push_back(static_cast<char>(path[i].unicode() - kEscape));
      continue;
    }
    const bool pair = path[i].isHighSurrogate() && i + 1 < path.size();
    bytes += QFile::encodeName(path.mid(i, pair ? 2 : 1)).toStdString();
    if (pair) ++i;
  }
  return bytes;
}

std::string nameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::string renamedPath(const std::string& path, const std::string& newName) {
  return path.substr(0, path.rfind('/') + 1) + newName;
}

}  // namespace ambrel
