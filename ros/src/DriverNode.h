#ifndef TAVDRIVER_DRIVERNODE_H
#define TAVDRIVER_DRIVERNODE_H

#include <ros/node_handle.h>
#include <ros/publisher.h>
#include <ros/timer.h>

#include <memory>
#include <mutex>
#include <vector>

#include "CommandServices.h"
#include "DriverOptions.h"
#include "JointNames.h"
#include "SessionKeeper.h"
#include "StateMonitor.h"
#include "TrajectoryAction.h"

namespace tavdriver {

// One arm in ROS: keeps its session, publishes its state and diagnostics, serves its action
// and services. Topic and service names are relative to `node`, so a namespace per arm works.
class DriverNode {
public:
  DriverNode(ros::NodeHandle rosNode, const DriverOptions& driverOptions);
  // Brakes a running trajectory, stops sampling and logs out.
  ~DriverNode();
  DriverNode(const DriverNode&) = delete;
  DriverNode& operator=(const DriverNode&) = delete;

  // Brakes a running trajectory at once; for SIGINT.
  void Brake();

private:
  void _publishJoints(const tavclient::StateSample& sample);
  void _publishPose(const tavclient::StateSample& sample);
  void _publishOutputs(int id, int signal);
  void _publishDiagnostics();

  const DriverOptions options;
  const JointNames names;
  ros::NodeHandle node;
  ros::Publisher jointStates;
  ros::Publisher toolPose;
  ros::Publisher inputs;
  ros::Publisher outputs;
  ros::Publisher diagnostics;

  std::shared_ptr<tavclient::SharedRobot> robot;
  std::unique_ptr<SessionKeeper> keeper;
  std::shared_ptr<tavclient::StateMonitor> jointMonitor;
  std::unique_ptr<tavclient::StateMonitor> poseMonitor;
  std::unique_ptr<TrajectoryAction> action;
  std::unique_ptr<CommandServices> services;
  ros::WallTimer diagnosticsTimer;

  std::mutex outputMutex;
  std::vector<int> outputValues;  // under outputMutex: as last set through this node
};

}  // namespace tavdriver

#endif
