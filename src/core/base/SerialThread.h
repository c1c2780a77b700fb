// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "core/base/Doorbell.h"

namespace ambrel {

// A thread that does jobs one after another, in the order given. A job reaches the main thread through the
// line between the two, which both hold: the main thread serves it from its event loop or, while it waits for
// the jobs, from finish(), so that neither can wait for the other in vain.
//
// A job may hang in the kernel, on a drive that is gone. Then the thread is left behind with its half of the
// line, and everything that it still asks for is refused.
class SerialThread {
 public:
  class Line;
  using Job = std::function<void(Line&)>;

  // How long the destructor waits for a running job, unless finish() has already waited for it in vain.
  static constexpr std::chrono::milliseconds kPatience{200};

  // What jobs ask for is done in the event loop of the thread that makes this object.
  SerialThread();
  // Jobs that have not begun are dropped.
  ~SerialThread();
  SerialThread(const SerialThread&) = delete;
  SerialThread& operator=(const SerialThread&) = delete;

  void add(Job job);
  // Waits until every job is done, for at most `limit`, and serves the line meanwhile; whether all are done.
  bool finish(std::chrono::milliseconds limit);

 private:
  std::shared_ptr<Line> _line;
  Doorbell _doorbell;
  bool _waitedInVain = false;
  std::thread _thread;
};

class SerialThread::Line {
 public:
  // For jobs. Does `action` on the main thread and waits for it. False, and `action` is not done, when the
  // main thread no longer listens.
  bool ask(const std::function<void()>& action);
  // For jobs. Does `action` on the main thread, later and in order.
  void tell(std::function<void()> action);
  // For jobs. Nothing that belongs to the main thread may be used any more.
  bool isAbandoned() const;

 private:
  friend class SerialThread;
  struct Request {
    std::function<void()> action;
    bool done = false;
  };

  Line() = default;
  void listenWith(Doorbell& mainSide) { _mainSide = &mainSide; }
  void addJob(Job job);
  void runJobs();
  void serveOne();
  bool serveUntilIdle(std::chrono::steady_clock::time_point deadline);
  bool abandon(std::chrono::milliseconds patience);
  std::shared_ptr<Request> post(std::function<void()> action);
  bool isIdle() const { return _jobs.empty() && !_jobRuns && _requests.empty(); }

  mutable std::mutex _mutex;  // guards everything below
  std::condition_variable _changed;
  Doorbell* _mainSide = nullptr;  // null once abandoned
  std::deque<Job> _jobs;
  bool _jobRuns = false;
  bool _threadEnded = false;
  std::deque<std::shared_ptr<Request>> _requests;
};

}  // namespace ambrel
