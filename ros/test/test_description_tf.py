"""The description against the controller: TF base_link -> tool0, as robot_state_publisher
computes it from the URDF, equals the simulator's forward of the same angles; so does the
prefixed description in a namespace. Needs the tavclient module on PYTHONPATH."""

import math
import os
import random
import subprocess
import sys
import unittest

import roslib.packages
import rospy
import tf2_ros
from sensor_msgs.msg import JointState

import tavclient
from ros_master import RosMaster, wait_for

HERE = os.path.dirname(os.path.abspath(__file__))
URDF = os.path.join(HERE, "..", "urdf", "tavsim_arm.urdf")
PREFIXER = os.path.join(HERE, "..", "scripts", "urdf_with_prefix.py")
TOLERANCE = 1e-6  # metres, and radians of the rotation between the two orientations
CHANNEL = ("can0", "can", "canopen", 1, 500000)
# robot_state_publisher drops joint states closer than its publish period (20 ms).
STAMP_STEP = rospy.Duration(0.05)


def rotation_from_rpy(roll, pitch, yaw):
    """R = Rz(yaw) Ry(pitch) Rx(roll), as the controller reports orientations."""
    cr, sr, cp, sp, cy, sy = (f(a) for a in (roll, pitch, yaw) for f in (math.cos, math.sin))
    return [[cy * cp, cy * sp * sr - sy * cr, cy * sp * cr + sy * sr],
            [sy * cp, sy * sp * sr + cy * cr, sy * sp * cr - cy * sr],
            [-sp, cp * sr, cp * cr]]


def rotation_from_quaternion(q):
    x, y, z, w = q.x, q.y, q.z, q.w
    return [[1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)],
            [2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)],
            [2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)]]


def rotation_error(a, b):
    """About the angle between two close rotations (rad): |A - B|_F / sqrt(2)."""
    return math.sqrt(sum((a[i][j] - b[i][j]) ** 2 for i in range(3) for j in range(3)) / 2.0)


def random_degrees(rng):
    # Whole micro-degrees: the wire carries six decimals, so the controller sees these exactly.
    return [rng.randint(-360_000_000, 360_000_000) / 1e6 for _ in range(6)]


class DescriptionMatchesForward(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.master = RosMaster().__enter__()
        rospy.init_node("description_test", disable_signals=True)
        with open(URDF, encoding="utf-8") as f:
            rospy.set_param("/robot_description", f.read())
        rospy.set_param("/arm1/robot_description", subprocess.run(
            [sys.executable, PREFIXER, "--prefix=arm1_", "--parent=world", "--xyz=0.25 -0.5 0.125",
             URDF], check=True, capture_output=True, text=True).stdout)
        publisher = roslib.packages.find_node("robot_state_publisher", "robot_state_publisher")[0]
        cls.publishers = [subprocess.Popen([publisher, f"__ns:={ns}", "__name:=rsp"])
                          for ns in ("/", "/arm1")]
        cls.tf = tf2_ros.Buffer(cache_time=rospy.Duration(600))
        cls.listener = tf2_ros.TransformListener(cls.tf)
        cls.simulator = tavclient.Simulator().__enter__()
        cls.robot = tavclient.Robot().__enter__()
        cls.robot.RobotLogin("127.0.0.1", cls.simulator.port)
        cls.robot.Setup("arm", CHANNEL, tavclient.Setup_Mode.Virtual)
        cls.stamp = rospy.Time.now()

    @classmethod
    def tearDownClass(cls):
        cls.robot.__exit__(None, None, None)
        cls.simulator.__exit__(None, None, None)
        for process in cls.publishers:
            process.terminate()
            process.wait(10)
        rospy.signal_shutdown("done")
        cls.master.__exit__(None, None, None)

    def _errors(self, topic, prefix, degrees_list):
        """Publishes each joint vector and returns the largest position and rotation errors
        of TF's base_link -> tool0 against forward."""
        publisher = rospy.Publisher(topic, JointState, queue_size=len(degrees_list))
        wait_for(lambda: publisher.get_num_connections() > 0, 20.0, f"a subscriber to {topic}")
        base, tool = prefix + "base_link", prefix + "tool0"
        worst_position = worst_rotation = 0.0
        for degrees in degrees_list:
            message = JointState(name=[f"{prefix}joint_{i}" for i in range(1, 7)],
                                 position=[math.radians(d) for d in degrees])
            self.__class__.stamp += STAMP_STEP
            message.header.stamp = self.stamp
            publisher.publish(message)
            wait_for(lambda: self.tf.can_transform(base, tool, self.stamp), 10.0, "the transform")
            found = self.tf.lookup_transform(base, tool, self.stamp).transform
            expected = self.robot.forward(degrees)
            worst_position = max(worst_position, math.dist(
                (found.translation.x, found.translation.y, found.translation.z),
                (expected.x, expected.y, expected.z)))
            worst_rotation = max(worst_rotation, rotation_error(
                rotation_from_quaternion(found.rotation),
                rotation_from_rpy(expected.roll, expected.pitch, expected.yaw)))
        publisher.unregister()
        return worst_position, worst_rotation

    def test_tool0_is_forward_over_random_angles(self):
        rng = random.Random(25)
        # Zero, a singular wrist and a folded elbow, then random vectors over the joint range.
        samples = [[0.0] * 6, [10.0, -80.0, 45.0, 30.0, 0.0, 90.0], [0, -90, 180, 0, 90, 0]]
        samples += [random_degrees(rng) for _ in range(200)]
        position, rotation = self._errors("/joint_states", "", samples)
        print(f"{len(samples)} joint vectors: largest error {position:.3g} m, {rotation:.3g} rad")
        self.assertLess(position, TOLERANCE)
        self.assertLess(rotation, TOLERANCE)

    def test_prefixed_description_in_a_namespace_has_the_same_kinematics(self):
        rng = random.Random(26)
        position, rotation = self._errors("/arm1/joint_states", "arm1_",
                                          [random_degrees(rng) for _ in range(30)])
        self.assertLess(position, TOLERANCE)
        self.assertLess(rotation, TOLERANCE)
        mount = self.tf.lookup_transform("world", "arm1_base_link", rospy.Time(0)).transform
        self.assertEqual((mount.translation.x, mount.translation.y, mount.translation.z),
                         (0.25, -0.5, 0.125))
        self.assertEqual(mount.rotation.w, 1.0)


if __name__ == "__main__":
    unittest.main()
