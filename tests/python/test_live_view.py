"""The simulator's live view in a real browser: headless Chromium follows the arm on a tour."""
import base64
import fcntl
import json
import os
import select
import subprocess
import urllib.request

import pytest
import tavclient
from conftest import CHANNEL
from tavclient import Relative_Mode, Setup_Mode

CHROMIUM = "/usr/bin/chromium"
TOUR = [[20, -70, 60, -80, -90, 10], [-30, -100, 110, -60, -45, 90], [0, -90, 90, -90, -90, 0]]


def viewed_simulator(port=0):
    try:
        return tavclient.Simulator(view=port)
    except RuntimeError as error:  # a build without the view
        pytest.skip(str(error))


class Chromium:
    """Headless Chromium on one page, driven over its DevTools pipe: commands go to its fd 3,
    replies come from its fd 4, each a JSON text ended by a NUL byte."""

    def __init__(self, url, profile):
        browser_in, self.commands = os.pipe()
        self.replies, browser_out = os.pipe()
        # The child's ends go above 4 first, so that the shell can put them on 3 and 4.
        high = [fcntl.fcntl(end, fcntl.F_DUPFD, 10) for end in (browser_in, browser_out)]
        flags = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                 "--disable-background-networking", "--disable-component-update", "--disable-sync",
                 f"--user-data-dir={profile}", "--remote-debugging-pipe", "--window-size=1280,860", "about:blank"]
        shell = 'exec "$0" "$@" 3<&{0} 4>&{1} {0}<&- {1}>&-'.format(*high)
        self.process = subprocess.Popen(["bash", "-c", shell, CHROMIUM, *flags], pass_fds=high,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for end in (browser_in, browser_out, *high):
            os.close(end)
        self.last_id, self.received = 0, b""
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        self.call("Page.navigate", self.session, url=url)
        self.evaluate('new Promise(done => document.readyState == "complete" ? done() : addEventListener("load", done))')

    def call(self, method, session=None, **params):
        self.last_id += 1
        message = {"id": self.last_id, "method": method, "params": params, **({"sessionId": session} if session else {})}
        os.write(self.commands, json.dumps(message).encode() + b"\0")
        while True:
            while b"\0" not in self.received:
                ready, _, _ = select.select([self.replies], [], [], 30)
                chunk = os.read(self.replies, 1 << 16) if ready else b""
                assert chunk, f"no answer from chromium to {method}"
                self.received += chunk
            text, _, self.received = self.received.partition(b"\0")
            reply = json.loads(text)
            if reply.get("id") == self.last_id:
                assert "error" not in reply, reply
                return reply["result"]

    def evaluate(self, expression):
        result = self.call("Runtime.evaluate", self.session, expression=expression, awaitPromise=True, returnByValue=True)
        return result["result"].get("value")

    def wait_for(self, condition):
        """The page's window.tavView once `condition` (JS, of view) holds, or after 10 s."""
        return json.loads(self.evaluate(f"""new Promise(done => {{
            const check = () => {{ const view = window.tavView; if ({condition}) done(JSON.stringify(view)); }};
            window.addEventListener("viewchange", check); check();
            setTimeout(() => done(JSON.stringify(window.tavView)), 10000); }})"""))

    def close(self):
        self.process.terminate()
        self.process.wait()
        os.close(self.commands)
        os.close(self.replies)


def test_state_is_served_as_json_only_with_a_view():
    with viewed_simulator() as simulator:
        state = json.load(urllib.request.urlopen(f"http://127.0.0.1:{simulator.view_port}/state"))
        assert state["angles"] == pytest.approx([0, -90, 90, -90, -90, 0]) and state["mode"] == "Unconfigured"
    with tavclient.Simulator() as plain:
        assert plain.view_port is None


def test_the_page_draws_the_angles_the_robot_reads_and_survives_a_restart(tmp_path, new_robot):
    if not os.access(CHROMIUM, os.X_OK):
        pytest.skip("chromium is not installed (scripts/install-deps.sh test installs it)")
    simulator = viewed_simulator()
    port = simulator.view_port
    browser = Chromium(f"http://127.0.0.1:{port}/", tmp_path / "profile")
    try:
        with new_robot() as robot:
            robot.RobotLogin("127.0.0.1", simulator.port)
            robot.Setup("arm", CHANNEL, Setup_Mode.Virtual)
            for target in TOUR:
                robot.move_to_angles(list(range(1, 7)), target, 90.0, 180.0, Relative_Mode.Absolute)
                robot.wait_for_motors()
                read = robot.get_angles()
                near = " && ".join(f"Math.abs(view.drawnAngles[{i}] - {a}) < 1e-3" for i, a in enumerate(read))
                assert browser.wait_for(f"view.drawnAngles && {near}")["drawnAngles"] == pytest.approx(read, abs=1e-3)
            robot.set_output(2, 1)
            robot.set_EOAT_action("gripper", "close")
            assert browser.wait_for("view.gripperClosed")["gripperClosed"]
            shot = browser.call("Page.captureScreenshot", browser.session, format="png")["data"]
            screenshot = os.environ.get("TAVSIM_VIEW_SCREENSHOT", tmp_path / "live-view.png")
            with open(screenshot, "wb") as image:
                image.write(base64.b64decode(shot))
            robot.RobotLogout()
        simulator.stop()
        assert not browser.wait_for("!view.live")["live"]
        assert browser.evaluate("document.getElementById('link').textContent") == "disconnected"
        with tavclient.Simulator(view=port):
            assert browser.wait_for("view.live && view.updates > 0")["live"]
    finally:
        browser.close()
