// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/CameraModel.h"

namespace ambrel::simulator {

// What the command line asks for.
struct Options {
  std::uint16_t port = 0;  // of PTP/IP; 0 takes any free one
  std::uint16_t controlPort = 0;
  CameraModel::Settings camera;
  bool standardInput = true;
  bool help = false;
  std::string error;  // why the command line cannot be followed, or empty
};

// `arguments` without the program's name.
Options parse_options(const std::vector<std::string>& arguments);
std::string help_text();

}  // namespace ambrel::simulator
