// SPDX-License-Identifier: Apache-2.0
#include "camera/HostIdentity.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <unistd.h>

#include "camera/FileMove.h"

namespace ambrel::camera {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBytes = 16;
constexpr std::size_t kLength = kBytes * 3 - 1;

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

fs::path dataFolder() {
  if (const std::string home = environment("AMBREL_HOME"); !home.empty()) return fs::path(home) / "data";
  const std::string home = environment("HOME");
#if defined(__APPLE__)
  return home.empty() ? fs::path() : fs::path(home) / "Library/Application Support";
#else
  if (const std::string data = environment("XDG_DATA_HOME"); !data.empty()) return data;
  return home.empty() ? fs::path() : fs::path(home) / ".local/share";
#endif
}

bool isIdentity(const std::string& text) {
  if (text.size() != kLength) return false;
  for (std::size_t i = 0; i < kLength; ++i) {
    const bool right = i % 3 == 2 ? text[i] == ':' : std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
    if (!right) return false;
  }
  return true;
}

std::string newIdentity() {
  std::random_device random;
  std::string text;
  for (std::size_t i = 0; i < kBytes; ++i) {
    std::array<char, 4> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x:", random() & 0xFFU);
    text += digits.data();
  }
  text.pop_back();
  return text;
}

std::string readFirstLine(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  return line;
}

}  // namespace

std::string hostIdentityFile() {
  const fs::path folder = dataFolder();
  return folder.empty() ? std::string() : (folder / "Ambrel Tether/camera-host-id").string();
}

std::string hostIdentity() {
  const std::string path = hostIdentityFile();
  if (const std::string kept = readFirstLine(path); isIdentity(kept)) return kept;
  const std::string made = newIdentity();
  if (path.empty()) return made;
  std::error_code error;
  fs::create_directories(fs::path(path).parent_path(), error);
  const std::string part = path + "." + std::to_string(getpid());
  std::ofstream(part) << made << "\n";
  // What stands there and is no identity goes; what another worker made meanwhile stays.
  if (!isIdentity(readFirstLine(path))) fs::remove(path, error);
  if (moveWithoutOverwriting(part, path) != 0) fs::remove(part, error);
  const std::string kept = readFirstLine(path);
  return isIdentity(kept) ? kept : made;
}

}  // namespace ambrel::camera
