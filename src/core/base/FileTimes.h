// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

// The times of a file, which the systems name differently.
namespace ambrel {

// Of the last change of its content.
inline timespec contentTime(const struct stat& status) {
#ifdef __APPLE__
  return status.st_mtimespec;
#else
  return status.st_mtim;
#endif
}

// Of the last change of anything about it, which no program can set.
inline timespec changeTime(const struct stat& status) {
#ifdef __APPLE__
  return status.st_ctimespec;
#else
  return status.st_ctim;
#endif
}

inline bool isSameTime(const timespec& one, const timespec& other) {
  return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

}  // namespace ambrel
