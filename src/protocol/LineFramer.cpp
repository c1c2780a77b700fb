// SPDX-License-Identifier: Apache-2.0
#include "protocol/LineFramer.h"

#include <utility>

namespace ambrel::protocol {

void LineFramer::feed(std::string_view bytes, const std::function<void(std::string_view)>& line) {
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    const std::string_view piece = bytes.substr(0, end);
    const bool complete = end != std::string_view::npos;
    bytes.remove_prefix(complete ? end + 1 : bytes.size());
    if (!_discarding && _partial.size() + piece.size() > kMaxLineBytes) {
      _discarding = true;
      _partial.clear();
    }
    if (_discarding) {
      _discarding = !complete;
    } else if (!complete) {
      _partial.append(piece);
    } else if (_partial.empty()) {
      line(piece);
    } else {
      _partial.append(piece);
      const std::string whole = std::exchange(_partial, {});
      line(whole);
    }
  }
}

void LineFramer::clear() {
  _partial.clear();
  _discarding = false;
}

}  // namespace ambrel::protocol
