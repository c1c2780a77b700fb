// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>

namespace ambrel {

// The system's function of that name, where this program or library has one of its own in front of it.
template <typename Function>
Function real(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// The mode that open was given, which is there only where a file may be made.
inline mode_t modeOfOpen(int flags, va_list arguments) {
  const bool makes = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  return makes ? va_arg(arguments, mode_t) : 0;
}

}  // namespace ambrel

// Within extern "C": puts ANSWER(folder, path, flags, call) in front of the open that is called NAME, where
// call() does what the system does.
#define AMBREL_INTERPOSE_OPEN(NAME, ANSWER)                                          \
  int NAME(const char* path, int flags, ...) {                                       \
    static const auto next = ambrel::real<int (*)(const char*, int, mode_t)>(#NAME); \
    va_list arguments;                                                               \
    va_start(arguments, flags);                                                      \
    const mode_t mode = ambrel::modeOfOpen(flags, arguments);                        \
    va_end(arguments);                                                               \
    return ANSWER(AT_FDCWD, path, flags, [&] { return next(path, flags, mode); });   \
  }

// The same for an openat.
#define AMBREL_INTERPOSE_OPENAT(NAME, ANSWER)                                             \
  int NAME(int folder, const char* path, int flags, ...) {                                \
    static const auto next = ambrel::real<int (*)(int, const char*, int, mode_t)>(#NAME); \
    va_list arguments;                                                                    \
    va_start(arguments, flags);                                                           \
    const mode_t mode = ambrel::modeOfOpen(flags, arguments);                             \
    va_end(arguments);                                                                    \
    return ANSWER(folder, path, flags, [&] { return next(folder, path, flags, mode); });  \
  }
