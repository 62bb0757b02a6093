// MessageFramer fed arbitrary reads, taking messages after each read as the Receiver does,
// with a limit of 1 KiB rather than 1 MiB so that streams past it cost kilobytes per run. The
// framer only drops bytes from the front, so what it buffers is the stream's last Buffered()
// bytes, its window; the checks hold it to the framing rule inside that window (README.md).
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzCheck.h"
#include "client/MessageFramer.h"
#include "common/RobotEvent.h"

namespace {

const std::string kOpen = "<root>";
const std::string kClose = "</root>";
constexpr std::size_t kLimit = 1024;

// The input is a run of chunks, each a length byte L, a repeat byte R and L bytes, which are
// one read. A repeat byte from 0xFC up feeds the read 2^(R - 0xFB) times in a row, so that a
// small input can stand for a stream past the limit. A short last chunk takes what is left.
constexpr std::uint8_t kRepeatFrom = 0xFC;

class Checker {
public:
  void Feed(const char* bytes, std::size_t size) {
    const std::size_t before = framer.Buffered();
    framer.Append(bytes, size);
    stream.append(bytes, size);
    lastRead = size;
    FUZZ_CHECK(framer.Buffered() <= before + size);
    FUZZ_CHECK(framer.Buffered() <= kLimit + size);
    _drain();
  }

private:
  std::size_t _windowStart() const { return stream.size() - framer.Buffered(); }

  void _drain() {
    for (;;) {
      const std::size_t start = _windowStart();
      std::string message;
      const int status = framer.Next(message);
      if (status == RobotEvents::kSuccess) {
        _checkMessage(start, message);
      } else if (status == RobotEvents::kNoCompleteMessage) {
        _checkNothingComplete(start);
        return;
      } else {
        FUZZ_CHECK(status == RobotEvents::kDecodeFailed);
        _checkOutgrown(start);
      }
    }
  }

  void _checkMessage(std::size_t start, const std::string& message) {
    const std::size_t open = stream.find(kOpen, start);
    FUZZ_CHECK(open != std::string::npos);
    const std::size_t close = stream.find(kClose, open + kOpen.size());
    FUZZ_CHECK(close != std::string::npos);
    const std::size_t end = close + kClose.size();
    FUZZ_CHECK(stream.compare(open, end - open, message) == 0);
    FUZZ_CHECK(_windowStart() == end);
    // The read that brought the closing tag may have carried the message past the limit.
    FUZZ_CHECK(message.size() <= kLimit + lastRead);
  }

  // Nothing it dropped held a "<root>" and nothing it kept holds a complete message. Once a
  // window is known to hold none, only a closing tag that arrived since can complete one.
  void _checkNothingComplete(std::size_t start) {
    const std::size_t kept = _windowStart();
    const std::size_t open = stream.find(kOpen, start);
    FUZZ_CHECK(open == std::string::npos || open >= kept);
    if (open != std::string::npos) {
      const std::size_t arrived = checkedTo > kClose.size() ? checkedTo - kClose.size() : 0;
      FUZZ_CHECK(stream.find(kClose, std::max(arrived, open + kOpen.size())) == std::string::npos);
    }
    FUZZ_CHECK(framer.Buffered() <= kLimit);
    checkedTo = stream.size();
  }

  // The window's message began with "<root>", found no "</root>", and grew past the limit.
  void _checkOutgrown(std::size_t start) {
    FUZZ_CHECK(framer.Buffered() == 0);
    const std::size_t open = stream.find(kOpen, start);
    FUZZ_CHECK(open != std::string::npos);
    FUZZ_CHECK(stream.find(kClose, open + kOpen.size()) == std::string::npos);
    FUZZ_CHECK(stream.size() - open > kLimit);
    checkedTo = stream.size();
  }

  MessageFramer framer{kLimit};
  std::string stream;
  std::size_t checkedTo = 0;
  std::size_t lastRead = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Checker checker;
  for (std::size_t at = 0; size - at >= 2;) {
    const std::size_t length = std::min<std::size_t>(data[at], size - at - 2);
    const std::uint8_t repeat = data[at + 1];
    const std::size_t times =
        repeat < kRepeatFrom ? 1 : std::size_t{1} << (repeat - kRepeatFrom + 1);
    for (std::size_t read = 0; read < times; ++read) {
      checker.Feed(reinterpret_cast<const char*>(data) + at + 2, length);
    }
    at += 2 + length;
  }
  return 0;
}
