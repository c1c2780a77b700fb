// SPDX-License-Identifier: Apache-2.0
#include "faults/FaultCases.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string_view>

namespace ambrel::faults {
namespace {

constexpr std::array kErrors = {ENOSPC, EIO, EINTR, ENOTCONN, EACCES, EROFS, ESTALE, EMFILE, EDQUOT};
constexpr std::array kLookingErrors = {EIO, EINTR, ENOTCONN, EACCES, ESTALE, EMFILE};
constexpr std::array kKinds = {Kind::Kill,  Kind::TornKill, Kind::Once,     Kind::ForEver,
                               Kind::Short, Kind::OneByte,  Kind::Terminate};
constexpr std::array kVolumes = {Volume::Plain, Volume::Across, Volume::NoReplace, Volume::NoLink};

bool writesBytes(std::string_view name) {
  return name == "write" || name == "pwrite" || name == "copy_range" || name == "sendfile";
}

// Only there does a volume show what it cannot do.
bool isOnAPhoto(const Call& call) {
  return std::string_view(call.path.data()).starts_with("/Photos/");
}

const char* nameOf(Task task) {
  return task == Task::Camera ? "camera" : task == Task::Burst ? "burst" : "shoot";
}

bool takesAnError(Kind kind) {
  return kind == Kind::Once || kind == Kind::ForEver;
}

// The calls of one thread that change something, in their order.
std::vector<Call> callsOf(const Report& report, std::size_t thread) {
  std::vector<Call> calls;
  const std::size_t logged = std::min<std::size_t>(report.logged, kLogEntries);
  for (std::size_t i = 0; i < logged; ++i) {
    const Call& call = report.log[i];
    const bool counts = call.error != kOutsideHome && call.error != kNote;
    if (counts && call.thread == static_cast<int>(thread)) calls.push_back(call);
  }
  return calls;
}

std::vector<std::string> parts(const std::string& name) {
  std::vector<std::string> found;
  std::istringstream stream(name);
  for (std::string part; std::getline(stream, part, '/');)
    found.push_back(part);
  return found;
}

}  // namespace

std::string nameOf(const Case& c) {
  std::string name = std::string(nameOf(c.task)) + "/" + nameOf(c.plan.volume) +
                     (c.plan.side == Side::Looking ? "/looking" : "/changing") + "/t" +
                     std::to_string(c.plan.thread) + "/c" + std::to_string(c.plan.call) + "/" +
                     nameOf(c.plan.kind);
  if (takesAnError(c.plan.kind)) name += std::string("/") + nameOfError(c.plan.error);
  if (c.killAgainAt != 0) name += "/again" + std::to_string(c.killAgainAt);
  return name;
}

std::optional<Case> caseNamed(const std::string& name) {
  const std::vector<std::string> part = parts(name);
  if (part.size() < 6 || part[3].size() < 2 || part[4].size() < 2) return std::nullopt;
  Case c;
  c.task = part[0] == "camera" ? Task::Camera : part[0] == "burst" ? Task::Burst : Task::Shoot;
  c.plan.side = part[2] == "looking" ? Side::Looking : Side::Changing;
  c.plan.thread = std::atoi(part[3].c_str() + 1);
  c.plan.call = static_cast<std::uint32_t>(std::atoi(part[4].c_str() + 1));
  for (const Volume volume : kVolumes)
    if (part[1] == nameOf(volume)) c.plan.volume = volume;
  for (const Kind kind : kKinds)
    if (part[5] == nameOf(kind)) c.plan.kind = kind;
  for (std::size_t i = 6; i < part.size(); ++i) {
    if (part[i].starts_with("again")) {
      c.killAgainAt = static_cast<std::uint32_t>(std::atoi(part[i].c_str() + 5));
    } else {
      for (const int error : kErrors)
        if (part[i] == nameOfError(error)) c.plan.error = error;
    }
  }
  return c.plan.kind == Kind::None ? std::nullopt : std::optional(c);
}

namespace {

class Lister {
 public:
  Lister(Task task, Volume volume, std::uint32_t restartCalls)
      : _task(task), _volume(volume), _restartCalls(restartCalls) {}

  void addChanging(int thread, std::uint32_t call, bool writes) {
    const Plan at = {.thread = thread, .call = call, .volume = _volume};
    add(at, Kind::Kill);
    addKilledAgain(at);
    add(at, Kind::Terminate);
    for (const int error : kErrors) {
      add(at, Kind::Once, error);
      add(at, Kind::ForEver, error);
    }
    if (!writes) return;
    for (const Kind kind : {Kind::TornKill, Kind::Short, Kind::OneByte})
      add(at, kind);
  }

  void addLooking(int thread, std::uint32_t call) {
    const Plan at = {.side = Side::Looking, .thread = thread, .call = call, .volume = _volume};
    for (const int error : kLookingErrors)
      add(at, Kind::Once, error);
    for (const int error : {EIO, ENOTCONN})
      add(at, Kind::ForEver, error);
  }

  std::vector<Case> cases;

 private:
  void add(Plan plan, Kind kind, int error = EIO, std::uint32_t again = 0) {
    plan.kind = kind;
    plan.error = error;
    cases.push_back({_task, plan, again});
  }

  // Neighbouring kills meet different calls of the start that follows.
  void addKilledAgain(const Plan& at) {
    if (_restartCalls > 0) add(at, Kind::Kill, EIO, 1 + _killedAgain++ % _restartCalls);
  }

  Task _task;
  Volume _volume;
  std::uint32_t _restartCalls;
  std::uint32_t _killedAgain = 0;
};

}  // namespace

std::vector<Case> casesWithCamera(const Report& dryRun, std::size_t count) {
  std::vector<Case> all;
  for (std::size_t thread = 0; thread < kThreads; ++thread) {
    for (std::uint32_t call = 1; call <= dryRun.calls[0][thread]; ++call) {
      const auto add = [&](Kind kind, int error) {
        all.push_back(
            {Task::Camera, {.kind = kind, .thread = static_cast<int>(thread), .call = call, .error = error}});
      };
      add(Kind::Kill, EIO);
      add(Kind::Once, EIO);
      add(Kind::ForEver, ENOSPC);
    }
  }
  std::vector<Case> cases;
  for (std::size_t i = 0; i < count && i < all.size(); ++i)
    cases.push_back(all[i * all.size() / count]);
  return cases;
}

std::vector<Case> casesFor(Task task, Volume volume, const Report& dryRun, const Report& restart) {
  Lister lister(task, volume, restart.total);
  for (std::size_t thread = 0; thread < kThreads; ++thread) {
    const std::vector<Call> calls = callsOf(dryRun, thread);
    for (std::size_t i = 0; i < calls.size(); ++i) {
      if (volume != Volume::Plain && !isOnAPhoto(calls[i])) continue;
      lister.addChanging(static_cast<int>(thread), static_cast<std::uint32_t>(i + 1),
                         writesBytes(calls[i].name.data()));
    }
  }
  // Looking is the same on every volume.
  if (volume != Volume::Plain || task == Task::Burst) return lister.cases;
  for (std::size_t thread = 0; thread < kThreads; ++thread) {
    for (std::uint32_t call = 1; call <= dryRun.calls[1][thread]; ++call)
      lister.addLooking(static_cast<int>(thread), call);
  }
  return lister.cases;
}

}  // namespace ambrel::faults
