// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace ambrel {

// Lets every other thread of the application go before the calling one, for work that nobody waits for. There
// is no way back.
void lowerThreadPriority();

}  // namespace ambrel
