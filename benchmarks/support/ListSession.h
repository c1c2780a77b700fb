// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <array>
#include <random>
#include <string>
#include <vector>

#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "core/list/ListEditing.h"
#include "core/list/NameList.h"
#include "support/Goals.h"

namespace ambrel::bench {

inline std::vector<Row> peopleWithNotes(int count) {
  constexpr std::array kFirst = {
      "Anna",  "Ben",   "Joanna", "Jürgen", "Zoë",    "Łukasz", "Maria", "Hannah",  "Peter", "Søren",
      "Clara", "David", "Émile",  "Frida",  "Georg",  "Ida",    "Jonas", "Kirsten", "Lena",  "Moritz",
      "nina",  "OSKAR", "Paula",  "Ruth",   "Tobias", "Ulrike", "Vera",  "Walter",  "Xaver", "Yvonne"};
  constexpr std::array kSyllables = {"Berg",  "Mann",  "Schmidt", "Hoff", "Stein", "Bauer", "Feld", "Wald",
                                     "kamp",  "haus",  "dorf",    "ner",  "Mül",   "ler",   "sen",  "ström",
                                     "Wein",  "Gärt",  "Zimmer",  "Roth", "Lang",  "Klein", "Voss", "Brand",
                                     "Linde", "Acker", "Busch",   "Thal", "König", "Graf",  "Jung", "Winter"};
  constexpr std::array kNotes = {"front row, left", "glasses off", "Anna's brother", "left early",
                                 "second take",     "with dog",    "absent",         "class 3a"};
  std::mt19937 random(20260504);
  const auto one = [&random](const auto& words) { return std::string(words[random() % words.size()]); };
  std::vector<Row> rows;
  for (int i = 0; i < count; ++i) {
    const std::string name = one(kFirst) + ' ' + one(kSyllables) + one(kSyllables);
    rows.push_back({name, one(kNotes), std::to_string(random() % 4), i % 40 == 0 ? "1" : ""});
  }
  return rows;
}

class NobodyAtTheMachine : public Operator {
 public:
  void showAlert(const QString&, const QString&, std::function<void()>) override { require(false, "alert"); }
  void ask(const Question&, std::function<void(const Answer&)>) override { require(false, "question"); }
  void choosePath(const PathRequest&, std::function<void(const QString&)>) override {
    require(false, "path");
  }
  void beep() override { require(false, "beep"); }
};

// A list as the application holds it, on files of its own.
struct Session {
  explicit Session(const QString& folder) : locations(Locations::below(folder)) {}
  void show(std::vector<Row> rows) {
    list.editableGrid().replaceAll(std::move(rows));
    list.setSelectedRow(list.grid().rowCount() / 2);
    list.applySearchFilter();
  }

  Locations locations;
  PosixFiles files;
  SystemClock clock;
  NobodyAtTheMachine nobody;
  StatusLine statusLine{clock, [] { return Readiness{}; }};
  Preferences preferences{locations.preferencesFile};
  ListStore store{files, locations};
  NameList list{store, preferences, statusLine};
  ListEditing editing{list, nobody, statusLine};
};

}  // namespace ambrel::bench
