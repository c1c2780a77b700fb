// SPDX-License-Identifier: Apache-2.0
// Feeds a host's bytes to the simulated camera's packet reader and command channel, without a socket. The
// first byte says in what pieces the rest arrives. Built with clang's -fsanitize=fuzzer only.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "simulator/CommandChannel.h"
#include "simulator/Packets.h"

using namespace ambrel::simulator;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t piece = 1 + data[0];
  ByteView rest(data + 1, size - 1);

  CameraModel camera({1, 8, 8});
  // Making a photo takes longer than all else here, so only half of the runs have one.
  if ((data[0] & 1) != 0) camera.shoot({});
  CommandChannel channel(camera);
  PacketReader packets;
  Bytes out;
  bool open = true;
  while (open && !rest.empty()) {
    const std::size_t count = std::min(piece, rest.size());
    packets.append(rest.first(count));
    rest = rest.subspan(count);
    while (const auto packet = packets.next()) {
      out.clear();
      open = channel.handle(*packet, out);
      // What we answer must be whole packets of our own.
      PacketReader answers;
      answers.append(out);
      while (answers.next()) {
      }
      if (answers.broken() || answers.buffered() != 0) std::abort();
      if (!open) break;
    }
    if (packets.broken()) break;
  }
  return 0;
}
