// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "support/TemporaryFolder.h"

namespace ambrel {

// The program ambrel_cpp_worker for the time of a test, started as the application starts it: its standard
// output and standard error are one pipe. What does not come in time is thrown as std::runtime_error, with
// all that the worker has said.
class WorkerProcess {
 public:
  static constexpr std::chrono::seconds kPatience{20};
  struct Launch {
    std::string downloadFolder;
    std::string cameraPort = {};  // "ptpip:127.0.0.1:P:P", or empty for USB
    std::string saveMode = "both";
    std::vector<std::string> under = {};        // a program and its arguments to run the worker under
    std::string home = {};                      // AMBREL_HOME; empty: one of its own
    std::chrono::seconds patience = kPatience;  // until it is ready
  };
  // Returns when the worker has said "READY|OK".
  explicit WorkerProcess(const Launch& launch);
  // Kills the worker if it still runs.
  ~WorkerProcess();
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  void send(const std::string& line);
  // The next line that begins so, which may be one that has already come; lines before it are passed over.
  std::string waitFor(std::string_view prefix, std::chrono::milliseconds patience = kPatience);
  // The next line, or nothing when none comes in time or the worker has ended.
  std::optional<std::string> next(std::chrono::milliseconds patience);
  // CONNECT to CONNECTED, and on to PUMP_ACTIVE_READY.
  void connect();
  void watch();

  void closeInput();
  void signal(int number);
  // The exit status, or minus the signal.
  int waitForExit(std::chrono::milliseconds patience = kPatience);

  // Every line so far.
  const std::vector<std::string>& lines() const { return _lines; }
  // How many lines so far begin so.
  int count(std::string_view prefix) const;
  pid_t pid() const { return _pid; }

 private:
  void start(const Launch& launch);
  bool read(std::chrono::steady_clock::time_point deadline);
  [[noreturn]] void fail(const std::string& what) const;

  test::TemporaryFolder _home;
  std::string _saveMode;
  pid_t _pid = -1;
  int _input = -1;   // we write
  int _output = -1;  // we read
  std::string _pending;
  std::vector<std::string> _lines;
  std::size_t _passed = 0;  // lines that waitFor and next have handed on
};

}  // namespace ambrel
