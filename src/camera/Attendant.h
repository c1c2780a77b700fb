// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace ambrel::camera {

// Acts for a thread that is inside a call which may take long. From a thread of its own it acts several times
// a second for as long as the call lasts, and never beside the calling thread's own code: the end of the call
// waits for the end of an act. So the two may share what they like, without locks of their own.
class Attendant {
 public:
  static constexpr std::chrono::milliseconds kTick{50};

  Attendant() : _thread([this] { attend(); }) {}
  ~Attendant();
  Attendant(const Attendant&) = delete;
  Attendant& operator=(const Attendant&) = delete;

  // To be set between calls; may be empty.
  void actWith(std::function<void()> act);

  // The thread is in a call for as long as this lives. One at a time.
  class Call {
   public:
    explicit Call(Attendant& attendant) : _attendant(attendant) { _attendant.setCalling(true); }
    ~Call() { _attendant.setCalling(false); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    Attendant& _attendant;
  };
  // To be held while the call runs code of the calling thread's own.
  [[nodiscard]] std::unique_lock<std::mutex> back() { return std::unique_lock(_mutex); }

 private:
  void setCalling(bool calling);
  void attend();

  std::mutex _mutex;  // guards what follows
  std::condition_variable _wake;
  std::function<void()> _act;
  bool _calling = false;
  bool _stopped = false;
  std::chrono::steady_clock::time_point _since;
  std::thread _thread;
};

}  // namespace ambrel::camera
