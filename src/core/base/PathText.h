// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace ambrel {

// A path as text and as the bytes that the system knows it by. Bytes that are not valid UTF-8 become lone
// surrogates, U+DC80 to U+DCFF, so that every path on a disk has a text of its own, which leads back to it.
QString path_to_ns(std::string_view bytes);
std::string ns_to_path(const QString& path);

// The last part of an absolute path, as bytes; and the path with another one.
std::string nameOf(const std::string& path);
std::string renamedPath(const std::string& path, const std::string& newName);

}  // namespace ambrel
