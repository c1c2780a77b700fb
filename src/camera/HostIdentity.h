// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace ambrel::camera {

// The number by which a camera on the network knows this computer again: a body that has been paired with it
// asks nobody the next time. Sixteen bytes as the camera library writes them, "1f:02: ...", made once for
// each user and kept in the application's data folder. Where nothing can be kept it is another one each time.
std::string hostIdentity();

// <data folder of this user>/Ambrel Tether/camera-host-id, from AMBREL_HOME, XDG_DATA_HOME or HOME; empty
// where none of them is set.
std::string hostIdentityFile();

}  // namespace ambrel::camera
