// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

namespace ambrel {

// For waits that tests must not give up on a busy machine.
constexpr std::chrono::milliseconds kAsLongAsItTakes = std::chrono::minutes(5);

}  // namespace ambrel
