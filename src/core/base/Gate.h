// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>

namespace ambrel {

// Holds threads up for as long as another one keeps it shut. Open at first. For any thread.
class Gate {
 public:
  void shut() { _open = false; }
  void open() {
    _open = true;
    _open.notify_all();
  }
  bool isOpen() const { return _open; }
  void waitUntilOpen() const { _open.wait(false); }

 private:
  std::atomic<bool> _open = true;
};

}  // namespace ambrel
