// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

// Where the application keeps its own files. The environment variable AMBREL_HOME moves all of them below one
// folder, for tests, the demo and side-by-side installations.
struct Locations {
  QString applicationSupport;  // parent of the "Ambrel Tether" folder
  QString preferencesFile;     // absolute path of the settings file (INI)
  QString temporary;           // the user's temporary folder
  QString desktop;             // the user's "Desktop" folder

  static Locations forThisUser();
  // As forThisUser with AMBREL_HOME set to `home`; creates the folders.
  static Locations below(const QString& home);

  // <applicationSupport>/Ambrel Tether/<name>; the folder is created, errors ignored.
  QString dataFile(const QString& name) const;
};

}  // namespace ambrel
