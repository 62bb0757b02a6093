#ifndef TAVTEST_STREAM_MONITORFIXTURE_H
#define TAVTEST_STREAM_MONITORFIXTURE_H

#include <gtest/gtest.h>

#include <memory>

#include "SharedRobot.h"
#include "StateMonitor.h"
#include "server/SimulatorServer.h"
#include "support/SampleWaiter.h"

namespace tavtest {

inline const Setup_Param kMonitorChannel{"can0", "can", "canopen", 1, 500000};

inline bool Fresh(const tavclient::StateSample& sample) {
  return tavclient::Has(sample.fresh, tavclient::StateField::Angles);
}

// A simulator and a robot connected to it, shared with the monitors a test makes.
class MonitorFixture : public ::testing::Test {
protected:
  void SetUp() override { ASSERT_EQ(Connect(simulator), 0); }

  int Connect(tavsim::SimulatorServer& server) {
    return robot->Connect("127.0.0.1", server.Port(), "arm", kMonitorChannel, Setup_Mode::Virtual);
  }

  std::shared_ptr<tavclient::StateMonitor> Monitor(double rateHz, tavclient::StateFields fields) {
    tavclient::MonitorOptions options;
    options.rateHz = rateHz;
    options.fields = fields;
    return std::make_shared<tavclient::StateMonitor>(robot, options);
  }

  tavsim::SimulatorServer simulator;
  std::shared_ptr<tavclient::SharedRobot> robot = std::make_shared<tavclient::SharedRobot>();
};

}  // namespace tavtest

#endif
