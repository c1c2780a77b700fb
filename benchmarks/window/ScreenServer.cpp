// SPDX-License-Identifier: Apache-2.0
#include "window/ScreenServer.h"

#include "support/EndWithParent.h"
#include "support/Goals.h"

namespace ambrel::bench {

ScreenServer::ScreenServer() {
  endWithParent(_server);
  _server.setStandardErrorFile(QProcess::nullDevice());
  // Without -noreset it would begin anew whenever its last client has gone, and the next would wait for that.
  _server.start(QStringLiteral("Xvfb"),
                {"-displayfd", "1", "-screen", "0", "1440x1000x24", "-nolisten", "tcp", "-noreset"});
  while (!_server.canReadLine())
    require(_server.waitForReadyRead(), "Xvfb cannot be started");
  qputenv("DISPLAY", ':' + _server.readLine().trimmed());
  qputenv("QT_QPA_PLATFORM", "xcb");
  qputenv("QT_SCALE_FACTOR", "1");
}

ScreenServer::~ScreenServer() {
  _server.terminate();
  _server.waitForFinished();
}

}  // namespace ambrel::bench
