#ifndef TAVCLIENT_PROTOCOL_PARSER_H
#define TAVCLIENT_PROTOCOL_PARSER_H

#include <map>
#include <string>

// Turns message maps into wire text and inbound wire text back into message maps. Stateless:
// every call builds its own elements, document and checksum.
//
// The wrap operations replace `out` with the message and always return 0. The decoders fill
// `result` under fixed keys and return 0, or RobotEvents::kDecodeFailed for any fault; keys
// written before a fault stay. Text whose shape makes a substring start past its end lets the
// parser's std::out_of_range through to the caller.
class Parser {
public:
  using Message = std::map<std::string, std::string>;

  int wrap_heart(std::string& out, Message& params);
  // Reads "identifier", "version", "system", "language"; leaves the map as it was.
  int wrap_clientinfo(std::string& out, Message& params);
  // Reads "timestamp", "ClientID", "function_name" and erases them from the caller's map;
  // every entry left is a parameter, written in the map's byte-wise key order.
  int wrap_msg(std::string& out, Message& params);

  // Dispatches on a plain substring search of the whole text, in this order:
  // "ConnResult", "Heart", "Error", otherwise a command reply.
  int unwrap(Message& result, std::string& text);
  int unwrap_Heart(Message& result, std::string& text);
  int unwrap_Error(Message& result, std::string& text);
  int unwrap_ConnResult(Message& result, std::string& text);
  int unwrap_Msg(Message& result, std::string& text);
};

#endif
