#ifndef TAVDRIVER_COMMANDSERVICES_H
#define TAVDRIVER_COMMANDSERVICES_H

#include <ros/node_handle.h>
#include <ros/service_server.h>
#include <std_srvs/Trigger.h>
#include <tavclient_ros/Forward.h>
#include <tavclient_ros/Inverse.h>
#include <tavclient_ros/SetOutput.h>
#include <tavclient_ros/ToolAction.h>

#include <functional>
#include <memory>
#include <vector>

#include "JointNames.h"
#include "SessionKeeper.h"

namespace tavdriver {

// The controller's commands as services: each answers success=false with the refusal's code
// and text when the controller or the session refuses.
class CommandServices {
public:
  // Told of every output the services set (id, signal), and of a reset (id 0).
  using OutputListener = std::function<void(int id, int signal)>;

  CommandServices(ros::NodeHandle rosNode, std::shared_ptr<tavclient::SharedRobot> sharedRobot,
                  SessionKeeper& sessionKeeper, const JointNames& jointNames,
                  OutputListener onOutput);

private:
  // Runs `command` on the robot and answers with its outcome.
  template <typename Response, typename Command>
  bool _answer(Response& response, Command command);
  void _trigger(const std::string& name, std::function<int(Robot&)> command);
  bool _setOutput(tavclient_ros::SetOutput::Request& request,
                  tavclient_ros::SetOutput::Response& response);
  bool _toolAction(tavclient_ros::ToolAction::Request& request,
                   tavclient_ros::ToolAction::Response& response);
  bool _forward(tavclient_ros::Forward::Request& request,
                tavclient_ros::Forward::Response& response);
  bool _inverse(tavclient_ros::Inverse::Request& request,
                tavclient_ros::Inverse::Response& response);

  ros::NodeHandle node;
  std::shared_ptr<tavclient::SharedRobot> robot;
  SessionKeeper& keeper;
  const JointNames& names;
  const OutputListener outputs;
  std::vector<ros::ServiceServer> servers;
};

}  // namespace tavdriver

#endif
