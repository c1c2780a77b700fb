// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace ambrel {

enum class Key { Up, Down, Left, Right, Other };
enum class KeyFocus { TextInput, Elsewhere };
enum class KeyAction { MoveSelectionUp, MoveSelectionDown, PreviewPrevious, PreviewNext, PassThrough };

// What a key press does, wherever the focus is. Anything but PassThrough is consumed.
KeyAction keyAction(Key key, KeyFocus focus);

}  // namespace ambrel
