// SPDX-License-Identifier: Apache-2.0
#include "e2e/Hands.h"

#include <QCoreApplication>
#include <QProcess>
#include <chrono>
#include <gtest/gtest.h>

#include "support/EventLoop.h"

namespace ambrel {
namespace {

// Between a move and what follows it: the pointer enters, the toolkit notices.
const QString kPause = QStringLiteral("0.06");
constexpr int kDragSteps = 6;

QStringList moveTo(QPoint place) {
  return {QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y()),
          QStringLiteral("sleep"), kPause};
}

}  // namespace

void Hands::click(const QWidget* widget) {
  click(widget, widget->rect().center());
}

void Hands::click(const QWidget* widget, QPoint place, int button) {
  run(moveTo(widget->mapToGlobal(place)) + QStringList{QStringLiteral("click"), QString::number(button)});
}

void Hands::doubleClick(const QWidget* widget, QPoint place) {
  run(moveTo(widget->mapToGlobal(place)) + QStringList{QStringLiteral("click"), QStringLiteral("--repeat"),
                                                       QStringLiteral("2"), QStringLiteral("--delay"),
                                                       QStringLiteral("40"), QStringLiteral("1")});
}

void Hands::drag(const QWidget* widget, QPoint from, QPoint to) {
  QStringList steps = moveTo(widget->mapToGlobal(from));
  steps << QStringLiteral("mousedown") << QStringLiteral("1") << QStringLiteral("sleep") << kPause;
  for (int step = 1; step <= kDragSteps; ++step)
    steps << moveTo(widget->mapToGlobal(from + (to - from) * step / kDragSteps));
  steps << QStringLiteral("mouseup") << QStringLiteral("1");
  run(steps);
}

void Hands::type(const QString& text) {
  run({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("15"), text});
}

void Hands::key(const QString& name) {
  run({QStringLiteral("key"), name});
}

void Hands::run(const QStringList& arguments) {
  QProcess tool;
  tool.start(QStringLiteral("xdotool"), arguments);
  ASSERT_TRUE(runEventsUntil([&] { return tool.state() == QProcess::NotRunning; }))
      << arguments.join(QLatin1Char(' ')).toStdString();
  ASSERT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().toStdString();
  // The server has the events; let them arrive.
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(60);
  runEventsUntil([&] { return std::chrono::steady_clock::now() >= end; });
}

}  // namespace ambrel
