#ifndef TAVCLIENT_FOLLOWRESULT_H
#define TAVCLIENT_FOLLOWRESULT_H

#include <string>
#include <vector>

namespace tavclient {

/// How a following ended.
enum class FollowOutcome {
  Succeeded,              ///< every joint within the goal tolerance and at rest
  Invalid,                ///< refused before anything moved (code 1006011)
  PathToleranceExceeded,  ///< a joint strayed beyond the path tolerance; the arm was braked
  GoalToleranceExceeded,  ///< not arrived within the goal time; the arm was braked
  CommandRefused,         ///< the controller refused a set-point (its 2001xxx code)
  SessionFailed,          ///< the session failed (its code); nothing more can be sent
  Cancelled,              ///< Cancel() from another thread; the arm was braked
  Replaced,               ///< a new trajectory took over without a stop
};

/// What Follow() returns.
struct FollowResult {
  FollowOutcome outcome = FollowOutcome::Invalid;
  int code = 0;                  ///< 0, or the event code behind the outcome
  std::string message;           ///< why, in words (the refused check, the joint, the code's text)
  double duration = 0.0;         ///< seconds from the first set-point to the end
  double plannedDuration = 0.0;  ///< the last point's time
  double maxError = 0.0;         ///< degrees: the largest tracking error of any joint
  std::vector<double> finalError;  ///< degrees per joint at the end (actual - last point)
};

/// One cycle of a following, for progress callbacks.
struct FollowProgress {
  double time = 0.0;            ///< seconds since the start
  std::vector<double> desired;  ///< degrees per joint
  std::vector<double> actual;   ///< degrees per joint, from the state monitor
  std::vector<double> error;    ///< degrees per joint, actual - desired
};

}  // namespace tavclient

#endif
