#ifndef TAVSIM_CORE_CLIENTMESSAGE_H
#define TAVSIM_CORE_CLIENTMESSAGE_H

#include <map>
#include <string>
#include <vector>

namespace tavsim {

enum class ClientMessageKind {
  Heart,        // "<root><heart /></root>"
  ClientInfo,   // the login message, body named by its identifier
  Command,      // head timestamp/ClientID, function with parameter block and name
  Unrecognised  // not well-formed or of no known shape; see `problem`
};

// One message from the client, decoded. `raw` is the exact text as framed off the stream,
// for byte-exact checks.
struct ClientMessage {
  ClientMessageKind kind = ClientMessageKind::Unrecognised;
  std::string raw;
  std::string problem;  // why the message is Unrecognised, empty otherwise

  // ClientInfo
  std::string identifier;
  std::string version;
  std::string system;
  std::string language;

  // Command
  std::string timestamp;
  std::string clientId;
  std::string functionName;
  std::map<std::string, std::string> parameters;
  std::vector<std::string> parameterOrder;  // keys as they stood on the wire

  // ClientInfo and Command: the declared checksum and whether it matches the body.
  std::string declaredChecksum;
  bool checksumValid = false;
};

// Decodes one framed "<root>...</root>" text. Never throws on malformed input.
ClientMessage DecodeClientMessage(const std::string& text);

const char* ToString(ClientMessageKind kind);

}  // namespace tavsim

#endif
