// SPDX-License-Identifier: Apache-2.0
#include "core/capture/FileNames.h"

#include <QLatin1String>
#include <algorithm>
#include <array>

namespace ambrel {
namespace {

constexpr std::string_view kUntitled = "untitled";
constexpr std::string_view kReserved = "\"*/:<>?\\|";
constexpr int kMinDigits = 4;

// Those that the preview can show come first.
constexpr std::array kImageExtensions = {QLatin1String("jpg"),  QLatin1String("jpeg"), QLatin1String("png"),
                                         QLatin1String("tif"),  QLatin1String("tiff"), QLatin1String("heic"),
                                         QLatin1String("heif"), QLatin1String("cr2"),  QLatin1String("cr3"),
                                         QLatin1String("crw"),  QLatin1String("raw"),  QLatin1String("dng"),
                                         QLatin1String("nef"),  QLatin1String("arw")};
constexpr std::size_t kPreviewable = 6;

bool hasExtensionAmong(const QString& path, std::size_t count) {
  const QString extension = pathExtension(path).toLower();
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
  return hasExtensionAmong(name, kImageExtensions.size());
}

bool isPreviewableImagePath(const QString& path) {
  return hasExtensionAmong(path, kPreviewable);
}

}  // namespace ambrel
