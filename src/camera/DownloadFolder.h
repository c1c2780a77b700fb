// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "camera/Camera.h"

namespace ambrel::camera {

// A photo on its way into the download folder: it grows under a temporary name and gets its own only when it
// is whole and flushed. Destroyed before that, it leaves nothing behind.
class PartFile : public PhotoSink {
 public:
  PartFile(int fd, std::string path, std::string folder);
  ~PartFile() override;
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;

  // Always true: after a failed write the rest is thrown away, so that the camera's transfer still ends in
  // order. finish() tells.
  bool write(std::span<const unsigned char> bytes) override;

  // Checks the photo against what was announced, flushes it and gives it its name or, where that is taken,
  // the next free one. Yields the absolute path.
  Outcome<std::string> finish(const CameraFile& announced);
  // Forgets the bytes so far, for another attempt.
  Outcome<> restart();

 private:
  Outcome<> checkWhole(const CameraFile& announced, std::string& name) const;
  Outcome<std::string> moveTo(const std::string& name);

  int _fd;
  std::string _path;
  std::string _folder;
  std::uint64_t _written = 0;
  std::uint64_t _flushing = 0;  // up to here the system has been asked to write back
  int _error = 0;               // errno of the first failed write
};

// The folder that photos are downloaded into. It belongs to the operator: it is never created here.
class DownloadFolder {
 public:
  // Absolute path. Removes temporary files that a worker which no longer runs has left there.
  void use(std::string path);
  const std::string& path() const { return _path; }

  // Fails when the photo has no room or the folder cannot be written.
  Outcome<std::unique_ptr<PartFile>> begin(const CameraFile& photo);

 private:
  std::string _path;
  unsigned _count = 0;
};

bool isPartFileName(std::string_view name);

}  // namespace ambrel::camera
