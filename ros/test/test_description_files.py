"""The description's files without a running ROS: the prefixed description generated from the
URDF, the launch files' parameters and nodes, the rviz configs against them, and the wrapper
that starts the simulator under roslaunch."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ET

import yaml

HERE = os.path.dirname(os.path.abspath(__file__))
PACKAGE = os.path.dirname(HERE)
URDF = os.path.join(PACKAGE, "urdf", "tavsim_arm.urdf")
LAUNCH = os.path.join(PACKAGE, "launch")


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, timeout=60)


def prefix_urdf(*options):
    result = run(sys.executable, os.path.join(PACKAGE, "scripts", "urdf_with_prefix.py"),
                 *options, URDF)
    assert result.returncode == 0, result.stderr
    return result.stdout


def names(root, tag):
    return [element.get("name") for element in root.findall(tag)]


def launch(command, file, *args):
    with tempfile.TemporaryDirectory() as home:
        result = subprocess.run(["roslaunch", command, os.path.join(LAUNCH, file), *args],
                                capture_output=True, text=True, timeout=60,
                                env=dict(os.environ, ROS_HOME=home))
    assert result.returncode == 0, result.stdout + result.stderr
    return result.stdout


class PrefixedDescription(unittest.TestCase):
    def test_every_link_and_joint_is_prefixed_and_nothing_else_changes(self):
        plain = ET.parse(URDF).getroot()
        prefixed = ET.fromstring(prefix_urdf("--prefix=arm2_"))
        self.assertEqual(names(prefixed, "link"), ["arm2_" + n for n in names(plain, "link")])
        self.assertEqual(names(prefixed, "joint"), ["arm2_" + n for n in names(plain, "joint")])
        self.assertEqual(names(plain, "joint")[:6], [f"joint_{i}" for i in range(1, 7)])
        self.assertEqual((names(plain, "link")[0], names(plain, "link")[-1]), ("base_link", "tool0"))
        links = set(names(prefixed, "link"))
        for joint in prefixed.findall("joint"):
            self.assertIn(joint.find("parent").get("link"), links)
            self.assertIn(joint.find("child").get("link"), links)
        # Geometry, limits and materials: every other attribute is the same, in the same order.
        others = [(e.tag, sorted(e.attrib.items())) for e in plain.iter() if e.tag not in
                  ("robot", "link", "joint", "parent", "child")]
        self.assertEqual(others, [(e.tag, sorted(e.attrib.items())) for e in prefixed.iter()
                                  if e.tag not in ("robot", "link", "joint", "parent", "child")])

    def test_mount_places_the_base_in_a_shared_frame(self):
        root = ET.fromstring(prefix_urdf("--prefix=a_", "--parent=world", "--xyz=1 -2 0.5"))
        self.assertIn("world", names(root, "link"))
        mount = root.find("joint[@name='a_mount']")
        self.assertEqual(mount.get("type"), "fixed")
        self.assertEqual((mount.find("parent").get("link"), mount.find("child").get("link")),
                         ("world", "a_base_link"))
        self.assertEqual(mount.find("origin").get("xyz"), "1 -2 0.5")

    def test_refuses_what_is_not_a_robot_description(self):
        with tempfile.NamedTemporaryFile("w", suffix=".xml") as other:
            other.write("<launch/>")
            other.flush()
            script = os.path.join(PACKAGE, "scripts", "urdf_with_prefix.py")
            for path in (other.name, other.name + ".missing"):
                result = run(sys.executable, script, "--prefix=x_", path)
                self.assertEqual(result.returncode, 1)
                self.assertTrue(result.stderr.startswith("urdf_with_prefix: "), result.stderr)
                self.assertEqual(result.stdout, "")

    @unittest.skipUnless(shutil.which("check_urdf"), "check_urdf (liburdfdom-tools) missing")
    def test_check_urdf_accepts_plain_and_prefixed(self):
        with tempfile.NamedTemporaryFile("w", suffix=".urdf") as prefixed:
            prefixed.write(prefix_urdf("--prefix=arm1_", "--parent=world"))
            prefixed.flush()
            for path, root in ((URDF, "base_link"), (prefixed.name, "world")):
                result = run("check_urdf", path)
                self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
                self.assertIn(f"root Link: {root} has 1 child(ren)", result.stdout)


class LaunchFiles(unittest.TestCase):
    def test_one_arm_with_a_prefix_names_the_driver_and_description_alike(self):
        params = yaml.safe_load(launch("--dump-params", "sim.launch", "prefix:=left_",
                                       "robot_port:=9800"))
        self.assertEqual(params["/tavclient_node/joint_prefix"], "left_")
        self.assertEqual(params["/tavclient_node/robot_port"], 9800)
        self.assertEqual(params["/tavclient_node/robot_ip"], "127.0.0.1")
        self.assertEqual(params["/tavclient_node/publish_rate"], 125.0)
        description = ET.fromstring(params["/robot_description"])
        self.assertIn("left_joint_1", names(description, "joint"))

    def test_two_arms_get_their_own_namespace_port_prefix_and_place(self):
        params = yaml.safe_load(launch("--dump-params", "two_arms.launch"))
        places = set()
        for arm in ("arm1", "arm2"):
            prefix = params[f"/{arm}/tavclient_node/joint_prefix"]
            self.assertEqual(prefix, arm + "_")
            description = ET.fromstring(params[f"/{arm}/robot_description"])
            self.assertIn(prefix + "joint_6", names(description, "joint"))
            places.add(description.find(f"joint[@name='{prefix}mount']/origin").get("xyz"))
        self.assertEqual(len(places), 2)
        self.assertNotEqual(params["/arm1/tavclient_node/robot_port"],
                            params["/arm2/tavclient_node/robot_port"])
        nodes = launch("--nodes", "two_arms.launch").split()
        for arm in ("arm1", "arm2"):
            for node in ("tavsim", "tavclient_node", "robot_state_publisher"):
                self.assertIn(f"/{arm}/{node}", nodes)
        self.assertIn("/rviz", nodes)
        self.assertNotIn("/rviz", launch("--nodes", "sim.launch").split())
        self.assertIn("/rviz", launch("--nodes", "sim.launch", "rviz:=true").split())

    def test_rviz_configs_show_descriptions_the_launch_files_set(self):
        for launch_file, config in (("sim.launch", "sim.rviz"), ("two_arms.launch", "two_arms.rviz")):
            params = yaml.safe_load(launch("--dump-params", launch_file))
            with open(os.path.join(PACKAGE, "rviz", config), encoding="utf-8") as f:
                view = yaml.safe_load(f)["Visualization Manager"]
            models = [d["Robot Description"] for d in view["Displays"]
                      if d["Class"] == "rviz/RobotModel"]
            self.assertEqual(len(models), launch_file.count("two") + 1)
            for model in models:
                description = ET.fromstring(params["/" + model])
                self.assertIn(view["Global Options"]["Fixed Frame"], names(description, "link"))


class SimulatorWrapper(unittest.TestCase):
    def test_passes_its_arguments_but_not_roslaunchs(self):
        wrapper = os.path.join(PACKAGE, "scripts", "run_tavsim")
        result = run(wrapper, "echo", "--port", "9761", "__name:=tavsim", "__log:=/tmp/x.log")
        self.assertEqual((result.returncode, result.stdout), (0, "--port 9761\n"))
        result = run(wrapper, "no-such-simulator", "__name:=tavsim")
        self.assertEqual(result.returncode, 1)
        self.assertIn("cannot run no-such-simulator", result.stderr)


if __name__ == "__main__":
    unittest.main()
