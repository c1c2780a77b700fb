// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include "core/base/Result.h"

namespace ambrel {

// What a camera worker is started with.
struct WorkerLaunch {
  QString program;
  QStringList arguments;
  QString workingDirectory;
  QProcessEnvironment environment;
};

// The byte channel to one camera worker process: its standard input, and its standard output and error as one
// stream. Order of use: start; then send, and blockArrived any number of times; then exactly one exited per
// successful start, also after drop, terminate or kill. Signals are never emitted from within a call.
class WorkerLink : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  // Starts a worker. The one that was current before is no longer current (see drop). Fails with the reason.
  // What the system finds out only after this call has returned comes as launchFailed.
  virtual Result<void> start(const WorkerLaunch& launch) = 0;
  // Whether the current worker runs.
  virtual bool isRunning() const = 0;
  // Process id of the current worker, 0 when there is none.
  virtual qint64 processId() const = 0;

  // Sends one line (given without its line feed) in one write. False when the pipe is broken.
  virtual bool sendLine(const QByteArray& line) = 0;
  virtual void terminate() = 0;
  // Forgets the current worker without ending it: nothing more is sent to it or heard from it but its exit.
  virtual void drop() = 0;
  // Ends a worker of this link, current or dropped, in a way that it cannot refuse. Nothing happens when it
  // has ended already, whoever bears its process id now.
  virtual void kill(qint64 processId) = 0;

 Q_SIGNALS:
  // A block of output of the current worker: one whole line with its line feed.
  void blockArrived(const QByteArray& block);
  // A worker ended, for whatever reason. `wasCurrent` is false when it had been dropped or replaced.
  void exited(bool wasCurrent);
  // In place of exited(true): the current worker's program could not be run after all.
  void launchFailed(const QString& reason);
};

}  // namespace ambrel
