// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/CameraModel.h"
#include "simulator/PtpCodes.h"

namespace ambrel::simulator {

// One operation as a host asks for it.
struct PtpRequest {
  std::uint16_t operation = 0;
  std::uint32_t transaction = 0;
  std::array<std::uint32_t, 5> parameters{};  // those not sent are 0
  Bytes data;
};

struct PtpReply {
  Response code = Response::ok;
  std::vector<std::uint32_t> parameters;
  std::optional<Bytes> data;
};

// Answers the operations of one host's session from the camera.
class PtpResponder {
 public:
  explicit PtpResponder(CameraModel& camera) : _camera(camera) {}

  PtpReply perform(const PtpRequest& request);

 private:
  PtpReply dispatch(const PtpRequest& request);
  PtpReply openSession();
  PtpReply closeSession();
  PtpReply storageInfo(std::uint32_t storage) const;
  PtpReply objectHandles(const PtpRequest& request) const;
  PtpReply objectInfo(std::uint32_t handle) const;
  PtpReply objectInfoEx(const PtpRequest& request) const;
  PtpReply wholeObject(std::uint32_t handle);
  PtpReply partOfObject(const PtpRequest& request);
  PtpReply thumbnail(std::uint32_t handle) const;
  PtpReply setProperty(const Bytes& data);
  PtpReply release();

  CameraModel& _camera;
  bool _open = false;
};

}  // namespace ambrel::simulator
