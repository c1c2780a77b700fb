// SPDX-License-Identifier: Apache-2.0
#include "simulator/Commands.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <sstream>

namespace ambrel::simulator {

namespace {

constexpr std::uint64_t kMostShots = 10'000;
constexpr std::uint64_t kLongestInterval = 3'600'000;
constexpr std::uint64_t kLargestPhoto = 256 << 20;
constexpr std::uint64_t kLargestRate = 10'000'000'000;
constexpr std::uint64_t kMostBusy = 1'000'000;

constexpr std::string_view kHelp =
    "  shoot [n=1] [kind=jpeg|raw|pair] [size=BYTES] [rawsize=BYTES] [first=jpeg|raw] [interval=MS]\n"
    "                    press the shutter n times; size is that of each JPEG file and, unless rawsize is "
    "given,\n"
    "                    of each raw file; first tells which file of a pair comes first; answered when all "
    "is taken\n"
    "  photos            one line per file ever taken, then \"ok photos=N\":\n"
    "                    photo name=IMG_0001.JPG size=BYTES sha256=HEX shot=N place=card|host asked=N "
    "deleted=0|1\n"
    "                    asked: how often a host asked for the last byte\n"
    "  drop [after=BYTES] [how=close|reset]\n"
    "                    lose the connection, now or after that many more bytes; the camera stays reachable\n"
    "  cable in=0 [after=BYTES] [how=close|reset|freeze]\n"
    "                    pull the cable: nobody reaches the camera, or (freeze) it just goes silent\n"
    "  cable in=1        put it back\n"
    "  power on=0|1      switch the camera off or on\n"
    "  card in=0|1       take the card out or put it back\n"
    "  busy n=COUNT [op=HEX]\n"
    "                    answer the next COUNT operations \"busy\", or only those of that operation code\n"
    "  set [rate=BYTES_PER_S] [silent=0|1]\n"
    "                    a slow link (0: full speed); no announcement of photos on the card\n"
    "  status            what is set, whether a host is connected, and the identity of the latest one\n"
    "  quit              end the program\n";

// Reads the values of one command; the first that is not as it should be is remembered.
class Values {
 public:
  explicit Values(const Command& command) : _command(command) {}

  std::uint64_t number(std::string_view key, std::uint64_t fallback, std::uint64_t largest, int base = 10) {
    const std::string* text = find(key);
    if (text == nullptr) return fallback;
    std::uint64_t value = 0;
    const char* end = text->data() + text->size();
    const auto [stopped, status] = std::from_chars(text->data(), end, value, base);
    if (status != std::errc() || stopped != end || value > largest) complain(key);
    return value;
  }

  // The position of the value among `choices`.
  std::size_t choice(std::string_view key, std::initializer_list<std::string_view> choices,
                     std::size_t fallback = 0) {
    const std::string* text = find(key);
    if (text == nullptr) return fallback;
    const auto found = std::find(choices.begin(), choices.end(), *text);
    if (found == choices.end()) complain(key);
    return static_cast<std::size_t>(found - choices.begin());
  }

  bool has(std::string_view key) const { return _command.values.contains(key); }
  bool isTrue(std::string_view key) { return choice(key, {"0", "1"}) == 1; }
  void require(std::string_view key) {
    if (!has(key)) complain(key);
  }

  // An empty text, or what is wrong. To be asked when all values were read.
  std::string error() const {
    if (!_error.empty()) return _error;
    for (const auto& [key, value] : _command.values) {
      if (!_asked.contains(key)) return "unknown value " + key;
    }
    return {};
  }

 private:
  const std::string* find(std::string_view key) {
    _asked.emplace(key);
    const auto found = _command.values.find(key);
    return found == _command.values.end() ? nullptr : &found->second;
  }
  void complain(std::string_view key) {
    if (_error.empty()) _error = "bad or missing value " + std::string(key);
  }

