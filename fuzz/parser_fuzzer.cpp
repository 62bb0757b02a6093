// Parser::unwrap on arbitrary text, as the Receiver hands it any framed message. The decoder
// may fail only with its status or with the document parser's std::out_of_range, and a message
// it accepts names itself; which keys each kind writes is the unit tests' part (ParserTest).
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "FuzzCheck.h"
#include "common/RobotEvent.h"
#include "protocol/Parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string original(reinterpret_cast<const char*>(data), size);
  std::string text = original;
  Parser::Message result;
  int status = 0;
  try {
    status = Parser().unwrap(result, text);
  } catch (const std::out_of_range&) {
    return 0;
  }
  FUZZ_CHECK(text == original);
  FUZZ_CHECK(status == RobotEvents::kSuccess || status == RobotEvents::kDecodeFailed);
  FUZZ_CHECK(status != RobotEvents::kSuccess || result.count("identifier") == 1);
  return 0;
}
