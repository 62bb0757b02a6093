#include "CommandServices.h"

#include <tf2/LinearMath/Matrix3x3.h>
#include <tf2/LinearMath/Quaternion.h>

#include <utility>

#include "AngleUnits.h"

namespace tavdriver {

CommandServices::CommandServices(ros::NodeHandle rosNode,
                                 std::shared_ptr<tavclient::SharedRobot> sharedRobot,
                                 SessionKeeper& sessionKeeper, const JointNames& jointNames,
                                 OutputListener onOutput)
    : node(rosNode),
      robot(std::move(sharedRobot)),
      keeper(sessionKeeper),
      names(jointNames),
      outputs(std::move(onOutput)) {
  _trigger("stop", [](Robot& arm) { return arm.stop(); });
  _trigger("recover", [](Robot& arm) { return arm.recover(); });
  _trigger("reset", [this](Robot& arm) {
    const int code = arm.reset();
    if (code == 0) {
      this->outputs(0, 0);  // a reset clears every output
    }
    return code;
  });
  _trigger("hold", [](Robot& arm) { return arm.hold(); });
  _trigger("release", [](Robot& arm) { return arm.release(); });
  _trigger("calibrate", [](Robot& arm) { return arm.calibrate(); });
  servers.push_back(node.advertiseService("set_output", &CommandServices::_setOutput, this));
  servers.push_back(node.advertiseService("tool_action", &CommandServices::_toolAction, this));
  servers.push_back(node.advertiseService("forward", &CommandServices::_forward, this));
  servers.push_back(node.advertiseService("inverse", &CommandServices::_inverse, this));
}

template <typename Response, typename Command>
bool CommandServices::_answer(Response& response, Command command) {
  const int code = robot->Use(command);
  keeper.Report(code);
  response.success = code == 0;
  response.message = code == 0 ? "" : std::to_string(code) + " " + Robot::EventText(code);
  return true;
}

void CommandServices::_trigger(const std::string& name, std::function<int(Robot&)> command) {
  servers.push_back(node.advertiseService<std_srvs::Trigger::Request, std_srvs::Trigger::Response>(
      name, [this, command](std_srvs::Trigger::Request&, std_srvs::Trigger::Response& response) {
        return _answer(response, command);
      }));
}

bool CommandServices::_setOutput(tavclient_ros::SetOutput::Request& request,
                                 tavclient_ros::SetOutput::Response& response) {
  _answer(response, [&](Robot& arm) { return arm.set_output(request.id, request.signal); });
  if (response.success) {
    outputs(request.id, request.signal);
  }
  return true;
}

bool CommandServices::_toolAction(tavclient_ros::ToolAction::Request& request,
                                  tavclient_ros::ToolAction::Response& response) {
  return _answer(response, [&](Robot& arm) {
    return arm.set_EOAT_action(request.name.c_str(), request.action.c_str());
  });
}

bool CommandServices::_forward(tavclient_ros::Forward::Request& request,
                               tavclient_ros::Forward::Response& response) {
  // forward() reads one angle per motor of the arm: a request with another count would be read
  // past its end or misread.
  const std::size_t motors = robot->Use([](Robot& arm) {
    std::vector<int> ids;
    arm.get_motor_ids(ids);
    return ids.size();
  });
  if (motors != 0 && request.positions.size() != motors) {
    response.success = false;
    response.message = "give " + std::to_string(motors) + " positions, joint_1 to joint_" +
                       std::to_string(motors) + "; got " + std::to_string(request.positions.size());
    return true;
  }
  _Pose pose;
  const std::vector<double> degrees = Degrees(request.positions);
  _answer(response, [&](Robot& arm) { return arm.forward(degrees.data(), pose); });
  response.pose.header.stamp = ros::Time::now();
  response.pose.header.frame_id = names.Prefix() + "base_link";
  response.pose.pose.position.x = pose.x;
  response.pose.pose.position.y = pose.y;
  response.pose.pose.position.z = pose.z;
  tf2::Quaternion turn;
  turn.setRPY(pose.roll, pose.pitch, pose.yaw);
  response.pose.pose.orientation.x = turn.x();
  response.pose.pose.orientation.y = turn.y();
  response.pose.pose.orientation.z = turn.z();
  response.pose.pose.orientation.w = turn.w();
  return true;
}

bool CommandServices::_inverse(tavclient_ros::Inverse::Request& request,
                               tavclient_ros::Inverse::Response& response) {
  const auto& from = request.pose;
  _Pose pose;
  pose.x = from.position.x;
  pose.y = from.position.y;
  pose.z = from.position.z;
  const tf2::Quaternion turn(from.orientation.x, from.orientation.y, from.orientation.z,
                             from.orientation.w);
  if (turn.length2() < 1e-12) {
    response.success = false;
    response.message = "the orientation is not a rotation (a zero quaternion)";
    return true;
  }
  tf2::Matrix3x3(turn.normalized()).getRPY(pose.roll, pose.pitch, pose.yaw);
  std::vector<double> degrees;
  std::vector<int> ids;
  _answer(response, [&](Robot& arm) {
    arm.get_motor_ids(ids);
    return arm.inverse(pose, degrees);
  });
  if (response.success) {
    degrees.resize(std::min(degrees.size(), ids.size()));
    ids.resize(degrees.size());
    response.names = names.Names(ids);
    response.positions = Radians(degrees);
  }
  return true;
}

}  // namespace tavdriver
