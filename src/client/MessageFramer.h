#ifndef TAVCLIENT_CLIENT_MESSAGEFRAMER_H
#define TAVCLIENT_CLIENT_MESSAGEFRAMER_H

#include <cstddef>
#include <string>

// Cuts "<root>" ... "</root>" messages out of the inbound byte stream. Text before an opening
// tag is dropped; the first closing tag ends a message (no nesting). The search for a closing
// tag resumes where the previous one stopped, so a message arriving in many pieces is scanned
// once, and a message that grows past the limit (kMaxMessageSize unless told otherwise) without
// its closing tag is refused and dropped rather than buffered without end.
class MessageFramer {
public:
  static constexpr std::size_t kMaxMessageSize = std::size_t{1} << 20;

  // A smaller limit lets a made-up stream reach the refusal in kilobytes (the fuzzing harness).
  explicit MessageFramer(std::size_t maxMessageSize = kMaxMessageSize) : limit(maxMessageSize) {}

  void Append(const char* bytes, std::size_t count);
  // 0 and the next complete message; 1003011 while none is complete; 1003021 when a message
  // outgrew the limit (everything buffered is dropped).
  int Next(std::string& message);
  void Clear();
  std::size_t Buffered() const { return buffer.size(); }

private:
  // Drops what precedes the first opening tag; false when there is none yet. Keeps a tail that
  // may be the start of a tag split across reads.
  bool _alignOnOpeningTag();

  std::size_t limit;
  std::string buffer;
  // Whether the buffer starts with an opening tag, and from where the closing tag is sought.
  bool aligned = false;
  std::size_t closeSearchFrom = 0;
};

#endif
