// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/app/KeyRules.h"

using namespace ambrel;

namespace {

TEST(KeyRules, MovesTheSelectionWithUpAndDownEvenWhileTextIsTyped) {
  for (const KeyFocus focus : {KeyFocus::TextInput, KeyFocus::Elsewhere}) {
    EXPECT_EQ(keyAction(Key::Up, focus), KeyAction::MoveSelectionUp);
    EXPECT_EQ(keyAction(Key::Down, focus), KeyAction::MoveSelectionDown);
  }
}

TEST(KeyRules, LeavesLeftAndRightToTheTextFieldThatHasTheFocus) {
  EXPECT_EQ(keyAction(Key::Left, KeyFocus::TextInput), KeyAction::PassThrough);
  EXPECT_EQ(keyAction(Key::Right, KeyFocus::TextInput), KeyAction::PassThrough);
}

TEST(KeyRules, StepsThePreviewWithLeftAndRightElsewhere) {
  EXPECT_EQ(keyAction(Key::Left, KeyFocus::Elsewhere), KeyAction::PreviewPrevious);
  EXPECT_EQ(keyAction(Key::Right, KeyFocus::Elsewhere), KeyAction::PreviewNext);
}

TEST(KeyRules, PassesEveryOtherKeyThrough) {
  EXPECT_EQ(keyAction(Key::Other, KeyFocus::TextInput), KeyAction::PassThrough);
  EXPECT_EQ(keyAction(Key::Other, KeyFocus::Elsewhere), KeyAction::PassThrough);
}

}  // namespace
