#!/usr/bin/env bash
# Takes the README's rviz picture: the simulated arm in rviz (ros/rviz/sim.rviz), under Xvfb,
# after following a joint trajectory, with its tool's path traced.
# Usage: scripts/rviz-screenshot.sh [BUILD_DIR] [OUTPUT_PNG]
# Needs the build's tavsim and tavclient_node; Xvfb, rviz, genpy and ImageMagick's import come
# from scripts/install-deps.sh ros.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
output=$(realpath -m "${2:-$root/docs/images/rviz.png}")
node=$build/ros/devel/lib/tavclient_ros/tavclient_node

work=$(mktemp -d)
pids=()
cleanup() {
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
    kill "${pids[i]}" 2>/dev/null || true
    wait "${pids[i]}" 2>/dev/null || true
  done
  rm -rf "$work"
}
trap cleanup EXIT

# Below the ephemeral range, where the driver's reconnecting could take the simulator's port.
free_port() {
  /usr/bin/python3 -c 'import random, socket
while True:
    port = random.randint(20000, 32000)
    try:
        socket.socket().bind(("127.0.0.1", port))
        break
    except OSError:
        pass
print(port)'
}
# Polls a command until it succeeds, for up to 30 s.
await() {
  for _ in $(seq 300); do
    "$@" >/dev/null 2>&1 && return 0
    sleep 0.1
  done
  echo "rviz-screenshot: timed out waiting for: $*" >&2
  return 1
}

Xvfb -displayfd 3 -screen 0 1000x700x24 -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
pids+=($!)
await test -s "$work/display"
export DISPLAY=:$(cat "$work/display")

# The action's messages for Python, as the motion script imports them.
messages=$work/python/tavclient_ros/msg
includes=(-I "tavclient_ros:$root/ros/msg" -I "tavclient_ros:$build/ros/action_msg")
for dependency in std_msgs actionlib_msgs trajectory_msgs geometry_msgs; do
  includes+=(-I "$dependency:/usr/share/$dependency/msg")
done
for definition in "$root"/ros/msg/*.msg "$build"/ros/action_msg/*.msg; do
  /usr/bin/python3 /usr/lib/genpy/genmsg_py.py "${includes[@]}" -p tavclient_ros -o "$messages" \
    "$definition"
done
/usr/bin/python3 /usr/lib/genpy/genmsg_py.py --initpy -p tavclient_ros -o "$messages"
touch "$work/python/tavclient_ros/__init__.py"

export ROS_IP=127.0.0.1 ROS_HOME=$work/ros PYTHONPATH=$work/python
master_port=$(free_port)
export ROS_MASTER_URI=http://127.0.0.1:$master_port/
rosmaster --core -p "$master_port" >"$work/master.log" 2>&1 &
pids+=($!)
await rosparam list

robot_port=$(free_port)
"$build/simulator/tavsim" --port "$robot_port" --quiet &
pids+=($!)
"$node" _robot_port:="$robot_port" >"$work/node.log" 2>&1 &
pids+=($!)

/usr/bin/python3 "$root/ros/scripts/urdf_with_prefix.py" --parent=world -o "$work/arm.urdf" \
  "$root/ros/urdf/tavsim_arm.urdf"
rosparam set -t "$work/arm.urdf" robot_description
/usr/lib/robot_state_publisher/robot_state_publisher >"$work/rsp.log" 2>&1 &
pids+=($!)

# sim.rviz with the trail added.
/usr/bin/python3 - "$root/ros/rviz/sim.rviz" "$work/shot.rviz" <<'PY'
import sys, yaml
config = yaml.safe_load(open(sys.argv[1]))
config["Visualization Manager"]["Displays"].append(
    {"Class": "rviz/Marker", "Name": "Tool trail", "Enabled": True, "Value": True,
     "Marker Topic": "tool_trail", "Queue Size": 10, "Namespaces": {}})
yaml.safe_dump(config, open(sys.argv[2], "w"))
PY
rviz -d "$work/shot.rviz" >"$work/rviz.log" 2>&1 &
pids+=($!)
await bash -c 'rostopic info /tool_trail 2>/dev/null | grep -q rviz'

/usr/bin/python3 "$root/scripts/rviz_screenshot_motion.py"
# rviz redraws at 30 Hz; give it a few frames for the last joint state and trail.
sleep 1
mkdir -p "$(dirname "$output")"
import -window root "$output"
echo "wrote $output"
