// SPDX-License-Identifier: Apache-2.0
// The least that a program with a window does, to measure ours by: it says when its window is painted. With
// an argument the window shows it as a line of text, for which the toolkit looks at every font that is
// installed.
#include <QApplication>
#include <QPainter>
#include <QWidget>
#include <cstdio>

namespace {

class Widget : public QWidget {
 public:
  bool painted = false;

 protected:
  void paintEvent(QPaintEvent*) override {
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 1) QPainter(this).drawText(rect(), Qt::AlignCenter, arguments[1]);
    painted = true;
  }
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  Widget widget;
  widget.resize(1260, 840);
  widget.show();
  while (!widget.painted)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  std::puts("painted");
  std::fflush(stdout);
  return 0;
}
