# SPDX-License-Identifier: Apache-2.0
# Library headers precompiled, where a preset asks for it: most of a source's build time is theirs. The release preset
# does not, so that every source is also built with nothing but its own includes.
option(AMBREL_PRECOMPILE "Precompile the headers of the standard library, Qt and GoogleTest" OFF)

if(AMBREL_PRECOMPILE)
  # g++ 12 no longer takes library code for the system's once it is precompiled, and then finds faults in std::string
  # that are none (GCC bug 105651).
  target_compile_options(ambrel_compiler INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict -Wno-array-bounds -Wno-stringop-overflow>)
endif()

set(AMBREL_STANDARD_HEADERS
  <algorithm> <array> <chrono> <cstdint> <cstdio> <deque> <functional> <map> <memory> <optional> <set> <string>
  <string_view> <thread> <utility> <vector>)
set(AMBREL_QT_CORE_HEADERS
  <QByteArray> <QCoreApplication> <QDateTime> <QDir> <QFile> <QFileInfo> <QObject> <QPointer> <QProcess> <QRect>
  <QString> <QStringList> <QTemporaryDir> <QTimer> <QVariant>)
set(AMBREL_QT_WIDGETS_HEADERS
  <QApplication> <QLabel> <QLineEdit> <QMenu> <QMouseEvent> <QPainter> <QPushButton> <QTableView> <QWidget>)

# ambrel_precompile(target HEADER...), or (target REUSE_FROM other) for targets built with the same options.
function(ambrel_precompile target)
  if(AMBREL_PRECOMPILE)
    if(ARGV1 STREQUAL REUSE_FROM)
      target_precompile_headers(${target} REUSE_FROM ${ARGV2})
    else()
      target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
  endif()
endfunction()
