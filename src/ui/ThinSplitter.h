// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSplitter>

namespace ambrel::ui {

// Two panes side by side with an invisible divider, one point wide, between them. The toolkit widens the part
// that can be grabbed.
class ThinSplitter : public QSplitter {
  Q_OBJECT
 public:
  explicit ThinSplitter(QWidget* parent);

 protected:
  QSplitterHandle* createHandle() override;
};

}  // namespace ambrel::ui
