// SPDX-License-Identifier: Apache-2.0
#include <QTemporaryDir>
#include <QVariantMap>
#include <gtest/gtest.h>

#include "core/capture/Tags.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"

using namespace ambrel;

namespace {

QVariantMap stored(const QVariant& label, const QVariant& suffix, const QVariant& on) {
  return {{"label", label}, {"suffix", suffix}, {"on", on}};
}

class TagsTest : public ::testing::Test {
 protected:
  TagsTest() {
    QObject::connect(&tags, &Tags::toggled, [this] { ++toggles; });
    QObject::connect(&tags, &Tags::listReplaced, [this] { ++replacements; });
    QObject::connect(&status, &StatusLine::changed, [this] { ++statusChanges; });
  }

  void load(const QVariantList& entries) {
    preferences.setSuffixes(entries);
    tags.loadSuffixes();
  }

  // What another launch would find.
  std::vector<Tag> reloaded() {
    Tags again(preferences, person, status);
    again.loadSuffixes();
    return again.suffixes();
  }

  // Opens the editor and answers with these texts, label and suffix of each row in turn.
  void edit(const QStringList& texts, int button = 0) {
    Answer answer;
    answer.button = button;
    answer.texts = texts;
    person.willAnswer(answer);
    tags.manageSuffixes();
  }

  QTemporaryDir folder;
  Preferences preferences{folder.filePath("preferences.ini")};
  ScriptedOperator person;
  TestClock clock;
  StatusLine status{clock, [] { return Readiness{}; }};
  Tags tags{preferences, person, status};
  int toggles = 0;
  int replacements = 0;
  int statusChanges = 0;
};

const QStringList kBlankEditor = {"", "", "", "", "", "", "", "", "", ""};

}  // namespace

// ---- Loading and saving

TEST_F(TagsTest, TheFirstLaunchHasNoTags) {
  tags.loadSuffixes();
  EXPECT_TRUE(tags.suffixes().empty());
  EXPECT_TRUE(tags.enabledSuffixString().isEmpty());
}

TEST_F(TagsTest, LoadsLabelSuffixAndStateInOrder) {
  load({stored("FR", "_FR", true), stored("SS", "_SS", false)});
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"FR", "_FR", true}, {"SS", "_SS", false}}));
}

TEST_F(TagsTest, SkipsWhatIsNoTagAndTakesWhatIsMissingAsEmptyAndOff) {
  load({"text", 5, QVariantList{}, stored("", "_X", true), QVariantMap{{"suffix", "_Y"}},
        QVariantMap{{"label", "A"}}, stored(" B ", "", false)});
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"A", "", false}, {" B ", "", false}}));
}

TEST_F(TagsTest, LoadsTheFirstFiveOfSeven) {
  QVariantList entries;
  for (int i = 0; i < 7; ++i)
    entries.append(stored(QString::number(i), "_x", false));
  load(entries);
  ASSERT_EQ(tags.suffixes().size(), 5U);
  EXPECT_EQ(tags.suffixes().back().label, "4");
}

TEST_F(TagsTest, SkippedEntriesDoNotCountAmongTheFive) {
  QVariantList entries = {stored("", "_x", true), 7};
  for (int i = 0; i < 5; ++i)
    entries.append(stored(QString::number(i), "_x", false));
  load(entries);
  EXPECT_EQ(tags.suffixes().size(), 5U);
}

TEST_F(TagsTest, LoadingAgainReplacesTheList) {
  load({stored("A", "_A", true)});
  load({stored("B", "_B", false)});
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"B", "_B", false}}));
}

TEST_F(TagsTest, ATagsStateSurvivesARestart) {
  load({stored("A", "_A", false), stored("B", "/b c", true)});
  tags.suffixToggled(0, true);
  EXPECT_EQ(reloaded(), tags.suffixes());
  EXPECT_EQ(reloaded().front(), (Tag{"A", "_A", true}));
}

// ---- Toggling

TEST_F(TagsTest, SuffixesOfAllTagsThatAreOnAreJoinedInListOrder) {
  load({stored("A", "_A", false), stored("B", "_B", false), stored("C", "_C", false)});
  tags.suffixToggled(1, true);
  tags.suffixToggled(0, true);
  EXPECT_EQ(tags.enabledSuffixString(), "_A_B");
  tags.suffixToggled(0, false);
  EXPECT_EQ(tags.enabledSuffixString(), "_B");
}

TEST_F(TagsTest, TogglingSaysWhichFoldersPhotosGoTo) {
  load({stored("A", "_A", false)});
  tags.suffixToggled(0, true);
  EXPECT_EQ(status.text(),
            "Suffix active: photos save to folders tagged \"_A\" (see Next: in the info line).");
  EXPECT_EQ(status.kind(), StatusKind::Neutral);
  tags.suffixToggled(0, false);
  EXPECT_EQ(status.text(), "No suffix active: photos save to plain name folders.");
  EXPECT_EQ(status.kind(), StatusKind::Neutral);
  EXPECT_EQ(toggles, 2);
}

TEST_F(TagsTest, ATagWithAnEmptySuffixChangesNoFolderName) {
  load({stored("A", "", false)});
  tags.suffixToggled(0, true);
  EXPECT_TRUE(tags.suffixes().front().on);
  EXPECT_EQ(status.text(), "No suffix active: photos save to plain name folders.");
}

