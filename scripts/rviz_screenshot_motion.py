#!/usr/bin/python3
"""The motion for scripts/rviz-screenshot.sh: sends the driver a joint trajectory through its
follow_joint_trajectory action and traces the tool in rviz while the arm follows it (a line
strip on `tool_trail`, from TF world -> tool0). Needs the package's action messages for Python
on PYTHONPATH."""

import math
import sys

import actionlib
import rospy
import tf2_ros
from geometry_msgs.msg import Point
from trajectory_msgs.msg import JointTrajectoryPoint
from visualization_msgs.msg import Marker

from tavclient_ros.msg import FollowJointTrajectoryAction, FollowJointTrajectoryGoal

JOINTS = [f"joint_{i}" for i in range(1, 7)]
START = [-30, -110, 100, -80, -90, 0]
WAYPOINTS = [[20, -80, 70, -80, -90, 30], [70, -110, 100, -80, -90, 0],
             [110, -80, 60, -70, -90, -30]]
SECONDS_PER_WAYPOINT = 1.5


def goal(waypoints):
    message = FollowJointTrajectoryGoal()
    message.trajectory.joint_names = JOINTS
    message.trajectory.points = [
        JointTrajectoryPoint(positions=[math.radians(d) for d in degrees],
                             time_from_start=rospy.Duration(SECONDS_PER_WAYPOINT * (i + 1)))
        for i, degrees in enumerate(waypoints)]
    return message


def follow(client, waypoints, tf, trail=None):
    """Sends the waypoints and waits for the result; with `trail`, publishes the tool's path
    meanwhile."""
    client.send_goal(goal(waypoints))
    points = []
    while not client.wait_for_result(rospy.Duration(0.04)):
        if trail is not None:
            tool = tf.lookup_transform("world", "tool0", rospy.Time(0)).transform.translation
            points.append(Point(tool.x, tool.y, tool.z))
            trail.publish(trail_marker(points))
    result = client.get_result()
    if client.get_state() != actionlib.GoalStatus.SUCCEEDED:
        raise RuntimeError(f"the trajectory failed: {result.error_string if result else '?'}")
    return points


def trail_marker(points):
    marker = Marker(type=Marker.LINE_STRIP, action=Marker.ADD, ns="tool_trail", points=points)
    marker.header.frame_id = "world"
    marker.pose.orientation.w = 1.0
    marker.scale.x = 0.012
    marker.color.r, marker.color.g, marker.color.b, marker.color.a = 1.0, 0.44, 0.26, 1.0
    return marker


def main():
    rospy.init_node("rviz_screenshot_motion", disable_signals=True)
    tf = tf2_ros.Buffer()
    tf2_ros.TransformListener(tf)
    trail = rospy.Publisher("tool_trail", Marker, queue_size=1, latch=True)
    client = actionlib.SimpleActionClient("follow_joint_trajectory", FollowJointTrajectoryAction)
    if not client.wait_for_server(rospy.Duration(30)):
        raise RuntimeError("no follow_joint_trajectory action server")
    tf.lookup_transform("world", "tool0", rospy.Time(0), rospy.Duration(30))
    follow(client, [START], tf)
    points = follow(client, WAYPOINTS, tf, trail)
    # The trail ends at the first joint state after the result: the arm at rest.
    ended = rospy.Time.now()
    while (last := tf.lookup_transform("world", "tool0", rospy.Time(0))).header.stamp <= ended:
        rospy.sleep(0.01)
    tool = last.transform.translation
    trail.publish(trail_marker(points + [Point(tool.x, tool.y, tool.z)]))
    print(f"traced {len(points) + 1} tool positions")
    return 0


if __name__ == "__main__":
    sys.exit(main())
