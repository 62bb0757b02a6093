#include "client/MessageFramer.h"

#include <algorithm>

#include "common/RobotEvent.h"

namespace {
const std::string kOpenTag = "<root>";
const std::string kCloseTag = "</root>";

// The length of the longest tail of `text` that is a proper prefix of `tag`.
std::size_t PartialTagAtEnd(const std::string& text, const std::string& tag) {
  for (std::size_t length = std::min(text.size(), tag.size() - 1); length > 0; --length) {
    if (text.compare(text.size() - length, length, tag, 0, length) == 0) {
      return length;
    }
  }
  return 0;
}
}  // namespace

void MessageFramer::Append(const char* bytes, std::size_t count) { buffer.append(bytes, count); }

void MessageFramer::Clear() {
  std::string().swap(buffer);  // releases the memory, not only the contents
  aligned = false;
  closeSearchFrom = 0;
}

bool MessageFramer::_alignOnOpeningTag() {
  const std::size_t open = buffer.find(kOpenTag);
  if (open == std::string::npos) {
    buffer.erase(0, buffer.size() - PartialTagAtEnd(buffer, kOpenTag));
    return false;
  }
  buffer.erase(0, open);
  aligned = true;
  closeSearchFrom = kOpenTag.size();
  return true;
}

int MessageFramer::Next(std::string& message) {
  if (!aligned && !_alignOnOpeningTag()) {
    return RobotEvents::kNoCompleteMessage;
  }
  const std::size_t close = buffer.find(kCloseTag, closeSearchFrom);
  if (close == std::string::npos) {
    if (buffer.size() > limit) {
      Clear();
      return RobotEvents::kDecodeFailed;
    }
    // A closing tag split across reads starts within its length of the end.
    closeSearchFrom =
        std::max(closeSearchFrom, buffer.size() - std::min(buffer.size(), kCloseTag.size() - 1));
    return RobotEvents::kNoCompleteMessage;
  }
  const std::size_t end = close + kCloseTag.size();
  message.assign(buffer, 0, end);
  buffer.erase(0, end);
  aligned = false;
  return RobotEvents::kSuccess;
}
