// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace ambrel {

// Debian's gphoto2 against one simulated camera, in a folder of its own that is its home as well. It goes
// with the object, and so does a gphoto2 that still runs.
class GphotoProgram {
 public:
  // `port` as libgphoto2 names it: "ptpip:127.0.0.1:P:P".
  explicit GphotoProgram(std::string port);
  ~GphotoProgram();
  GphotoProgram(const GphotoProgram&) = delete;
  GphotoProgram& operator=(const GphotoProgram&) = delete;

  // Runs it to its end and returns what it printed, errors included. ended() tells how it ended.
  std::string run(const std::vector<std::string>& arguments);
  // Starts it; waitFor() and stop() belong to it.
  void start(const std::vector<std::string>& arguments);
  // Reads on until `text` has been printed `times` times; false if it ends or a minute passes before.
  bool waitFor(std::string_view text, std::size_t times = 1);
  // Interrupts it as Ctrl-C does, and waits for its end.
  void stop();

  const std::string& printed() const { return _printed; }
  // Its exit status, or -1 if it did not exit by itself.
  int status() const { return _status; }
  const std::filesystem::path& folder() const { return _folder; }

 private:
  bool readMore(int waitMs);
  void waitEnd();

  std::string _port;
  std::filesystem::path _folder;
  pid_t _pid = -1;
  int _output = -1;
  std::string _printed;
  int _status = -1;
};

}  // namespace ambrel
