// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLineEdit>

#include "ui/Menus.h"

namespace ambrel::ui {

// Carries out a command of the Edit menu on a text field; other commands do nothing.
void editText(QLineEdit& field, Command command);

}  // namespace ambrel::ui
