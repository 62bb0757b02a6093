#include "core/StreamFramer.h"

#include <algorithm>

namespace tavsim {

namespace {
const std::string kOpenTag = "<root>";
const std::string kCloseTag = "</root>";
}  // namespace

void StreamFramer::Append(const char* data, std::size_t size) {
  buffer_.append(data, size);
}

void StreamFramer::DropBeforeOpenTag() {
  const std::size_t open = buffer_.find(kOpenTag);
  std::size_t drop = open;
  if (open == std::string::npos) {
    // Keep what could still grow into "<root>" with the next read.
    const std::size_t keep = std::min(buffer_.size(), kOpenTag.size() - 1);
    drop = buffer_.size() - keep;
    while (drop < buffer_.size() && kOpenTag.compare(0, buffer_.size() - drop, buffer_, drop) != 0) {
      ++drop;
    }
  }
  discarded_ += drop;
  buffer_.erase(0, drop);
}

std::optional<std::string> StreamFramer::Next() {
  DropBeforeOpenTag();
  if (buffer_.compare(0, kOpenTag.size(), kOpenTag) != 0) {
    return std::nullopt;
  }
  const std::size_t close = buffer_.find(kCloseTag, kOpenTag.size());
  if (close == std::string::npos) {
    return std::nullopt;
  }
  const std::size_t end = close + kCloseTag.size();
  std::string message = buffer_.substr(0, end);
  buffer_.erase(0, end);
  return message;
}

}  // namespace tavsim
