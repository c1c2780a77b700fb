// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace ambrel::simulator {

// How a connection is lost: closed in order, torn down at once, or gone silent while both ends believe in it.
enum class Cut { close, reset, freeze };

// What the cable does to the bytes on their way to the host: it may be slow, and it may be cut after so many.
class Link {
 public:
  using Clock = std::chrono::steady_clock;

  // Bytes per second; 0 is as fast as it goes.
  void setRate(std::uint64_t bytesPerSecond);
  std::uint64_t rate() const { return _rate; }
  // Loses the connection once `bytes` more have left; 0 does so at the next look.
  void cutAfter(std::uint64_t bytes, Cut how);
  void cancelCut() { _cut.reset(); }
  // The cut that is due; asking for it takes it.
  std::optional<Cut> takeDueCut();

  // How many bytes may leave now.
  std::size_t allowance(Clock::time_point now);
  void noteSent(std::size_t bytes, Clock::time_point now);
  // How long until a byte may leave; zero if one may now.
  Clock::duration wait(Clock::time_point now) const;

 private:
  // A slow link sends in steps of about this long.
  static constexpr std::chrono::milliseconds kStep{5};

  std::uint64_t _rate = 0;
  Clock::time_point _free{};  // when the link has carried what it was given
  std::uint64_t _bytesToCut = 0;
  std::optional<Cut> _cut;
};

}  // namespace ambrel::simulator
