#include "protocol/Parser.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "common/RobotEvent.h"
#include "protocol/CheckSum.h"
#include "xml/TavXmlDocument.h"
#include "xml/TavXmlElement.h"

namespace {

using Message = Parser::Message;
using Children = std::vector<TavXmlElement>;

constexpr int kDecodeFailed = RobotEvents::kDecodeFailed;

// A missing key reads as an empty text, without inserting it into the caller's map.
std::string ValueOf(const Message& params, const std::string& key) {
  const auto entry = params.find(key);
  return entry == params.end() ? std::string() : entry->second;
}

std::string Leaf(const std::string& name, const std::string& text) {
  TavXmlElement element(name);
  element.setText(text);
  return element.getElement();
}

// head, body and the tail carrying the checksum of what was added to `sum`, inside root.
std::string Envelope(TavXmlElement& head, TavXmlElement& body, CheckSum& sum) {
  TavXmlElement tail("tail");
  tail.setText(Leaf("checksum", std::to_string(sum.CalcSum())));
  TavXmlElement root("root");
  root.setText(head.getElement());
  root.linkText(body.getElement());
  root.linkText(tail.getElement());
  return root.getElement();
}

// The decoders read the document's tree in place; every pointer and reference they take into it
// lives no longer than the document. A text that does not parse has no elements.
const Children kNoChildren;

const Children& TopLevel(TavXmlDocument& document, std::string& text) {
  return document.parse(text) == 0 ? document.rootView().childrenView() : kNoChildren;
}

// Positions are checked against the children count before indexing, so a short message is
// rejected rather than read past its end.
const TavXmlElement* ChildAt(const Children& children, std::size_t index) {
  return index < children.size() ? &children[index] : nullptr;
}

const TavXmlElement* ChildNamed(const Children& children, std::size_t index,
                                const std::string& name) {
  const TavXmlElement* child = ChildAt(children, index);
  return child != nullptr && child->getName() == name ? child : nullptr;
}

// An absent parent has no children.
const Children& ChildrenOf(const TavXmlElement* parent) {
  return parent != nullptr ? parent->childrenView() : kNoChildren;
}

// The declared sum is read as strtol reads it (leading blanks and sign, stops at the first
// non-digit, no digits is 0); only its low 32 bits are compared.
bool ChecksumMatches(const TavXmlElement* tail, CheckSum& sum) {
  const TavXmlElement* checksum = ChildNamed(ChildrenOf(tail), 0, "checksum");
  if (checksum == nullptr) {
    return false;
  }
  const std::string declaredText = checksum->getText();
  const long declared = std::strtol(declaredText.c_str(), nullptr, 10);
  return static_cast<std::uint32_t>(declared) == static_cast<std::uint32_t>(sum.CalcSum());
}

}  // namespace

int Parser::wrap_heart(std::string& out, Message& /*params*/) {
  TavXmlElement heart("heart");
  TavXmlElement root("root");
  root.setText(heart.getElement());
  out = root.getElement();
  return 0;
}

int Parser::wrap_clientinfo(std::string& out, Message& params) {
  const std::string kind = ValueOf(params, "identifier");
  TavXmlElement head("head");
  head.setText(Leaf("identifier", kind));
  TavXmlElement body(kind);
  CheckSum sum;
  for (const char* key : {"version", "system", "language"}) {
    const std::string value = ValueOf(params, key);
    body.linkText(Leaf(key, value));
    sum.AddElement(value);
  }
  out = Envelope(head, body, sum);
  return 0;
}

