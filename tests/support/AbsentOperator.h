// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdio>

#include "core/base/Operator.h"

namespace ambrel {

// Nobody is there to be asked: alerts go by, and are told on the standard error; questions and choosers are
// never answered.
class AbsentOperator : public Operator {
 public:
  void showAlert(const QString& title, const QString& message, std::function<void()>) override {
    std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(message));
  }
  void ask(const Question&, std::function<void(const Answer&)>) override {}
  void choosePath(const PathRequest&, std::function<void(const QString&)>) override {}
  void beep() override {}
};

}  // namespace ambrel
