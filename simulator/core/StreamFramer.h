#ifndef TAVSIM_CORE_STREAMFRAMER_H
#define TAVSIM_CORE_STREAMFRAMER_H

#include <cstddef>
#include <optional>
#include <string>

namespace tavsim {

// Cuts a byte stream into "<root>" ... "</root>" messages, the first closing tag ending the
// message. Unlike the client's receiver it hands out every complete message it holds and
// keeps a tail that may be the start of a split "<root>" tag, so any split of the stream
// into reads yields the same messages. Bytes outside any message are counted as discarded.
class StreamFramer {
public:
  void Append(const char* data, std::size_t size);
  void Append(const std::string& data) { Append(data.data(), data.size()); }

  // The next complete message, or nothing while the buffer holds none.
  std::optional<std::string> Next();

  std::size_t Buffered() const { return buffer.size(); }
  std::size_t DiscardedBytes() const { return discarded; }

private:
  void _dropBeforeOpenTag();

  std::string buffer;
  std::size_t discarded = 0;
};

}  // namespace tavsim

#endif
