#ifndef TAVSIM_SERVER_FAULT_H
#define TAVSIM_SERVER_FAULT_H

#include <chrono>
#include <optional>
#include <string>

namespace tavsim {

enum class FaultKind {
  Delay,        // send the reply `pause` later; replies to other requests are not held up
  Drop,         // never send the reply
  Error,        // send an Error message with code `text` instead of the reply
  Garbage,      // send the bytes `text` instead of the reply
  BadChecksum,  // send the reply with its checksum off by one (replies that carry one)
  Split,        // send the reply in `pieces` writes, `pause` apart
  Close         // close the connection instead of sending the reply
};

// One rule that changes how the simulator sends some of its replies. A rule matches replies
// by the name of what they answer: "heart", "ClientInfo" (the login) or a command's wire
// function name ("get_angles", "move_to_position"...); an empty name matches every reply.
// Error messages the simulator sends on its own are never changed.
struct Fault {
  static constexpr int kEveryTime = -1;

  FaultKind kind = FaultKind::Drop;
  std::string on;
  int times = 1;  // matching replies changed, or kEveryTime
  int after = 0;  // matching replies let through untouched first
  std::chrono::milliseconds pause{0};
  int pieces = 2;
  std::string text;

  static Fault DelayReply(std::string on, std::chrono::milliseconds pause);
  static Fault DropReply(std::string on);
  static Fault ErrorInstead(std::string on, std::string errorCode);
  static Fault ErrorInstead(std::string on);  // with ServerCodes::kInjectedError
  static Fault GarbageInstead(std::string on, std::string bytes);
  static Fault GarbageInstead(std::string on);  // a frame the client cannot read
  static Fault CorruptChecksum(std::string on);
  static Fault SplitReply(std::string on, int pieces, std::chrono::milliseconds pause);
  static Fault CloseConnection(std::string on);

  Fault& Times(int count);
  Fault& After(int count);
  Fault& Always() { return Times(kEveryTime); }
};

// The frame GarbageInstead sends by default: framed like a message, but not one.
extern const char* const kDefaultGarbage;

// Reads the command-line form "KIND[,key=value]...": KIND is one of delay, drop, error,
// garbage, checksum, split, close; keys are on=NAME, times=N|all, after=N, ms=N, pieces=N,
// text=TEXT (the error code or the garbage bytes). Nothing, with `problem` set, when the
// text is not of that form.
std::optional<Fault> ParseFault(const std::string& rule, std::string& problem);

// One line for logs: "delay 500 ms on get_pose, 1 time".
std::string Describe(const Fault& fault);

}  // namespace tavsim

#endif
