// SPDX-License-Identifier: Apache-2.0
#include "core/list/ListTransfer.h"

#include <QFileInfo>
#include <QThread>
#include <future>
#include <memory>

#include "core/base/Text.h"
#include "core/list/GridText.h"

namespace ambrel {

namespace {

PathRequest importRequest() {
  PathRequest request;
  request.kind = PathRequest::Kind::OpenFile;
  request.extensions = QStringList({QStringLiteral("csv"), QStringLiteral("txt")});
  return request;
}

PathRequest exportRequest() {
  PathRequest request;
  request.kind = PathRequest::Kind::SaveFile;
  request.extensions = QStringList(QStringLiteral("csv"));
  request.proposedName = QStringLiteral("ambrel-list.csv");
  return request;
}

Question replaceQuestion() {
  return {QStringLiteral("Replace current list?"),
          QStringLiteral("Importing replaces every name and note currently in the list. Use Export first if "
                         "you want to keep them."),
          {QStringLiteral("Replace"), QStringLiteral("Cancel")}};
}

}  // namespace

ListTransfer::ListTransfer(NameList& list, Operator& person, StatusLine& statusLine, Files& files)
    : _list(list), _operator(person), _statusLine(statusLine), _files(files) {}

void ListTransfer::loadCSV() {
  _operator.choosePath(importRequest(), [this](const QString& path) {
    if (path.isEmpty()) return;
    if (_list.grid().isEmpty()) {
      importFrom(path);
      return;
    }
    _operator.ask(replaceQuestion(), [this, path](const Answer& answer) {
      if (answer.button == 0) importFrom(path);
    });
  });
}

void ListTransfer::importFrom(const QString& path) {
  const qint64 count = _list.replaceListFromCSV(path);
  _operator.showAlert(
      QStringLiteral("Imported %1 name%2").arg(count).arg(pluralEnding(count)),
      QStringLiteral("Only the FIRST COLUMN is imported (the first row is treated as a header and skipped). "
                     "Other columns are ignored.\n\n"
                     "Exporting from Excel or Numbers? Only the first sheet of the exported CSV applies.\n\n"
                     "Add notes by double-clicking the Notes column."));
}

void ListTransfer::exportGrid() {
  if (_list.grid().isEmpty()) {
    _operator.showAlert(QStringLiteral("Nothing to Export"),
                        QStringLiteral("The list is empty. Import a CSV or paste names first."));
    return;
  }
  _operator.choosePath(exportRequest(), [this](const QString& path) {
    if (!path.isEmpty()) exportTo(path);
  });
}

void ListTransfer::exportTo(const QString& path) {
  const qint64 rows = _list.grid().rowCount();
  const QByteArray bytes = writeGrid(_list.grid().rows(), GridColumns::NamesAndNotes);
  const auto written = std::make_shared<std::promise<Result<void>>>();
  QThread* writer = QThread::create(
      [&files = _files, path, bytes, written] { written->set_value(files.replaceWhole(path, bytes)); });
  connect(writer, &QThread::finished, this,
          [this, written, path, rows] { reportExport(written->get_future().get(), path, rows); });
  connect(writer, &QThread::finished, writer, &QObject::deleteLater);
  writer->start();
}

void ListTransfer::reportExport(const Result<void>& written, const QString& path, qint64 rows) {
  if (!written) {
    _operator.showAlert(
        QStringLiteral("Export Failed"),
        QStringLiteral("Could not write the CSV file. Check the destination folder permissions."));
    return;
  }
  _statusLine.setStatus(QStringLiteral("Exported %1 rows to %2.").arg(rows).arg(QFileInfo(path).fileName()),
                        StatusKind::Good);
}

}  // namespace ambrel
