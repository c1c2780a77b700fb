// SPDX-License-Identifier: Apache-2.0
#include "simulator/Sha256.h"

#include <array>
#include <openssl/sha.h>

namespace ambrel::simulator {

std::string sha256_hex(ByteView bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
  SHA256(bytes.data(), bytes.size(), digest.data());
  std::string hex;
  hex.reserve(2 * digest.size());
  for (const unsigned char byte : digest) {
    hex += kDigits[byte >> 4];
    hex += kDigits[byte & 0xF];
  }
  return hex;
}

}  // namespace ambrel::simulator
