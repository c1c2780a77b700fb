// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace ambrel::simulator {

// Who the simulated camera says it is. The model name decides which dialect a host speaks with it.
inline constexpr std::string_view kCameraMaker = "Canon.Inc";
inline constexpr std::string_view kCameraModel = "Canon EOS R6";
inline constexpr std::string_view kCameraFirmware = "3-1.0.0";
inline constexpr std::string_view kCameraSerial = "012345678901";
inline constexpr std::string_view kCameraLens = "RF24-105mm F4 L IS USM";

}  // namespace ambrel::simulator
