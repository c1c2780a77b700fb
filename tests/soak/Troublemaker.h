// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>
#include <sys/types.h>

#include "soak/Account.h"
#include "soak/Plan.h"
#include "soak/Shutter.h"
#include "support/DriveMode.h"
#include "support/LiveApplication.h"

namespace ambrel::soak {

// Makes go wrong what a plan says, and right again. One fault at a time.
class Troublemaker {
 public:
  Troublemaker(const Places& places, const DriveMode& drive, Shutter& shutter, LiveApplication& live);

  void begin(const Fault& fault);
  void end(const Fault& fault);

  // Whether photos may fail to arrive meanwhile.
  static bool concernsCamera(Mishap mishap);
  static bool concernsData(Mishap mishap);
  const QStringList& wrong() const { return _wrong; }

 private:
  void signalWorker(int number);
  void setDrive(const QByteArray& mode, const QString& folder = {});
  QString dataFolder() const { return _places.home + QStringLiteral("/data"); }

  const Places& _places;
  const DriveMode& _drive;
  Shutter& _shutter;
  LiveApplication& _live;
  qint64 _stoppedWorker = 0;
  QStringList _wrong;
};

}  // namespace ambrel::soak
