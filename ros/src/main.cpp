// tavclient_node: one arm's driver. Parameters, topics, services and the action are listed in
// ros/README.md.
#include <pthread.h>
#include <ros/ros.h>
#include <signal.h>

#include <exception>
#include <thread>

#include "DriverNode.h"
#include "ReadOptions.h"

int main(int argc, char** argv) {
  // SIGINT and SIGTERM are taken by a thread of the node's own, which brakes a running
  // trajectory before ROS shuts down; SIGUSR1 ends that thread when ROS shuts down first.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  ros::init(argc, argv, "tavclient_node", ros::init_options::NoSigintHandler);
  ros::NodeHandle node;
  tavdriver::DriverOptions options;
  try {
    options = tavdriver::ReadOptions(ros::NodeHandle("~"));
  } catch (const std::exception& error) {
    ROS_FATAL("%s", error.what());
    return 2;
  }

  {
    tavdriver::DriverNode driver(node, options);
    std::thread signalWaiter([&driver, &signals] {
      int number = 0;
      sigwait(&signals, &number);
      if (number != SIGUSR1) {
        driver.Brake();
        ros::shutdown();
      }
    });
    ros::AsyncSpinner spinner(4);
    spinner.start();
    ros::waitForShutdown();
    spinner.stop();
    pthread_kill(signalWaiter.native_handle(), SIGUSR1);
    signalWaiter.join();
  }
  return 0;
}
