#include "core/ControllerReplies.h"

#include "protocol/CheckSum.h"

namespace tavsim {

int WireChecksum(const std::vector<std::string>& texts) {
  CheckSum sum;
  for (const std::string& text : texts) {
    sum.AddElement(text);
  }
  return sum.CalcSum();
}

std::string WireElementText(const std::string& name, const std::string& text) {
  if (text.empty()) {
    return "<" + name + " />";
  }
  return "<" + name + ">" + text + "</" + name + ">";
}

std::string ConnResultMessage(const std::string& result) {
  return "<root>" + WireElementText("head", WireElementText("identifier", "ConnResult")) +
         WireElementText("ConnResult", WireElementText("result", result)) +
         WireElementText("tail",
                         WireElementText("checksum", std::to_string(WireChecksum({result})))) +
         "</root>";
}

std::string HeartReplyMessage() { return "<root>" + WireElementText("Heart", "") + "</root>"; }

std::string ErrorMessage(const std::string& errorCode) {
  return "<root>" + WireElementText("Error", WireElementText("errorcode", errorCode)) + "</root>";
}

std::string CommandReplyMessage(const CommandReply& reply, const std::string& checksum) {
  std::string results;
  for (const auto& [key, value] : reply.results) {
    results += WireElementText(key, value);
  }
  return "<root>" +
         WireElementText("head", WireElementText("timestamp", reply.timestamp) +
                                     WireElementText("state", reply.state)) +
         WireElementText("result", results) +
         WireElementText("taskmatching", WireElementText("timestamp", reply.timestamp) +
                                             WireElementText("name", reply.functionName)) +
         WireElementText("tail", WireElementText("checksum", checksum)) + "</root>";
}

std::string CommandReplyMessage(const CommandReply& reply) {
  std::vector<std::string> texts;
  for (const auto& result : reply.results) {
    texts.push_back(result.second);
  }
  return CommandReplyMessage(reply, std::to_string(WireChecksum(texts)));
}

}  // namespace tavsim
