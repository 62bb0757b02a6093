#ifndef TAVCLIENT_STATEMONITOR_H
#define TAVCLIENT_STATEMONITOR_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "SharedRobot.h"
#include "StateSample.h"

namespace tavclient {

/// What a monitor reads and how often.
struct MonitorOptions {
  double rateHz = 100.0;  ///< samples per second, 1 to 500
  StateFields fields = StateField::Angles | StateField::Velocities;
  std::vector<int> inputIds;  ///< the inputs to read with StateField::Inputs; empty: 1 to 10
};

/// Counters of a monitor since Start().
struct MonitorStats {
  std::uint64_t samples = 0;            ///< samples taken
  std::uint64_t missedCycles = 0;       ///< cycles skipped because a cycle overran its period
  std::uint64_t failedSamples = 0;      ///< samples with a non-zero code
  std::uint64_t droppedDeliveries = 0;  ///< samples a subscriber was still too busy to take
  std::uint64_t recordedRows = 0;       ///< rows written to the recording
};

/// Samples one arm's state on a thread of its own at a steady rate.
///
/// Each cycle reads the chosen fields through the SharedRobot, stamps them and publishes the
/// sample: Latest() returns it, every subscriber is called with it on its own thread, and an
/// open recording gets a row. A cycle that overruns its period skips the cycles it missed
/// (counted, never made up in a burst). A subscriber still busy with an earlier sample misses
/// the ones in between (counted) and never stalls sampling or the other subscribers.
///
/// While the session is down every sample carries its code and no values; sampling goes on
/// and is fresh again as soon as the application has connected again (SharedRobot::Connect).
/// The monitor never logs in by itself. It holds the SharedRobot, so the Robot outlives it.
class StateMonitor {
public:
  using Subscriber = std::function<void(const StateSample&)>;

  /// Does not start sampling yet.
  explicit StateMonitor(std::shared_ptr<SharedRobot> robot, MonitorOptions options = {});
  /// Stops sampling (joined within one period) and closes any recording.
  ~StateMonitor();
  StateMonitor(const StateMonitor&) = delete;
  StateMonitor& operator=(const StateMonitor&) = delete;

  /// Starts sampling. Codes: 1006011 (a rate outside 1 to 500 Hz, or no field chosen). Starting
  /// a running monitor does nothing and returns 0.
  int Start();
  /// Stops sampling; returns within one period. Subscribers are kept for the next Start().
  void Stop();
  bool Running() const;

  /// The newest sample, or null before the first; cheap and safe from any thread.
  std::shared_ptr<const StateSample> Latest() const;

  /// Waits up to `timeout` for the next sample (one newer than Latest() at the call) and
  /// returns it; null when none came in time or the monitor is not running.
  std::shared_ptr<const StateSample> WaitNext(std::chrono::milliseconds timeout) const;

  /// Calls `subscriber` with every sample from now on, on a thread of its own. Returns the
  /// subscription's id for Unsubscribe().
  int Subscribe(Subscriber subscriber);
  /// Ends a subscription; returns once its subscriber is no longer being called (so it must
  /// not be called from that subscriber). Unknown ids are ignored.
  void Unsubscribe(int id);

  /// Writes every sample from now on as a CSV row to `path` (replaced if it exists): a header
  /// naming each column with its unit, one row per sample, flushed at least once a second.
  /// Codes: 1005011 (the file cannot be opened). A recording already open is closed first.
  int StartRecording(const std::string& path);
  /// Closes the recording, with every row written so far.
  void StopRecording();

  MonitorStats Stats() const;
  const MonitorOptions& Options() const;

private:
  class Impl;
  std::unique_ptr<Impl> impl;
};

}  // namespace tavclient

#endif
