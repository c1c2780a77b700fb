// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFileDialog>

#include "core/base/Operator.h"

namespace ambrel::ui {

// The file chooser in the style of the window.
class PathChooser : public QFileDialog {
  Q_OBJECT
 public:
  PathChooser(const PathRequest& request, QWidget* parent);

  // Absolute path, empty when cancelled.
  QString chosenPath() const;

 protected:
  void accept() override;

 private:
  void styleLists();
  void styleCancelButton();

  PathRequest::Kind _kind;
};

// "List files (*.csv *.txt)" in every letter case; "All files (*)" for none.
QString nameFilter(const QStringList& extensions);

}  // namespace ambrel::ui
