// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTcpSocket>
#include <deque>
#include <functional>

#include "core/base/Result.h"

namespace ambrel {

// The camera on loopback as a child process: started, told to take pictures, and asked what it took.
class DemoCamera : public QObject {
  Q_OBJECT
 public:
  enum class Console { Terminal, None };

  // With Console::Terminal the person at the terminal types commands to the camera and reads its answers.
  DemoCamera(const QString& program, Console console);
  ~DemoCamera() override;

  // Starts the camera and waits until a worker may connect to it. For use before the event loop runs.
  Result<void> startAndWait();
  // For the environment variable that tells the worker where the camera is.
  QString cameraPort() const { return _cameraPort; }
  // Sends one command; the answer comes later, line by line, without the line that ends it.
  void command(const QByteArray& line, std::function<void(const QStringList& answer)> answered = {});

 Q_SIGNALS:
  // It ended on its own.
  void failed(const QString& reason);

 private:
  void readOutput();
  void readAnswers();

  QProcess _process;
  QTcpSocket _control;
  QString _program;
  QString _cameraPort;
  QStringList _answer;
  std::deque<std::function<void(const QStringList&)>> _waiting;
};

// The SHA-256 of every photo in the answer to the command "photos".
QStringList hashesInAnswer(const QStringList& answer);

}  // namespace ambrel
