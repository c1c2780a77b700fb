// SPDX-License-Identifier: Apache-2.0
#include "ui/ThinSplitter.h"

namespace ambrel::ui {
namespace {

class InvisibleHandle : public QSplitterHandle {
 public:
  using QSplitterHandle::QSplitterHandle;

 protected:
  void paintEvent(QPaintEvent*) override {}
};

}  // namespace

ThinSplitter::ThinSplitter(QWidget* parent) : QSplitter(Qt::Horizontal, parent) {
  setHandleWidth(1);
}

QSplitterHandle* ThinSplitter::createHandle() {
  return new InvisibleHandle(orientation(), this);
}

}  // namespace ambrel::ui
