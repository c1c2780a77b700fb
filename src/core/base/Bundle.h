// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

// The folder layout around the program: <root>/Contents/MacOS holds the programs, <root>/Contents/Resources
// the resources, <root>/Contents/Info.plist the version; the same on every platform.
class Bundle {
 public:
  explicit Bundle(QString root) : _root(std::move(root)) {}
  static Bundle aroundProgram(const QString& programFolder);

  QString root() const { return _root; }
  QString bundleMacOSPath(const QString& fileName) const;
  // Full path of a resource given with its extension; empty when it does not exist.
  QString resourcePath(const QString& fileName) const;
  // CFBundleShortVersionString, "7.04" when the bundle names none.
  QString displayVersion() const;

 private:
  QString _root;
};

}  // namespace ambrel
