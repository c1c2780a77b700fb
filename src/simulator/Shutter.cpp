// SPDX-License-Identifier: Apache-2.0
#include "simulator/Shutter.h"

#include <algorithm>
#include <utility>

namespace ambrel::simulator {

void Shutter::press(const ShotOrder& order, std::uint64_t count, std::chrono::milliseconds interval,
                    Done done) {
  _jobs.push_back({order, count, interval, std::move(done), {}, {}});
  if (count == 0) {
    const Job job = std::move(_jobs.back());
    _jobs.pop_back();
    job.done({_camera.shots() + 1, _camera.shots(), 0, {}});
  }
}

void Shutter::proceed(Clock::time_point now) {
  if (_jobs.empty() || now < _jobs.front().due) return;
  Job& job = _jobs.front();
  const std::size_t filesBefore = _camera.album().photos().size();
  const std::string error = _camera.shoot(job.order);
  if (!error.empty()) {
    finish(error);
    return;
  }
  if (job.result.first == 0) job.result.first = _camera.shots();
  job.result.last = _camera.shots();
  job.result.files += _camera.album().photos().size() - filesBefore;
  job.due = now + job.interval;
  if (--job.left == 0) finish({});
}

void Shutter::release(const std::string& error) {
  while (busy()) {
    finish(error);
  }
}

int Shutter::timeoutMs(Clock::time_point now) const {
  if (_jobs.empty()) return -1;
  const auto left = std::max(Clock::duration::zero(), _jobs.front().due - now);
  return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count());
}

void Shutter::finish(const std::string& error) {
  Job job = std::move(_jobs.front());
  _jobs.pop_front();
  job.result.error = error;
  job.done(job.result);
}

}  // namespace ambrel::simulator
