// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Whether a log of calls keeps the order that survives a power cut: the bytes reach the disk before the file
// takes its name, and the name does before anybody relies on it.
namespace ambrel::faults {

struct FileEvent {
  enum class Kind {
    Write,   // bytes, to `path`
    Flush,   // of a file or folder
    Rename,  // or a second name: `path` is now `to` as well
    Done     // from here on somebody relies on the file of that name
  };
  Kind kind;
  std::string path;
  std::string to = {};
};

struct LintResult {
  int renames = 0;
  int flushes = 0;
  int relied = 0;                  // names that somebody relied on
  std::vector<std::string> wrong;  // one sentence each
};

// `flushedBehind` is the ending of the names that may be flushed after they are taken, as long as that
// happens before the log ends. Files that were not written in the log are taken to be on the disk, their
// new name included: a power cut then merely gives them back the old one.
LintResult lintFlushes(const std::vector<FileEvent>& events, std::string_view flushedBehind = {});

// What `strace -f -y` wrote of a program. Done is a line that begins with DOWNLOADED| and goes to a pipe.
std::vector<FileEvent> eventsOfTrace(const std::string& trace);

}  // namespace ambrel::faults
