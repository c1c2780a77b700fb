// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QSocketNotifier>
#include <QString>
#include <array>
#include <chrono>
#include <memory>
#include <string_view>

#include "core/base/Result.h"
#include "core/platform/Pipe.h"
#include "core/worker/WorkerLink.h"
#include "protocol/LineFramer.h"

namespace ambrel {

// One worker process from its start to its end. QProcess starts and reaps it; the pipes are our own. QProcess
// would read everything that a flooding worker writes into memory, and would hold a command back until the
// event loop runs again, which it does not when the application quits.
class RunningWorker : public QObject {
  Q_OBJECT
 public:
  // How long reading may keep the event loop from its other work.
  static constexpr std::chrono::milliseconds kReadingTime{8};

  RunningWorker();

  // Fails with the reason as far as the system tells at once; see launchFailed.
  Result<void> start(const WorkerLaunch& launch);
  bool isRunning() const { return _process.state() != QProcess::NotRunning; }
  qint64 processId() const { return _process.processId(); }

  // One write, which never waits. False when the worker cannot take the line whole.
  bool writeLine(const QByteArray& line);
  // Closes its standard input and ignores what it still says, so that it never waits for a reader.
  void abandon();
  void terminate() { _process.terminate(); }
  void kill() { _process.kill(); }
  // Waits for the end without running the event loop; whether it came in time.
  bool waitForEnd(std::chrono::milliseconds limit);

 Q_SIGNALS:
  // A whole line with its line feed.
  void lineArrived(const QByteArray& line);
  // The process has ended, and all that it wrote has arrived. Last signal.
  void ended();
  // In place of ended: the program could not be run. Last signal.
  void launchFailed(const QString& reason);

 private:
  void readOutput();
  // Whether there was anything to read.
  bool readPiece();
  void deliverSlice();
  void processFinished();
  void closeOutput();

  QProcess _process;
  PipeEnd _input;
  PipeEnd _output;
  std::unique_ptr<QSocketNotifier> _outputReady;
  protocol::LineFramer _framer;
  bool _abandoned = false;
  std::array<char, 65536> _piece;  // what a pipe holds
  std::string_view _undelivered;   // the rest of _piece
  // Bytes to be read yet once the process has ended: its own children may keep the pipe open and write on.
  qint64 _remaining = -1;  // -1 while the process runs
};

}  // namespace ambrel
