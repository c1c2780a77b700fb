// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "camera/Outcome.h"
#include "protocol/Messages.h"

namespace ambrel::camera {

using protocol::SaveMode;

// A photo as the camera library names it.
struct CameraFile {
  std::string folder;      // "/store_00010001/DCIM/100CANON", or "/" for one that was never on a card
  std::string name;        // "IMG_0001.JPG"
  std::uint64_t size = 0;  // bytes as announced, 0 when unknown

  // The camera handed the photo over and keeps no copy: what is not saved now is gone.
  bool inHostMemory() const { return folder == "/"; }
  bool operator==(const CameraFile&) const = default;
};

struct CameraEvent {
  enum class Kind {
    Nothing,          // nothing happened within the wait
    FileAdded,        // `file` is there
    CaptureComplete,  // an exposure is over, whether or not a file of it was announced
    CardChanged,      // a memory card came or went
    Other
  };
  Kind kind = Kind::Nothing;
  CameraFile file = {};
};

// Takes the bytes of a photo as they arrive.
class PhotoSink {
 public:
  virtual ~PhotoSink() = default;
  // False breaks the transfer off.
  virtual bool write(std::span<const unsigned char> bytes) = 0;
};

// One camera at a time. Order of use: find, open, confirmSaveMode; then the rest any number of times; then
// close. After a failure other than Busy and Local only close and abandon are legal, and find starts anew. No
// call deletes or changes anything on the camera's card.
class Camera {
 public:
  virtual ~Camera() = default;

  // Has `act` called several times a second for as long as an operation lasts: from another thread, but never
  // beside the caller's own code, the sink of a download included. It must not use the camera.
  virtual void meanwhile(std::function<void()> act) = 0;

  // Looks for a camera. Yields what it is and where, in words.
  virtual Outcome<std::string> find() = 0;
  virtual Outcome<> open(SaveMode mode) = 0;
  // Makes the camera report its captures, and makes sure that it stores them as asked.
  virtual Outcome<> confirmSaveMode(SaveMode mode) = 0;
  virtual Outcome<bool> hasCard() = 0;
  // Returns at once when something happened, else after some milliseconds. Keeps the camera awake.
  virtual Outcome<CameraEvent> waitForEvent() = 0;
  virtual Outcome<> download(const CameraFile& file, PhotoSink& sink) = 0;
  // Free space of all cards in KiB, read from the camera.
  virtual Outcome<std::uint64_t> cardFreeKib() = 0;
  // The files of the folder that the camera now writes into and of the one before, without their sizes; none
  // without a card. May take as long as opening the camera.
  virtual Outcome<std::vector<CameraFile>> newestCardFiles() = 0;
  // The file with its size: a question to the camera for each, and a card holds thousands.
  virtual Outcome<CameraFile> withSize(const CameraFile& file) = 0;
  // Ends the session, if there is one.
  virtual void close() = 0;
  // The same for a camera that is lost: it is not waited for.
  virtual void abandon() = 0;
};

}  // namespace ambrel::camera
