#include "server/Fault.h"

#include <array>
#include <charconv>
#include <utility>
#include <vector>

#include "server/ServerCodes.h"

namespace tavsim {

const char* const kDefaultGarbage = "<root><garbage>&#</root>";

namespace {

struct KindEntry {
  FaultKind kind;
  const char* name;
};

constexpr std::array<KindEntry, 7> kKindNames{{{FaultKind::Delay, "delay"},
                                               {FaultKind::Drop, "drop"},
                                               {FaultKind::Error, "error"},
                                               {FaultKind::Garbage, "garbage"},
                                               {FaultKind::BadChecksum, "checksum"},
                                               {FaultKind::Split, "split"},
                                               {FaultKind::Close, "close"}}};

const char* KindName(FaultKind kind) {
  for (const auto& entry : kKindNames) {
    if (entry.kind == kind) {
      return entry.name;
    }
  }
  return "?";
}

Fault Make(FaultKind kind, std::string on) {
  Fault fault;
  fault.kind = kind;
  fault.on = std::move(on);
  return fault;
}

// Always at least one part; "a,,b" gives an empty middle part.
std::vector<std::string> SplitAtCommas(const std::string& text) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t comma = text.find(','); comma != std::string::npos;
       comma = text.find(',', start)) {
    parts.push_back(text.substr(start, comma - start));
    start = comma + 1;
  }
  parts.push_back(text.substr(start));
  return parts;
}

bool ReadCount(const std::string& text, int lowest, int& out) {
  int value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || value < lowest) {
    return false;
  }
  out = value;
  return true;
}

// Applies one "key=value" of the command-line form; false with `problem` set when it is bad.
bool ApplyOption(Fault& fault, const std::string& option, std::string& problem) {
  const std::size_t equals = option.find('=');
  if (equals == std::string::npos) {
    problem = "'" + option + "' is not key=value";
    return false;
  }
  const std::string key = option.substr(0, equals);
  const std::string value = option.substr(equals + 1);
  int number = 0;
  bool ok = true;
  if (key == "on") {
    fault.on = value;
  } else if (key == "text") {
    fault.text = value;
  } else if (key == "times" && value == "all") {
    fault.times = Fault::kEveryTime;
  } else if (key == "times") {
    ok = ReadCount(value, 1, fault.times);
  } else if (key == "after") {
    ok = ReadCount(value, 0, fault.after);
  } else if (key == "ms") {
    ok = ReadCount(value, 0, number);
    fault.pause = std::chrono::milliseconds(number);
  } else if (key == "pieces") {
    ok = ReadCount(value, 2, fault.pieces);
  } else {
    problem = "unknown key '" + key + "'";
    return false;
  }
  if (!ok) {
    problem = "bad value for '" + key + "': '" + value + "'";
  }
  return ok;
}

}  // namespace

Fault Fault::DelayReply(std::string on, std::chrono::milliseconds pause) {
  Fault fault = Make(FaultKind::Delay, std::move(on));
  fault.pause = pause;
  return fault;
}

Fault Fault::DropReply(std::string on) { return Make(FaultKind::Drop, std::move(on)); }

Fault Fault::ErrorInstead(std::string on, std::string errorCode) {
  Fault fault = Make(FaultKind::Error, std::move(on));
  fault.text = std::move(errorCode);
  return fault;
}

Fault Fault::ErrorInstead(std::string on) {
  return ErrorInstead(std::move(on), std::to_string(ServerCodes::kInjectedError));
}

Fault Fault::GarbageInstead(std::string on, std::string bytes) {
  Fault fault = Make(FaultKind::Garbage, std::move(on));
  fault.text = std::move(bytes);
  return fault;
}

Fault Fault::GarbageInstead(std::string on) {
  return GarbageInstead(std::move(on), kDefaultGarbage);
}

Fault Fault::CorruptChecksum(std::string on) { return Make(FaultKind::BadChecksum, std::move(on)); }

Fault Fault::SplitReply(std::string on, int pieces, std::chrono::milliseconds pause) {
  Fault fault = Make(FaultKind::Split, std::move(on));
  fault.pieces = pieces;
  fault.pause = pause;
  return fault;
}

Fault Fault::CloseConnection(std::string on) { return Make(FaultKind::Close, std::move(on)); }

Fault& Fault::Times(int count) {
  times = count;
  return *this;
}

Fault& Fault::After(int count) {
  after = count;
  return *this;
}

std::optional<Fault> ParseFault(const std::string& rule, std::string& problem) {
  const std::vector<std::string> parts = SplitAtCommas(rule);
  std::optional<Fault> fault;
  for (const auto& entry : kKindNames) {
    if (parts[0] == entry.name) {
      fault = Make(entry.kind, "");
    }
  }
  if (!fault) {
    problem = "unknown fault kind '" + parts[0] + "'";
    return std::nullopt;
  }
  // Defaults that make each kind useful as written: a noticeable delay, a visible split.
  if (fault->kind == FaultKind::Delay) {
    fault->pause = std::chrono::milliseconds(1000);
  } else if (fault->kind == FaultKind::Split) {
    fault->pause = std::chrono::milliseconds(20);
  }
  for (std::size_t i = 1; i < parts.size(); ++i) {
    if (!ApplyOption(*fault, parts[i], problem)) {
      return std::nullopt;
    }
  }
  if (fault->kind == FaultKind::Error && fault->text.empty()) {
    fault->text = std::to_string(ServerCodes::kInjectedError);
  } else if (fault->kind == FaultKind::Garbage && fault->text.empty()) {
    fault->text = kDefaultGarbage;
  }
  return fault;
}

std::string Describe(const Fault& fault) {
  std::string line = KindName(fault.kind);
  if (fault.kind == FaultKind::Delay || fault.kind == FaultKind::Split) {
    line += " " + std::to_string(fault.pause.count()) + " ms";
  }
  if (fault.kind == FaultKind::Split) {
    line += " in " + std::to_string(fault.pieces) + " pieces";
  }
  if (fault.kind == FaultKind::Error || fault.kind == FaultKind::Garbage) {
    line += " '" + fault.text + "'";
  }
  line += " on " + (fault.on.empty() ? std::string("any reply") : fault.on);
  if (fault.after > 0) {
    line += " after " + std::to_string(fault.after);
  }
  line += fault.times == Fault::kEveryTime
              ? ", every time"
              : ", " + std::to_string(fault.times) + (fault.times == 1 ? " time" : " times");
  return line;
}

}  // namespace tavsim
