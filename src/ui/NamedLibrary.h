// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLibrary>

namespace ambrel::ui {

// A library that is loaded when it is first needed: what only some photos need must not hold up the window.
// It then stays loaded. A class for each library derives from it, with a member for each function used.
class NamedLibrary {
 public:
  // Whether the library is there and has every function that was looked for.
  bool isWhole() const { return _whole; }

 protected:
  // Becomes a pointer to a function of the type that is wanted of it.
  struct Address {
    template <typename Function>
    operator Function*() const {  // NOLINT(google-explicit-constructor)
      return reinterpret_cast<Function*>(pointer);
    }
    QFunctionPointer pointer;
  };

  // `version`: of its binary interface.
  NamedLibrary(const QString& name, int version) : _library(name, version) {}
  // Null where the library is missing or lacks the function.
  Address find(const char* function) {
    const Address found{_library.resolve(function)};
    _whole = _whole && found.pointer;
    return found;
  }

 private:
  QLibrary _library;
  bool _whole = true;
};

}  // namespace ambrel::ui
