#include "core/ClientMessage.h"

#include <optional>

#include "core/ControllerReplies.h"
#include "core/WireXml.h"

namespace tavsim {

namespace {

ClientMessage Unrecognised(ClientMessage message, const std::string& problem) {
  message.kind = ClientMessageKind::Unrecognised;
  message.problem = problem;
  return message;
}

// The sum is compared with the declared text read strictly as a decimal int.
bool ChecksumMatches(const std::string& declared, const std::vector<std::string>& summedTexts) {
  return declared == std::to_string(WireChecksum(summedTexts));
}

std::optional<std::string> TailChecksum(const WireElement& root) {
  const WireElement* tail = root.Child(2, "tail");
  const WireElement* checksum = tail ? tail->Child(0, "checksum") : nullptr;
  if (root.children.size() != 3 || !checksum || tail->children.size() != 1) {
    return std::nullopt;
  }
  return checksum->text;
}

ClientMessage DecodeClientInfo(ClientMessage message, const WireElement& root) {
  const WireElement& head = root.children[0];
  const WireElement& body = root.children[1];
  message.identifier = head.children[0].text;
  const WireElement* version = body.Child(0, "version");
  const WireElement* system = body.Child(1, "system");
  const WireElement* language = body.Child(2, "language");
  if (body.name != message.identifier || !version || !system || !language ||
      body.children.size() != 3) {
    return Unrecognised(message, "client-info body is not <" + message.identifier +
                                     "> with version, system, language");
  }
  message.version = version->text;
  message.system = system->text;
  message.language = language->text;
  message.kind = ClientMessageKind::ClientInfo;
  message.checksumValid = ChecksumMatches(message.declaredChecksum,
                                          {message.version, message.system, message.language});
  return message;
}

ClientMessage DecodeCommand(ClientMessage message, const WireElement& root) {
  const WireElement& head = root.children[0];
  const WireElement* function = root.Child(1, "function");
  const WireElement* parameter = function ? function->Child(0, "parameter") : nullptr;
  const WireElement* name = function ? function->Child(1, "name") : nullptr;
  if (!parameter || !name || function->children.size() != 2 || !parameter->text.empty()) {
    return Unrecognised(message, "command body is not <function> with <parameter> then <name>");
  }
  message.timestamp = head.children[0].text;
  message.clientId = head.children[1].text;
  message.functionName = name->text;
  std::vector<std::string> summed{message.functionName};
  for (const WireElement& entry : parameter->children) {
    if (!entry.children.empty()) {
      return Unrecognised(message, "parameter <" + entry.name + "> has child elements");
    }
    if (!message.parameters.emplace(entry.name, entry.text).second) {
      return Unrecognised(message, "parameter <" + entry.name + "> appears twice");
    }
    message.parameterOrder.push_back(entry.name);
    summed.push_back(entry.text);
  }
  message.kind = ClientMessageKind::Command;
  message.checksumValid = ChecksumMatches(message.declaredChecksum, summed);
  return message;
}

}  // namespace

ClientMessage DecodeClientMessage(const std::string& text) {
  ClientMessage message;
  message.raw = text;
  const std::optional<WireElement> root = ParseWireXml(text);
  if (!root || root->name != "root") {
    return Unrecognised(message, "not a well-formed <root> element");
  }
  if (root->children.size() == 1 && root->children[0].name == "heart") {
    const WireElement& heart = root->children[0];
    if (!heart.text.empty() || !heart.children.empty()) {
      return Unrecognised(message, "<heart> is not empty");
    }
    message.kind = ClientMessageKind::Heart;
    return message;
  }
  const WireElement* head = root->Child(0, "head");
  const std::optional<std::string> checksum = TailChecksum(*root);
  if (!head || !checksum) {
    return Unrecognised(message, "not <head>, body, <tail><checksum>");
  }
  message.declaredChecksum = *checksum;
  if (head->children.size() == 1 && head->Child(0, "identifier")) {
    return DecodeClientInfo(message, *root);
  }
  if (head->children.size() == 2 && head->Child(0, "timestamp") && head->Child(1, "ClientID")) {
    return DecodeCommand(message, *root);
  }
  return Unrecognised(message, "<head> holds neither identifier nor timestamp and ClientID");
}

const char* ToString(ClientMessageKind kind) {
  switch (kind) {
    case ClientMessageKind::Heart:
      return "heart";
    case ClientMessageKind::ClientInfo:
      return "client-info";
    case ClientMessageKind::Command:
      return "command";
    case ClientMessageKind::Unrecognised:
      break;
  }
  return "unrecognised";
}

}  // namespace tavsim