  const Command& _command;
  std::set<std::string, std::less<>> _asked;
  std::string _error;
};

std::string ok(const std::string& rest = {}) {
  return rest.empty() ? "ok\n" : "ok " + rest + "\n";
}

std::string failed(const std::string& why) {
  return "error " + why + "\n";
}

}  // namespace

std::optional<Command> parse_command(std::string_view line) {
  std::istringstream words{std::string(line)};
  Command command;
  if (!(words >> command.word)) return std::nullopt;
  for (std::string pair; words >> pair;) {
    const std::size_t equals = pair.find('=');
    if (equals == std::string::npos || equals == 0) return std::nullopt;
    if (!command.values.emplace(pair.substr(0, equals), pair.substr(equals + 1)).second) return std::nullopt;
  }
  return command;
}

std::string_view Commands::help() {
  return kHelp;
}

void Commands::execute(std::string_view line, const Answer& answer) {
  const std::optional<Command> command = parse_command(line);
  if (!command) {
    answer(failed("a command is one word and key=value pairs"));
  } else if (command->word == "shoot") {
    shoot(*command, answer);
  } else {
    answer(run(*command));
  }
}

std::string Commands::run(const Command& command) {
  struct Known {
    std::string_view word;
    std::string (Commands::*run)(const Command&);
  };
  static constexpr Known kCommands[] = {
      {"photos", &Commands::photos}, {"drop", &Commands::drop},     {"cable", &Commands::cable},
      {"power", &Commands::power},   {"card", &Commands::card},     {"busy", &Commands::busy},
      {"set", &Commands::set},       {"status", &Commands::status}, {"quit", &Commands::quit},
  };
  for (const Known& known : kCommands) {
    if (known.word == command.word) return (this->*known.run)(command);
  }
  return failed("unknown command " + command.word);
}

void Commands::shoot(const Command& command, const Answer& answer) {
  Values values(command);
  ShotOrder order;
  const std::uint64_t count = values.number("n", 1, kMostShots);
  const std::uint64_t interval = values.number("interval", 0, kLongestInterval);
  order.kind = static_cast<ShotKind>(values.choice("kind", {"jpeg", "raw", "pair"}));
  order.size = values.number("size", 0, kLargestPhoto);
  order.rawSize = values.number("rawsize", order.size, kLargestPhoto);
  order.rawFirst = values.choice("first", {"jpeg", "raw"}) == 1;
  if (const std::string error = values.error(); !error.empty()) return answer(failed(error));
  if (!_power) return answer(failed("the camera is off"));
  _shutter.press(order, count, std::chrono::milliseconds(interval), [answer](const Shutter::Result& result) {
    if (!result.error.empty()) return answer(failed(result.error));
    answer(ok("first=" + std::to_string(result.first) + " last=" + std::to_string(result.last) +
              " files=" + std::to_string(result.files)));
  });
}

std::string Commands::photos(const Command& command) {
  if (const std::string error = Values(command).error(); !error.empty()) return failed(error);
  std::ostringstream out;
  for (const TakenPhoto& photo : _camera.album().photos()) {
    out << "photo name=" << photo.name << " size=" << photo.size << " sha256=" << photo.sha256
        << " shot=" << photo.spec.shot << " place=" << (photo.place == Place::card ? "card" : "host")
        << " asked=" << photo.asked << " deleted=" << (photo.deleted ? 1 : 0) << "\n";
  }
  out << "ok photos=" << _camera.album().photos().size() << "\n";
  return out.str();
}

std::string Commands::drop(const Command& command) {
  Values values(command);
  const std::uint64_t after = values.number("after", 0, UINT64_MAX);
  const auto how = static_cast<Cut>(values.choice("how", {"close", "reset"}));
  if (const std::string error = values.error(); !error.empty()) return failed(error);
  _server.cut(after, how, false);
  return ok();
}

std::string Commands::cable(const Command& command) {
  Values values(command);
  values.require("in");
  const bool in = values.isTrue("in");
  const std::uint64_t after = values.number("after", 0, UINT64_MAX);
  const auto how = static_cast<Cut>(values.choice("how", {"close", "reset", "freeze"}));
  if (const std::string error = values.error(); !error.empty()) return failed(error);
  if (!in) {
    _server.cut(after, how, true);
    return ok();
  }
  if (!_power) return failed("the camera is off");
  return _server.plugIn() ? ok() : failed("another program has taken the port");
}

std::string Commands::power(const Command& command) {
  Values values(command);
  values.require("on");
  const bool on = values.isTrue("on");
  if (const std::string error = values.error(); !error.empty()) return failed(error);
  if (on == _power) return ok();
  if (on && !_server.plugIn()) return failed("another program has taken the port");
  _power = on;
  if (!on) {
    _shutter.release("the camera was switched off");
    _camera.setBusy(0, std::nullopt);
    _server.cut(0, Cut::close, true);
  }
  return ok();
}

std::string Commands::card(const Command& command) {
  Values values(command);
  values.require("in");
  const bool in = values.isTrue("in");
  if (const std::string error = values.error(); !error.empty()) return failed(error);
  _camera.setCard(in);
  return ok();
}

std::string Commands::busy(const Command& command) {
  Values values(command);
  values.require("n");
  const std::uint64_t count = values.number("n", 0, kMostBusy);
  const std::uint64_t operation = values.number("op", 0, 0xFFFF, 16);
  if (const std::string error = values.error(); !error.empty()) return failed(error);
  _camera.setBusy(count, values.has("op") ? std::optional(static_cast<Operation>(operation)) : std::nullopt);
  return ok();
}

std::string Commands::set(const Command& command) {
  Values values(command);
  const std::uint64_t rate = values.number("rate", _server.link().rate(), kLargestRate);
  const bool silent = values.has("silent") ? values.isTrue("silent") : _camera.silent();
  if (const std::string error = values.error(); !error.empty()) return failed(error);
  _server.link().setRate(rate);
  _camera.setSilent(silent);
  return ok();
}

std::string Commands::status(const Command& command) {
  if (const std::string error = Values(command).error(); !error.empty()) return failed(error);
  std::ostringstream out;
  out << "power=" << _power << " cable=" << _server.reachable() << " card=" << _camera.card()
      << " host=" << _server.hasHost()
      << " target=" << (_camera.destination() == kDestinationHost ? "host" : "card")
      << " shots=" << _camera.shots() << " silent=" << _camera.silent() << " rate=" << _server.link().rate()
      << " hostid=" << _server.hostId();
  return ok(out.str());
}

std::string Commands::quit(const Command& command) {
  if (const std::string error = Values(command).error(); !error.empty()) return failed(error);
  _quit = true;
  return ok();
}

}  // namespace ambrel::simulator
