"""A tight Python loop of get_angles(1) against a simulator in this process: prints the calls
per second over about SECONDS (the first argument, 1 by default)."""
import sys
import time

import tavclient

seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 1.0
with tavclient.Simulator() as simulator, tavclient.Robot() as robot:
    robot.RobotLogin("127.0.0.1", simulator.port)
    robot.Setup("arm", ("can0", "can", "canopen", 1, 500000), tavclient.Setup_Mode.Virtual)
    for _ in range(200):  # warm-up
        robot.get_angles(1)
    calls = 0
    start = time.perf_counter()
    while True:
        for _ in range(100):
            robot.get_angles(1)
        calls += 100
        now = time.perf_counter()
        if now - start >= seconds:
            break
    print(calls / (now - start))
