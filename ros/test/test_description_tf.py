"""The description against the controller: TF base_link -> tool0, as robot_state_publisher
computes it from the URDF, equals the simulator's forward of the same angles (test_two_arms.py
does the same for prefixed descriptions in a namespace). Needs the tavclient module on
PYTHONPATH."""

import math
import os
import random
import subprocess
import unittest

import roslib.packages
import rospy
import tf2_ros
from sensor_msgs.msg import JointState

import tavclient
from ros_master import RosMaster, wait_for

HERE = os.path.dirname(os.path.abspath(__file__))
URDF = os.path.join(HERE, "..", "urdf", "tavsim_arm.urdf")
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
        publisher = roslib.packages.find_node("robot_state_publisher", "robot_state_publisher")[0]
        cls.publisher = subprocess.Popen([publisher, "__name:=rsp"])
        cls.tf = tf2_ros.Buffer(cache_time=rospy.Duration(600))
        cls.listener = tf2_ros.TransformListener(cls.tf)
        cls.simulator = tavclient.Simulator().__enter__()
        cls.robot = tavclient.Robot().__enter__()
        cls.robot.RobotLogin("127.0.0.1", cls.simulator.port)
        cls.robot.Setup("arm", CHANNEL, tavclient.Setup_Mode.Virtual)

    @classmethod
    def tearDownClass(cls):
        cls.robot.__exit__(None, None, None)
        cls.simulator.__exit__(None, None, None)
        cls.publisher.terminate()
        cls.publisher.wait(10)
        rospy.signal_shutdown("done")
        cls.master.__exit__(None, None, None)

    def test_tool0_is_forward_over_random_angles(self):
        rng = random.Random(25)
        # Zero, a singular wrist and a folded elbow, then random vectors over the joint range.
        samples = [[0.0] * 6, [10.0, -80.0, 45.0, 30.0, 0.0, 90.0], [0, -90, 180, 0, 90, 0]]
        samples += [random_degrees(rng) for _ in range(200)]
        publisher = rospy.Publisher("/joint_states", JointState, queue_size=len(samples))
        wait_for(lambda: publisher.get_num_connections() > 0, 20.0, "a subscriber")
        stamp = rospy.Time.now()
        position = rotation = 0.0
        for degrees in samples:
            message = JointState(name=[f"joint_{i}" for i in range(1, 7)],
                                 position=[math.radians(d) for d in degrees])
            stamp += STAMP_STEP
            message.header.stamp = stamp
            publisher.publish(message)
            wait_for(lambda: self.tf.can_transform("base_link", "tool0", stamp), 10.0,
                     "the transform")
            found = self.tf.lookup_transform("base_link", "tool0", stamp).transform
            expected = self.robot.forward(degrees)
            position = max(position, math.dist(
                (found.translation.x, found.translation.y, found.translation.z),
                (expected.x, expected.y, expected.z)))
            rotation = max(rotation, rotation_error(
                rotation_from_quaternion(found.rotation),
                rotation_from_rpy(expected.roll, expected.pitch, expected.yaw)))
        print(f"{len(samples)} joint vectors: largest error {position:.3g} m, {rotation:.3g} rad")
        self.assertLess(position, TOLERANCE)
        self.assertLess(rotation, TOLERANCE)


if __name__ == "__main__":
    unittest.main()
