// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace ambrel::camera {

// A home folder of this process alone, for the settings that the camera library keeps there: two workers, or
// a worker and another program, would change them under each other. Removed at the end; what a killed worker
// left behind is removed at the next start.
class PrivateHome {
 public:
  // Makes HOME point to it. Without a temporary folder to put it in, HOME stays as it is.
  PrivateHome();
  ~PrivateHome() { remove(); }
  PrivateHome(const PrivateHome&) = delete;
  PrivateHome& operator=(const PrivateHome&) = delete;

  const std::string& path() const { return _path; }
  // May be called from any thread, and again.
  void remove() const;

 private:
  std::string _path;
};

}  // namespace ambrel::camera
