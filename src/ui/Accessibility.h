// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace ambrel::ui {

// Tells screen readers what the controls are that the toolkit does not know: the drop zone and the
// photo. Once, before the window is shown.
void describeOwnControls();

}  // namespace ambrel::ui
