// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <vector>

#include "core/base/Operator.h"

namespace ambrel {

// An Operator whose answers a test lays out beforehand. Alerts are recorded and dismissed at once; a question
// or chooser without a scripted answer fails the test.
class ScriptedOperator : public Operator {
 public:
  struct Alert {
    QString title;
    QString message;
    bool operator==(const Alert&) const = default;
  };

  void showAlert(const QString& title, const QString& message, std::function<void()> dismissed) override;
  void ask(const Question& question, std::function<void(const Answer&)> answered) override;
  void choosePath(const PathRequest& request, std::function<void(const QString& path)> chosen) override;
  void beep() override { ++beeps; }

  void willAnswer(Answer answer) { _answers.push_back(std::move(answer)); }
  void willAnswer(int button) { _answers.push_back(Answer{button}); }
  void willChoose(const QString& path) { _paths.push_back(path); }
  bool scriptUsedUp() const { return _answers.empty() && _paths.empty(); }

  std::vector<Alert> alerts;
  std::vector<Question> questions;
  std::vector<PathRequest> requests;
  int beeps = 0;

 private:
  std::deque<Answer> _answers;
  std::deque<QString> _paths;
};

}  // namespace ambrel
