// SPDX-License-Identifier: Apache-2.0
#include "faults/FaultRunner.h"

#include <QFile>
#include <algorithm>
#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace ambrel::faults {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestSession{25};
constexpr std::chrono::seconds kLongestWorker{5};

// Until the child has ended, or the time is over; whether it has.
bool waitFor(pid_t child, std::chrono::seconds limit, int& status) {
  const auto deadline = steady_clock::now() + limit;
  while (waitpid(child, &status, WNOHANG) == 0) {
    if (steady_clock::now() > deadline) return false;
    ::usleep(500);
  }
  return true;
}

bool hasChildrenBeside(pid_t spared) {
  const std::string self = std::to_string(::getpid());
  std::ifstream list("/proc/" + self + "/task/" + self + "/children");
  for (pid_t child = 0; list >> child;)
    if (child != spared) return true;
  return false;
}

// Workers whose session was killed become children of this process and end with their input.
void waitForWorkers(pid_t camera, QStringList& wrong) {
  const auto deadline = steady_clock::now() + kLongestWorker;
  while (steady_clock::now() < deadline) {
    const pid_t ended = waitpid(-1, nullptr, WNOHANG);
    if (ended < 0 || (ended == 0 && !hasChildrenBeside(camera))) return;
    if (ended == 0) ::usleep(500);
  }
  wrong.append(QStringLiteral("I6: a worker outlives its application"));
}

// What lies in the folder for temporary files is nobody's to keep.
std::optional<FileEvent> eventOf(const Call& call) {
  const std::string name = call.name.data();
  const std::string path = call.path.data();
  if (path.empty() || path.starts_with("/tmp/") || path.starts_with("/proc/")) return std::nullopt;
  using Kind = FileEvent::Kind;
  if (call.error == kNote) {
    return name == "filed" || name == "off queue" ? std::optional(FileEvent{Kind::Done, path}) : std::nullopt;
  }
  if (call.error != 0) return std::nullopt;
  if (name == "fsync" || name == "fdatasync") return FileEvent{Kind::Flush, path};
  if (name == "rename" || name == "link") return FileEvent{Kind::Rename, path, call.path2.data()};
  const bool writes = name == "write" || name == "pwrite" || name == "writev" || name == "copy_range" ||
                      name == "sendfile" || name == "ftruncate";
  return writes ? std::optional(FileEvent{Kind::Write, path}) : std::nullopt;
}

// Nobody waits for the answer: the one who asks may be dead by then.
void pressShutter(std::uint16_t controlPort) {
  const int connection = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(controlPort);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  constexpr std::string_view kCommand = "shoot size=120000\n";
  if (::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    (void)::send(connection, kCommand.data(), kCommand.size(), MSG_NOSIGNAL);
    char answer[256];
    (void)::recv(connection, answer, sizeof answer, 0);
  }
  ::close(connection);
}

}  // namespace

