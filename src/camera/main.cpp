// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <sys/signalfd.h>
#include <unistd.h>

#include <gphoto2/gphoto2-version.h>

#include "camera/CommandLoop.h"
#include "camera/Descriptors.h"
#include "camera/DownloadFolder.h"
#include "camera/GphotoCamera.h"
#include "camera/HostIdentity.h"
#include "camera/LineInput.h"
#include "camera/LineOutput.h"
#include "camera/PrivateHome.h"
#include "camera/StandardStreams.h"
#include "camera/Watchdog.h"

namespace {

using namespace ambrel::camera;
using ambrel::protocol::Message;

constexpr int kExitUsage = 2;
constexpr int kExitHung = 3;
constexpr std::chrono::milliseconds kLastWordPatience{500};

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// A request to end the process becomes something to read, so that it is met between two calls and never
// within.
int terminationRequests() {
  sigset_t requests;
  sigemptyset(&requests);
  for (const int request : {SIGTERM, SIGINT, SIGHUP})
    sigaddset(&requests, request);
  sigprocmask(SIG_BLOCK, &requests, nullptr);
  return signalfd(-1, &requests, SFD_CLOEXEC);
}

}  // namespace

// Arguments: download folder, path of the camera maker's SDK (this worker needs none), save mode word.
// Environment: AMBREL_CAMERA_PORT names the port of a camera that is not on USB, as "ptpip:192.168.1.2".
int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: ambrel_cpp_worker DOWNLOAD_FOLDER SDK_PATH both|disk|card\n", stderr);
    return kExitUsage;
  }
  // The library writes to connections that the camera may have closed.
  std::signal(SIGPIPE, SIG_IGN);
  // A file that may not grow is a failed download, as on a full disk.
  std::signal(SIGXFSZ, SIG_IGN);
  // Its texts are looked at, and come translated otherwise.
  setenv("LC_ALL", "C", 1);
  const int termination = terminationRequests();
  // Of the user's own home, before it becomes another one.
  const std::string identity = hostIdentity();
  const PrivateHome home;
  StandardStreams streams;
  LineOutput output(streams.output());
  const auto log = [&](std::string_view text) { output.say({Message::Kind::Log, std::string(text)}); };

  LineInput input(streams.input());
  input.endOn(termination);
  input.alsoServe(streams.readEnd(), [&] { streams.drain(log); });
  Watchdog watchdog(
      {{streams.input(), 0, 0}, {termination, POLLIN, 0}},
      [&](const std::string& reason) {
        output.trySay({Message::Kind::Error, "camera worker stopped: " + reason}, kLastWordPatience);
        home.remove();
        _exit(kExitHung);
      },
      internetBytesReceived);

  output.say({Message::Kind::CppWorker, std::string("libgphoto2 ") + *gp_library_version(GP_VERSION_SHORT)});
  output.say({Message::Kind::Status, "loading canon sdk"});
  GphotoCamera camera(environment("AMBREL_CAMERA_PORT"), identity, watchdog, log);
  if (const Outcome<> loaded = camera.load(); !loaded) {
    output.say({Message::Kind::Error, "camera library cannot be loaded: " + loaded.failure().reason});
    return EXIT_FAILURE;
  }
  DownloadFolder folder;
  folder.use(argv[1]);
  const auto saveMode = ambrel::protocol::saveModeFromWord(argv[3]);
  CommandLoop(camera, folder, input, output, saveMode.value_or(SaveMode::Both)).run();
  return EXIT_SUCCESS;
}
