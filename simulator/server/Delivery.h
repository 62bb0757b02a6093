#ifndef TAVSIM_SERVER_DELIVERY_H
#define TAVSIM_SERVER_DELIVERY_H

#include <optional>
#include <string>
#include <vector>

#include "server/Fault.h"
#include "server/Outbox.h"
#include "server/RequestHandler.h"

namespace tavsim {

// How `reply` goes out from `now` on: as it is without a fault, otherwise changed as the
// fault says. Nothing when the fault drops the reply.
std::optional<OutboxEntry> PlanDelivery(const OutgoingReply& reply,
                                        const std::optional<Fault>& fault, SteadyTime now);

// `text` with the number in its <checksum> element raised by one (unchanged without one).
std::string WithWrongChecksum(const std::string& text);

// `text` cut into `pieces` parts of nearly equal length (fewer when it is shorter).
std::vector<std::string> SplitIntoPieces(const std::string& text, int pieces);

}  // namespace tavsim

#endif
