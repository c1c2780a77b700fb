// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/capture/MoveDialog.h"

namespace ambrel {
namespace {

TEST(CandidateSuffixes, AreThoseOfTheTagsAndThenThoseOnDiskEachOnce) {
  EXPECT_EQ(candidateSuffixes({"_FR", "", "_SS", "_FR"}, "Ann", {"Ann", "Ann_Lee", "Ann_FR", "Ann_X"}),
            (QStringList{"_FR", "_SS", "_Lee", "_X"}));
  EXPECT_EQ(candidateSuffixes({}, "Ann", {"Ann"}), QStringList());
}

TEST(MoveQuestion, WithoutATargetAsksForTheName) {
  const Question question = moveQuestion({"Ann", std::nullopt, {{"_FR", true, 2}, {"_SS", false, 0}}});
  EXPECT_EQ(question.title, "Rename / Move Photos");
  EXPECT_EQ(question.message,
            "Move \"Ann\" and its photos to this name. If the name already exists, the photos merge into it "
            "(never overwritten) and the list jumps to that row; otherwise a new row is created below.");
  EXPECT_EQ(question.buttons, (QStringList{"Rename", "Cancel"}));
  ASSERT_EQ(question.accessory->textFields.size(), 1u);
  EXPECT_EQ(question.accessory->textFields[0].text, "Ann");
  EXPECT_TRUE(question.accessory->focusFirstField);
}

TEST(MoveQuestion, WithATargetOffersNoField) {
  const Question question = moveQuestion({"Ann", "Bea %1", {}});
  EXPECT_EQ(question.title, "Move photos into \"Bea %1\"");
  EXPECT_EQ(question.message, "Moves \"Ann\"'s photos into \"Bea %1\" (merged, never overwritten).");
  EXPECT_EQ(question.buttons, (QStringList{"Move", "Cancel"}));
  EXPECT_TRUE(question.accessory->textFields.empty());
  EXPECT_FALSE(question.accessory->focusFirstField);
}

TEST(MoveQuestion, ChecksTheSuffixesThatHaveAFolder) {
  const Question question = moveQuestion(
      {"Ann", std::nullopt, {{"_FR", true, 2}, {"_SS", false, 0}, {"_A", true, 1}, {"_B", true, 0}}});
  const auto& boxes = question.accessory->checkBoxes;
  ASSERT_EQ(boxes.size(), 4u);
  EXPECT_EQ(boxes[0].title, "_FR   (2 photos)");
  EXPECT_TRUE(boxes[0].checked);
  EXPECT_EQ(boxes[1].title, "_SS   (no photos)");
  EXPECT_FALSE(boxes[1].checked);
  EXPECT_EQ(boxes[2].title, "_A   (1 photo)");
  EXPECT_EQ(boxes[3].title, "_B   (0 photos)");
  EXPECT_TRUE(boxes[3].checked);
}

TEST(MoveQuestion, LaysOutLabelBoxesAndField) {
  const Accessory area = *moveQuestion({"Ann", std::nullopt, {{"_FR"}, {"_SS"}}}).accessory;
  EXPECT_EQ(area.size, QSize(360, 22 + 24 * 2 + 58));
  ASSERT_EQ(area.labels.size(), 1u);
  EXPECT_EQ(area.labels[0].text, "Suffix folders to include (pre-checked = captured with it):");
  EXPECT_TRUE(area.labels[0].heading);
  EXPECT_EQ(area.labels[0].rect.topLeft(), QPoint(0, 22 + 24 * 2));
  EXPECT_EQ(area.checkBoxes[0].rect, QRect(8, 46, 352, 20));
  EXPECT_EQ(area.checkBoxes[1].rect, QRect(8, 22, 352, 20));
  EXPECT_EQ(area.textFields[0].rect, QRect(0, 22 + 24 * 2 + 30, 360, 24));
}

TEST(MoveQuestion, LeavesRoomForOneBoxWhereThereIsNone) {
  const Accessory area = *moveQuestion({"Ann", "Bea", {}}).accessory;
  EXPECT_EQ(area.size, QSize(360, 22 + 24 + 6));
  EXPECT_EQ(area.labels[0].rect.y(), 46);
}

TEST(SelectedSuffixes, AreTheCheckedOnesInTheirOrder) {
  const MoveDialog dialog{"Ann", std::nullopt, {{"_A"}, {"_B"}, {"_C"}}};
  EXPECT_EQ(selectedSuffixes(dialog, {.button = 0, .checks = {true, false, true}}),
            (QStringList{"_A", "_C"}));
  EXPECT_EQ(selectedSuffixes(dialog, {.button = 0}), QStringList());
}

}  // namespace
}  // namespace ambrel
