// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <functional>

namespace ambrel {

// Calls the main thread from other threads: each ring() is one later call of the answer, in the event loop of
// the thread that made the doorbell. It carries nothing; what a caller wants to hand over lies ready under a
// mutex of its own before it rings.
class Doorbell : public QObject {
  Q_OBJECT
 public:
  explicit Doorbell(const std::function<void()>& answer);

  // Any thread. The caller sees to it that the doorbell still exists.
  void ring() { Q_EMIT rung(); }

 Q_SIGNALS:
  void rung();
};

}  // namespace ambrel
