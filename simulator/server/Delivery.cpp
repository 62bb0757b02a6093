#include "server/Delivery.h"

#include <algorithm>
#include <cstdlib>

#include "core/ControllerReplies.h"

namespace tavsim {

std::string WithWrongChecksum(const std::string& text) {
  const std::string open = "<checksum>";
  const std::size_t start = text.find(open);
  const std::size_t end = text.find("</checksum>", start);
  if (start == std::string::npos || end == std::string::npos) {
    return text;
  }
  const std::size_t digits = start + open.size();
  const long declared = std::strtol(text.c_str() + digits, nullptr, 10);
  return text.substr(0, digits) + std::to_string(declared + 1) + text.substr(end);
}

std::vector<std::string> SplitIntoPieces(const std::string& text, int pieces) {
  const std::size_t wanted = pieces < 1 ? 1 : static_cast<std::size_t>(pieces);
  const std::size_t count = std::max<std::size_t>(1, std::min(wanted, text.size()));
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t i = 1; i <= count; ++i) {
    const std::size_t end = text.size() * i / count;
    parts.push_back(text.substr(start, end - start));
    start = end;
  }
  return parts;
}

std::optional<OutboxEntry> PlanDelivery(const OutgoingReply& reply,
                                        const std::optional<Fault>& fault, SteadyTime now) {
  OutboxEntry entry{now, {reply.text}, std::chrono::milliseconds(0), false};
  if (!fault) {
    return entry;
  }
  switch (fault->kind) {
    case FaultKind::Delay:
      entry.due = now + fault->pause;
      break;
    case FaultKind::Drop:
      return std::nullopt;
    case FaultKind::Error:
      entry.pieces = {ErrorMessage(fault->text)};
      break;
    case FaultKind::Garbage:
      entry.pieces = {fault->text};
      break;
    case FaultKind::BadChecksum:
      entry.pieces = {WithWrongChecksum(reply.text)};
      break;
    case FaultKind::Split:
      entry.pieces = SplitIntoPieces(reply.text, fault->pieces);
      entry.pieceGap = fault->pause;
      break;
    case FaultKind::Close:
      entry.pieces.clear();
      entry.closeAfter = true;
      break;
  }
  return entry;
}

}  // namespace tavsim
