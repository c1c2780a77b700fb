// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>

#include "core/base/Files.h"
#include "core/base/Operator.h"
#include "core/base/StatusLine.h"
#include "core/list/NameList.h"

namespace ambrel {

// How a list comes in from a file that the operator picks, and goes out to one.
class ListTransfer : public QObject {
  Q_OBJECT
 public:
  ListTransfer(NameList& list, Operator& person, StatusLine& statusLine, Files& files);

  // Replaces the list by the first column of a CSV file; asks before it drops names.
  void loadCSV();
  // Writes names and notes. The file is written on a thread of its own: it may be on a slow drive.
  void exportGrid();

 private:
  void importFrom(const QString& path);
  void exportTo(const QString& path);
  void reportExport(const Result<void>& written, const QString& path, qint64 rows);

  NameList& _list;
  Operator& _operator;
  StatusLine& _statusLine;
  Files& _files;
};

}  // namespace ambrel
