// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ui/PreviewPane.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

TEST(PreviewPane, SaysThatThereIsNoPreviewYet) {
  PreviewPane pane(nullptr);
  pane.resize(620, 600);
  pane.show();
  const auto* label = pane.findChild<TextLabel*>();
  EXPECT_EQ(label->text(), QStringLiteral("No preview yet"));
  EXPECT_EQ(label->geometry(), layout::rightPane({620, 600}).filenameLabel);
  EXPECT_EQ(pane.findChild<Surface*>()->geometry(), layout::rightPane({620, 600}).preview);
}

TEST(PreviewPane, IsNeverNarrowerThan360Points) {
  EXPECT_EQ(PreviewPane(nullptr).minimumWidth(), 360);
}

}  // namespace
}  // namespace ambrel::ui
