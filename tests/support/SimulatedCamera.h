// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace ambrel {

// One file that the simulated camera recorded.
struct SimulatedPhoto {
  std::string name;  // "IMG_0001.JPG"
  std::uint64_t size = 0;
  std::string sha256;  // lower-case hexadecimal
  unsigned shot = 0;
  std::string place;   // "card" or "host"
  unsigned asked = 0;  // how often a host asked for the last byte
  bool deleted = false;
};

// The program ambrel_sim_camera for the time of a test. What goes wrong in talking to it is thrown as
// std::runtime_error, which fails the test with its text; every answer is waited for at most thirty seconds.
class SimulatedCamera {
 public:
  // `arguments` as --help of the program explains them. Returns when a host may connect.
  explicit SimulatedCamera(const std::vector<std::string>& arguments = {});
  // Ends the program, however it fares.
  ~SimulatedCamera();
  SimulatedCamera(const SimulatedCamera&) = delete;
  SimulatedCamera& operator=(const SimulatedCamera&) = delete;

  // The answer line, without its line feed; throws if it is an error.
  std::string command(const std::string& line);
  // The answer line, "error ..." included.
  std::string answer(const std::string& line);
  std::vector<SimulatedPhoto> photos();

  std::uint16_t port() const { return _port; }
  std::uint16_t controlPort() const { return _controlPort; }
  pid_t pid() const { return _pid; }
  // What libgphoto2 calls the port: "ptpip:127.0.0.1:P:P".
  std::string gphotoPort() const;

 private:
  void start(const std::vector<std::string>& arguments);
  void send(const std::string& line);
  std::string readLine();
  void end();

  pid_t _pid = -1;
  int _input = -1;   // we write
  int _output = -1;  // we read
  std::string _pending;
  std::uint16_t _port = 0;
  std::uint16_t _controlPort = 0;
};

// 64 lower-case hexadecimal digits; throws std::runtime_error if the file cannot be read.
std::string sha256OfFile(const std::filesystem::path& path);

// The value after `key=` in a line of key=value words, or an empty text.
std::string valueIn(std::string_view line, std::string_view key);

}  // namespace ambrel
