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

TEST(MessageFramerTest, AMessageThatNeverEndsIsRefusedAndItsMemoryDropped) {
  MessageFramer framer;
  const std::string piece(64 * 1024, 'x');
  std::string message;
  framer.Append("<root>", 6);
  int code = RobotEvents::kNoCompleteMessage;
  std::size_t appended = 6;
  while (code == RobotEvents::kNoCompleteMessage &&
         appended <= 2 * MessageFramer::kMaxMessageSize) {
    framer.Append(piece.data(), piece.size());
    appended += piece.size();
    code = framer.Next(message);
  }
  EXPECT_EQ(code, RobotEvents::kDecodeFailed);
  EXPECT_LE(appended, MessageFramer::kMaxMessageSize + piece.size() + 6);
  EXPECT_EQ(framer.Buffered(), 0u);
  EXPECT_EQ(Feed(framer, "<root></root>", 13), std::vector<std::string>{"<root></root>"})
      << "framing goes on";
}

}  // namespace
