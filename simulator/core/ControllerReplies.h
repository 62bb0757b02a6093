#ifndef TAVSIM_CORE_CONTROLLERREPLIES_H
#define TAVSIM_CORE_CONTROLLERREPLIES_H

#include <string>
#include <utility>
#include <vector>

namespace tavsim {

// The byte sum both sides put into <checksum>: every byte of every text as a signed 8-bit
// value, wrapping modulo 2^32.
int WireChecksum(const std::vector<std::string>& texts);

// "<name>text</name>", or "<name />" for an empty text, as the controller writes elements.
std::string WireElementText(const std::string& name, const std::string& text);

// The answer to the client-info message; the checksum covers `result`.
std::string ConnResultMessage(const std::string& result);

// "<root><Heart /></root>".
std::string HeartReplyMessage();

// "<root><Error><errorcode>code</errorcode></Error></root>".
std::string ErrorMessage(const std::string& errorCode);

// The answer to one command. The client files it under functionName + timestamp.
struct CommandReply {
  std::string timestamp;
  std::string functionName;
  std::string state = "0";
  std::vector<std::pair<std::string, std::string>> results;  // in wire order
};

// With the correct checksum over the result texts.
std::string CommandReplyMessage(const CommandReply& reply);
// With `checksum` written as given, for replies that must fail the client's check.
std::string CommandReplyMessage(const CommandReply& reply, const std::string& checksum);

}  // namespace tavsim

#endif
