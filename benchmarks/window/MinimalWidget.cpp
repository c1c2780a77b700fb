// SPDX-License-Identifier: Apache-2.0
// The least that a program with a window does, to measure ours by: it says when its window is painted, and
// how much processor time its thread has taken by then. With an argument the window shows it as a line of
// text, for which the toolkit looks at every font that is installed.
#include <QApplication>
#include <QPainter>
#include <QWidget>
#include <cstdio>
#include <ctime>

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
  timespec time = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  std::printf("painted %.3f\n",
              static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6);
  std::fflush(stdout);
  return 0;
}
