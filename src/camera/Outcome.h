// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace ambrel::camera {

// Why something could not be done.
struct Failure {
  enum class Kind {
    Busy,      // the camera asks for patience; it may be asked again
    InUse,     // another program holds the camera
    NotFound,  // no camera there, or not one that answers
    Lost,      // the session is over and the camera must be opened afresh
    Local,     // on this side: a file or folder that cannot be written
    Stopped    // we broke off the transfer ourselves
  };
  Kind kind;
  std::string reason;  // one clause in plain words, no line breaks
};

struct Done {};

// What an operation yields, or why it failed.
template <typename T = Done>
class [[nodiscard]] Outcome {
 public:
  Outcome(T value) : _held(std::move(value)) {}
  Outcome(Failure failure) : _held(std::move(failure)) {}

  bool ok() const { return std::holds_alternative<T>(_held); }
  explicit operator bool() const { return ok(); }
  T& value() {
    assert(ok());
    return *std::get_if<T>(&_held);
  }
  const T& value() const {
    assert(ok());
    return *std::get_if<T>(&_held);
  }
  const Failure& failure() const {
    assert(!ok());
    return *std::get_if<Failure>(&_held);
  }

 private:
  std::variant<T, Failure> _held;
};

}  // namespace ambrel::camera