int Parser::wrap_msg(std::string& out, Message& params) {
  TavXmlElement head("head");
  head.setText(Leaf("timestamp", ValueOf(params, "timestamp")));
  head.linkText(Leaf("ClientID", ValueOf(params, "ClientID")));
  const std::string functionName = ValueOf(params, "function_name");
  CheckSum sum;
  sum.AddElement(functionName);
  params.erase("timestamp");
  params.erase("ClientID");
  params.erase("function_name");
  TavXmlElement parameter("parameter");
  for (const auto& [key, value] : params) {
    parameter.linkText(Leaf(key, value));
    sum.AddElement(value);
  }
  // Each setText inserts right behind the opening tag, so the parameter block lands in front
  // of the name; the server reads exactly this order.
  TavXmlElement function("function");
  function.setText(Leaf("name", functionName));
  function.setText(parameter.getElement());
  out = Envelope(head, function, sum);
  return 0;
}

int Parser::unwrap(Message& result, std::string& text) {
  if (text.find("ConnResult") != std::string::npos) {
    return unwrap_ConnResult(result, text);
  }
  if (text.find("Heart") != std::string::npos) {
    return unwrap_Heart(result, text);
  }
  if (text.find("Error") != std::string::npos) {
    return unwrap_Error(result, text);
  }
  return unwrap_Msg(result, text);
}

int Parser::unwrap_Heart(Message& result, std::string& text) {
  TavXmlDocument document;
  if (ChildNamed(TopLevel(document, text), 0, "Heart") == nullptr) {
    return kDecodeFailed;
  }
  result["identifier"] = "heart";
  return 0;
}

int Parser::unwrap_Error(Message& result, std::string& text) {
  TavXmlDocument document;
  const TavXmlElement* error = ChildNamed(TopLevel(document, text), 0, "Error");
  if (error == nullptr) {
    return kDecodeFailed;
  }
  result["identifier"] = "Error";
  const TavXmlElement* code = ChildNamed(error->childrenView(), 0, "errorcode");
  if (code == nullptr) {
    return kDecodeFailed;
  }
  result["errorcode"] = code->getText();
  return 0;
}

int Parser::unwrap_ConnResult(Message& result, std::string& text) {
  TavXmlDocument document;
  const Children& top = TopLevel(document, text);
  // The identifier element's own name is not checked, only its text.
  const TavXmlElement* identifier = ChildAt(ChildrenOf(ChildNamed(top, 0, "head")), 0);
  if (identifier == nullptr) {
    return kDecodeFailed;
  }
  result["identifier"] = identifier->getText();
  if (identifier->getText() != "ConnResult") {
    return kDecodeFailed;
  }
  const TavXmlElement* value =
      ChildNamed(ChildrenOf(ChildNamed(top, 1, "ConnResult")), 0, "result");
  if (value == nullptr) {
    return kDecodeFailed;
  }
  CheckSum sum;
  result["result"] = value->getText();
  sum.AddElement(value->getText());
  return ChecksumMatches(ChildNamed(top, 2, "tail"), sum) ? 0 : kDecodeFailed;
}

int Parser::unwrap_Msg(Message& result, std::string& text) {
  TavXmlDocument document;
  const Children& top = TopLevel(document, text);
  const Children& head = ChildrenOf(ChildNamed(top, 0, "head"));
  const TavXmlElement* state = ChildNamed(head, 1, "state");
  if (ChildNamed(head, 0, "timestamp") == nullptr || state == nullptr) {
    return kDecodeFailed;
  }
  result["state"] = state->getText();
  const TavXmlElement* values = ChildNamed(top, 1, "result");
  if (values == nullptr) {
    return kDecodeFailed;
  }
  CheckSum sum;
  for (const TavXmlElement& value : values->childrenView()) {
    result[value.getName()] = value.getText();
    sum.AddElement(value.getText());
  }
  const Children& matching = ChildrenOf(ChildNamed(top, 2, "taskmatching"));
  const TavXmlElement* stamp = ChildNamed(matching, 0, "timestamp");
  const TavXmlElement* function = ChildNamed(matching, 1, "name");
  if (stamp == nullptr || function == nullptr) {
    return kDecodeFailed;
  }
  result["identifier"] = function->getText() + stamp->getText();
  return ChecksumMatches(ChildNamed(top, 3, "tail"), sum) ? 0 : kDecodeFailed;
}
