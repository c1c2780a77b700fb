// SPDX-License-Identifier: Apache-2.0
#include "camera/GphotoCamera.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <gphoto2/gphoto2-port-log.h>
#include <gphoto2/gphoto2-setting.h>

#include "camera/Descriptors.h"

namespace ambrel::camera {
namespace {

// The library polls the camera once and then sleeps for the rest of this; the pauses between are ours.
constexpr int kEventWaitMs = 1;
constexpr std::string_view kAnyUsb = "usb:";
constexpr std::string_view kCaptureTarget = "currentvalue of d11c is ";

Failure failureFor(int error) {
  return {error == GP_ERROR_CAMERA_BUSY ? Failure::Kind::Busy : Failure::Kind::Lost,
          std::string(gp_result_as_string(error)) + " (" + std::to_string(error) + ")"};
}

// Before there is a session an error tells why there cannot be one.
Failure openFailureFor(int error) {
  Failure failure = failureFor(error);
  switch (error) {
    case GP_ERROR_IO_USB_CLAIM:
    case GP_ERROR_IO_LOCK:
    case GP_ERROR_CAMERA_BUSY:
    // A camera on the network that has another host already says no more than this.
    case GP_ERROR:
      failure.kind = Failure::Kind::InUse;
      return failure;
    default:
      failure.kind = Failure::Kind::NotFound;
      return failure;
  }
}

template <typename T, typename New>
Gphoto<T> make(New create) {
  T* made = nullptr;
  create(&made);
  return Gphoto<T>(made);
}

const char* settingFor(SaveMode mode) {
  return mode == SaveMode::Disk ? "sdram" : "card";
}

void saveSetting(const char* camlib, const char* key, const char* value) {
  // The library's signature lacks const; it copies all three.
  gp_setting_set(const_cast<char*>(camlib), const_cast<char*>(key), const_cast<char*>(value));
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// Where the camera itself says that it stores photos, the library tells its log only. While anybody listens
// to that it prints every byte of a photo in hexadecimal, at a tenth of the speed; so not for longer than
// needed.
struct CaptureTargetTap {
  CaptureTargetTap() : id(gp_log_add_func(GP_LOG_DEBUG, &CaptureTargetTap::hear, this)) {}
  ~CaptureTargetTap() { gp_log_remove_func(id); }
  CaptureTargetTap(const CaptureTargetTap&) = delete;
  CaptureTargetTap& operator=(const CaptureTargetTap&) = delete;

  static void hear(GPLogLevel, const char*, const char* text, void* tap) {
    const std::string_view line(text);
    const std::size_t at = line.find(kCaptureTarget);
    if (at == std::string_view::npos) return;
    static_cast<CaptureTargetTap*>(tap)->value = line.substr(at + kCaptureTarget.size());
  }

  std::string value;  // hexadecimal, empty until it was told
  int id;
};

struct Transfer {
  PhotoSink& sink;
  Watchdog& watchdog;
  Attendant& attendant;
  const std::set<int>& ourSockets;
  bool brokenOff = false;
};

int takeSize(void*, std::uint64_t*) {
  return GP_OK;
}

// In the middle of a photo the library neither looks at our result nor asks for a cancellation. Over a
// network its connection can be ended; by USB the photo is soon over anyway.
int takeBytes(void* priv, unsigned char* data, std::uint64_t* length) {
  auto& transfer = *static_cast<Transfer*>(priv);
  transfer.watchdog.feed();
  const auto back = transfer.attendant.back();
  if (!transfer.brokenOff && !transfer.sink.write({data, static_cast<std::size_t>(*length)})) {
    transfer.brokenOff = true;
    endInternetSocketsBut(transfer.ourSockets);
  }
  return transfer.brokenOff ? GP_ERROR_CANCEL : GP_OK;
}

// By USB the library tells how far a transfer has come; but it says so of none that is short.
unsigned startProgress(GPContext*, float, const char*, void* watchdog) {
  static_cast<Watchdog*>(watchdog)->feed();
  return 0;
}

void updateProgress(GPContext*, unsigned, float, void* watchdog) {
  static_cast<Watchdog*>(watchdog)->feed();
}

void stopProgress(GPContext*, unsigned, void* watchdog) {
  static_cast<Watchdog*>(watchdog)->feed();
}

}  // namespace

GphotoCamera::GphotoCamera(std::string port, std::string hostIdentity, Watchdog& watchdog,
                           std::function<void(const std::string&)> log)
    : _port(std::move(port)),
      _hostIdentity(std::move(hostIdentity)),
      _watchdog(watchdog),
      _log(std::move(log)),
      _context(gp_context_new()) {
  gp_context_set_progress_funcs(_context.get(), startProgress, updateProgress, stopProgress, &watchdog);
}

GphotoCamera::~GphotoCamera() {
  close();
}

Outcome<> GphotoCamera::load() {
  const Call call(*this, "loading the camera library");
  _abilities = make<CameraAbilitiesList>(gp_abilities_list_new);
  const int result = gp_abilities_list_load(_abilities.get(), _context.get());
  if (result < GP_OK) return failureFor(result);
  return Done{};
}

Outcome<std::string> GphotoCamera::find() {
  const Call call(*this, "looking for a camera");
  // A fresh list each time: a camera that was plugged in again is another device.
  _ports = make<GPPortInfoList>(gp_port_info_list_new);
  int result = gp_port_info_list_load(_ports.get());
  if (result >= GP_OK && !_port.empty()) result = gp_port_info_list_lookup_path(_ports.get(), _port.c_str());
  const auto found = make<::CameraList>(gp_list_new);
  if (result >= GP_OK) {
    result = gp_abilities_list_detect(_abilities.get(), _ports.get(), found.get(), _context.get());
  }
  if (result < GP_OK) return openFailureFor(result);
  _model.clear();
  for (int i = 0; i < gp_list_count(found.get()); ++i) {
    const char* model = nullptr;
    const char* where = nullptr;
    gp_list_get_name(found.get(), i, &model);
    gp_list_get_value(found.get(), i, &where);
    const bool wanted = _port.empty() ? where != kAnyUsb && contains(where, kAnyUsb) : where == _port;
    if (!wanted || (!_model.empty() && !contains(model, "Canon"))) continue;
    _model = model;
    _where = where;
  }
  if (_model.empty()) return Failure{Failure::Kind::NotFound, "none is plugged in and switched on"};
  return _model + " at " + _where;
}

Outcome<> GphotoCamera::open(SaveMode mode) {
  const Call call(*this, "opening it");
  _mode = mode;
  _listed = false;
  // Read by the library when the session begins: a camera on the network then knows this computer, and goes
  // straight to the right target.
  saveSetting("ptp2_ip", "guid", _hostIdentity.c_str());
  saveSetting("ptp2", "capturetarget", settingFor(mode));
  _ourSockets = openInternetSockets();
  _camera = make<::Camera>(gp_camera_new);
  CameraAbilities abilities = {};
  const int model = gp_abilities_list_lookup_model(_abilities.get(), _model.c_str());
  int result = gp_abilities_list_get_abilities(_abilities.get(), model, &abilities);
  if (result >= GP_OK) result = gp_camera_set_abilities(_camera.get(), abilities);
  GPPortInfo info = nullptr;
  const int port = gp_port_info_list_lookup_path(_ports.get(), _where.c_str());
  if (result >= GP_OK) result = gp_port_info_list_get_info(_ports.get(), port, &info);
  if (result >= GP_OK) result = gp_camera_set_port_info(_camera.get(), info);
  if (result >= GP_OK) result = gp_camera_init(_camera.get(), _context.get());
  if (result < GP_OK) return openFailureFor(result);
  return Done{};
}

Outcome<> GphotoCamera::confirmSaveMode(SaveMode mode) {
  const Call call(*this, "setting where it saves");
  const CaptureTargetTap tap;
  _mode = mode;
  saveSetting("ptp2", "capturetarget", settingFor(mode));
  ::CameraWidget* held = nullptr;
  const int result = gp_camera_get_single_config(_camera.get(), "capturetarget", &held, _context.get());
  const Gphoto<::CameraWidget> widget(held);
  // Cameras without the choice have one place to store photos.
  if (result == GP_ERROR_BAD_PARAMETERS || result == GP_ERROR_NOT_SUPPORTED) return Done{};
  if (result < GP_OK) return failureFor(result);
  Outcome<> set = setTarget(widget.get(), mode);
  // 4 is the host's memory, anything else a card or both.
  if (!tap.value.empty()) _log("the camera says its capture target is " + tap.value);
  return set;
}

Outcome<> GphotoCamera::setTarget(::CameraWidget* widget, SaveMode mode) {
  const std::string_view wanted = mode == SaveMode::Disk ? "RAM" : "card";
  for (int i = 0; i < gp_widget_count_choices(widget); ++i) {
    const char* choice = nullptr;
    gp_widget_get_choice(widget, i, &choice);
    if (choice == nullptr || !contains(choice, wanted)) continue;
    gp_widget_set_value(widget, choice);
    const int result = gp_camera_set_single_config(_camera.get(), "capturetarget", widget, _context.get());
    if (result < GP_OK) return failureFor(result);
    break;
  }
  return Done{};
}

Outcome<bool> GphotoCamera::hasCard() {
  const Call call(*this, "checking its memory card");
  CameraStorageInformation* storages = nullptr;
  int count = 0;
  const int result = gp_camera_get_storageinfo(_camera.get(), &storages, &count, _context.get());
  std::free(storages);
  if (result == GP_ERROR_NOT_SUPPORTED) return true;
  if (result < GP_OK) return failureFor(result);
  return count > 0;
}

Outcome<CameraEvent> GphotoCamera::waitForEvent() {
  const Call call(*this, "waiting for a photo", kTransferPatience);
  CameraEventType type = GP_EVENT_TIMEOUT;
  void* data = nullptr;
  const int result = gp_camera_wait_for_event(_camera.get(), kEventWaitMs, &type, &data, _context.get());
  const std::unique_ptr<void, decltype(&std::free)> owned(data, &std::free);
  if (result < GP_OK) return failureFor(result);
  switch (type) {
    case GP_EVENT_TIMEOUT:
      return CameraEvent{};
    case GP_EVENT_FILE_ADDED: {
      const auto* path = static_cast<const CameraFilePath*>(data);
      const Outcome<CameraFile> file = sized({path->folder, path->name});
      if (!file) return file.failure();
      return CameraEvent{CameraEvent::Kind::FileAdded, file.value()};
    }
    case GP_EVENT_CAPTURE_COMPLETE:
      return CameraEvent{CameraEvent::Kind::CaptureComplete};
    case GP_EVENT_UNKNOWN: {
      const std::string_view text = data != nullptr ? static_cast<const char*>(data) : "";
      const bool card = contains(text, "StoreAdded") || contains(text, "StoreRemoved");
      return CameraEvent{card ? CameraEvent::Kind::CardChanged : CameraEvent::Kind::Other};
    }
    case GP_EVENT_FOLDER_ADDED:
    case GP_EVENT_FILE_CHANGED:
      break;
  }
  return CameraEvent{CameraEvent::Kind::Other};
}

Outcome<CameraFile> GphotoCamera::withSize(const CameraFile& file) {
  const Call call(*this, "asking for the size of " + file.name);
  return sized(file);
}

// The library knows the size from the announcement; a camera that did not tell it costs us the check only.
Outcome<CameraFile> GphotoCamera::sized(CameraFile file) {
  CameraFileInfo info = {};
  const int result =
      gp_camera_file_get_info(_camera.get(), file.folder.c_str(), file.name.c_str(), &info, _context.get());
  if (result < GP_OK && result != GP_ERROR_NOT_SUPPORTED && result != GP_ERROR_CAMERA_BUSY) {
    return failureFor(result);
  }
  if (result >= GP_OK && (info.file.fields & GP_FILE_INFO_SIZE) != 0) file.size = info.file.size;
  return file;
}

Outcome<> GphotoCamera::download(const CameraFile& file, PhotoSink& sink) {
  const Call call(*this, "downloading " + file.name, kTransferPatience);
  Transfer transfer{sink, _watchdog, _attendant, _ourSockets};
  CameraFileHandler handler{takeSize, nullptr, takeBytes};
  ::CameraFile* held = nullptr;
  int result = gp_file_new_from_handler(&held, &handler, &transfer);
  const Gphoto<::CameraFile> target(held);
  if (result >= GP_OK) {
    result = gp_camera_file_get(_camera.get(), file.folder.c_str(), file.name.c_str(), GP_FILE_TYPE_NORMAL,
                                target.get(), _context.get());
  }
  if (transfer.brokenOff) return Failure{Failure::Kind::Stopped, "the worker was asked to end"};
  if (result < GP_OK) return failureFor(result);
  return Done{};
}

Outcome<std::uint64_t> GphotoCamera::cardFreeKib() {
  const Call call(*this, "checking its memory card");
  CameraStorageInformation* storages = nullptr;
  int count = 0;
  const int result = gp_camera_get_storageinfo(_camera.get(), &storages, &count, _context.get());
  const std::unique_ptr<CameraStorageInformation, decltype(&std::free)> owned(storages, &std::free);
  if (result == GP_ERROR_NOT_SUPPORTED) return std::uint64_t{0};
  if (result < GP_OK) return failureFor(result);
  std::uint64_t total = 0;
  for (int i = 0; i < count; ++i)
    total += storages[i].freekbytes;
  return total;
}

Outcome<> GphotoCamera::reopen() {
  close();
  if (Outcome<> opened = open(_mode); !opened) return Failure{Failure::Kind::Lost, opened.failure().reason};
  return confirmSaveMode(_mode);
}

// The library reads a folder from the camera once in a session and adds to it what is announced. What is not
// announced shows in a new session only.
Outcome<std::vector<CameraFile>> GphotoCamera::newestCardFiles() {
  if (_listed) {
    if (Outcome<> fresh = reopen(); !fresh) return fresh.failure();
  }
  _listed = true;
  const Call call(*this, "listing its memory card");
  const Outcome<std::vector<std::string>> stores = names("/", true);
  if (!stores) return stores.failure();
  std::vector<CameraFile> files;
  for (const std::string& store : stores.value()) {
    const std::string images = "/" + store + "/DCIM";
    Outcome<std::vector<std::string>> folders = names(images, true);
    if (!folders) return folders.failure();
    // Folders count upwards: 100CANON, 101CANON ...
    std::sort(folders.value().begin(), folders.value().end());
    const std::size_t count = folders.value().size();
    for (std::size_t i = count > 2 ? count - 2 : 0; i < count; ++i) {
      const std::string folder = images + "/" + folders.value()[i];
      const Outcome<std::vector<std::string>> found = names(folder, false);
      if (!found) return found.failure();
      for (const std::string& name : found.value())
        files.push_back({folder, name});
    }
  }
  return files;
}

// A folder that is not there holds nothing: a card that was just formatted has no DCIM.
Outcome<std::vector<std::string>> GphotoCamera::names(const std::string& folder, bool folders) {
  const auto list = make<::CameraList>(gp_list_new);
  const int result =
      folders ? gp_camera_folder_list_folders(_camera.get(), folder.c_str(), list.get(), _context.get())
              : gp_camera_folder_list_files(_camera.get(), folder.c_str(), list.get(), _context.get());
  if (result == GP_ERROR_DIRECTORY_NOT_FOUND) return std::vector<std::string>{};
  if (result < GP_OK) return failureFor(result);
  std::vector<std::string> found;
  for (int i = 0; i < gp_list_count(list.get()); ++i) {
    const char* name = nullptr;
    gp_list_get_name(list.get(), i, &name);
    found.emplace_back(name);
  }
  return found;
}

// The library takes leave of a camera that has gone silent for five seconds; of a connection that has ended,
// for none.
void GphotoCamera::abandon() {
  if (_camera) endInternetSocketsBut(_ourSockets);
  close();
}

void GphotoCamera::close() {
  if (!_camera) return;
  const Call call(*this, "closing the session");
  gp_camera_exit(_camera.get(), _context.get());
  _camera.reset();
  closeInternetSocketsBut(_ourSockets);
  occupyStandardInput();
}

}  // namespace ambrel::camera
