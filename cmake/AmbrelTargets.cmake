# SPDX-License-Identifier: Apache-2.0
# Programs stand in one folder layout on every platform: <bundle>/Contents/MacOS beside Frameworks and Resources. On
# macOS that is an application bundle.
if(APPLE)
  set(AMBREL_BUNDLE_DIR "${CMAKE_BINARY_DIR}/Ambrel Photo Tether.app")
else()
  set(AMBREL_BUNDLE_DIR ${CMAKE_BINARY_DIR}/bundle)
endif()
set(AMBREL_PROGRAM_DIR ${AMBREL_BUNDLE_DIR}/Contents/MacOS)

function(ambrel_add_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE ambrel_compiler)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${AMBREL_PROGRAM_DIR})
endfunction()

# ambrel_add_tests(name SOURCES a.cpp ... LIBRARIES lib ... [LABELS threads ...] [TIMEOUT seconds])
# One GoogleTest program, its main from ambrel_core_test_support (with a Qt application and the doubles of the core's
# seams) or ambrel_test_support (without Qt), named among the libraries; each of its tests is a ctest test of its own. The label "threads" puts it into the
# ThreadSanitizer run as well; "serial" keeps anything else from running beside it.
function(ambrel_add_tests name)
  cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES})
  if("ambrel_ui" IN_LIST arg_LIBRARIES)
    ambrel_precompile(${name} ${AMBREL_STANDARD_HEADERS} ${AMBREL_QT_CORE_HEADERS} ${AMBREL_QT_WIDGETS_HEADERS}
      <gtest/gtest.h>)
  elseif("ambrel_core_test_support" IN_LIST arg_LIBRARIES)
    ambrel_precompile(${name} REUSE_FROM ambrel_core_test_support)
  elseif("ambrel_test_support" IN_LIST arg_LIBRARIES)
    ambrel_precompile(${name} REUSE_FROM ambrel_test_support)
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 60)
  endif()
  set(properties TIMEOUT ${arg_TIMEOUT})
  if(arg_LABELS)
    list(APPEND properties LABELS "${arg_LABELS}")
  endif()
  if("serial" IN_LIST arg_LABELS)
    list(APPEND properties RUN_SERIAL TRUE)
  endif()
  if("threads" IN_LIST arg_LABELS)
    add_dependencies(ambrel_threaded_tests ${name})
  endif()
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()
