// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "simulator/Descriptor.h"

namespace ambrel::simulator {

// A TCP socket bound to 127.0.0.1 that does not listen yet; it keeps the port from others all the same. Port
// 0 takes any free one. Not valid if the port is taken.
Descriptor bind_loopback(std::uint16_t port);
// False if another socket listens on the port.
bool start_listening(const Descriptor& socket);
std::uint16_t port_of(const Descriptor& socket);
// The next waiting connection, not blocking and without delay for small packets; not valid if there is none.
Descriptor accept_connection(const Descriptor& listener);
// Makes closing the socket tear the connection down (RST) instead of ending it in order.
void reset_on_close(const Descriptor& socket);

}  // namespace ambrel::simulator
