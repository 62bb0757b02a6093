#ifndef TAVROSTEST_ROSMASTER_H
#define TAVROSTEST_ROSMASTER_H

#include <gtest/gtest.h>
#include <ros/spinner.h>

#include <memory>

#include "ChildProcess.h"
#include "support/TemporaryDirectory.h"

namespace tavrostest {

// A test program's own ROS: a rosmaster on a free loopback port with ROS_HOME in a temporary
// folder, the environment that every child node inherits, and this process as a node with
// callbacks served on two threads. Registered once per program as a global environment.
class RosMaster : public ::testing::Environment {
public:
  void SetUp() override;
  void TearDown() override;

private:
  std::unique_ptr<tavtest::TemporaryDirectory> home;
  std::unique_ptr<ChildProcess> master;
  std::unique_ptr<ros::AsyncSpinner> spinner;
};

}  // namespace tavrostest

#endif
