// SPDX-License-Identifier: Apache-2.0
#include <pthread.h>

#include "core/base/ThreadPriority.h"

namespace ambrel {

void lowerThreadPriority() {
  ::pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

}  // namespace ambrel
