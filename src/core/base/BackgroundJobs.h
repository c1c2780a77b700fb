// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "core/base/Doorbell.h"

namespace ambrel {

// Work that may take long or hang for ever, each job on a thread of its own, behind all other work. A job
// holds values only, and hands back what is to be done with its outcome on the main thread.
//
// A job may hang in the kernel, on a drive that is gone. Then its thread is left behind, and its reply is
// dropped.
class BackgroundJobs {
 public:
  using Reply = std::function<void()>;
  using Job = std::function<Reply()>;

  // How long the destructor waits for jobs under way.
  static constexpr std::chrono::milliseconds kPatience{200};

  // Replies run in the event loop of the thread that makes this object.
  BackgroundJobs();
  ~BackgroundJobs();
  BackgroundJobs(const BackgroundJobs&) = delete;
  BackgroundJobs& operator=(const BackgroundJobs&) = delete;

  void start(Job job);

 private:
  class Line;
  std::shared_ptr<Line> _line;
  Doorbell _doorbell;
};

}  // namespace ambrel
