#ifndef TAVCLIENT_STREAM_SAMPLEREADER_H
#define TAVCLIENT_STREAM_SAMPLEREADER_H

#include <memory>

#include "SharedRobot.h"
#include "StateMonitor.h"
#include "StateSample.h"

namespace tavclient {

// Reads one sample of the chosen fields through the shared robot. The first query that fails
// sets the sample's code and leaves its field (and the fields after it) empty.
class SampleReader {
public:
  SampleReader(std::shared_ptr<SharedRobot> robot, const MonitorOptions& options);

  StateSample Read(std::uint64_t sequence) const;
  // The inputs read with StateField::Inputs.
  const std::vector<int>& InputIds() const { return inputIds; }

private:
  // Runs the queries of one cycle; returns the first non-zero code.
  int _query(Robot& robot, StateSample& sample) const;

  std::shared_ptr<SharedRobot> robot;
  StateFields fields;
  std::vector<int> inputIds;
};

}  // namespace tavclient

#endif
