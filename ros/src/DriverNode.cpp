#include "DriverNode.h"

#include <diagnostic_msgs/DiagnosticArray.h>
#include <geometry_msgs/PoseStamped.h>
#include <sensor_msgs/JointState.h>
#include <std_msgs/UInt8MultiArray.h>
#include <tf2/LinearMath/Quaternion.h>

#include <chrono>

#include "AngleUnits.h"

namespace tavdriver {

namespace {

using tavclient::StateField;

ros::Time _stamp(std::chrono::system_clock::time_point time) {
  const auto nanoseconds =
      std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
  ros::Time stamp;
  stamp.fromNSec(static_cast<std::uint64_t>(nanoseconds));
  return stamp;
}

std_msgs::UInt8MultiArray _signals(const std::string& label, const std::vector<int>& values) {
  std_msgs::UInt8MultiArray message;
  message.layout.dim.resize(1);
  message.layout.dim[0].label = label;
  message.layout.dim[0].size = static_cast<std::uint32_t>(values.size());
  message.layout.dim[0].stride = static_cast<std::uint32_t>(values.size());
  for (int value : values) {
    message.data.push_back(static_cast<std::uint8_t>(value));
  }
  return message;
}

diagnostic_msgs::KeyValue _pair(const std::string& key, const std::string& value) {
  diagnostic_msgs::KeyValue pair;
  pair.key = key;
  pair.value = value;
  return pair;
}

}  // namespace

DriverNode::DriverNode(ros::NodeHandle rosNode, const DriverOptions& driverOptions)
    : options(driverOptions),
      names(driverOptions.jointPrefix),
      node(rosNode),
      jointStates(node.advertise<sensor_msgs::JointState>("joint_states", 10)),
      toolPose(node.advertise<geometry_msgs::PoseStamped>("tool_pose", 10)),
      inputs(node.advertise<std_msgs::UInt8MultiArray>("digital_inputs", 10)),
      outputs(node.advertise<std_msgs::UInt8MultiArray>("digital_outputs", 1, true)),
      diagnostics(node.advertise<diagnostic_msgs::DiagnosticArray>("diagnostics", 10)),
      robot(std::make_shared<tavclient::SharedRobot>()),
      outputValues(static_cast<std::size_t>(driverOptions.outputCount), 0) {
  Robot::SetLogLevel(options.logLevel);
  keeper = std::make_unique<SessionKeeper>(robot, options.session, [this](bool connected) {
    ROS_INFO("%s the controller at %s", connected ? "connected to" : "lost",
             options.session.Address().c_str());
    _publishDiagnostics();
  });

  tavclient::MonitorOptions joints;
  joints.rateHz = options.publishRate;
  joints.fields = StateField::Angles | StateField::Velocities | StateField::Currents;
  jointMonitor = std::make_shared<tavclient::StateMonitor>(robot, joints);
  jointMonitor->Subscribe([this](const tavclient::StateSample& sample) { _publishJoints(sample); });

  tavclient::MonitorOptions pose;
  pose.rateHz = options.poseRate;
  pose.fields = tavclient::Fields(StateField::Pose);
  if (options.inputCount > 0) {
    pose.fields = pose.fields | StateField::Inputs;
    for (int id = 1; id <= options.inputCount; ++id) {
      pose.inputIds.push_back(id);
    }
  }
  poseMonitor = std::make_unique<tavclient::StateMonitor>(robot, pose);
  poseMonitor->Subscribe([this](const tavclient::StateSample& sample) { _publishPose(sample); });

  action = std::make_unique<TrajectoryAction>(node, robot, jointMonitor, *keeper, names, options);
  services = std::make_unique<CommandServices>(
      node, robot, *keeper, names, [this](int id, int signal) { _publishOutputs(id, signal); });
  _publishOutputs(0, 0);

  keeper->Start();
  jointMonitor->Start();
  poseMonitor->Start();
  diagnosticsTimer = node.createWallTimer(
      ros::WallDuration(1.0), [this](const ros::WallTimerEvent&) { _publishDiagnostics(); });
}

DriverNode::~DriverNode() {
  diagnosticsTimer.stop();
  services.reset();
  action->Shutdown();  // brakes a running trajectory while the session is still up
  poseMonitor->Stop();
  jointMonitor->Stop();
  keeper->Stop();
}

void DriverNode::Brake() { action->Brake(); }

void DriverNode::_publishJoints(const tavclient::StateSample& sample) {
  keeper->Report(sample.code);
  // Only what this cycle read goes out: while the session is down nothing is published.
  if (!Has(sample.fresh, StateField::Angles)) {
    return;
  }
  sensor_msgs::JointState message;
  message.header.stamp = _stamp(sample.wallTime);
  message.name = names.Names(sample.motorIds);
  message.position = Radians(sample.angles);
  if (Has(sample.fresh, StateField::Velocities)) {
    message.velocity = Radians(sample.velocities);
  }
  if (Has(sample.fresh, StateField::Currents)) {
    message.effort = sample.currents;
  }
  jointStates.publish(message);
}

void DriverNode::_publishPose(const tavclient::StateSample& sample) {
  if (Has(sample.fresh, StateField::Pose)) {
    geometry_msgs::PoseStamped message;
    message.header.stamp = _stamp(sample.wallTime);
    message.header.frame_id = names.Prefix() + "base_link";
    message.pose.position.x = sample.pose.x;
    message.pose.position.y = sample.pose.y;
    message.pose.position.z = sample.pose.z;
    tf2::Quaternion turn;
    turn.setRPY(sample.pose.roll, sample.pose.pitch, sample.pose.yaw);
    message.pose.orientation.x = turn.x();
    message.pose.orientation.y = turn.y();
    message.pose.orientation.z = turn.z();
    message.pose.orientation.w = turn.w();
    toolPose.publish(message);
  }
  if (Has(sample.fresh, StateField::Inputs)) {
    inputs.publish(_signals("input", sample.inputs));
  }
}

void DriverNode::_publishOutputs(int id, int signal) {
  std::lock_guard<std::mutex> lock(outputMutex);
  if (id == 0) {
    std::fill(outputValues.begin(), outputValues.end(), 0);
  } else if (id >= 1 && id <= static_cast<int>(outputValues.size())) {
    outputValues[static_cast<std::size_t>(id - 1)] = signal;
  }
  outputs.publish(_signals("output", outputValues));
}

void DriverNode::_publishDiagnostics() {
  const bool connected = keeper->Connected();
  const int code = keeper->LastCode();
  const std::string codeText = code == 0 ? "" : Robot::EventText(code);
  const tavclient::MonitorStats stats = jointMonitor->Stats();

  diagnostic_msgs::DiagnosticStatus status;
  status.name = ros::this_node::getName() + ": controller";
  status.hardware_id = options.session.Address();
  status.level =
      connected ? diagnostic_msgs::DiagnosticStatus::OK : diagnostic_msgs::DiagnosticStatus::ERROR;
  status.message = connected ? "connected"
                             : "not connected, joint states paused" +
                                   (code == 0 ? std::string() : ": " + codeText);
  status.values = {
      _pair("connected", connected ? "true" : "false"),
      _pair("sessions", std::to_string(keeper->Sessions())),
      _pair("last_code", std::to_string(code)),
      _pair("last_code_text", codeText),
      _pair("samples", std::to_string(stats.samples)),
      _pair("missed_cycles", std::to_string(stats.missedCycles)),
      _pair("failed_samples", std::to_string(stats.failedSamples)),
      _pair("dropped_deliveries", std::to_string(stats.droppedDeliveries)),
      _pair("follower", action->State()),
      _pair("goals_finished", std::to_string(action->Finished())),
  };
  diagnostic_msgs::DiagnosticArray message;
  message.header.stamp = ros::Time::now();
  message.status.push_back(status);
  diagnostics.publish(message);
}

}  // namespace tavdriver
