// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace ambrel {

// The file-system-safe form of a name, on its UTF-8 bytes: reserved and control bytes become "-", white space
// at both ends goes, and "untitled" stands for nothing. Names made only of dots are kept.
std::string sanitize_filename(std::string_view name);

// "<folder>_<number, at least four digits>.<extension>".
QString photoFileName(const QString& folderName, qint64 number, const QString& extension);

// What follows the last dot of a path's last component, in its own letter case; empty without a dot, and for
// a hidden name such as ".jpg".
QString pathExtension(const QString& path);

// By extension, in any letter case: photos that are counted, and those that the preview can show.
bool isImageFileName(const QString& name);
bool isPreviewableImagePath(const QString& path);

// The same of the bytes of a name.
std::string_view path_extension(std::string_view path);
bool is_image_file_name(std::string_view name);
bool is_previewable_image_path(std::string_view path);

}  // namespace ambrel
