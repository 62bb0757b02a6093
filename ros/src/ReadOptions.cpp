#include "ReadOptions.h"

#include <stdexcept>

#include "AngleUnits.h"

namespace tavdriver {

namespace {

template <typename Value>
Value _param(const ros::NodeHandle& node, const std::string& name, const Value& fallback) {
  Value value = fallback;
  node.param(name, value, fallback);
  return value;
}

void _require(bool holds, const std::string& parameter, const std::string& expected) {
  if (!holds) {
    throw std::invalid_argument("~" + parameter + " must be " + expected);
  }
}

}  // namespace

DriverOptions ReadOptions(const ros::NodeHandle& privateNode) {
  const ros::NodeHandle& p = privateNode;
  DriverOptions options;
  SessionSettings& session = options.session;
  session.ip = _param(p, "robot_ip", session.ip);
  session.port = _param(p, "robot_port", session.port);
  session.name = _param(p, "robot_name", session.name);
  session.channelName = _param(p, "channel_name", session.channelName);
  session.channelType = _param(p, "channel_type", session.channelType);
  session.protocol = _param(p, "protocol", session.protocol);
  session.hostId = _param(p, "host_id", session.hostId);
  session.baudRate = _param(p, "baud_rate", session.baudRate);
  const std::string mode = _param(p, "setup_mode", std::string("real"));
  _require(mode == "real" || mode == "virtual", "setup_mode", "\"real\" or \"virtual\"");
  session.mode = mode == "real" ? Setup_Mode::Real : Setup_Mode::Virtual;
  session.replyTimeout = _param(p, "reply_timeout", session.replyTimeout);
  session.heartbeatPeriod = _param(p, "heartbeat_period", session.heartbeatPeriod);
  session.silenceLimit = _param(p, "silence_limit", session.silenceLimit);
  session.retryPeriod = _param(p, "retry_period", session.retryPeriod);
  _require(session.port > 0 && session.port < 65536, "robot_port", "a TCP port");
  _require(session.replyTimeout > 0, "reply_timeout", "positive");
  _require(session.heartbeatPeriod > 0 && session.silenceLimit > session.heartbeatPeriod,
           "silence_limit", "above ~heartbeat_period, both positive");
  _require(session.retryPeriod > 0, "retry_period", "positive");

  options.jointPrefix = _param(p, "joint_prefix", options.jointPrefix);
  options.publishRate = _param(p, "publish_rate", options.publishRate);
  options.poseRate = _param(p, "pose_rate", options.poseRate);
  _require(options.publishRate >= 1 && options.publishRate <= 500, "publish_rate",
           "between 1 and 500 Hz");
  _require(options.poseRate >= 1 && options.poseRate <= 500, "pose_rate", "between 1 and 500 Hz");
  options.inputCount = _param(p, "input_count", options.inputCount);
  options.outputCount = _param(p, "output_count", options.outputCount);
  _require(options.inputCount >= 0 && options.outputCount >= 0, "input_count",
           "not negative, as ~output_count");

  options.goalTolerance = Degrees(_param(p, "goal_tolerance", Radians(options.goalTolerance)));
  options.goalTimeTolerance = _param(p, "goal_time_tolerance", options.goalTimeTolerance);
  options.pathTolerance = Degrees(_param(p, "path_tolerance", Radians(options.pathTolerance)));
  _require(options.goalTolerance > 0 && options.goalTimeTolerance > 0, "goal_tolerance",
           "positive, as ~goal_time_tolerance");
  _require(options.pathTolerance >= 0, "path_tolerance", "0 (not checked) or positive");
  options.logLevel = _param(p, "log_level", options.logLevel);
  _require(options.logLevel >= 0 && options.logLevel <= 4, "log_level", "0 to 4");
  return options;
}

}  // namespace tavdriver
