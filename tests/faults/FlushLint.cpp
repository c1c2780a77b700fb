// SPDX-License-Identifier: Apache-2.0
#include "faults/FlushLint.h"

#include <map>
#include <optional>
#include <set>
#include <sstream>

namespace ambrel::faults {
namespace {

using Kind = FileEvent::Kind;

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

class Linter {
 public:
  explicit Linter(std::string_view flushedBehind) : _flushedBehind(flushedBehind) {}

  void take(const FileEvent& event) {
    switch (event.kind) {
      case Kind::Write:
        write(event.path);
        break;
      case Kind::Flush:
        flush(event.path);
        break;
      case Kind::Rename:
        rename(event.path, event.to);
        break;
      case Kind::Done:
        done(event.path);
        break;
    }
  }

  LintResult finish() {
    for (const std::string& path : _named) {
      if (!isFlushedBehind(path)) continue;
      if (_unflushed.contains(path)) complain(path, "is never flushed");
      if (_names.contains(path)) complain(path, "has a name that is never flushed");
    }
    return std::move(_result);
  }

 private:
  bool isFlushedBehind(const std::string& path) const {
    return !_flushedBehind.empty() && path.ends_with(_flushedBehind);
  }

  void complain(const std::string& path, const char* what) { _result.wrong.push_back(path + " " + what); }

  void write(const std::string& path) {
    if (_named.contains(path)) complain(path, "is written under its final name");
    _written.insert(path);
    _unflushed.insert(path);
  }

  void flush(const std::string& path) {
    ++_result.flushes;
    _unflushed.erase(path);
    std::erase_if(_names, [&path](const std::string& name) { return folderOf(name) == path; });
  }

  void rename(const std::string& from, const std::string& to) {
    ++_result.renames;
    if (!_written.contains(from)) return;
    const bool flushed = !_unflushed.contains(from);
    if (!flushed && !isFlushedBehind(to)) complain(to, "takes its name before its bytes are flushed");
    _named.insert(to);
    _names.insert(to);
    _written.erase(from);
    _unflushed.erase(from);
    if (flushed) {
      _unflushed.erase(to);
    } else {
      _unflushed.insert(to);
    }
  }

  void done(const std::string& path) {
    ++_result.relied;
    if (_unflushed.contains(path)) complain(path, "is relied on before its bytes are flushed");
    if (_names.contains(path)) complain(path, "is relied on before its name is flushed");
  }

  std::string _flushedBehind;
  LintResult _result;
  std::set<std::string> _written;    // under these names, by this program
  std::set<std::string> _unflushed;  // and not flushed since
  std::set<std::string> _named;      // final names of what was written
  std::set<std::string> _names;      // those whose folder has not been flushed since
};

// ---- Traces

// The descriptor's path in `3</path>`, or nothing for pipes, sockets and the like.
std::optional<std::string> describedPath(const std::string& arguments) {
  const std::size_t open = arguments.find('<');
  const std::size_t close = arguments.find('>', open);
  if (open == std::string::npos || close == std::string::npos) return std::nullopt;
  std::string path = arguments.substr(open + 1, close - open - 1);
  return path.starts_with('/') && !path.starts_with("/dev/") ? std::optional(path) : std::nullopt;
}

// The texts between quotation marks.
std::vector<std::string> quoted(const std::string& arguments) {
  std::vector<std::string> texts;
  for (std::size_t at = arguments.find('"'); at != std::string::npos; at = arguments.find('"', at)) {
    const std::size_t end = arguments.find('"', at + 1);
    if (end == std::string::npos) break;
    texts.push_back(arguments.substr(at + 1, end - at - 1));
    at = end + 1;
  }
  return texts;
}

std::optional<FileEvent> eventOf(const std::string& name, const std::string& arguments) {
  const std::vector<std::string> texts = quoted(arguments);
  if (name.starts_with("rename") || name.starts_with("link")) {
    if (texts.size() < 2) return std::nullopt;
    return FileEvent{Kind::Rename, texts[0], texts[1]};
  }
  constexpr std::string_view kDownloaded = "DOWNLOADED|";
  const bool isPipe = arguments.find("<pipe:") != std::string::npos;
  if (name == "write" && isPipe && !texts.empty() && texts[0].starts_with(kDownloaded)) {
    return FileEvent{Kind::Done,
                     texts[0].substr(kDownloaded.size(), texts[0].find("\\n") - kDownloaded.size())};
  }
  const std::optional<std::string> path = describedPath(arguments);
  if (!path) return std::nullopt;
  if (name == "fsync" || name == "fdatasync") return FileEvent{Kind::Flush, *path};
  if (name.starts_with("write") || name.starts_with("pwrite") || name == "ftruncate") {
    return FileEvent{Kind::Write, *path};
  }
  return std::nullopt;
}

// Brings calls that another thread's calls interrupt in the log back into one line, where they end.
std::vector<std::string> wholeCalls(const std::string& trace) {
  std::vector<std::string> calls;
  std::map<std::string, std::string> begun;
  std::istringstream stream(trace);
  for (std::string line; std::getline(stream, line);) {
    const std::size_t space = line.find(' ');
    if (space == std::string::npos) continue;
    const std::string thread = line.substr(0, space);
    std::string call = line.substr(line.find_first_not_of(' ', space));
    if (const std::size_t unfinished = call.find(" <unfinished"); unfinished != std::string::npos) {
      begun[thread] = call.substr(0, unfinished);
      continue;
    }
    if (const std::size_t resumed = call.find(" resumed>");
        call.starts_with("<...") && resumed != std::string::npos) {
      call = begun[thread] + call.substr(resumed + std::string_view(" resumed>").size());
    }
    calls.push_back(std::move(call));
  }
  return calls;
}

}  // namespace

LintResult lintFlushes(const std::vector<FileEvent>& events, std::string_view flushedBehind) {
  Linter linter(flushedBehind);
  for (const FileEvent& event : events)
    linter.take(event);
  return linter.finish();
}

std::vector<FileEvent> eventsOfTrace(const std::string& trace) {
  std::vector<FileEvent> events;
  for (const std::string& call : wholeCalls(trace)) {
    const std::size_t open = call.find('(');
    const std::size_t answer = call.rfind(" = ");
    if (open == std::string::npos || answer == std::string::npos || call.compare(answer + 3, 1, "-") == 0)
      continue;
    if (const auto event = eventOf(call.substr(0, open), call.substr(open, answer - open)))
      events.push_back(*event);
  }
  return events;
}

}  // namespace ambrel::faults
