// SPDX-License-Identifier: Apache-2.0
// A worker process that behaves as badly as its arguments say, one after the other:
//
//   say TEXT         writes TEXT and a line feed
//   error TEXT       the same to standard error
//   hex DIGITS       writes these bytes, two digits each
//   split TEXT       writes TEXT and a line feed byte by byte, each with a write call of its own
//   repeat N TEXT    writes TEXT, a number from 0 to N-1 and a line feed, N times, in writes of 64 KB
//   endless N        writes N bytes without a line feed, then one
//   random N         writes N bytes of every value, the same in every run
//   echo             answers each line of its standard input with "got LINE" until the input ends
//   eof              waits for the end of its standard input
//   deaf             ignores the request to terminate
//   linger           leaves a child behind that holds the output open and then hangs
//   cwd, env NAME    writes its working directory, a variable of its environment
//   closein          closes its standard input
//   hang             does not end by itself
//   exit N, crash    ends with status N, by a signal
//
// It ends after a minute whatever it was told, lest a failing test leave it behind.
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

void writeWhole(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count <= 0) std::_Exit(3);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

void say(std::string_view bytes) {
  writeWhole(STDOUT_FILENO, bytes);
}

void sayLine(std::string text) {
  say(text.append("\n"));
}

void sayHex(const std::string& digits) {
  for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
    const char byte = static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
    say({&byte, 1});
  }
}

void saySplit(const std::string& text) {
  for (const char byte : text + "\n")
    say({&byte, 1});
}

void sayRepeatedly(long count, const std::string& text) {
  std::string block;
  for (long line = 0; line < count; ++line) {
    block.append(text).append(std::to_string(line)).append("\n");
    if (block.size() > 64 * 1024 - 64) {
      say(block);
      block.clear();
    }
  }
  say(block);
}

void sayEndless(std::size_t count) {
  const std::string block(64 * 1024, 'x');
  for (std::size_t left = count; left > 0;) {
    const std::size_t piece = std::min(left, block.size());
    say({block.data(), piece});
    left -= piece;
  }
  say("\n");
}

void sayRandom(std::size_t count) {
  std::mt19937 random(7);
  std::string bytes(count, '\0');
  std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<char>(random() & 0xFFU); });
  say(bytes);
}

void echo() {
  for (std::string line; std::getline(std::cin, line);)
    sayLine("got " + line);
}

[[noreturn]] void hang() {
  ::alarm(60);  // a child does not inherit it
  for (;;)
    ::pause();
}

void sayFolder() {
  char folder[4096];
  sayLine(::getcwd(folder, sizeof folder) ? folder : "nowhere");
}

void sayVariable(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  sayLine(value ? value : "unset");
}

struct Behaviour {
  std::string_view name;
  int arguments;
  void (*act)(char** arguments);
};

constexpr Behaviour kBehaviours[] = {
    {"say", 1, [](char** a) { sayLine(a[0]); }},
    {"error", 1, [](char** a) { writeWhole(STDERR_FILENO, std::string(a[0]) + "\n"); }},
    {"hex", 1, [](char** a) { sayHex(a[0]); }},
    {"split", 1, [](char** a) { saySplit(a[0]); }},
    {"repeat", 2, [](char** a) { sayRepeatedly(std::stol(a[0]), a[1]); }},
    {"endless", 1, [](char** a) { sayEndless(std::stoul(a[0])); }},
    {"random", 1, [](char** a) { sayRandom(std::stoul(a[0])); }},
    {"env", 1, [](char** a) { sayVariable(a[0]); }},
    {"exit", 1, [](char** a) { std::_Exit(std::stoi(a[0])); }},
    {"cwd", 0, [](char**) { sayFolder(); }},
    {"echo", 0, [](char**) { echo(); }},
    {"eof", 0, [](char**) { std::cin.ignore(std::numeric_limits<std::streamsize>::max()); }},
    {"closein", 0, [](char**) { ::close(STDIN_FILENO); }},
    {"deaf", 0, [](char**) { std::signal(SIGTERM, SIG_IGN); }},
    {"linger", 0,
     [](char**) {
       if (::fork() == 0) hang();
     }},
    {"hang", 0, [](char**) { hang(); }},
    {"crash", 0, [](char**) { std::abort(); }},
};

}  // namespace

int main(int argc, char** argv) {
  ::alarm(60);
  for (int at = 1; at < argc;) {
    const std::string_view name = argv[at++];
    const auto* const behaviour = std::find_if(std::begin(kBehaviours), std::end(kBehaviours),
                                               [name](const Behaviour& b) { return b.name == name; });
    if (behaviour == std::end(kBehaviours) || at + behaviour->arguments > argc) return 2;
    behaviour->act(argv + at);
    at += behaviour->arguments;
  }
  return 0;
}
