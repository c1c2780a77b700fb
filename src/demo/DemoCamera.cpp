// SPDX-License-Identifier: Apache-2.0
#include "demo/DemoCamera.h"

#include <QHostAddress>
#include <QRegularExpression>
#include <cstdio>

namespace ambrel {
namespace {

constexpr int kStartMilliseconds = 10000;
constexpr int kEndingMilliseconds = 2000;

}  // namespace

DemoCamera::DemoCamera(const QString& program, Console console) : _program(program) {
  _process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  if (console == Console::Terminal) {
    _process.setInputChannelMode(QProcess::ForwardedInputChannel);
  } else {
    _process.setArguments({QStringLiteral("--no-stdin")});
  }
  connect(&_process, &QProcess::readyReadStandardOutput, this, &DemoCamera::readOutput);
  connect(&_process, &QProcess::finished, this,
          [this] { Q_EMIT failed(QStringLiteral("The simulated camera has ended.")); });
  connect(&_control, &QTcpSocket::readyRead, this, &DemoCamera::readAnswers);
}

DemoCamera::~DemoCamera() {
  _process.disconnect(this);
  _process.terminate();
  _process.waitForFinished(kEndingMilliseconds);
}

Result<void> DemoCamera::startAndWait() {
  _process.setProgram(_program);
  _process.start();
  while (_cameraPort.isEmpty()) {
    if (!_process.waitForReadyRead(kStartMilliseconds)) {
      return Failure{QStringLiteral("The simulated camera: ") + _process.errorString()};
    }
    readOutput();
  }
  if (!_control.waitForConnected(kStartMilliseconds)) {
    return Failure{QStringLiteral("The simulated camera: ") + _control.errorString()};
  }
  return {};
}

void DemoCamera::command(const QByteArray& line, std::function<void(const QStringList&)> answered) {
  _waiting.push_back(std::move(answered));
  _control.write(line + '\n');
}

void DemoCamera::readOutput() {
  static const QRegularExpression ready(QStringLiteral("^READY ptpip=(\\d+) control=(\\d+)"));
  while (_process.canReadLine()) {
    const QString line = QString::fromUtf8(_process.readLine()).trimmed();
    const QRegularExpressionMatch match = ready.match(line);
    if (match.hasMatch() && _cameraPort.isEmpty()) {
      _cameraPort = QStringLiteral("ptpip:127.0.0.1:%1:%1").arg(match.captured(1));
      _control.connectToHost(QHostAddress(QHostAddress::LocalHost), match.captured(2).toUShort());
    } else {
      std::puts(line.toUtf8().constData());
      std::fflush(stdout);
    }
  }
}

void DemoCamera::readAnswers() {
  while (_control.canReadLine()) {
    const QString line = QString::fromUtf8(_control.readLine()).trimmed();
    if (!line.startsWith(QLatin1String("ok")) && !line.startsWith(QLatin1String("error"))) {
      _answer.append(line);
      continue;
    }
    if (line.startsWith(QLatin1String("error")))
      std::fprintf(stderr, "camera: %s\n", line.toUtf8().constData());
    const QStringList answer = std::exchange(_answer, {});
    if (_waiting.empty()) continue;
    const std::function<void(const QStringList&)> answered = std::move(_waiting.front());
    _waiting.pop_front();
    if (answered) answered(answer);
  }
}

QStringList hashesInAnswer(const QStringList& answer) {
  static const QRegularExpression hash(QStringLiteral("sha256=([0-9a-f]{64})"));
  QStringList hashes;
  for (const QString& line : answer) {
    if (const QRegularExpressionMatch match = hash.match(line); match.hasMatch())
      hashes.append(match.captured(1));
  }
  return hashes;
}

}  // namespace ambrel
