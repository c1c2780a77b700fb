// SPDX-License-Identifier: Apache-2.0
// Any bytes are the output or the input of a worker: however they are cut into blocks, the same lines come
// out, and a line that is understood is written again as it was.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "protocol/LineFramer.h"

namespace {

using namespace ambrel::protocol;

void require(bool held) {
  if (!held) std::abort();
}

std::vector<std::string> linesOf(std::string_view bytes, std::size_t piece) {
  LineFramer framer;
  std::vector<std::string> lines;
  while (!bytes.empty()) {
    framer.feed(bytes.substr(0, piece), [&](std::string_view line) { lines.emplace_back(line); });
    bytes.remove_prefix(std::min(piece, bytes.size()));
  }
  return lines;
}

void readAndWriteBack(const std::string& line) {
  require(line.size() <= kMaxLineBytes && line.find('\n') == std::string::npos);
  require(encode(parseMessage(line)) == line);
  if (const std::optional<Command> command = parseCommand(line)) require(encode(*command) == line);
  if (const std::optional<SaveMode> mode = saveModeFromWord(line)) require(word(*mode) == line);
}

}  // namespace

// The first byte says in what pieces the rest arrives.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::vector<std::string> lines = linesOf(bytes, 1 + data[0]);
  require(lines == linesOf(bytes, size));
  for (const std::string& line : lines)
    readAndWriteBack(line);
  return 0;
}
