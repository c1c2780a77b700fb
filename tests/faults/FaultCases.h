// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "faults/FaultPlan.h"
#include "faults/FaultSession.h"

namespace ambrel::faults {

struct Case {
  Task task = Task::Shoot;
  Plan plan;
  // The start after a kill is killed as well, at this call of its main thread; 0: not.
  std::uint32_t killAgainAt = 0;
};

// "burst/plain/t4/c17/once/ENOSPC": a case's name says all of it, and holds from one run to the next.
std::string nameOf(const Case& faultCase);
std::optional<Case> caseNamed(const std::string& name);

// Every case for a session whose calls are those of `dryRun`, without a fault; `restart` is a start after it.
std::vector<Case> casesFor(Task task, Volume volume, const Report& dryRun, const Report& restart);
// So many, spread over a session with the real worker and a simulated camera, which takes longer.
std::vector<Case> casesWithCamera(const Report& dryRun, std::size_t count);

}  // namespace ambrel::faults
