// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string>

// The photos of a session with faults, the same in every run.
namespace ambrel::faults {

constexpr int kPhotos = 4;

inline std::string cameraName(int number) {
  return "IMG_000" + std::to_string(number) + (number == 3 ? ".CR3" : ".JPG");
}

inline std::string photoBytes(int number) {
  constexpr std::array<std::size_t, kPhotos> kSizes = {5'003, 1, 20'011, 9'001};
  std::string bytes(kSizes[static_cast<std::size_t>(number - 1)], '\0');
  std::uint32_t state = 77U * static_cast<std::uint32_t>(number);
  for (char& byte : bytes) {
    state = state * 1664525U + 1013904223U;
    byte = static_cast<char>(state >> 24U);
  }
  return bytes;
}

}  // namespace ambrel::faults
