// SPDX-License-Identifier: Apache-2.0
#include "core/base/BackgroundJobs.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

#include "core/base/ThreadPriority.h"

namespace ambrel {

// What the main thread and every job hold together.
class BackgroundJobs::Line {
 public:
  void listenWith(Doorbell& mainSide) { _mainSide = &mainSide; }

  void begin() {
    const std::lock_guard lock(_mutex);
    ++_underWay;
  }

  void end(Reply reply) {
    const std::lock_guard lock(_mutex);
    if (_mainSide && reply) {
      _replies.push_back(std::move(reply));
      _mainSide->ring();
    }
    --_underWay;
    _ended.notify_all();
  }

  void serveOne() {
    Reply reply;
    {
      const std::lock_guard lock(_mutex);
      reply = std::move(_replies.front());
      _replies.pop_front();
    }
    reply();
  }

  void abandon(std::chrono::milliseconds patience) {
    std::unique_lock lock(_mutex);
    _mainSide = nullptr;
    _replies.clear();
    _ended.wait_for(lock, patience, [this] { return _underWay == 0; });
  }

 private:
  std::mutex _mutex;  // guards everything below
  std::condition_variable _ended;
  Doorbell* _mainSide = nullptr;  // null once abandoned
  std::deque<Reply> _replies;
  int _underWay = 0;
};

BackgroundJobs::BackgroundJobs()
    : _line(std::make_shared<Line>()), _doorbell([line = _line] { line->serveOne(); }) {
  _line->listenWith(_doorbell);
}

BackgroundJobs::~BackgroundJobs() {
  _line->abandon(kPatience);
}

void BackgroundJobs::start(Job job) {
  _line->begin();
  std::thread([line = _line, work = std::move(job)]() mutable {
    lowerThreadPriority();
    Reply reply = work();
    work = nullptr;  // what it holds goes before anybody is told that it has ended
    line->end(std::move(reply));
  }).detach();
}

}  // namespace ambrel
