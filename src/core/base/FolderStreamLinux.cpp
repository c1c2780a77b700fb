// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <unistd.h>

#include "core/base/FolderStream.h"

namespace ambrel {
namespace {

constexpr std::size_t kBytesAtOnce = 32 * 1024;

}  // namespace

// Without opendir, which asks three questions more about every folder: of ten photos each, a target folder
// has thousands.
FolderStream::FolderStream(int descriptor)
    : _descriptor(descriptor), _entries(descriptor < 0 ? nullptr : new char[kBytesAtOnce]) {}

FolderStream::~FolderStream() {
  if (_descriptor >= 0) ::close(_descriptor);
}

const dirent* FolderStream::next() {
  if (_descriptor < 0) {
    errno = EBADF;
    return nullptr;
  }
  if (_position == _size) {
    const ssize_t count = ::getdents64(_descriptor, _entries.get(), kBytesAtOnce);
    _position = 0;
    _size = count > 0 ? static_cast<std::size_t>(count) : 0;
    if (count == 0) errno = 0;
    if (count <= 0) return nullptr;
  }
  const auto* entry = reinterpret_cast<const dirent*>(_entries.get() + _position);
  _position += entry->d_reclen;
  return entry;
}

}  // namespace ambrel
