// Parser::unwrap on arbitrary text, as the Receiver hands it any framed message. The decoder
// may fail only with its status or with the document parser's std::out_of_range; a message it
// accepts must have written the keys its kind promises under the kind's fixed identifier.
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "FuzzCheck.h"
#include "common/RobotEvent.h"
#include "protocol/Parser.h"

namespace {

bool Contains(const std::string& text, const char* word) {
  return text.find(word) != std::string::npos;
}

// The dispatcher picks the decoder by the first of these words the text contains.
void CheckAccepted(const std::string& text, const Parser::Message& result) {
  const auto identifier = result.find("identifier");
  FUZZ_CHECK(identifier != result.end());
  if (Contains(text, "ConnResult")) {
    FUZZ_CHECK(identifier->second == "ConnResult");
    FUZZ_CHECK(result.size() == 2 && result.count("result") == 1);
  } else if (Contains(text, "Heart")) {
    FUZZ_CHECK(identifier->second == "heart");
    FUZZ_CHECK(result.size() == 1);
  } else if (Contains(text, "Error")) {
    FUZZ_CHECK(identifier->second == "Error");
    FUZZ_CHECK(result.size() == 2 && result.count("errorcode") == 1);
  } else {
    FUZZ_CHECK(result.count("state") == 1);
  }
}

}  // namespace

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
  if (status == RobotEvents::kSuccess) {
    CheckAccepted(text, result);
  }
  return 0;
}
