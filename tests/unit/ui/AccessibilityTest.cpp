// SPDX-License-Identifier: Apache-2.0
#include <QAccessible>
#include <gtest/gtest.h>

#include "ui/Accessibility.h"
#include "ui/AmbrelButton.h"
#include "ui/AmbrelDropZone.h"
#include "ui/PhotoView.h"

namespace ambrel::ui {
namespace {

QAccessible::Role roleOf(QObject& control) {
  return QAccessible::queryAccessibleInterface(&control)->role();
}

QString nameOf(QObject& control) {
  return QAccessible::queryAccessibleInterface(&control)->text(QAccessible::Name);
}

TEST(Accessibility, ScreenReadersKnowOurControlsForWhatTheyAre) {
  describeOwnControls();
  AmbrelDropZone zone;
  EXPECT_EQ(roleOf(zone), QAccessible::Button);
  EXPECT_EQ(nameOf(zone), QStringLiteral("Your list is empty. Click to import a CSV."));
  PhotoView photo(nullptr);
  EXPECT_EQ(roleOf(photo), QAccessible::Graphic);
  EXPECT_EQ(nameOf(photo), QStringLiteral("Preview"));
}

TEST(Accessibility, AButtonIsKnownByItsTitleEvenWhereASymbolStandsForIt) {
  AmbrelButton button(QStringLiteral("Settings"), nullptr);
  button.applySymbol(Symbol::Gear, 16, Qt::white);
  EXPECT_EQ(nameOf(button), QStringLiteral("Settings"));
  EXPECT_EQ(roleOf(button), QAccessible::Button);
}

}  // namespace
}  // namespace ambrel::ui
