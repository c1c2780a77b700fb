// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "core/worker/ProcessLink.h"
#include "ui/Dialogs.h"
#include "ui/MainWindow.h"

namespace ambrel::bench {

// The application's clock with the splash already past.
class ClockAfterSplash : public SystemClock {
 public:
  TimerId callAfter(std::chrono::milliseconds delay, const QObject* context,
                    std::function<void()> action) override {
    return SystemClock::callAfter(
        delay == AmbrelAppDelegate::kSplashTime ? std::chrono::milliseconds(0) : delay, context,
        std::move(action));
  }
};

// The whole application on the files below `home`.
struct Application {
  explicit Application(const QString& home, SystemClock& clock)
      : locations(Locations::below(home)),
        delegate(clock, dialogs, files, link,
                 {locations, Bundle(QStringLiteral(AMBREL_BUNDLE)), [](qint64) {}}),
        window(delegate) {
    // From the event loop, as the program itself does.
    QMetaObject::invokeMethod(
        &window, [this] { delegate.applicationDidFinishLaunching(window); }, Qt::QueuedConnection);
  }
  ~Application() { delegate.applicationWillTerminate(); }
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  Locations locations;
  PosixFiles files;
  ProcessLink link;
  ui::Dialogs dialogs;
  AmbrelAppDelegate delegate;
  ui::MainWindow window;
};

}  // namespace ambrel::bench
