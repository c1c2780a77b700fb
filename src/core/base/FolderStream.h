// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <dirent.h>
#include <memory>

namespace ambrel {

// The entries of an open folder as the system gives them, "." and ".." included.
class FolderStream {
 public:
  // Owns the descriptor; -1 stands for a folder that could not be opened.
  explicit FolderStream(int descriptor);
  ~FolderStream();
  FolderStream(const FolderStream&) = delete;
  FolderStream& operator=(const FolderStream&) = delete;

  // -1 where there is none.
  int descriptor() const { return _descriptor; }
  // Null at the end, and with errno set on an error; valid until the next call.
  const dirent* next();

 private:
  int _descriptor;
#ifdef __APPLE__
  DIR* _stream;
#else
  std::unique_ptr<char[]> _entries;
  std::size_t _size = 0;
  std::size_t _position = 0;
#endif
};

}  // namespace ambrel
