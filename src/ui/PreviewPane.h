// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/Surface.h"
#include "ui/TextLabel.h"

namespace ambrel::ui {

// The right pane: the place of the photo just taken.
class PreviewPane : public Surface {
  Q_OBJECT
 public:
  explicit PreviewPane(QWidget* parent);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  Surface* _preview;
  TextLabel* _previewFilenameLabel;
};

}  // namespace ambrel::ui