SharedReport::SharedReport()
    : report(static_cast<Report*>(
          mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
  if (report == MAP_FAILED) std::abort();
}

SharedReport::~SharedReport() {
  munmap(report, sizeof(Report));
}

void SharedReport::reset() {
  const std::size_t logged = std::min<std::size_t>(report->logged, kLogEntries);
  std::fill_n(report->log.begin(), logged, Call{});
  for (auto& side : report->calls)
    for (auto& count : side)
      count = 0;
  report->total = 0;
  report->hit = false;
  report->hitCall = {};
  report->logged = 0;
  report->textLength = 0;
}

Runner::Runner(const QString& folder, const QString& bundle, const QString& realBundle)
    : _world(folder), _bundle(bundle), _realBundle(realBundle) {
  prctl(PR_SET_CHILD_SUBREAPER, 1);
}

Runner::~Runner() {
  _world.clear();
}

bool Runner::start(const Plan& plan, Task task, SharedReport& report, QStringList& wrong) {
  report.reset();
  const pid_t child = fork();
  if (child == 0) {
    prctl(PR_SET_CHILD_SUBREAPER, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setenv("AMBREL_DELIVERIES", QFile::encodeName(_world.deliveries()).constData(), 1);
    setenv("TMPDIR", QFile::encodeName(_world.home() + QStringLiteral("/tmp")).constData(), 1);
    std::function<void()> shutter;
    if (_camera) {
      setenv("AMBREL_CAMERA_PORT", _camera->gphotoPort().c_str(), 1);
      setenv("AMBREL_HOME", QFile::encodeName(_world.home() + QStringLiteral("/../worker")).constData(), 1);
      shutter = [port = _camera->controlPort()] { pressShutter(port); };
    }
    arm(plan, QFile::encodeName(_world.home()).constData(), *report.report);
    runSession(_world.home(), _camera ? _realBundle : _bundle, task, shutter);
  }
  int status = 0;
  if (!waitFor(child, kLongestSession, status)) {
    wrong.append(QStringLiteral("I6: the session hangs"));
    ::kill(child, SIGKILL);
    waitpid(child, &status, 0);
  } else if (WIFSIGNALED(status) && WTERMSIG(status) != SIGKILL) {
    wrong.append(QStringLiteral("I6: the session crashed with signal %1").arg(WTERMSIG(status)));
  }
  waitForWorkers(_camera ? _camera->pid() : -1, wrong);
  const std::size_t logged = std::min<std::size_t>(report.report->logged, kLogEntries);
  for (std::size_t i = 0; i < logged; ++i) {
    const Call& call = report.report->log[i];
    if (call.error != kOutsideHome) continue;
    wrong.append(QStringLiteral("I8: %1 of %2")
                     .arg(QString::fromUtf8(call.name.data()), QString::fromUtf8(call.path.data())));
  }
  return WIFEXITED(status);
}

QStringList Runner::said(const SharedReport& report) const {
  const auto length = std::min<std::size_t>(report.report->textLength, kTextBytes);
  const QByteArray text(report.report->text.data(), static_cast<qsizetype>(length));
  return QString::fromUtf8(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

LintResult Runner::lint(Task task, Volume volume) {
  _world.prepare();
  QStringList wrong;
  noteQueueFile();
  (void)start({.volume = volume}, task, _session, wrong);
  watchRenames(nullptr);
  std::vector<FileEvent> events;
  const std::size_t logged = std::min<std::size_t>(_session.report->logged, kLogEntries);
  for (std::size_t i = 0; i < logged; ++i)
    if (const auto event = eventOf(_session.report->log[i])) events.push_back(*event);
  LintResult result = lintFlushes(events, "/ambrel_grid.csv");
  for (const QString& line : wrong)
    result.wrong.push_back(line.toStdString());
  return result;
}

Outcome Runner::dryRun(Task task, Volume volume) {
  return run({task, {.volume = volume}});
}

// What it has taken is what must be somewhere.
void Runner::lookIntoCamera() {
  if (!_camera) return;
  QMap<int, World::Photo> photos;
  for (const SimulatedPhoto& photo : _camera->photos()) {
    const bool onCard = photo.place == "card" && !photo.deleted;
    photos.insert(static_cast<int>(photo.shot), {QByteArray::fromStdString(photo.sha256), onCard});
  }
  _world.expect(photos);
}

Outcome Runner::run(const Case& c) {
  _world.prepare();
  _camera.reset();
  if (c.task == Task::Camera) _camera = std::make_unique<SimulatedCamera>();
  Outcome outcome;
  const bool ended = start(c.plan, c.task, _session, outcome.wrong);
  lookIntoCamera();
  outcome.hit = _session.report->hit;
  outcome.at = _session.report->hitCall;
  outcome.said = said(_session);
  Aftermath after = {.task = c.task,
                     .killed = !ended,
                     .ended = c.plan.kind == Kind::Terminate && outcome.hit,
                     .faultStays = c.plan.kind == Kind::ForEver && outcome.hit,
                     .separateMoves = c.plan.volume != Volume::Plain,
                     .said = outcome.said,
                     .saidFirst = outcome.said};
  outcome.wrong += _world.violations(after);

  if (c.killAgainAt != 0) {
    // Counted over all threads: which one makes a call matters little to a start.
    (void)start({.kind = Kind::Kill, .thread = 0, .call = c.killAgainAt}, Task::Recover, _restart,
                outcome.wrong);
    outcome.wrong += _world.violations(after);
  }
  (void)start({}, Task::Recover, _restart, outcome.wrong);
  after.recovered = true;
  after.said = said(_restart);
  outcome.wrong += _world.violations(after);
  outcome.wrong.removeDuplicates();
  return outcome;
}

}  // namespace ambrel::faults
