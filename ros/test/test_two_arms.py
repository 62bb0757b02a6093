"""Two simulated arms from two_arms.launch: each driver publishes its own prefixed joints in its
namespace, each description places its arm in `world`, and moving one arm moves only its TF.
Needs the tavclient module on PYTHONPATH, the ROS environment of the build tree (the package on
ROS_PACKAGE_PATH, its node on CMAKE_PREFIX_PATH) and TAVSIM, the simulator program."""

import math
import os
import signal
import subprocess
import tempfile
import unittest

import rospy
import tf2_ros
from sensor_msgs.msg import JointState

import tavclient
from ros_master import RosMaster, free_port, wait_for

HERE = os.path.dirname(os.path.abspath(__file__))
LAUNCH = os.path.join(HERE, "..", "launch", "two_arms.launch")
CHANNEL = ("can0", "can", "canopen", 1, 500000)
MOUNTS = {"arm1": (0.0, 0.5, 0.0), "arm2": (0.0, -0.5, 0.0)}


class TwoArms(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.master = RosMaster().__enter__()
        cls.ports = {arm: free_port() for arm in MOUNTS}
        cls.log = tempfile.TemporaryFile()
        cls.launch = subprocess.Popen(
            ["roslaunch", LAUNCH, "rviz:=false", f"tavsim:={os.environ['TAVSIM']}"] +
            [f"{arm}_port:={port}" for arm, port in cls.ports.items()],
            stdout=cls.log, stderr=subprocess.STDOUT)
        rospy.init_node("two_arms_test", disable_signals=True)
        cls.tf = tf2_ros.Buffer()
        cls.listener = tf2_ros.TransformListener(cls.tf)
        cls.latest = {}
        cls.subscribers = [rospy.Subscriber(f"/{arm}/joint_states", JointState,
                                            lambda m, arm=arm: cls.latest.__setitem__(arm, m))
                           for arm in MOUNTS]

    @classmethod
    def tearDownClass(cls):
        cls.launch.send_signal(signal.SIGINT)
        try:
            cls.launch.wait(30)
        except subprocess.TimeoutExpired:
            cls.launch.kill()
            cls.launch.wait()
        rospy.signal_shutdown("done")
        cls.master.__exit__(None, None, None)

    def _launch_output(self):
        self.log.seek(0)
        return self.log.read().decode(errors="replace")

    def _await(self, condition, what):
        try:
            wait_for(condition, 30.0, what)
        except AssertionError:
            self.fail(f"timed out waiting for {what}; roslaunch said:\n{self._launch_output()}")

    @staticmethod
    def _login(robot, port):
        try:
            robot.RobotLogin("127.0.0.1", port)
            return True
        except tavclient.RobotError:
            return False

    def _tool_in_world(self, arm):
        if not self.tf.can_transform("world", f"{arm}_tool0", rospy.Time(0)):
            return None
        t = self.tf.lookup_transform("world", f"{arm}_tool0", rospy.Time(0)).transform.translation
        return (t.x, t.y, t.z)

    def _matches(self, arm, robot, degrees):
        """Joint states and TF of `arm` show the joints at `degrees`."""
        message = self.latest.get(arm)
        if message is None or any(abs(p - math.radians(d)) > 1e-6
                                  for p, d in zip(message.position, degrees)):
            return False
        tool = self._tool_in_world(arm)
        pose = robot.forward(degrees)
        expected = [m + p for m, p in zip(MOUNTS[arm], (pose.x, pose.y, pose.z))]
        return tool is not None and math.dist(tool, expected) < 1e-6

    def test_each_arm_has_its_namespace_names_and_place_and_moves_alone(self):
        robots = {}
        try:
            for arm, port in self.ports.items():
                robots[arm] = tavclient.Robot().__enter__()
                self._await(lambda: self._login(robots[arm], port), f"{arm}'s simulator")
                robots[arm].Setup("arm", CHANNEL, tavclient.Setup_Mode.Virtual)
            for arm in MOUNTS:
                self._await(lambda: arm in self.latest, f"/{arm}/joint_states")
                self.assertEqual(self.latest[arm].name, [f"{arm}_joint_{i}" for i in range(1, 7)])
                start = robots[arm].get_angles()
                self._await(lambda: self._matches(arm, robots[arm], start), f"{arm} at its start")
            still = robots["arm2"].get_angles()
            target = [a + 30.0 for a in robots["arm1"].get_angles()]
            robots["arm1"].move_to_angles(list(range(1, 7)), target, 90.0, 300.0,
                                          tavclient.Relative_Mode.Absolute)
            robots["arm1"].wait_for_motors()
            self._await(lambda: self._matches("arm1", robots["arm1"], target), "arm1 moved")
            self.assertTrue(self._matches("arm2", robots["arm2"], still))
        finally:
            for robot in robots.values():
                robot.__exit__(None, None, None)


if __name__ == "__main__":
    unittest.main()
