// SPDX-License-Identifier: Apache-2.0
#include "core/capture/FileNames.h"

#include <algorithm>
#include <array>

#include "core/base/Text.h"

namespace ambrel {
namespace {

constexpr std::string_view kUntitled = "untitled";
constexpr std::string_view kReserved = "\"*/:<>?\\|";
constexpr int kMinDigits = 4;

// Those that the preview can show come first.
constexpr std::array<std::string_view, 14> kImageExtensions = {
    "jpg", "jpeg", "png", "tif", "tiff", "heic", "heif", "cr2", "cr3", "crw", "raw", "dng", "nef", "arw"};
constexpr std::size_t kPreviewable = 6;

char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool hasExtensionAmong(std::string_view path, std::size_t count) {
  std::string extension(path_extension(path));
  std::transform(extension.begin(), extension.end(), extension.begin(), lowerCase);
  const auto end = kImageExtensions.begin() + count;
  return std::find(kImageExtensions.begin(), end, extension) != end;
}

bool isReplaced(char byte) {
  return static_cast<unsigned char>(byte) < 0x20 || kReserved.find(byte) != std::string_view::npos;
}

}  // namespace

std::string sanitize_filename(std::string_view name) {
  std::string safe(name);
  std::replace_if(safe.begin(), safe.end(), isReplaced, '-');
  // Every other kind of white space was a control byte.
  const std::size_t first = safe.find_first_not_of(' ');
  if (first == std::string::npos) return std::string(kUntitled);
  return safe.substr(first, safe.find_last_not_of(' ') - first + 1);
}

QString photoFileName(const QString& folderName, qint64 number, const QString& extension) {
  // Put together piece by piece: the folder name may hold what a format would read as a place for a value.
  const QString digits = QString::number(number).rightJustified(kMinDigits, QLatin1Char('0'));
  return folderName + QLatin1Char('_') + digits + QLatin1Char('.') + extension;
}

QString pathExtension(const QString& path) {
  const QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
  const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
  return dot > 0 ? name.mid(dot + 1) : QString();
}

bool isImageFileName(const QString& name) {
  return is_image_file_name(ns_to_std(name));
}

bool isPreviewableImagePath(const QString& path) {
  return is_previewable_image_path(ns_to_std(path));
}

std::string_view path_extension(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot + 1);
}

bool is_image_file_name(std::string_view name) {
  return hasExtensionAmong(name, kImageExtensions.size());
}

bool is_previewable_image_path(std::string_view path) {
  return hasExtensionAmong(path, kPreviewable);
}

}  // namespace ambrel
