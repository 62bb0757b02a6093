"""A private ROS master for a test: a free loopback port, ROS_IP=127.0.0.1 and ROS_HOME in a
temporary folder, set in this process's environment so that rospy and the programs the test
starts use it."""

import os
import random
import socket
import subprocess
import tempfile
import time

import rosgraph


def free_port():
    """A port on 127.0.0.1 that was free a moment ago, below the ephemeral range: see FreePort
    in harness/ChildProcess.cpp for why."""
    for _ in range(100):
        port = random.randint(20000, 32000)
        with socket.socket() as probe:
            try:
                probe.bind(("127.0.0.1", port))
            except OSError:
                continue
            return port
    raise AssertionError("no free port between 20000 and 32000")


def wait_for(condition, timeout, what):
    """Polls `condition` until it holds; AssertionError naming `what` after `timeout` s."""
    deadline = time.monotonic() + timeout
    while not condition():
        if time.monotonic() > deadline:
            raise AssertionError(f"timed out waiting for {what}")
        time.sleep(0.02)


class RosMaster:
    def __enter__(self):
        self.home = tempfile.TemporaryDirectory(prefix="ros-home-")
        self.uri = f"http://127.0.0.1:{free_port()}/"
        os.environ.update(ROS_MASTER_URI=self.uri, ROS_IP="127.0.0.1", ROS_HOME=self.home.name)
        os.environ.pop("ROS_HOSTNAME", None)
        self.process = subprocess.Popen(
            ["rosmaster", "--core", "-p", self.uri.rsplit(":", 1)[1].strip("/")],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        master = rosgraph.Master("/test", master_uri=self.uri)

        def online():
            if self.process.poll() is not None:
                raise AssertionError(f"rosmaster exited with {self.process.returncode}")
            return master.is_online()

        wait_for(online, 20.0, "the ROS master")
        return self

    def __exit__(self, *exc):
        self.process.terminate()
        self.process.wait(10)
        self.home.cleanup()
