// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "protocol/Messages.h"

namespace ambrel::protocol {

// Cuts a byte stream into lines at line feeds. A line longer than kMaxLineBytes is discarded to its end, so
// that a stream without line ends costs bounded memory and one bad line never costs its neighbours.
class LineFramer {
 public:
  // Calls `line` once for each complete line, without its line feed, in order. The view is valid during the
  // call.
  void feed(std::string_view bytes, const std::function<void(std::string_view line)>& line);
  void clear();

 private:
  std::string _partial;
  bool _discarding = false;
};

}  // namespace ambrel::protocol
