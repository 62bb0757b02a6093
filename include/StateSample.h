#ifndef TAVCLIENT_STATESAMPLE_H
#define TAVCLIENT_STATESAMPLE_H

#include <chrono>
#include <cstdint>
#include <vector>

#include "Robot.h"

namespace tavclient {

/// The quantities a state monitor reads, as bits of a mask.
enum class StateField : unsigned {
  Angles = 1U << 0,      ///< joint positions, degrees
  Velocities = 1U << 1,  ///< joint speeds, degrees per second
  Currents = 1U << 2,    ///< motor currents, amperes
  Inputs = 1U << 3,      ///< digital inputs, 0 or 1
  Pose = 1U << 4,        ///< tool pose, metres and radians
};
using StateFields = unsigned;
/// One field alone as a mask: `options.fields = Fields(StateField::Angles)`.
constexpr StateFields Fields(StateField field) { return static_cast<StateFields>(field); }
constexpr StateFields operator|(StateField a, StateField b) {
  return static_cast<unsigned>(a) | static_cast<unsigned>(b);
}
constexpr StateFields operator|(StateFields a, StateField b) {
  return a | static_cast<unsigned>(b);
}
constexpr bool Has(StateFields fields, StateField field) {
  return (fields & static_cast<unsigned>(field)) != 0;
}

/// The arm's state at one instant, as one monitor cycle read it.
///
/// A field is fresh in this sample only when `Has(fresh, field)`: a field whose query failed
/// is left empty (the pose zero) and `code` says why, so nothing stale passes for fresh.
struct StateSample {
  std::uint64_t sequence = 0;                      ///< 1, 2, ... in the order taken
  std::chrono::steady_clock::time_point time;      ///< the instant the values stand for
  std::chrono::system_clock::time_point wallTime;  ///< the same instant on the wall clock
  StateFields fresh = 0;                           ///< the fields read in this cycle
  int code = 0;                    ///< 0, or the code of the first query of this cycle that failed
  std::vector<int> motorIds;       ///< the ids the per-motor values belong to, in order
  std::vector<double> angles;      ///< degrees, one per motor id
  std::vector<double> velocities;  ///< degrees per second, one per motor id
  std::vector<double> currents;    ///< amperes, one per motor id
  std::vector<int> inputIds;       ///< the inputs read
  std::vector<int> inputs;         ///< 0 or 1, one per input id
  _Pose pose;                      ///< metres and radians
};

}  // namespace tavclient

#endif
