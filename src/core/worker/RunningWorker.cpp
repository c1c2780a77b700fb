// SPDX-License-Identifier: Apache-2.0
#include "core/worker/RunningWorker.h"

#include <algorithm>
#include <cerrno>
#include <sys/ioctl.h>
#include <unistd.h>

namespace ambrel {
namespace {

using SteadyClock = std::chrono::steady_clock;

// Small, so that the lines in it are soon dealt with.
constexpr std::size_t kSliceBytes = 4096;

qint64 bytesWaiting(const PipeEnd& end) {
  int count = 0;
  return end.isOpen() && ::ioctl(end.descriptor(), FIONREAD, &count) == 0 ? count : 0;
}

}  // namespace

RunningWorker::RunningWorker() {
  _process.setProcessChannelMode(QProcess::ForwardedChannels);
  _process.setInputChannelMode(QProcess::ForwardedInputChannel);
}

Result<void> RunningWorker::start(const WorkerLaunch& launch) {
  Result<Pipe> input = makePipe();
  if (!input) return Failure{input.error()};
  Result<Pipe> output = makePipe();
  if (!output) return Failure{output.error()};
  Pipe in = std::move(input).value();
  Pipe out = std::move(output).value();
  _process.setProgram(launch.program);
  _process.setArguments(launch.arguments);
  _process.setWorkingDirectory(launch.workingDirectory);
  _process.setProcessEnvironment(launch.environment);
  // Runs between fork and exec, where little is allowed: system calls on plain numbers.
  _process.setChildProcessModifier([from = in.readEnd.descriptor(), to = out.writeEnd.descriptor()] {
    ::dup2(from, STDIN_FILENO);
    ::dup2(to, STDOUT_FILENO);
    ::dup2(to, STDERR_FILENO);
  });
  _process.start();
  if (!isRunning()) return Failure{_process.errorString()};
  connect(&_process, &QProcess::finished, this, &RunningWorker::processFinished);
  connect(&_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) Q_EMIT launchFailed(_process.errorString());
  });
  _input = std::move(in.writeEnd);
  _input.stopWaiting();
  _output = std::move(out.readEnd);
  _output.stopWaiting();
  _outputReady = std::make_unique<QSocketNotifier>(_output.descriptor(), QSocketNotifier::Read);
  connect(_outputReady.get(), &QSocketNotifier::activated, this, &RunningWorker::readOutput);
  return {};
}

bool RunningWorker::writeLine(const QByteArray& line) {
  if (!_input.isOpen()) return false;
  const QByteArray bytes = line + '\n';
  ssize_t written = -1;
  do {
    written = ::write(_input.descriptor(), bytes.constData(), static_cast<std::size_t>(bytes.size()));
  } while (written < 0 && errno == EINTR);
  // Half a command would be joined to the next one.
  if (written >= 0 && written < bytes.size()) _input.close();
  return written == bytes.size();
}

void RunningWorker::abandon() {
  _abandoned = true;
  _input.close();
}

bool RunningWorker::waitForEnd(std::chrono::milliseconds limit) {
  return !isRunning() || _process.waitForFinished(static_cast<int>(limit.count()));
}

void RunningWorker::readOutput() {
  const SteadyClock::time_point end = SteadyClock::now() + kReadingTime;
  while (SteadyClock::now() < end && (!_undelivered.empty() || readPiece()))
    deliverSlice();
  _outputReady->setEnabled(_undelivered.empty() && _output.isOpen());
  if (!_undelivered.empty()) {
    QMetaObject::invokeMethod(this, &RunningWorker::readOutput, Qt::QueuedConnection);
  } else if (_remaining == 0) {
    Q_EMIT ended();
  }
}

bool RunningWorker::readPiece() {
  if (!_output.isOpen()) return false;
  const bool running = _remaining < 0;
  const std::size_t wanted =
      running ? _piece.size() : std::min(_piece.size(), static_cast<std::size_t>(_remaining));
  ssize_t count = -1;
  do {
    count = ::read(_output.descriptor(), _piece.data(), wanted);
  } while (count < 0 && errno == EINTR);
  if (count < 0 && errno == EAGAIN && running) return false;
  if (count > 0 && !running) _remaining -= count;
  if (count <= 0 || _remaining == 0) closeOutput();
  _undelivered = {_piece.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
  return count > 0;
}

void RunningWorker::deliverSlice() {
  const std::string_view slice = _undelivered.substr(0, kSliceBytes);
  _undelivered.remove_prefix(slice.size());
  if (_abandoned) return;
  _framer.feed(slice, [this](std::string_view line) {
    // The receiver of a line may abandon the worker.
    if (!_abandoned) Q_EMIT lineArrived(QByteArray(line.data(), static_cast<qsizetype>(line.size())) + '\n');
  });
}

void RunningWorker::processFinished() {
  _input.close();
  _remaining = bytesWaiting(_output);
  if (_remaining == 0) closeOutput();
  // What is undelivered yet comes first; readOutput is then due already.
  if (_remaining == 0 && _undelivered.empty()) Q_EMIT ended();
}

void RunningWorker::closeOutput() {
  _outputReady->setEnabled(false);
  _output.close();
  if (_remaining > 0) _remaining = 0;
}

}  // namespace ambrel
