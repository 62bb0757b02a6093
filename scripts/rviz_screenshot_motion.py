#!/usr/bin/python3
"""The motion for scripts/rviz-screenshot.sh: moves the simulated arm through a joint-space
trajectory and traces its tool in rviz (a line strip on `tool_trail`, from TF world -> tool0).
Usage: rviz_screenshot_motion.py SIMULATOR_PORT [--publish-joint-states]
With --publish-joint-states it also publishes the simulator's joint angles itself, for a
build without the driver node."""

import argparse
import math
import sys
import threading

import rospy
import tf2_ros
from geometry_msgs.msg import Point
from sensor_msgs.msg import JointState
from visualization_msgs.msg import Marker

import tavclient

CHANNEL = ("can0", "can", "canopen", 1, 500000)
START = [-30, -110, 100, -80, -90, 0]
WAYPOINTS = [[20, -80, 70, -80, -90, 30], [70, -110, 100, -80, -90, 0],
             [110, -80, 60, -70, -90, -30]]


def publish_joint_states(robot, stop):
    publisher = rospy.Publisher("joint_states", JointState, queue_size=10)
    names = [f"joint_{i}" for i in range(1, 7)]
    rate = rospy.Rate(50)
    while not stop.is_set():
        degrees = robot.get_angles()
        publisher.publish(JointState(header=rospy.Header(stamp=rospy.Time.now()), name=names,
                                     position=[math.radians(d) for d in degrees]))
        rate.sleep()


def tool_position(tf):
    position = tf.lookup_transform("world", "tool0", rospy.Time(0), rospy.Duration(10)).transform
    return position.translation


def near(position, pose):
    return math.dist((position.x, position.y, position.z), (pose.x, pose.y, pose.z)) < 1e-3


def trail_marker(points):
    marker = Marker(type=Marker.LINE_STRIP, action=Marker.ADD, ns="tool_trail", points=points)
    marker.header.frame_id = "world"
    marker.pose.orientation.w = 1.0
    marker.scale.x = 0.012
    marker.color.r, marker.color.g, marker.color.b, marker.color.a = 1.0, 0.44, 0.26, 1.0
    return marker


def main(argv):
    parser = argparse.ArgumentParser()
    parser.add_argument("port", type=int)
    parser.add_argument("--publish-joint-states", action="store_true")
    arguments = parser.parse_args(argv)
    rospy.init_node("rviz_screenshot_motion", disable_signals=True)
    tf = tf2_ros.Buffer()
    tf2_ros.TransformListener(tf)
    trail = rospy.Publisher("tool_trail", Marker, queue_size=1, latch=True)
    stop = threading.Event()
    with tavclient.Robot() as robot:
        robot.RobotLogin("127.0.0.1", arguments.port)
        robot.Setup("arm", CHANNEL, tavclient.Setup_Mode.Virtual)
        if arguments.publish_joint_states:
            threading.Thread(target=publish_joint_states, args=(robot, stop), daemon=True).start()
        robot.move_to_angles(list(range(1, 7)), START, 90.0, 200.0, tavclient.Relative_Mode.Absolute)
        robot.wait_for_motors()
        # TF must show the start before the trail begins, or it would start at the old pose.
        start = robot.forward(START)
        while not near(tool_position(tf), start):
            rospy.sleep(0.02)
        end = robot.forward(WAYPOINTS[-1])
        robot.moveJ([robot.forward(w) for w in WAYPOINTS], 60.0, 120.0, 0.0,
                    tavclient.Traj_Close_Mode.Open)
        done = threading.Event()
        threading.Thread(target=lambda: (robot.wait_for_motors(), done.set()), daemon=True).start()
        points = []
        while True:
            tool = tool_position(tf)
            points.append(Point(tool.x, tool.y, tool.z))
            trail.publish(trail_marker(points))
            if done.is_set() and near(tool, end):
                break
            rospy.sleep(0.04)
        stop.set()
    print(f"traced {len(points)} tool positions")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
