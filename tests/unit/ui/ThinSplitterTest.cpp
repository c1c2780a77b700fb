// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ui/ThinSplitter.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

class Dragged : public ThinSplitter {
 public:
  Dragged() : ThinSplitter(nullptr) {
    setChildrenCollapsible(false);
    for (const int minimum : {layout::kLeftPaneMinimum, layout::kRightPaneMinimum}) {
      auto* pane = new QWidget;
      pane->setMinimumWidth(minimum);
      addWidget(pane);
    }
    resize(1228, 400);
    setSizes({614, 613});
    show();
  }
  int dividerAfterDragTo(int x) {
    moveSplitter(x, 1);
    return sizes()[0];
  }
};

TEST(ThinSplitter, HasADividerOfOnePoint) {
  EXPECT_EQ(Dragged().handleWidth(), 1);
  EXPECT_EQ(Dragged().sizes(), (QList<int>{614, 613}));
}

TEST(ThinSplitter, StopsTheDividerWhereTheLayoutSays) {
  Dragged split;
  EXPECT_EQ(split.dividerAfterDragTo(200), layout::constrainedDivider(200, 1228));
  EXPECT_EQ(split.dividerAfterDragTo(700), 700);
  // The divider itself takes one of the points that the right pane is kept from.
  EXPECT_NEAR(split.dividerAfterDragTo(1228 - 300), layout::constrainedDivider(928, 1228), 1);
}

}  // namespace
}  // namespace ambrel::ui
