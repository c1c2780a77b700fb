// SPDX-License-Identifier: Apache-2.0
#include "camera/PhotoFormat.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace ambrel::camera {
namespace {

constexpr std::size_t kLongestName = 200;

struct FormatNames {
  PhotoFormat format;
  std::string_view extension;
  std::array<std::string_view, 3> alsoRight;
};

constexpr std::array kFormatNames{
    FormatNames{PhotoFormat::Jpeg, "JPG", {"JPEG", "JPE", ""}},
    FormatNames{PhotoFormat::Cr2, "CR2", {}},
    FormatNames{PhotoFormat::Cr3, "CR3", {}},
    FormatNames{PhotoFormat::Heif, "HIF", {"HEIF", "HEIC", ""}},
};

constexpr std::array<std::string_view, 14> kRawExtensions{"CR2", "CR3", "CRW", "NEF", "NRW", "ARW", "RAF",
                                                          "ORF", "RW2", "PEF", "DNG", "SRW", "3FR", "X3F"};
constexpr std::array<std::string_view, 11> kNoPhotoExtensions{"MOV", "MP4", "AVI", "MTS", "CRM", "WAV",
                                                              "THM", "CTG", "LOG", "XML", "DPS"};

char upper(char c) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

std::string upperCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), upper);
  return result;
}

std::string_view extensionOf(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

bool startsWith(std::span<const unsigned char> bytes, std::string_view text) {
  return bytes.size() >= text.size() &&
         std::equal(text.begin(), text.end(), bytes.begin(),
                    [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; });
}

// ISO base media files name their brand behind a first box "ftyp".
PhotoFormat formatOfBrand(std::span<const unsigned char> brand) {
  if (startsWith(brand, "crx ")) return PhotoFormat::Cr3;
  for (const std::string_view heif : {"heic", "heix", "hevc", "mif1", "msf1"}) {
    if (startsWith(brand, heif)) return PhotoFormat::Heif;
  }
  return PhotoFormat::Unknown;
}

}  // namespace

PhotoFormat formatOf(std::span<const unsigned char> head) {
  if (startsWith(head, "\xFF\xD8\xFF")) return PhotoFormat::Jpeg;
  if (head.size() < 12) return PhotoFormat::Unknown;
  if (startsWith(head.subspan(4), "ftyp")) return formatOfBrand(head.subspan(8));
  if (startsWith(head, "II*") && startsWith(head.subspan(8), "CR\x02")) return PhotoFormat::Cr2;
  return PhotoFormat::Unknown;
}

std::string nameForFormat(std::string_view name, PhotoFormat format) {
  const std::string_view given = extensionOf(name);
  const std::string extension = upperCase(given);
  for (const FormatNames& known : kFormatNames) {
    if (known.format != format) continue;
    if (extension == known.extension) break;
    if (!extension.empty() && std::count(known.alsoRight.begin(), known.alsoRight.end(), extension) > 0)
      break;
    std::string right(known.extension);
    const bool lower = !given.empty() && std::islower(static_cast<unsigned char>(given.front())) != 0;
    if (lower) {
      std::transform(right.begin(), right.end(), right.begin(),
                     [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    }
    const std::string_view stem = given.empty() ? name : name.substr(0, name.size() - given.size() - 1);
    return std::string(stem).append(".").append(right);
  }
  return std::string(name);
}

bool endsLikeJpeg(std::span<const unsigned char> tail) {
  while (!tail.empty() && tail.back() == 0)
    tail = tail.first(tail.size() - 1);
  return tail.size() >= 2 && tail[tail.size() - 2] == 0xFF && tail.back() == 0xD9;
}

bool isRawName(std::string_view name) {
  const std::string extension = upperCase(extensionOf(name));
  return std::count(kRawExtensions.begin(), kRawExtensions.end(), extension) > 0;
}

bool isPhotoName(std::string_view name) {
  const std::string extension = upperCase(extensionOf(name));
  return std::count(kNoPhotoExtensions.begin(), kNoPhotoExtensions.end(), extension) == 0;
}

std::string safeName(std::string_view name) {
  std::string result(name);
  // The end of a name, its extension, matters more than its middle.
  if (result.size() > kLongestName) result.erase(kLongestName / 2, result.size() - kLongestName);
  for (char& c : result) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte > 0x7E || c == '/' || c == '\\' || c == '|') c = '_';
  }
  if (!result.empty() && result.front() == '.') result.front() = '_';
  return result.empty() ? "photo" : result;
}

}  // namespace ambrel::camera
