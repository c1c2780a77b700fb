// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLibrary>

namespace ambrel::ui {

// A library that is loaded when it is first needed: what only some photos need must not hold up the window.
// It then stays loaded.
class NamedLibrary {
 public:
  // `version`: of its binary interface.
  NamedLibrary(const QString& name, int version) : _library(name, version) {}

  // Finds a function by its name; null where the library is missing or lacks it.
  template <typename Function>
  void find(Function*& function, const char* name) {
    function = reinterpret_cast<Function*>(_library.resolve(name));
    _whole = _whole && function != nullptr;
  }
  // Whether everything was found.
  bool isWhole() const { return _whole; }

 private:
  QLibrary _library;
  bool _whole = true;
};

}  // namespace ambrel::ui
