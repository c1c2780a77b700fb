// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace ambrel {

// Work that may wait for a disk, done on a thread of its own, in the order of the requests. Requests that
// arrive while it is busy become one more run, so it is never more than one run behind.
class WriteBehind {
 public:
  // `work` runs on the thread; what it shares with others it takes under a lock of its own.
  explicit WriteBehind(std::function<void()> work);
  // Completes what was requested.
  ~WriteBehind();
  WriteBehind(const WriteBehind&) = delete;
  WriteBehind& operator=(const WriteBehind&) = delete;

  void request();
  // Returns when nothing is requested or running any more.
  void finish();
  // As finish(), but for no longer than this; whether nothing is left to do.
  bool finishWithin(std::chrono::milliseconds longest);

 private:
  void run();
  bool isAtRest() const { return !_requested && !_running; }

  std::function<void()> _work;
  std::mutex _mutex;
  std::condition_variable _changed;
  bool _requested = false;
  bool _running = false;
  bool _ending = false;
  std::thread _thread;  // last: it uses everything above
};

}  // namespace ambrel
