#include "RosMaster.h"

#include <ros/init.h>
#include <ros/master.h>
#include <stdlib.h>

#include <map>
#include <stdexcept>
#include <string>

#include "support/Polling.h"

namespace tavrostest {

RosMaster::RosMaster() {
  const std::string port = std::to_string(FreePort());
  ::setenv("ROS_MASTER_URI", ("http://127.0.0.1:" + port).c_str(), 1);
  ::setenv("ROS_IP", "127.0.0.1", 1);
  ::unsetenv("ROS_HOSTNAME");
  ::setenv("ROS_HOME", home.Path().c_str(), 1);
  master = std::make_unique<ChildProcess>(
      std::vector<std::string>{"/usr/bin/python3", "/usr/bin/rosmaster", "--core", "-p", port});
  ros::init(std::map<std::string, std::string>{}, "tavclient_ros_test",
            ros::init_options::NoSigintHandler | ros::init_options::AnonymousName);
  if (!tavtest::PollUntil(std::chrono::seconds(20), [] { return ros::master::check(); })) {
    throw std::runtime_error("no rosmaster on port " + port);
  }
  ros::start();
  spinner = std::make_unique<ros::AsyncSpinner>(2);
  spinner->start();
}

RosMaster::~RosMaster() {
  spinner->stop();
  ros::shutdown();
}

}  // namespace tavrostest
