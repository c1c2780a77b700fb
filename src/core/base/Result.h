// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <optional>
#include <utility>
#include <variant>

namespace ambrel {

// Why something failed: one sentence that an operator can read.
struct Failure {
  QString message;
};

// A value, or the sentence that says why there is none.
template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : _state(std::move(value)) {}            // NOLINT(google-explicit-constructor)
  Result(Failure failure) : _state(std::move(failure)) {}  // NOLINT(google-explicit-constructor)

  bool ok() const { return std::holds_alternative<T>(_state); }
  explicit operator bool() const { return ok(); }

  const T& value() const& {
    Q_ASSERT(ok());
    return std::get<T>(_state);
  }
  T&& value() && {
    Q_ASSERT(ok());
    return std::get<T>(std::move(_state));
  }
  QString error() const { return ok() ? QString() : std::get<Failure>(_state).message; }

 private:
  std::variant<T, Failure> _state;
};

template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Failure failure) : _failure(std::move(failure)) {}  // NOLINT(google-explicit-constructor)

  bool ok() const { return !_failure; }
  explicit operator bool() const { return ok(); }
  QString error() const { return _failure ? _failure->message : QString(); }

 private:
  std::optional<Failure> _failure;
};

}  // namespace ambrel
