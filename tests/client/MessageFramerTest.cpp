#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "client/MessageFramer.h"
#include "common/RobotEvent.h"

namespace {

std::vector<std::string> Feed(MessageFramer& framer, const std::string& bytes, std::size_t chunk) {
  std::vector<std::string> messages;
  for (std::size_t at = 0; at < bytes.size(); at += chunk) {
    framer.Append(bytes.data() + at, std::min(chunk, bytes.size() - at));
    std::string message;
    while (framer.Next(message) == RobotEvents::kSuccess) {
      messages.push_back(message);
    }
  }
  return messages;
}

// Every split of the stream, tags included, yields the same messages; noise between them goes.
TEST(MessageFramerTest, TagsSplitAnywhereStillFrameEveryMessage) {
  const std::string a = "<root><heart /></root>";
  const std::string b = "<root><x>1</x></root>";
  const std::string stream = "noise<" + a + "<ro" + "x" + b + b;
  for (std::size_t chunk = 1; chunk <= stream.size(); ++chunk) {
    MessageFramer framer;
    EXPECT_EQ(Feed(framer, stream, chunk), (std::vector<std::string>{a, b, b}))
        << "chunks of " << chunk;
    EXPECT_EQ(framer.Buffered(), 0u);
  }
}

}  // namespace