TEST_F(TagsTest, ASuffixThatLooksLikeAFormatIsShownAsItIs) {
  load({stored("A", "%1%2", false)});
  tags.suffixToggled(0, true);
  EXPECT_EQ(status.text(),
            "Suffix active: photos save to folders tagged \"%1%2\" (see Next: in the info line).");
}

TEST_F(TagsTest, AnIndexOutOfRangeIsIgnored) {
  load({stored("A", "_A", false)});
  tags.suffixToggled(-1, true);
  tags.suffixToggled(1, true);
  EXPECT_TRUE(tags.enabledSuffixString().isEmpty());
  EXPECT_EQ(toggles, 0);
  EXPECT_EQ(statusChanges, 0);
}

TEST_F(TagsTest, SwitchingAllOffKeepsTheTags) {
  load({stored("A", "_A", true), stored("B", "_B", true)});
  tags.switchAllOff();
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"A", "_A", false}, {"B", "_B", false}}));
  EXPECT_EQ(reloaded(), tags.suffixes());
  EXPECT_EQ(toggles, 1);
  EXPECT_EQ(statusChanges, 0);
}

// ---- The editor

TEST_F(TagsTest, TheEditorAsksInTheseWords) {
  load({stored("A", "_A", true), stored("B", "", false)});
  edit({}, 1);
  ASSERT_EQ(person.questions.size(), 1U);
  const Question& question = person.questions.front();
  EXPECT_EQ(question.title, "Customize Suffixes");
  EXPECT_EQ(question.message,
            "Up to 5. Each has a short button label and the text added to the folder name (e.g. label “FR”, "
            "suffix “_FR”). Leave a label blank to remove it.");
  EXPECT_EQ(question.buttons, (QStringList{"Save", "Cancel"}));
}

TEST_F(TagsTest, TheEditorHasFiveRowsOfTwoFieldsUnderTwoHeaders) {
  load({stored("A", "_A", true), stored("B", "", false)});
  edit({}, 1);
  const Accessory& fields = person.questions.front().accessory.value();
  EXPECT_EQ(fields.size, QSize(360, 176));
  EXPECT_TRUE(fields.checkBoxes.empty());
  ASSERT_EQ(fields.labels.size(), 2U);
  EXPECT_EQ(fields.labels[0].text, "Button label");
  EXPECT_EQ(fields.labels[0].rect, QRect(4, 156, 150, 16));
  EXPECT_TRUE(fields.labels[0].heading);
  EXPECT_EQ(fields.labels[1].text, "Folder suffix");
  EXPECT_EQ(fields.labels[1].rect, QRect(168, 156, 180, 16));
  EXPECT_TRUE(fields.labels[1].heading);

  ASSERT_EQ(fields.textFields.size(), 10U);
  const std::vector<QString> texts = {"A", "_A", "B", "", "", "", "", "", "", ""};
  const std::vector<int> heights = {120, 90, 60, 30, 0};
  for (std::size_t i = 0; i < 10; ++i) {
    const bool isLabel = i % 2 == 0;
    const int y = heights[i / 2];
    EXPECT_EQ(fields.textFields[i].text, texts[i]);
    EXPECT_EQ(fields.textFields[i].rect, isLabel ? QRect(4, y, 150, 24) : QRect(168, y, 180, 24));
    EXPECT_EQ(fields.textFields[i].placeholder, isLabel ? "label" : "_suffix");
  }
}

TEST_F(TagsTest, CancellingTheEditorChangesNothing) {
  load({stored("A", "_A", true)});
  edit({"X", "_X"}, 1);
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"A", "_A", true}}));
  EXPECT_EQ(replacements, 0);
}

TEST_F(TagsTest, SavingTheEditorReplacesTheListAndStoresIt) {
  edit({" A ", "\t_A ", "B", "", "", "", "", "", "", ""});
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"A", "_A", false}, {"B", "", false}}));
  EXPECT_EQ(reloaded(), tags.suffixes());
  EXPECT_EQ(replacements, 1);
  EXPECT_EQ(toggles, 0);
}

TEST_F(TagsTest, SavingWithAllLabelsBlankGivesTheDefaultTag) {
  load({stored("A", "_A", true)});
  edit(kBlankEditor);
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"FR", "_FR", false}}));
}

TEST_F(TagsTest, LabelsOfWhiteSpaceAreBlank) {
  edit({"  ", "_A", "\t", "_B", "", "_C", "", "", "", ""});
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"FR", "_FR", false}}));
}

TEST_F(TagsTest, ADroppedRowMovesTheFollowingUpWithTheirStates) {
  load({stored("A", "_A", false), stored("B", "_B", false), stored("C", "_C", true)});
  edit({"A", "_A", "", "_B", "C", "_C", "", "", "", ""});
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"A", "_A", false}, {"C", "_C", true}}));
}

TEST_F(TagsTest, RenamingALabelKeepsItsState) {
  load({stored("A", "_A", true)});
  edit({"Z", "_Z", "New", "_N", "", "", "", "", "", ""});
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"Z", "_Z", true}, {"New", "_N", false}}));
}

TEST_F(TagsTest, DuplicatesAndSlashesAreTakenAsTyped) {
  edit({"A", "/a", "A", "/a", "", "", "", "", "", ""});
  EXPECT_EQ(tags.suffixes(), (std::vector<Tag>{{"A", "/a", false}, {"A", "/a", false}}));
}

TEST_F(TagsTest, AllFiveRowsCanBeUsed) {
  edit({"1", "_1", "2", "_2", "3", "_3", "4", "_4", "5", "_5"});
  EXPECT_EQ(tags.suffixes().size(), Tags::kMaxTags);
}
