// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>

// Faults at chosen system calls of this very process. FaultCalls.cpp defines the calls that change files (and
// those that look at them) over the C library's, for the program and for every library in it; each call on a
// path below `home` is counted, logged, and meets the fault that the plan has for it. The first calls of two
// runs need not be the same across threads, but those of one thread are, so calls are counted per thread;
// threads are numbered in the order in which they were started, the main thread being 0.
namespace ambrel::faults {

enum class Kind : std::uint8_t {
  None,
  Kill,      // the process is killed at the call
  TornKill,  // and half of the bytes have been written
  Once,      // the call fails, once
  ForEver,   // this call and every later one, on all threads
  Short,     // the call writes half of the bytes
  OneByte,   // this call and every later one write a single byte
  Terminate  // the process is asked to end
};

// What the volume of the photos cannot do.
enum class Volume : std::uint8_t {
  Plain,
  Across,     // folders lie on volumes of their own: nothing is renamed from one into another
  NoReplace,  // there is no rename that spares an existing file
  NoLink      // and no second name for a file
};

// Calls that change something, or calls that look.
enum class Side : std::uint8_t { Changing, Looking };

struct Plan {
  Kind kind = Kind::None;
  Side side = Side::Changing;
  int thread = 0;
  std::uint32_t call = 0;  // from 1
  int error = EIO;
  Volume volume = Volume::Plain;
};

constexpr std::size_t kThreads = 48;
constexpr std::size_t kLogEntries = 6000;
constexpr std::size_t kTextBytes = 64 * 1024;

constexpr std::int16_t kOutsideHome = -1;
constexpr std::int16_t kNote = -2;

struct Call {
  std::int16_t thread;
  std::int16_t error;  // 0, what the call failed with, or one of the above
  std::array<char, 12> name;
  std::array<char, 116> path;   // below home, or whole
  std::array<char, 116> path2;  // of a rename or link: the new name
};

// In memory that outlives the process.
struct Report {
  std::array<std::array<std::atomic<std::uint32_t>, kThreads>, 2> calls;  // by side and thread
  std::atomic<std::uint32_t> total;
  std::atomic<bool> hit;
  Call hitCall;
  std::atomic<std::uint32_t> logged;
  std::array<Call, kLogEntries> log;
  std::atomic<std::uint32_t> textLength;
  std::array<char, kTextBytes> text;  // what the session says of itself, line by line
};

// From now on, for calls on paths below `home`; everything that changes files elsewhere is logged too.
void arm(const Plan& plan, const char* home, Report& report);
// A line of the session's own in the log of calls.
void note(const char* name, const char* path);
// Called before each rename, on the thread that makes it.
void watchRenames(void (*watcher)(const char* from, const char* to));
// Appends a line to the report's text.
void say(const char* line);
// How many calls have changed something so far.
std::uint32_t changes();

const char* nameOf(Kind kind);
const char* nameOf(Volume volume);
const char* nameOfError(int error);

}  // namespace ambrel::faults
