// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <set>

// What the camera library does to the descriptors of a process, and what has to be mended after it.
namespace ambrel::camera {

// The internet sockets that this process has open. The library leaves its own open when a connection fails
// half-way, and the camera then refuses every other one until they are closed.
std::set<int> openInternetSockets();

// Closes those that are not among `kept`.
void closeInternetSocketsBut(const std::set<int>& kept);

// Ends the connections of those that are not among `kept`: a call that waits for one fails at once.
void endInternetSocketsBut(const std::set<int>& kept);

// How many bytes have come in over all of them so far. Of a call of the library that receives a whole photo
// this is the only thing to be seen from outside.
std::uint64_t internetBytesReceived();

// The library closes descriptor 0 with every session over a network. Left free, it would become the socket of
// the next session, and be closed under it.
void occupyStandardInput();

}  // namespace ambrel::camera
