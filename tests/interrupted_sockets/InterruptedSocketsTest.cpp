// The library on a system whose socket calls are interrupted and cut short (the preloaded
// InterruptingSockets shim): every call must still come back with the controller's answer.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <thread>
#include <vector>

#include "Robot.h"
#include "server/SimulatorServer.h"

namespace {

const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};
constexpr int kCalls = 300;

using Angles = std::array<double, 6>;

Angles AnglesOf(int call) {
  Angles angles{};
  for (std::size_t joint = 0; joint < angles.size(); ++joint) {
    angles[joint] = std::sin(call * 0.37 + static_cast<double>(joint)) * 1.2;
  }
  return angles;
}

template <typename Function>
Function* ShimFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_DEFAULT, name));
}

// The pose the controller computes for every call's angles, or none for a failed call.
std::vector<_Pose> Poses(Robot& robot, int first, int last) {
  std::vector<_Pose> poses;
  for (int call = first; call < last; ++call) {
    _Pose pose;
    const Angles angles = AnglesOf(call);
    EXPECT_EQ(0, robot.forward(angles.data(), pose)) << "call " << call;
    poses.push_back(pose);
  }
  return poses;
}

void ExpectSamePoses(const std::vector<_Pose>& expected, const std::vector<_Pose>& actual) {
  ASSERT_EQ(expected.size(), actual.size());
  for (std::size_t call = 0; call < expected.size(); ++call) {
    EXPECT_EQ(expected[call].x, actual[call].x) << "call " << call;
    EXPECT_EQ(expected[call].roll, actual[call].roll) << "call " << call;
    EXPECT_EQ(expected[call].yaw, actual[call].yaw) << "call " << call;
  }
}

// Alone and with two callers at once, so that both the caller's own writes and the Sender's
// pass through the shim; the login, the set-up and the logout as well.
TEST(InterruptedSocketsTest, HundredsOfCallsComeBackRightThroughInterruptedAndShortCalls) {
  const auto faults = ShimFunction<unsigned long(int)>("tavtest_socket_faults");
  const auto enable = ShimFunction<void(int)>("tavtest_socket_faults_enable");
  ASSERT_TRUE(faults != nullptr && enable != nullptr)
      << "run with LD_PRELOAD naming the InterruptingSockets library";
  tavsim::SimulatorServer server;
  const short port = static_cast<short>(server.Port());

  enable(0);
  Robot reference;
  ASSERT_EQ(0, reference.RobotLogin("127.0.0.1", port));
  ASSERT_EQ(0, reference.Setup("arm", kChannel, Setup_Mode::Virtual));
  const std::vector<_Pose> expected = Poses(reference, 0, kCalls);
  ASSERT_EQ(0, reference.RobotLogout());

  enable(1);
  Robot robot;
  ASSERT_EQ(0, robot.SetReplyTimeout(10));
  for (int login = 0; login < 3; ++login) {
    ASSERT_EQ(0, robot.RobotLogin("127.0.0.1", port)) << "login " << login;
  }
  ASSERT_EQ(0, robot.Setup("arm", kChannel, Setup_Mode::Virtual));
  ExpectSamePoses(expected, Poses(robot, 0, kCalls));
  std::vector<_Pose> firstHalf;
  std::thread other([&] { firstHalf = Poses(robot, 0, kCalls / 2); });
  const std::vector<_Pose> secondHalf = Poses(robot, kCalls / 2, kCalls);
  other.join();
  firstHalf.insert(firstHalf.end(), secondHalf.begin(), secondHalf.end());
  ExpectSamePoses(expected, firstHalf);
  EXPECT_EQ(0, robot.RobotLogout());
  EXPECT_GT(faults(0), 100u) << "interrupted calls";
  EXPECT_GT(faults(1), 100u) << "short calls";
}

}  // namespace
