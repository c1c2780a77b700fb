// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <memory>

#include "faults/FaultCases.h"
#include "faults/FaultWorld.h"
#include "faults/FlushLint.h"
#include "support/SimulatedCamera.h"

namespace ambrel::faults {

// Memory that child processes share with their parent.
struct SharedReport {
  SharedReport();
  ~SharedReport();
  SharedReport(const SharedReport&) = delete;
  SharedReport& operator=(const SharedReport&) = delete;
  void reset();
  Report* report;
};

struct Outcome {
  bool hit = false;
  Call at = {};       // the call that met the fault
  QStringList wrong;  // invariants that did not hold
  QStringList said;   // by the session that met the fault
};

// Runs one case after the other in a folder of its own. The process must have no other threads or children.
class Runner {
 public:
  // The bundles hold the scripted worker and the real one.
  Runner(const QString& folder, const QString& bundle, const QString& realBundle);
  ~Runner();

  Outcome run(const Case& faultCase);
  // Of a session without a fault.
  LintResult lint(Task task, Volume volume);
  // A session without a fault, and a start after it.
  Outcome dryRun(Task task, Volume volume);
  const Report& session() const { return *_session.report; }
  const Report& restart() const { return *_restart.report; }

 private:
  // Whether the session ended by itself in time.
  bool start(const Plan& plan, Task task, SharedReport& report, QStringList& wrong);
  QStringList said(const SharedReport& report) const;

  void lookIntoCamera();

  World _world;
  QString _bundle;
  QString _realBundle;
  std::unique_ptr<SimulatedCamera> _camera;  // of a case with one
  SharedReport _session;
  SharedReport _restart;
};

}  // namespace ambrel::faults
