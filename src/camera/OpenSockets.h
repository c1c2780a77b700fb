// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>

namespace ambrel::camera {

// The internet sockets that this process has open. The library leaves its own open when a connection fails
// half-way, and the camera then refuses every other one until they are closed.
std::set<int> openInternetSockets();

// Closes those that are not among `kept`.
void closeInternetSocketsBut(const std::set<int>& kept);

}  // namespace ambrel::camera
