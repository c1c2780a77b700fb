// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "simulator/Bytes.h"

namespace ambrel::simulator {

// The SHA-256 of the bytes as 64 lower-case hexadecimal digits.
std::string sha256_hex(ByteView bytes);

}  // namespace ambrel::simulator
