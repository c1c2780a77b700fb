// SPDX-License-Identifier: Apache-2.0
#include "simulator/Options.h"

#include <charconv>
#include <optional>

#include "simulator/Commands.h"

namespace ambrel::simulator {

namespace {

// Enough for the picture of a real camera, and not too much for the memory of a small machine.
constexpr std::uint64_t kLongestSide = 8192;
// Folder 999CANON is the last that can be named.
constexpr std::uint64_t kLargestFirstShot = 8'000'000;

std::optional<std::uint64_t> numberIn(std::string_view text, std::uint64_t largest) {
  std::uint64_t value = 0;
  const auto [stopped, status] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = status == std::errc() && stopped == text.data() + text.size();
  return whole && value <= largest ? std::optional(value) : std::nullopt;
}

bool readPort(std::string_view text, std::uint16_t& port) {
  const auto number = numberIn(text, UINT16_MAX);
  port = static_cast<std::uint16_t>(number.value_or(0));
  return number.has_value();
}

bool readSize(std::string_view text, CameraModel::Settings& camera) {
  const std::size_t cross = text.find('x');
  if (cross == std::string_view::npos) return false;
  const auto width = numberIn(text.substr(0, cross), kLongestSide);
  const auto height = numberIn(text.substr(cross + 1), kLongestSide);
  if (width.value_or(0) == 0 || height.value_or(0) == 0) return false;
  camera.width = static_cast<int>(*width);
  camera.height = static_cast<int>(*height);
  return true;
}

bool readFirstShot(std::string_view text, CameraModel::Settings& camera) {
  const auto number = numberIn(text, kLargestFirstShot);
  camera.firstShot = static_cast<std::uint32_t>(number.value_or(0));
  return camera.firstShot > 0;
}

bool readSeed(std::string_view text, std::uint64_t& seed) {
  const auto number = numberIn(text, UINT64_MAX);
  seed = number.value_or(0);
  return number.has_value();
}

bool readValue(const std::string& name, std::string_view value, Options& options) {
  if (name == "--port") return readPort(value, options.port);
  if (name == "--control-port") return readPort(value, options.controlPort);
  if (name == "--jpeg-size") return readSize(value, options.camera);
  if (name == "--first-shot") return readFirstShot(value, options.camera);
  if (name == "--seed") return readSeed(value, options.camera.seed);
  return false;
}

}  // namespace

Options parse_options(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& name = arguments[i];
    if (name == "--help") {
      options.help = true;
    } else if (name == "--no-stdin") {
      options.standardInput = false;
    } else if (i + 1 < arguments.size() && readValue(name, arguments[i + 1], options)) {
      ++i;
    } else {
      options.error = "bad option or value: " + name;
      return options;
    }
  }
  return options;
}

std::string help_text() {
  return "ambrel_sim_camera: a simulated Canon EOS R6 that speaks PTP/IP on 127.0.0.1\n"
         "\n"
         "  --port P           its port (default: any free one)\n"
         "  --control-port P   a port that takes commands, one per line (default: any free one)\n"
         "  --jpeg-size WxH    pixels of a photo (default 1200x800)\n"
         "  --seed N           photos of one seed have the same bytes every time (default 1)\n"
         "  --first-shot N     number of the first photo, from which its name and folder follow (default 1)\n"
         "  --no-stdin         take no commands from standard input, and do not end with it\n"
         "\n"
         "It prints \"READY ptpip=P control=C\" when a host may connect, for example with\n"
         "  gphoto2 --camera 'PTP/IP Camera' --port ptpip:127.0.0.1:P:P --capture-tethered\n"
         "\n"
         "Commands on standard input or on a connection to the control port; each is answered by \"ok ...\" "
         "or\n"
         "\"error ...\":\n" +
         std::string(Commands::help());
}

}  // namespace ambrel::simulator
