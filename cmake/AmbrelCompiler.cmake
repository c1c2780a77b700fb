# SPDX-License-Identifier: Apache-2.0
# Language level, warnings and sanitizers for every target of this project.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)

option(AMBREL_BENCHMARKS "Build the benchmark programs" OFF)
option(AMBREL_FUZZ "Build the fuzz targets (clang only)" OFF)
set(AMBREL_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")
set(AMBREL_OPTIMISATION "" CACHE STRING "Optimisation flag of a debug build")

find_program(AMBREL_CCACHE ccache)
if(AMBREL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${AMBREL_CCACHE})
endif()

add_library(ambrel_compiler INTERFACE)
# Warnings are errors where g++ gives them; clang, which builds the fuzz targets, has some of its own.
target_compile_options(ambrel_compiler INTERFACE
  -Wall -Wextra -Wshadow -Wconversion $<$<CXX_COMPILER_ID:GNU>:-Werror> ${AMBREL_OPTIMISATION})
target_compile_definitions(ambrel_compiler INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(AMBREL_SANITIZE)
  target_compile_options(ambrel_compiler INTERFACE
    -fsanitize=${AMBREL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(ambrel_compiler INTERFACE -fsanitize=${AMBREL_SANITIZE})
endif()
