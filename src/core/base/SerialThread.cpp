// SPDX-License-Identifier: Apache-2.0
#include "core/base/SerialThread.h"

#include <utility>

namespace ambrel {

using std::chrono::steady_clock;

SerialThread::SerialThread() : _line(new Line), _doorbell([line = _line] { line->serveOne(); }) {
  _line->listenWith(_doorbell);
  _thread = std::thread([line = _line] { line->runJobs(); });
}

SerialThread::~SerialThread() {
  using std::chrono::milliseconds;
  if (_line->abandon(_waitedInVain ? milliseconds(0) : kPatience)) {
    _thread.join();
  } else {
    _thread.detach();
  }
}

void SerialThread::add(Job job) {
  _line->addJob(std::move(job));
}

bool SerialThread::finish(std::chrono::milliseconds limit) {
  const bool finished = _line->serveUntilIdle(steady_clock::now() + limit);
  _waitedInVain = !finished;
  return finished;
}

void SerialThread::Line::addJob(Job job) {
  const std::lock_guard lock(_mutex);
  _jobs.push_back(std::move(job));
  _changed.notify_all();
}

void SerialThread::Line::runJobs() {
  std::unique_lock lock(_mutex);
  for (;;) {
    _changed.wait(lock, [this] { return !_mainSide || !_jobs.empty(); });
    if (!_mainSide) break;
    {
      const Job job = std::move(_jobs.front());
      _jobs.pop_front();
      _jobRuns = true;
      lock.unlock();
      job(*this);
    }
    lock.lock();
    _jobRuns = false;
    _changed.notify_all();
  }
  _threadEnded = true;
  _changed.notify_all();
}

bool SerialThread::Line::ask(const std::function<void()>& action) {
  const std::shared_ptr<Request> request = post(action);
  if (!request) return false;
  std::unique_lock lock(_mutex);
  _changed.wait(lock, [&] { return request->done || !_mainSide; });
  return request->done;
}

void SerialThread::Line::tell(std::function<void()> action) {
  post(std::move(action));
}

bool SerialThread::Line::isAbandoned() const {
  const std::lock_guard lock(_mutex);
  return _mainSide == nullptr;
}

std::shared_ptr<SerialThread::Line::Request> SerialThread::Line::post(std::function<void()> action) {
  const std::lock_guard lock(_mutex);
  if (!_mainSide) return nullptr;
  const auto request = std::make_shared<Request>(Request{std::move(action)});
  _requests.push_back(request);
  // One event for each request, so that a burst of photos leaves room for other events in between.
  _mainSide->ring();
  _changed.notify_all();
  return request;
}

void SerialThread::Line::serveOne() {
  std::shared_ptr<Request> request;
  {
    const std::lock_guard lock(_mutex);
    if (_requests.empty()) return;  // already served by finish()
    request = std::move(_requests.front());
    _requests.pop_front();
  }
  request->action();
  const std::lock_guard lock(_mutex);
  request->done = true;
  _changed.notify_all();
}

bool SerialThread::Line::serveUntilIdle(steady_clock::time_point deadline) {
  for (;;) {
    {
      std::unique_lock lock(_mutex);
      _changed.wait_until(lock, deadline, [this] { return isIdle() || !_requests.empty(); });
      if (isIdle()) return true;
    }
    if (steady_clock::now() >= deadline) return false;
    serveOne();
  }
}

bool SerialThread::Line::abandon(std::chrono::milliseconds patience) {
  std::unique_lock lock(_mutex);
  _mainSide = nullptr;
  _jobs.clear();
  _requests.clear();
  _changed.notify_all();
  return _changed.wait_for(lock, patience, [this] { return _threadEnded; });
}

}  // namespace ambrel
