// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <gphoto2/gphoto2.h>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "camera/Attendant.h"
#include "camera/Camera.h"
#include "camera/Watchdog.h"

namespace ambrel::camera {

// Frees what the camera library allocates.
struct GphotoFree {
  void operator()(GPContext* context) const { gp_context_unref(context); }
  void operator()(CameraAbilitiesList* list) const { gp_abilities_list_free(list); }
  void operator()(GPPortInfoList* list) const { gp_port_info_list_free(list); }
  void operator()(::CameraList* list) const { gp_list_free(list); }
  void operator()(::CameraWidget* widget) const { gp_widget_free(widget); }
  void operator()(::Camera* camera) const { gp_camera_unref(camera); }
  void operator()(::CameraFile* file) const { gp_file_unref(file); }
};
template <typename T>
using Gphoto = std::unique_ptr<T, GphotoFree>;

// What the library's calls may take. One in which photos are received may take longer as long as bytes
// arrive; but not for ever, as some of the library's loops never end and keep the camera talking.
constexpr Watchdog::Patience kCallPatience{std::chrono::seconds(20), std::chrono::seconds(20)};
constexpr Watchdog::Patience kTransferPatience{std::chrono::seconds(20), std::chrono::minutes(10)};

// Any camera that the installed libgphoto2 drives, Canon EOS before others; by USB, or at a named port.
class GphotoCamera : public Camera {
 public:
  // `port` as the library writes it ("ptpip:192.168.1.2"), empty for discovery by USB. `hostIdentity` as
  // hostIdentity() makes it. `log` takes lines of diagnosis.
  GphotoCamera(std::string port, std::string hostIdentity, Watchdog& watchdog,
               std::function<void(const std::string&)> log);
  ~GphotoCamera() override;
  GphotoCamera(const GphotoCamera&) = delete;
  GphotoCamera& operator=(const GphotoCamera&) = delete;

  // Loads the list of cameras that the library knows: needed once, before anything else.
  Outcome<> load();

  void meanwhile(std::function<void()> act) override { _attendant.actWith(std::move(act)); }
  Outcome<std::string> find() override;
  Outcome<> open(SaveMode mode) override;
  Outcome<> confirmSaveMode(SaveMode mode) override;
  Outcome<bool> hasCard() override;
  Outcome<CameraEvent> waitForEvent() override;
  Outcome<> download(const CameraFile& file, PhotoSink& sink) override;
  Outcome<std::uint64_t> cardFreeKib() override;
  Outcome<std::vector<CameraFile>> newestCardFiles() override;
  Outcome<CameraFile> withSize(const CameraFile& file) override;
  void close() override;
  void abandon() override;

 private:
  // One call of the library, or some that belong together.
  struct Call {
    Call(GphotoCamera& camera, std::string what, Watchdog::Patience patience = kCallPatience)
        : deadline(camera._watchdog, std::move(what), patience), absence(camera._attendant) {}
    Watchdog::Deadline deadline;
    Attendant::Call absence;
  };

  Outcome<CameraFile> sized(CameraFile file);
  Outcome<std::vector<std::string>> names(const std::string& folder, bool folders);
  Outcome<> reopen();
  Outcome<> setTarget(::CameraWidget* widget, SaveMode mode);

  std::string _port;
  std::string _hostIdentity;
  Watchdog& _watchdog;
  Attendant _attendant;
  std::function<void(const std::string&)> _log;
  Gphoto<GPContext> _context;
  Gphoto<CameraAbilitiesList> _abilities;
  Gphoto<GPPortInfoList> _ports;
  Gphoto<::Camera> _camera;
  std::string _model;
  std::string _where;
  SaveMode _mode = SaveMode::Both;
  bool _listed = false;       // this session's listings are cached by the library from now on
  std::set<int> _ourSockets;  // those that were open before the session
};

}  // namespace ambrel::camera
