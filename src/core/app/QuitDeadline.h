// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace ambrel {

// Sees to it that quitting comes to an end, also where a disk no longer answers the threads that write to it:
// the application's parts wait for those. Whatever they write stands whole under its name or not at all.
class QuitDeadline {
 public:
  static constexpr std::chrono::milliseconds kLongest{2000};

  // `end` is called on another thread where quitting takes longer; it does not return in a real application.
  explicit QuitDeadline(std::function<void()> end, std::chrono::milliseconds longest = kLongest)
      : _end(std::move(end)), _longest(longest) {}
  // Quitting has come to its end, or never began.
  ~QuitDeadline();
  QuitDeadline(const QuitDeadline&) = delete;
  QuitDeadline& operator=(const QuitDeadline&) = delete;

  // Further calls change nothing.
  void quittingBegins();

 private:
  const std::function<void()> _end;
  const std::chrono::milliseconds _longest;
  std::mutex _mutex;
  std::condition_variable _changed;
  bool _hasEnded = false;
  std::thread _watch;
};

}  // namespace ambrel
