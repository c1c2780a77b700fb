// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace ambrel::camera {

// Moves a file within one file system to a name that must not exist: an existing one is never replaced. Each
// returns 0 or an errno value; EEXIST means that the name is taken and nothing has changed.
int moveWithoutOverwriting(const std::string& from, const std::string& to);

// The three ways of doing it, best first; file systems of drives and shares lack the earlier ones.
int renameExclusively(const std::string& from, const std::string& to);
int linkAndUnlink(const std::string& from, const std::string& to);
int reserveAndRename(const std::string& from, const std::string& to);

}  // namespace ambrel::camera
