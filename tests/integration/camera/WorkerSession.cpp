// SPDX-License-Identifier: Apache-2.0
#include "WorkerSession.h"

#include <cstdlib>

#include "protocol/Messages.h"

namespace ambrel {
namespace {

constexpr std::string_view kDownloaded = "DOWNLOADED|";

}  // namespace

WorkerProcess& WorkerSession::start(const std::string& mode, std::vector<std::string> under) {
  worker.reset();
  worker = std::make_unique<WorkerProcess>(
      WorkerProcess::Launch{folder.path(), camera.gphotoPort(), mode, std::move(under), {}, startPatience});
  return *worker;
}

WorkerProcess& WorkerSession::watch(const std::string& mode) {
  start(mode);
  worker->connect();
  worker->watch();
  return *worker;
}

void WorkerSession::TearDown() {
  if (!worker) return;
  for (const std::string& line : worker->lines()) {
    EXPECT_NE(protocol::parseMessage(line).kind, protocol::Message::Kind::Unknown) << line;
  }
}

std::string WorkerSession::waitForPath() {
  return worker->waitFor(kDownloaded).substr(kDownloaded.size());
}

std::vector<std::string> WorkerSession::waitForPhotos(std::size_t count) {
  std::vector<std::string> checksums;
  while (checksums.size() < count) {
    checksums.push_back(sha256OfFile(waitForPath()));
  }
  return checksums;
}

std::vector<std::string> WorkerSession::takenPhotos() {
  std::vector<std::string> checksums;
  for (const SimulatedPhoto& photo : camera.photos()) {
    checksums.push_back(photo.sha256);
  }
  return checksums;
}

void WorkerSession::expectNoMorePhotos(std::chrono::milliseconds within) {
  while (const std::optional<std::string> line = worker->next(within)) {
    EXPECT_FALSE(line->starts_with(kDownloaded)) << *line;
  }
}

int numberFromEnvironment(const char* variable, int otherwise) {
  const char* value = std::getenv(variable);
  return value != nullptr ? std::atoi(value) : otherwise;
}

}  // namespace ambrel
