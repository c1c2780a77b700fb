// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Files.h"
#include "core/base/Operator.h"
#include "core/base/StatusLine.h"
#include "core/list/NameList.h"

namespace ambrel {

// The flows that bring a list in from a CSV file and take it out again.
class ListTransfer {
 public:
  ListTransfer(NameList& list, Operator& operatorSeam, StatusLine& statusLine, Files& files);

  void loadCSV();
  void exportGrid();

 private:
  NameList& _list;
  Operator& _operator;
  StatusLine& _statusLine;
  Files& _files;
};

}  // namespace ambrel
