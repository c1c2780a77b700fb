// SPDX-License-Identifier: Apache-2.0
#include "core/base/Doorbell.h"

namespace ambrel {

// What is called is held by the connection, which the main thread made, and not by the event that crosses the
// threads: no memory of one thread's is read by the other without a lock that both see.
Doorbell::Doorbell(const std::function<void()>& answer) {
  connect(this, &Doorbell::rung, this, answer, Qt::QueuedConnection);
}

}  // namespace ambrel
