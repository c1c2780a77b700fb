// SPDX-License-Identifier: Apache-2.0
#include <QLineEdit>
#include <gtest/gtest.h>

#include "ui/Palette.h"
#include "ui/StatusCard.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

TEST(StatusCard, PutsTitleAndValueInTheirPlaces) {
  StatusCard card(QStringLiteral("CAMERA"), 13, nullptr);
  card.resize(190, 50);
  card.show();
  const auto labels = card.findChildren<TextLabel*>();
  ASSERT_EQ(labels.size(), 2);
  const layout::Card places = layout::card({190, 50});
  EXPECT_EQ(labels[0]->geometry(), places.title);
  EXPECT_EQ(labels[1]->geometry(), places.value);
  EXPECT_EQ(labels[0]->textColor(), Palette::secondaryLabelColor());
}

TEST(StatusCard, ShowsItsValueInBoldOfTheGivenSize) {
  StatusCard card(QStringLiteral("Backup"), 15, nullptr);
  card.setValue(QStringLiteral("Off"), Qt::red);
  const TextLabel* value = card.findChildren<TextLabel*>().last();
  EXPECT_EQ(card.valueText(), QStringLiteral("Off"));
  EXPECT_EQ(card.valueColor(), QColor(Qt::red));
  EXPECT_EQ(value->font().pixelSize(), 15);
  EXPECT_TRUE(value->font().bold());
}

TEST(StatusCard, TakesAControlInTheValuesPlace) {
  auto* field = new QLineEdit;
  StatusCard card(QStringLiteral("NEXT #"), field, nullptr);
  card.resize(92, 50);
  card.show();
  EXPECT_EQ(field->parentWidget(), &card);
  EXPECT_EQ(field->geometry(), layout::card({92, 50}).value);
}

}  // namespace
}  // namespace ambrel::ui
