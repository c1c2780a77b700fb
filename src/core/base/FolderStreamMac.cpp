// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <unistd.h>

#include "core/base/FolderStream.h"

namespace ambrel {

FolderStream::FolderStream(int descriptor)
    : _descriptor(descriptor), _stream(descriptor < 0 ? nullptr : ::fdopendir(descriptor)) {}

FolderStream::~FolderStream() {
  if (_stream) {
    ::closedir(_stream);
  } else if (_descriptor >= 0) {
    ::close(_descriptor);
  }
}

const dirent* FolderStream::next() {
  if (!_stream) {
    errno = EBADF;
    return nullptr;
  }
  errno = 0;
  return ::readdir(_stream);
}

}  // namespace ambrel
