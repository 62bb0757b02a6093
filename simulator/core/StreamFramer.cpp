#include "core/StreamFramer.h"

#include <algorithm>

namespace tavsim {

namespace {
const std::string kOpenTag = "<root>";
const std::string kCloseTag = "</root>";
}  // namespace

void StreamFramer::Append(const char* data, std::size_t size) { buffer.append(data, size); }

void StreamFramer::_dropBeforeOpenTag() {
  const std::size_t open = buffer.find(kOpenTag);
  std::size_t drop = open;
  if (open == std::string::npos) {
    // Keep what could still grow into "<root>" with the next read.
    const std::size_t keep = std::min(buffer.size(), kOpenTag.size() - 1);
    drop = buffer.size() - keep;
    while (drop < buffer.size() && kOpenTag.compare(0, buffer.size() - drop, buffer, drop) != 0) {
      ++drop;
    }
  }
  discarded += drop;
  buffer.erase(0, drop);
}

std::optional<std::string> StreamFramer::Next() {
  _dropBeforeOpenTag();
  if (buffer.compare(0, kOpenTag.size(), kOpenTag) != 0) {
    return std::nullopt;
  }
  const std::size_t close = buffer.find(kCloseTag, kOpenTag.size());
  if (close == std::string::npos) {
    return std::nullopt;
  }
  const std::size_t end = close + kCloseTag.size();
  std::string message = buffer.substr(0, end);
  buffer.erase(0, end);
  return message;
}

}  // namespace tavsim
