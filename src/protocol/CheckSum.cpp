#include "protocol/CheckSum.h"

#include <cstdint>
#include <limits>
#include <utility>

namespace {

// Two's-complement reading of the accumulator, spelled out so that it does not depend on
// the implementation-defined unsigned-to-signed conversion.
int ToSigned(std::uint32_t value) {
  constexpr std::uint32_t kIntMax = std::numeric_limits<std::int32_t>::max();
  if (value <= kIntMax) {
    return static_cast<int>(value);
  }
  return -static_cast<int>(~value) - 1;
}

}  // namespace

CheckSum::CheckSum() : state(0) {}

CheckSum::~CheckSum() { state = 0; }

void CheckSum::AddElement(std::string elementText) { elements.push_back(std::move(elementText)); }

int CheckSum::CalcSum() {
  std::uint32_t sum = 0;
  for (const std::string& elementText : elements) {
    // Like a C string: an embedded NUL ends the text.
    for (const char byte : elementText) {
      if (byte == '\0') {
        break;
      }
      sum += static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(byte)));
    }
  }
  elements.clear();
  return ToSigned(sum);
}
