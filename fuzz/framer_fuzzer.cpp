// MessageFramer fed arbitrary reads, as the Receiver feeds it: after every read the harness
// takes messages until the framer has none. Its size limit is 1 KiB here rather than 1 MiB, so
// that streams past it cost kilobytes per run. The framer only ever drops bytes from the front,
// so what it buffers is the stream's last Buffered() bytes, its window; the checks hold it to
// the framing rule inside that window:
// - a message is the window's first "<root>" up to the first "</root>" after it, and the
//   framer keeps exactly what follows it;
// - when it yields nothing, the window holds no complete message, and what it dropped held
//   no "<root>";
// - a message that outgrows the limit without its "</root>" empties the buffer, which never
//   holds more than the limit plus one read.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "ChunkStream.h"
#include "FuzzCheck.h"
#include "client/MessageFramer.h"
#include "common/RobotEvent.h"

namespace {

const std::string kOpen = "<root>";
const std::string kClose = "</root>";
constexpr std::size_t kLimit = 1024;

class Checker {
public:
  void Feed(const char* bytes, std::size_t size) {
    const std::size_t before = framer_.Buffered();
    framer_.Append(bytes, size);
    stream_.append(bytes, size);
    lastRead_ = size;
    FUZZ_CHECK(framer_.Buffered() <= before + size);
    FUZZ_CHECK(framer_.Buffered() <= kLimit + size);
    Drain();
  }

private:
  std::size_t WindowStart() const { return stream_.size() - framer_.Buffered(); }

  void Drain() {
    for (;;) {
      const std::size_t start = WindowStart();
      std::string message;
      const int status = framer_.Next(message);
      if (status == RobotEvents::kSuccess) {
        CheckMessage(start, message);
      } else if (status == RobotEvents::kNoCompleteMessage) {
        CheckNothingComplete(start);
        return;
      } else {
        FUZZ_CHECK(status == RobotEvents::kDecodeFailed);
        CheckOutgrown(start);
      }
    }
  }

  void CheckMessage(std::size_t start, const std::string& message) {
    const std::size_t open = stream_.find(kOpen, start);
    FUZZ_CHECK(open != std::string::npos);
    const std::size_t close = stream_.find(kClose, open + kOpen.size());
    FUZZ_CHECK(close != std::string::npos);
    const std::size_t end = close + kClose.size();
    FUZZ_CHECK(stream_.compare(open, end - open, message) == 0);
    FUZZ_CHECK(WindowStart() == end);
    // The read that brought the closing tag may have carried the message past the limit.
    FUZZ_CHECK(message.size() <= kLimit + lastRead_);
  }

  // Nothing it dropped held a "<root>" and nothing it kept holds a complete message. Once a
  // window is known to hold none, only a closing tag that arrived since can complete one.
  void CheckNothingComplete(std::size_t start) {
    const std::size_t kept = WindowStart();
    const std::size_t open = stream_.find(kOpen, start);
    FUZZ_CHECK(open == std::string::npos || open >= kept);
    if (open != std::string::npos) {
      const std::size_t arrived = checkedTo_ > kClose.size() ? checkedTo_ - kClose.size() : 0;
      FUZZ_CHECK(stream_.find(kClose, std::max(arrived, open + kOpen.size())) == std::string::npos);
    }
    FUZZ_CHECK(framer_.Buffered() <= kLimit);
    checkedTo_ = stream_.size();
  }

  // The window's message began with "<root>", found no "</root>", and grew past the limit.
  void CheckOutgrown(std::size_t start) {
    FUZZ_CHECK(framer_.Buffered() == 0);
    const std::size_t open = stream_.find(kOpen, start);
    FUZZ_CHECK(open != std::string::npos);
    FUZZ_CHECK(stream_.find(kClose, open + kOpen.size()) == std::string::npos);
    FUZZ_CHECK(stream_.size() - open > kLimit);
    checkedTo_ = stream_.size();
  }

  MessageFramer framer_{kLimit};
  std::string stream_;
  std::size_t checkedTo_ = 0;
  std::size_t lastRead_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Checker checker;
  for (const Chunk& chunk : ReadChunks(data, size)) {
    for (std::size_t read = 0; read < chunk.times; ++read) {
      checker.Feed(chunk.bytes, chunk.size);
    }
  }
  return 0;
}
