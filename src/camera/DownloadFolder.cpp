// SPDX-License-Identifier: Apache-2.0
#include "camera/DownloadFolder.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

#include "camera/FileMove.h"
#include "camera/PhotoFormat.h"

namespace ambrel::camera {
namespace {

constexpr std::string_view kPartPrefix = ".ambrel-";
constexpr std::string_view kPartSuffix = ".part";
constexpr std::uint64_t kFlushStep = 2UL * 1024 * 1024;
constexpr int kMostNames = 10000;

Failure local(std::string reason) {
  return {Failure::Kind::Local, std::move(reason)};
}

Failure localError(int error) {
  return local(std::strerror(error));
}

// Keeps room for the photo before the camera is asked for it, so that a full disk costs no transfer. Where
// the file system cannot reserve, its free space has to do.
int reserveRoom(int fd, std::uint64_t size) {
  if (size == 0) return 0;
#if defined(__linux__)
  if (fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0) return 0;
  if (errno == ENOSPC || errno == EDQUOT || errno == EFBIG || errno == EIO) return errno;
#endif
  struct statvfs space = {};
  if (fstatvfs(fd, &space) != 0) return 0;
  return std::uint64_t{space.f_bavail} * space.f_frsize < size ? ENOSPC : 0;
}

// Lets the disk work while the camera still sends; the flush at the end then finds little left to do.
void startFlushing(int fd, std::uint64_t from, std::uint64_t to) {
#if defined(__linux__)
  sync_file_range(fd, static_cast<off_t>(from), static_cast<off_t>(to - from), SYNC_FILE_RANGE_WRITE);
#else
  (void)fd, (void)from, (void)to;
#endif
}

std::vector<unsigned char> bytesAt(int fd, std::uint64_t offset, std::size_t count) {
  std::vector<unsigned char> bytes(count);
  const ssize_t got = pread(fd, bytes.data(), count, static_cast<off_t>(offset));
  bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
  return bytes;
}

// The n-th name to try: "IMG_0001.JPG", "IMG_0001-2.JPG", "IMG_0001-3.JPG" ...
std::string numbered(const std::string& name, int n) {
  if (n == 1) return name;
  const std::size_t dot = name.rfind('.');
  const std::string extension = dot == std::string::npos ? "" : name.substr(dot);
  return name.substr(0, dot) + "-" + std::to_string(n) + extension;
}

// A power cut must not give a photo that was reported its temporary name back: the next worker would sweep it
// away. Not every volume can flush a folder, and the photo is there in any case.
void flushName(const std::string& folder) {
  const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  fsync(fd);
  close(fd);
}

// A living worker holds a lock on its temporary file, on whatever machine it runs.
void removeIfAbandoned(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (fd < 0) return;
  if (flock(fd, LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
  close(fd);
}

}  // namespace

bool isPartFileName(std::string_view name) {
  if (name.size() <= kPartPrefix.size() + kPartSuffix.size()) return false;
  if (name.substr(0, kPartPrefix.size()) != kPartPrefix) return false;
  if (name.substr(name.size() - kPartSuffix.size()) != kPartSuffix) return false;
  const std::string_view middle =
      name.substr(kPartPrefix.size(), name.size() - kPartPrefix.size() - kPartSuffix.size());
  const std::size_t dash = middle.find('-');
  if (dash == 0 || dash == std::string_view::npos || dash + 1 == middle.size()) return false;
  const auto digitsOnly = [](std::string_view text) {
    return text.find_first_not_of("0123456789") == std::string_view::npos;
  };
  return digitsOnly(middle.substr(0, dash)) && digitsOnly(middle.substr(dash + 1));
}

void DownloadFolder::use(std::string path) {
  while (path.size() > 1 && path.back() == '/')
    path.pop_back();
  _path = std::move(path);
  std::error_code error;
  for (std::filesystem::directory_iterator entry(_path, error), end; !error && entry != end;
       entry.increment(error)) {
    if (isPartFileName(entry->path().filename().string())) removeIfAbandoned(entry->path().string());
  }
}

Outcome<std::unique_ptr<PartFile>> DownloadFolder::begin(const CameraFile& photo) {
  const std::string name = std::string(kPartPrefix) + std::to_string(getpid()) + "-" +
                           std::to_string(++_count) + std::string(kPartSuffix);
  std::string path = _path + "/" + name;
  const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) {
    const int error = errno;
    if (error == ENOENT) return local("the download folder is gone");
    return localError(error);
  }
  flock(fd, LOCK_EX | LOCK_NB);
  auto part = std::make_unique<PartFile>(fd, std::move(path), _path);
  if (const int error = reserveRoom(fd, photo.size); error != 0) return localError(error);
  return part;
}

PartFile::PartFile(int fd, std::string path, std::string folder)
    : _fd(fd), _path(std::move(path)), _folder(std::move(folder)) {}

PartFile::~PartFile() {
  if (!_path.empty()) unlink(_path.c_str());
  close(_fd);
}

bool PartFile::write(std::span<const unsigned char> bytes) {
  while (_error == 0 && !bytes.empty()) {
    const ssize_t count = ::write(_fd, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      _error = errno;
    } else {
      _written += static_cast<std::uint64_t>(count);
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
  }
  if (_written - _flushing >= kFlushStep) {
    startFlushing(_fd, _flushing, _written);
    _flushing = _written;
  }
  return true;
}

Outcome<> PartFile::restart() {
  if (_written == 0 && _error == 0) return Done{};
  _written = 0;
  _flushing = 0;
  _error = 0;
  if (ftruncate(_fd, 0) != 0 || lseek(_fd, 0, SEEK_SET) != 0) return localError(errno);
  return Done{};
}

Outcome<std::string> PartFile::finish(const CameraFile& announced) {
  if (_error != 0) return localError(_error);
  std::string name = safeName(announced.name);
  if (Outcome<> whole = checkWhole(announced, name); !whole) return whole.failure();
  if (fsync(_fd) != 0) return localError(errno);
  return moveTo(name);
}

Outcome<> PartFile::checkWhole(const CameraFile& announced, std::string& name) const {
  if (_written == 0) return local("the camera sent an empty file");
  if (announced.size != 0 && announced.size != _written) {
    return local("the camera sent " + std::to_string(_written) + " of " + std::to_string(announced.size) +
                 " bytes");
  }
  const PhotoFormat format = formatOf(bytesAt(_fd, 0, kHeadBytes));
  const std::uint64_t tailAt = _written > kTailBytes ? _written - kTailBytes : 0;
  if (format == PhotoFormat::Jpeg && !endsLikeJpeg(bytesAt(_fd, tailAt, kTailBytes))) {
    return local("the camera sent a picture without an end");
  }
  name = nameForFormat(name, format);
  return Done{};
}

Outcome<std::string> PartFile::moveTo(const std::string& name) {
  for (int n = 1; n <= kMostNames; ++n) {
    const std::string path = _folder + "/" + numbered(name, n);
    const int error = moveWithoutOverwriting(_path, path);
    if (error == EEXIST) continue;
    if (error != 0) return localError(error);
    _path.clear();
    flushName(_folder);
    return path;
  }
  return local("no free file name");
}

}  // namespace ambrel::camera
