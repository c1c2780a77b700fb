// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <memory>

#include "core/platform/Pipe.h"

class QSocketNotifier;

namespace ambrel {

// Turns the system's requests to end (SIGTERM, SIGINT, SIGHUP) into a signal on the event loop, so that they
// run through the same shut-down as closing the window. One object at a time; without one the default holds
// again.
class QuitSignals : public QObject {
  Q_OBJECT
 public:
  QuitSignals();
  ~QuitSignals() override;

 Q_SIGNALS:
  void quitRequested();

 private:
  Pipe _pipe;
  std::unique_ptr<QSocketNotifier> _notifier;
};

}  // namespace ambrel
