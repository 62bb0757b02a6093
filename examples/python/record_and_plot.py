"""Record the arm's state during a move and plot it.

    record_and_plot.py

Starts a simulator in this process, records a move of all six joints at 100 Hz (angles,
velocities, currents) into recording.csv in the working directory, plots it into
recording.png (one panel per quantity) and prints both paths.
"""
import csv
import os
import sys

import matplotlib

matplotlib.use("Agg")  # no display needed
import matplotlib.pyplot as plt  # noqa: E402

import tavclient  # noqa: E402

QUANTITIES = [  # column prefix, field, axis label
    ("angle", tavclient.StateField.Angles, "angle (deg)"),
    ("velocity", tavclient.StateField.Velocities, "velocity (deg/s)"),
    ("current", tavclient.StateField.Currents, "current (A)"),
]


def record(path):
    with tavclient.Simulator() as simulator, tavclient.Robot() as robot:
        robot.RobotLogin("127.0.0.1", simulator.port)
        robot.Setup("arm", ("can0", "can", "canopen", 1, 500000), tavclient.Setup_Mode.Virtual)
        monitor = tavclient.StateMonitor(robot, rate_hz=100, fields=[field for _, field, _ in QUANTITIES])
        monitor.start_recording(path)
        with monitor:
            monitor.wait_next()
            ids = [1, 2, 3, 4, 5, 6]
            robot.move_to_angles(ids, [60.0, -60.0, 60.0, -60.0, -60.0, 90.0], 60.0, 120.0,
                                 tavclient.Relative_Mode.Absolute)
            robot.wait_for_motors(ids)
            robot.move_to_angles(ids, [0.0, -90.0, 90.0, -90.0, -90.0, 0.0], 90.0, 300.0,
                                 tavclient.Relative_Mode.Absolute)
            robot.wait_for_motors(ids)
            monitor.wait_next()
        monitor.stop_recording()


def plot(csv_path, png_path):
    with open(csv_path) as file:
        rows = list(csv.DictReader(file))
    time = [float(row["time_s"]) for row in rows]
    figure, axes = plt.subplots(len(QUANTITIES), 1, sharex=True, figsize=(9, 8))
    for axis, (prefix, _, label) in zip(axes, QUANTITIES):
        for column in (name for name in rows[0] if name.startswith(prefix + "_")):
            joint = column.split("_")[1]
            values = [float(row[column]) if row[column] else float("nan") for row in rows]
            axis.plot(time, values, label=f"joint {joint}")
        axis.set_ylabel(label)
        axis.grid(True, alpha=0.3)
    axes[0].legend(loc="upper right", ncol=3, fontsize="small")
    axes[-1].set_xlabel("time (s)")
    figure.suptitle("Recorded at 100 Hz")
    figure.tight_layout()
    figure.savefig(png_path, dpi=100)


def main():
    csv_path = os.path.abspath("recording.csv")
    png_path = os.path.abspath("recording.png")
    record(csv_path)
    plot(csv_path, png_path)
    print(f"recording: {csv_path}")
    print(f"plot: {png_path}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
