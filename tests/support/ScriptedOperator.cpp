// SPDX-License-Identifier: Apache-2.0
#include "support/ScriptedOperator.h"

#include <gtest/gtest.h>

namespace ambrel {

void ScriptedOperator::showAlert(const QString& title, const QString& message,
                                 std::function<void()> dismissed) {
  alerts.push_back({title, message});
  if (dismissed) dismissed();
}

void ScriptedOperator::ask(const Question& question, std::function<void(const Answer&)> answered) {
  questions.push_back(question);
  if (_answers.empty()) {
    ADD_FAILURE() << "unscripted question: " << question.title.toStdString();
    return;
  }
  const Answer answer = std::move(_answers.front());
  _answers.pop_front();
  answered(answer);
}

void ScriptedOperator::choosePath(const PathRequest& request,
                                  std::function<void(const QString& path)> chosen) {
  requests.push_back(request);
  if (_paths.empty()) {
    ADD_FAILURE() << "unscripted chooser: " << request.message.toStdString();
    return;
  }
  const QString path = _paths.front();
  _paths.pop_front();
  chosen(path);
}

}  // namespace ambrel
