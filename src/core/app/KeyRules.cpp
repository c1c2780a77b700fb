// SPDX-License-Identifier: Apache-2.0
#include "core/app/KeyRules.h"

namespace ambrel {

KeyAction keyAction(Key key, KeyFocus focus) {
  if (key == Key::Up) return KeyAction::MoveSelectionUp;
  if (key == Key::Down) return KeyAction::MoveSelectionDown;
  if (focus == KeyFocus::TextInput) return KeyAction::PassThrough;
  if (key == Key::Left) return KeyAction::PreviewPrevious;
  if (key == Key::Right) return KeyAction::PreviewNext;
  return KeyAction::PassThrough;
}

}  // namespace ambrel
